#include "engine/virtual_backend.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <numbers>
#include <optional>

#include "engine/codecs.h"

namespace ovd::engine {

namespace {
constexpr int kTickMs = 10;
constexpr double kPlaybackBufferSeconds = 0.2;

platform::Milliseconds elapsedSince(platform::EventLoop& loop,
                                    platform::WallClock::time_point start) {
    return std::chrono::duration_cast<platform::Milliseconds>(loop.now() - start);
}
}  // namespace

// One fixed device with one line: volume and mute are kept, and do nothing.
class VirtualBackend::Devices : public DeviceList {
  public:
    Devices(std::string device, std::string line)
        : device_(std::move(device)), line_(std::move(line)) {}
    [[nodiscard]] int Count() const override { return 1; }
    [[nodiscard]] int Current() const override { return 0; }
    platform::Result<void> setCurrent(int index) override { return check(index); }
    [[nodiscard]] std::string Name(int index) const override { return index == 0 ? device_ : ""; }
    [[nodiscard]] int SourceCount() const override { return 1; }
    [[nodiscard]] int SourceCurrent() const override { return 0; }
    platform::Result<void> setSourceCurrent(int index) override { return check(index); }
    [[nodiscard]] std::string SourceName(int index) const override {
        return index == 0 ? line_ : "";
    }
    [[nodiscard]] bool HasVolume(int) const override { return true; }
    [[nodiscard]] int Volume(int) const override { return volume_; }
    platform::Result<void> setVolume(int index, int volume) override {
        volume_ = std::clamp(volume, 0, 65535);
        return check(index);
    }
    [[nodiscard]] int Balance(int) const override { return balance_; }
    platform::Result<void> setBalance(int index, int balance) override {
        balance_ = std::clamp(balance, -100, 100);
        return check(index);
    }
    [[nodiscard]] bool Mute(int) const override { return mute_; }
    platform::Result<void> setMute(int index, bool mute) override {
        mute_ = mute;
        return check(index);
    }

  private:
    static platform::Result<void> check(int index) {
        return index == 0 ? platform::Result<void>::success() : platform::failure("no such device");
    }
    std::string device_;
    std::string line_;
    int volume_ = 65535;
    int balance_ = 0;
    bool mute_ = false;
};

// Plays at the clock's pace into the backend's record of what was heard.
class VirtualBackend::Stream : public PlaybackStream {
  public:
    Stream(VirtualBackend& owner, const PcmFormat& format)
        : owner_(owner), format_(format), start_(owner.loop_.now()) {}

    [[nodiscard]] std::size_t writable() const override {
        const auto capacity = static_cast<SampleCount>(kPlaybackBufferSeconds * format_.sampleRate);
        return static_cast<std::size_t>(std::max<SampleCount>(0, capacity - (written_ - played())));
    }
    void write(const std::int16_t* frames, std::size_t frameCount) override {
        written_ += static_cast<SampleCount>(frameCount);
        owner_.played_.insert(owner_.played_.end(), frames,
                              frames + frameCount * static_cast<std::size_t>(format_.channels));
    }
    [[nodiscard]] SampleCount played() const override {
        const auto running =
            pausedAt_ ? *pausedAt_ : elapsedSince(owner_.loop_, start_) - pausedFor_;
        const SampleCount byClock = running.count() * format_.sampleRate / 1000;
        return std::min(written_, byClock);
    }
    void setPaused(bool paused) override {
        if (paused && !pausedAt_) {
            pausedAt_ = elapsedSince(owner_.loop_, start_) - pausedFor_;
        } else if (!paused && pausedAt_) {
            pausedFor_ = elapsedSince(owner_.loop_, start_) - *pausedAt_;
            pausedAt_.reset();
        }
    }

