// Any bytes as the desktop clipboard's wave audio: either refused with a reason,
// or audio of one or two channels whose every frame is whole, and which, written
// back as wave bytes, reads back the same.

#include <cstddef>
#include <cstdint>
#include <string>

#include "engine/clipboard_wav.h"

namespace {

void check(bool condition) {
    if (!condition) __builtin_trap();
}

class SamplesSource : public ovd::engine::PcmSource {
  public:
    explicit SamplesSource(const ovd::engine::WaveAudio& audio) : audio_(audio) {}
    [[nodiscard]] ovd::engine::PcmFormat format() const override { return audio_.format; }
    [[nodiscard]] ovd::engine::SampleCount frames() const override {
        return static_cast<ovd::engine::SampleCount>(
            audio_.samples.size() / static_cast<std::size_t>(audio_.format.channels));
    }
    std::size_t read(std::int16_t* out, std::size_t frameCount) override {
        const auto channels = static_cast<std::size_t>(audio_.format.channels);
        const std::size_t left = audio_.samples.size() / channels - position_;
        const std::size_t count = frameCount < left ? frameCount : left;
        for (std::size_t i = 0; i < count * channels; ++i)
            out[i] = audio_.samples[position_ * channels + i];
        position_ += count;
        return count;
    }

  private:
    const ovd::engine::WaveAudio& audio_;
    std::size_t position_ = 0;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    const auto parsed = ovd::engine::parseWaveFileBytes(bytes);
    if (!parsed) {
        check(!parsed.error().empty());
        return 0;
    }
    const int channels = parsed->format.channels;
    check(channels == 1 || channels == 2);
    check(!parsed->samples.empty() &&
          parsed->samples.size() % static_cast<std::size_t>(channels) == 0);
    SamplesSource source(*parsed);
    const auto again = ovd::engine::parseWaveFileBytes(ovd::engine::waveFileBytes(source));
    check(again.ok() && again->format == parsed->format && again->samples == parsed->samples);
    return 0;
}