  private:
    VirtualBackend& owner_;
    PcmFormat format_;
    platform::WallClock::time_point start_;
    SampleCount written_ = 0;
    platform::Milliseconds pausedFor_{0};
    std::optional<platform::Milliseconds> pausedAt_;
};

VirtualBackend::VirtualBackend(platform::EventLoop& loop, Options options)
    : loop_(loop),
      options_(std::move(options)),
      inputs_(std::make_unique<Devices>("Virtual Microphone",
                                        options_.inputFile.empty() ? "Tone" : options_.inputFile)),
      outputs_(std::make_unique<Devices>("Virtual Output", "Discard")),
      captureTimer_(loop, "virtualCapture", kTickMs) {
    captureTimer_.setOnTick([this] { captureTick(); });
}

VirtualBackend::~VirtualBackend() = default;

DeviceList& VirtualBackend::recordingDevices() { return *inputs_; }
DeviceList& VirtualBackend::playbackDevices() { return *outputs_; }

platform::Result<void> VirtualBackend::startCapture(const PcmFormat& format,
                                                    CaptureCallback deliver) {
    if (format.sampleRate <= 0 || format.channels <= 0) {
        return platform::failure("unusable capture format");
    }
    inputSamples_.clear();
    inputPosition_ = 0;
    if (!options_.inputFile.empty()) {
        TargetFormat hint;
        hint.sampleRate = format.sampleRate;
        hint.channels = format.channels;
        auto opened = AudioFileReader::open(options_.inputFile, &hint);
        if (!opened) return platform::failure("virtual microphone: " + opened.error());
        std::unique_ptr<AudioFileReader> reader = std::move(*opened);
        if (!(reader->format() == format)) {
            return platform::failure("virtual microphone: " + options_.inputFile +
                                     " is not at the recording's rate and channels");
        }
        std::vector<std::int16_t> chunk(4096 * static_cast<std::size_t>(format.channels));
        while (const std::size_t got = reader->read(chunk.data(), 4096)) {
            inputSamples_.insert(
                inputSamples_.end(), chunk.begin(),
                chunk.begin() +
                    static_cast<std::ptrdiff_t>(got * static_cast<std::size_t>(format.channels)));
        }
        if (inputSamples_.empty()) return platform::failure("virtual microphone: empty input file");
    }
    captureFormat_ = format;
    deliver_ = std::move(deliver);
    captureStart_ = loop_.now();
    captured_ = 0;
    phase_ = 0.0;
    captureTimer_.setEnabled(true);
    return platform::Result<void>::success();
}

void VirtualBackend::stopCapture() {
    captureTick();  // what the clock has already given is delivered
    captureTimer_.setEnabled(false);
    deliver_ = nullptr;
}

void VirtualBackend::fillInput(std::int16_t* out, std::size_t frames) {
    const auto channels = static_cast<std::size_t>(captureFormat_.channels);
    if (!inputSamples_.empty()) {
        for (std::size_t i = 0; i < frames * channels; ++i) {
            out[i] = inputSamples_[inputPosition_];
            inputPosition_ = (inputPosition_ + 1) % inputSamples_.size();
        }
        return;
    }
    const double step = 2.0 * std::numbers::pi * options_.toneHz / captureFormat_.sampleRate;
    for (std::size_t frame = 0; frame < frames; ++frame) {
        const auto value =
            static_cast<std::int16_t>(std::lround(std::sin(phase_) * options_.toneLevel * 32767.0));
        phase_ = std::fmod(phase_ + step, 2.0 * std::numbers::pi);
        std::fill_n(out + frame * channels, channels, value);
    }
}

void VirtualBackend::captureTick() {
    if (!deliver_) return;
    const SampleCount due =
        elapsedSince(loop_, captureStart_).count() * captureFormat_.sampleRate / 1000;
    if (due <= captured_) return;
    const auto frames = static_cast<std::size_t>(due - captured_);
    std::vector<std::int16_t> block(frames * static_cast<std::size_t>(captureFormat_.channels));
    fillInput(block.data(), frames);
    captured_ = due;
    const CaptureCallback deliver = deliver_;
    deliver(block.data(), frames);
}

platform::Result<std::unique_ptr<PlaybackStream>> VirtualBackend::openPlayback(
    const PcmFormat& format) {
    if (format.sampleRate <= 0 || format.channels <= 0)
        return platform::failure("unusable playback format");
    return std::unique_ptr<PlaybackStream>(std::make_unique<Stream>(*this, format));
}

void VirtualBackend::playPrompt(const std::string& wavePath) {
    prompts_.push_back(wavePath);
    const std::int64_t milliseconds = fileLengthMilliseconds(wavePath);
    promptEnds_ = loop_.now() + platform::Milliseconds(std::max<std::int64_t>(0, milliseconds));
}

bool VirtualBackend::promptPlaying() const { return loop_.now() < promptEnds_; }

}  // namespace ovd::engine
