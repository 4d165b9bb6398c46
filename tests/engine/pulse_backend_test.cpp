// The sound-server backend against a private pulseaudio daemon: device lists and
// their controls as the server keeps them, a tone played into the null sink and
// recorded back from its monitor, and voice prompts that neither wait nor pile up.

#include "engine/pulse_backend.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <numbers>
#include <optional>

#include "support/pulse_daemon.h"
#include "support/pulse_modules.h"
#include "support/real_time_event_loop.h"

namespace ovd::engine {
namespace {

using std::chrono::milliseconds;
using Steady = std::chrono::steady_clock;
using ovd::testing::PulseDaemon;

int indexOf(const DeviceList& list, const std::string& name) {
    for (int i = 0; i < list.Count(); ++i) {
        if (list.Name(i) == name) return i;
    }
    return -1;
}

std::vector<std::int16_t> sine(double hz, int rate, double seconds) {
    std::vector<std::int16_t> samples(static_cast<std::size_t>(seconds * rate));
    for (std::size_t i = 0; i < samples.size(); ++i) {
        const double phase = 2.0 * std::numbers::pi * hz * static_cast<double>(i) / rate;
        samples[i] = static_cast<std::int16_t>(std::lround(0.5 * 32767.0 * std::sin(phase)));
    }
    return samples;
}

// Where the sound in a take is: its length from the first to the last loud
// sample, and its pitch from the rising zero crossings in between.
struct Sound {
    double seconds = 0.0;
    double hz = 0.0;
};

Sound measure(const std::vector<std::int16_t>& take, int rate) {
    constexpr int kLoud = 2000;
    const auto loud = [](std::int16_t s) { return std::abs(static_cast<int>(s)) > kLoud; };
    const auto first = std::find_if(take.begin(), take.end(), loud);
    if (first == take.end()) return {};
    const auto last = std::find_if(take.rbegin(), take.rend(), loud).base() - 1;
    int rising = 0;
    for (auto it = first + 1; it <= last; ++it) {
        if (*(it - 1) < 0 && *it >= 0) ++rising;
    }
    const double span = static_cast<double>(last - first) / rate;
    return {static_cast<double>(last - first + 1) / rate, span > 0 ? rising / span : 0.0};
}

class PulseBackendTest : public ::testing::Test {
  protected:
    static constexpr int kTakeRate = 16000;

    void SetUp() override {
        ASSERT_TRUE(daemon_.running()) << daemon_.error();
        auto connected = PulseBackend::connect(loop_);
        ASSERT_TRUE(connected) << connected.error();
        backend_ = std::move(*connected);
    }

    // Records what the null sink plays, as a dictation would record a microphone.
    void startRecordingTheSink(PcmFormat format = {kTakeRate, 1}) {
        DeviceList& inputs = backend_->recordingDevices();
        ASSERT_TRUE(inputs.setCurrent(indexOf(inputs, PulseDaemon::kMonitorLabel)));
        take_.clear();
        firstFrame_.reset();
        captureStarted_ = Steady::now();
        const auto channels = static_cast<std::size_t>(format.channels);
        const platform::Result<void> started = backend_->startCapture(
            format, [this, channels](const std::int16_t* frames, std::size_t count) {
                if (!firstFrame_) firstFrame_ = Steady::now();
                take_.insert(take_.end(), frames, frames + count * channels);
            });
        ASSERT_TRUE(started) << started.error();
    }

    // The first channel of the take.
    [[nodiscard]] std::vector<std::int16_t> left(int channels) const {
        std::vector<std::int16_t> result;
        for (std::size_t i = 0; i < take_.size(); i += static_cast<std::size_t>(channels)) {
            result.push_back(take_[i]);
        }
        return result;
    }

    // Feeds the stream from a loop timer, as the wave editor does, until all is heard.
    void playToTheEnd(PlaybackStream& stream, const std::vector<std::int16_t>& sound) {
        std::size_t fed = 0;
        const auto feed = [&] {
            const std::size_t now = std::min(stream.writable(), sound.size() - fed);
            stream.write(sound.data() + fed, now);
            fed += now;
            EXPECT_LE(stream.played(), static_cast<SampleCount>(fed)) << "heard before written";
        };
        feed();
        const auto timer = loop_.startRepeating(milliseconds(10), feed);
        const auto expected = static_cast<SampleCount>(sound.size());
        const bool ended =
            loop_.runUntil([&] { return stream.played() == expected; }, milliseconds(6000));
        loop_.stopRepeating(timer);
        EXPECT_TRUE(ended) << "played " << stream.played() << " of " << expected << " frames";
    }

    PulseDaemon daemon_;
    testing::RealTimeEventLoop loop_;
    std::unique_ptr<PulseBackend> backend_;
    std::vector<std::int16_t> take_;
    Steady::time_point captureStarted_;
    std::optional<Steady::time_point> firstFrame_;
};

TEST_F(PulseBackendTest, ListsShowTheServersDevicesWithTheDefaultsCurrent) {
    DeviceList& outputs = backend_->playbackDevices();
    DeviceList& inputs = backend_->recordingDevices();
    const int sink = indexOf(outputs, PulseDaemon::kSinkLabel);
    ASSERT_GE(sink, 0);
    EXPECT_EQ(outputs.Current(), sink) << "the only sink is the server's default";
    const int monitor = indexOf(inputs, PulseDaemon::kMonitorLabel);
    const int sineSource = indexOf(inputs, PulseDaemon::kSineLabel);
    ASSERT_GE(monitor, 0) << "monitor sources are kept in the recording list";
    ASSERT_GE(sineSource, 0);
    EXPECT_EQ(inputs.Current(), sineSource) << "the server's default, though not the first";
    ASSERT_NE(sineSource, 0);

    // Devices without ports have one source line named after themselves.
    ASSERT_TRUE(inputs.setCurrent(monitor));
    EXPECT_EQ(inputs.Current(), monitor);
    EXPECT_EQ(inputs.SourceCount(), 1);
    EXPECT_EQ(inputs.SourceCurrent(), 0);
    EXPECT_EQ(inputs.SourceName(0), PulseDaemon::kMonitorLabel);
    EXPECT_TRUE(inputs.HasVolume(0));
    EXPECT_TRUE(inputs.setSourceCurrent(0));

    for (DeviceList* list : {&inputs, &outputs}) {
        EXPECT_FALSE(list->setCurrent(list->Count()));
        EXPECT_FALSE(list->setSourceCurrent(1));
        EXPECT_FALSE(list->setVolume(1, 100)) << "no second line";
        EXPECT_EQ(list->Name(-1), "");
    }
}

TEST_F(PulseBackendTest, VolumeBalanceAndMuteReachTheServerAndOtherClientsSeeThem) {
    auto connected = PulseBackend::connect(loop_);
    ASSERT_TRUE(connected) << connected.error();
    std::unique_ptr<PulseBackend> mixer = std::move(*connected);
    DeviceList& outputs = backend_->playbackDevices();
    DeviceList& seen = mixer->playbackDevices();
    ASSERT_TRUE(outputs.setCurrent(indexOf(outputs, PulseDaemon::kSinkLabel)));
    ASSERT_TRUE(seen.setCurrent(indexOf(seen, PulseDaemon::kSinkLabel)));

    struct Case {
        int volume;
        int balance;
        bool mute;
    };
    for (const Case& c : {Case{65535, 0, false}, Case{40000, 50, true}, Case{1, -100, false},
                          Case{32768, 100, true}, Case{0, 0, false}, Case{20000, -37, false}}) {
        SCOPED_TRACE("volume " + std::to_string(c.volume) + " balance " +
                     std::to_string(c.balance));
        ASSERT_TRUE(outputs.setVolume(0, c.volume));
        ASSERT_TRUE(outputs.setBalance(0, c.balance));
        ASSERT_TRUE(outputs.setMute(0, c.mute));
        // Balance leaves the louder side at the volume; at zero there is no balance.
        EXPECT_EQ(outputs.Volume(0), c.volume);
        EXPECT_NEAR(outputs.Balance(0), c.volume == 0 ? 0 : c.balance, 1);
        EXPECT_EQ(outputs.Mute(0), c.mute);
        // The other client hears of the change from the server, on its loop.
        const bool followed =
            loop_.runUntil([&] { return seen.Volume(0) == c.volume && seen.Mute(0) == c.mute; },
                           milliseconds(2000));
        EXPECT_TRUE(followed) << "other client sees " << seen.Volume(0);
    }

    // A mono source has no balance to move.
    DeviceList& inputs = backend_->recordingDevices();
    ASSERT_TRUE(inputs.setCurrent(indexOf(inputs, PulseDaemon::kSineLabel)));
    EXPECT_TRUE(inputs.setBalance(0, 60));
    EXPECT_EQ(inputs.Balance(0), 0);
    ASSERT_TRUE(inputs.setVolume(0, 12345));
    EXPECT_EQ(inputs.Volume(0), 12345);
}

TEST_F(PulseBackendTest, ToneRecordedFromTheSinkKeepsItsLengthAndPitch) {
    constexpr int kPlayRate = 22050;
    constexpr double kSeconds = 1.5;
    for (const PcmFormat take : {PcmFormat{kTakeRate, 1}, PcmFormat{44100, 2}}) {
        SCOPED_TRACE(std::to_string(take.sampleRate) + " Hz, " + std::to_string(take.channels) +
                     " channels");
        startRecordingTheSink(take);
        auto opened = backend_->openPlayback({kPlayRate, 1});
        ASSERT_TRUE(opened) << opened.error();
        const std::unique_ptr<PlaybackStream> stream = std::move(*opened);

        const Steady::time_point playStarted = Steady::now();
        playToTheEnd(*stream, sine(PulseDaemon::kSineHz, kPlayRate, kSeconds));
        const double playSeconds =
            std::chrono::duration<double>(Steady::now() - playStarted).count();
        EXPECT_GT(playSeconds, kSeconds * 0.9) << "the position ran ahead of the sound";
        loop_.runFor(milliseconds(300));  // the sink's own latency
        backend_->stopCapture();
        const double captureSeconds =
            std::chrono::duration<double>(Steady::now() - captureStarted_).count();

        ASSERT_TRUE(firstFrame_.has_value()) << "nothing was captured";
        std::printf(
            "first captured frame after %.1f ms; tone played in %.3f s\n",
            std::chrono::duration<double, std::milli>(*firstFrame_ - captureStarted_).count(),
            playSeconds);
        const std::vector<std::int16_t> channel = left(take.channels);
        const Sound heard = measure(channel, take.sampleRate);
        EXPECT_NEAR(heard.seconds, kSeconds, kSeconds * 0.05);
        EXPECT_NEAR(heard.hz, PulseDaemon::kSineHz, PulseDaemon::kSineHz * 0.02);
        // Nothing lost, doubled or split between the sound thread and the loop.
        EXPECT_EQ(take_.size() % static_cast<std::size_t>(take.channels), 0U);
        EXPECT_NEAR(static_cast<double>(channel.size()) / take.sampleRate, captureSeconds,
                    captureSeconds * 0.05);

        const std::size_t kept = take_.size();
        loop_.runFor(milliseconds(100));
        EXPECT_EQ(take_.size(), kept) << "frames delivered after stopCapture";
    }
}

TEST_F(PulseBackendTest, ClipsShorterThanTheBufferAreStillPlayedToTheirEnd) {
    startRecordingTheSink();
    for (const double seconds : {0.02, 0.1, 0.5}) {
        SCOPED_TRACE(seconds);
        auto opened = backend_->openPlayback({8000, 2});
        ASSERT_TRUE(opened) << opened.error();
        const std::unique_ptr<PlaybackStream> stream = std::move(*opened);
        std::vector<std::int16_t> stereo;
        for (const std::int16_t s : sine(300, 8000, seconds)) stereo.insert(stereo.end(), {s, s});
        take_.clear();
        std::size_t fed = 0;
        while (fed < stereo.size() / 2) {
            const std::size_t now = std::min(stream->writable(), stereo.size() / 2 - fed);
            stream->write(stereo.data() + 2 * fed, now);
            fed += now;
            loop_.runFor(milliseconds(10));
        }
        EXPECT_TRUE(loop_.runUntil([&] { return stream->played() == SampleCount(fed); },
                                   milliseconds(2000)))
            << "played " << stream->played() << " of " << fed;
        loop_.runFor(milliseconds(150));
        EXPECT_NEAR(measure(take_, kTakeRate).seconds, seconds, 0.01 + seconds * 0.05)
            << "what the sink was given is what it sounded";
    }
}

TEST_F(PulseBackendTest, PausedPlaybackIsSilentHoldsItsPositionAndGoesOnWhenResumed) {
    startRecordingTheSink();
    auto opened = backend_->openPlayback({16000, 1});
    ASSERT_TRUE(opened) << opened.error();
    const std::unique_ptr<PlaybackStream> stream = std::move(*opened);
    const std::vector<std::int16_t> sound = sine(500, 16000, 1.0);
    const std::size_t written = std::min(stream->writable(), sound.size());
    stream->write(sound.data(), written);
    // The position is asked for at each tick, as the wave editor's timer does.
    const auto follow = [&](int ms) {
        loop_.runUntil([&] { return stream->played() < 0; }, milliseconds(ms));
    };
    follow(40);
    stream->setPaused(true);
    follow(60);
    const SampleCount held = stream->played();
    take_.clear();
    follow(300);
    EXPECT_NEAR(static_cast<double>(stream->played()), static_cast<double>(held), 16000 * 0.01);
    EXPECT_LT(held, static_cast<SampleCount>(written)) << "a paused stream is not played out";
    EXPECT_EQ(measure(take_, kTakeRate).seconds, 0.0) << "nothing sounds while paused";
    // Less than a full buffer is left: resuming must not wait for more.
    stream->setPaused(false);
    EXPECT_TRUE(loop_.runUntil([&] { return stream->played() == SampleCount(written); },
                               milliseconds(1000)));
    EXPECT_GT(measure(take_, kTakeRate).seconds, 0.0);
}

TEST_F(PulseBackendTest, PromptsDoNotWaitAndANewOneCutsOffTheOneBefore) {
    const std::string folder = std::string(OVD_TEST_ASSETS) + "/prompts/";
    startRecordingTheSink();
    loop_.runFor(milliseconds(200));

    const Steady::time_point asked = Steady::now();
    backend_->playPrompt(folder + "FileSent1MSG.WAV");  // about two seconds long
    const double returnedMs =
        std::chrono::duration<double, std::milli>(Steady::now() - asked).count();
    std::printf("playPrompt returned after %.1f ms\n", returnedMs);
    EXPECT_LT(returnedMs, 500.0);
    EXPECT_EQ(backend_->promptError(), "");
    EXPECT_TRUE(backend_->promptPlaying());

    loop_.runFor(milliseconds(400));
    backend_->playPrompt(folder + "beep2.wav");
    EXPECT_TRUE(loop_.runUntil([&] { return !backend_->promptPlaying(); }, milliseconds(3000)))
        << "a prompt that has sounded is let go";
    // Listen on past the end the first prompt would have had.
    loop_.runFor(milliseconds(2500) -
                 std::chrono::duration_cast<milliseconds>(Steady::now() - asked));
    backend_->stopCapture();
    // The spoken prompt was cut at 0.4 s, then 0.2 s of beep: far from its two seconds.
    const Sound heard = measure(take_, kTakeRate);
    EXPECT_GT(heard.seconds, 0.4);
    EXPECT_LT(heard.seconds, 1.0);

    backend_->playPrompt(folder + "NoSuchPrompt.wav");
    EXPECT_NE(backend_->promptError().find("NoSuchPrompt.wav"), std::string::npos);
    EXPECT_FALSE(backend_->promptPlaying());
}

TEST_F(PulseBackendTest, FormatsTheServerCannotTakeAreRefusedWithAReason) {
    for (const PcmFormat format : {PcmFormat{0, 1}, PcmFormat{16000, 0}, PcmFormat{-8000, 2}}) {
        const auto refused = backend_->openPlayback(format);
        EXPECT_FALSE(refused);
        EXPECT_NE(refused.error(), "");
        const platform::Result<void> started =
            backend_->startCapture(format, [](auto*, std::size_t) {});
        EXPECT_FALSE(started);
        EXPECT_NE(started.error(), "");
    }
}

TEST_F(PulseBackendTest, AServerThatGoesAwayTurnsCallsIntoFailuresWithoutHanging) {
    startRecordingTheSink();
    auto opened = backend_->openPlayback({16000, 1});
    ASSERT_TRUE(opened) << opened.error();
    const std::unique_ptr<PlaybackStream> stream = std::move(*opened);
    const std::vector<std::int16_t> sound = sine(500, 16000, 0.1);
    stream->write(sound.data(), std::min(stream->writable(), sound.size()));
    loop_.runFor(milliseconds(50));

    daemon_.stop();
    const Steady::time_point gone = Steady::now();
    loop_.runFor(milliseconds(100));
    EXPECT_EQ(stream->writable(), 0U);
    stream->write(sound.data(), sound.size());
    EXPECT_LE(stream->played(), SampleCount(sound.size()));
    stream->setPaused(true);
    EXPECT_FALSE(backend_->playbackDevices().setVolume(0, 1000));
    backend_->stopCapture();
    EXPECT_FALSE(backend_->startCapture({kTakeRate, 1}, [](auto*, std::size_t) {}));
    const auto refused = backend_->openPlayback({kTakeRate, 1});
    EXPECT_FALSE(refused);
    EXPECT_NE(refused.error(), "");
    backend_->playPrompt(std::string(OVD_TEST_ASSETS) + "/prompts/beep2.wav");
    EXPECT_NE(backend_->promptError(), "");
    EXPECT_LT(Steady::now() - gone, std::chrono::seconds(2)) << "nothing waited for an answer";
}

TEST(PulseBackendConnectTest, NoServerMeansNoBackendAndAReasonQuickly) {
    testing::RealTimeEventLoop loop;
    const Steady::time_point asked = Steady::now();
    const auto refused = PulseBackend::connect(loop, "unix:/nonexistent/ovd-no-server");
    ASSERT_FALSE(refused);
    EXPECT_NE(refused.error().find("sound server"), std::string::npos) << refused.error();
    EXPECT_LT(Steady::now() - asked, std::chrono::seconds(3));
}

int loadModule(const std::string& arguments) {
    std::string error;
    const int index = ovd::testing::loadPulseModule(arguments, &error);
    if (index < 0) ADD_FAILURE() << error;
    return index;
}

bool unloadModule(int index) { return ovd::testing::unloadPulseModule(index); }

TEST_F(PulseBackendTest, DevicesPluggedInOrTakenAwayWhileRunningReachTheLists) {
    DeviceList& inputs = backend_->recordingDevices();
    DeviceList& outputs = backend_->playbackDevices();
    const unsigned long inputChanges = inputs.Changes();
    const unsigned long outputChanges = outputs.Changes();

    const int microphone =
        loadModule(ovd::testing::sineSourceArguments("ovd_plugged", "PluggedMicrophone", 880));
    ASSERT_GE(microphone, 0);
    EXPECT_TRUE(loop_.runUntil([&] { return indexOf(inputs, "PluggedMicrophone") >= 0; },
                               milliseconds(5000)))
        << "a microphone plugged in while the station runs is listed";
    EXPECT_GT(inputs.Changes(), inputChanges);

    const int speaker = loadModule(
        "module-null-sink sink_name=ovd_plugged_sink "
        "sink_properties=device.description=PluggedSpeaker");
    ASSERT_GE(speaker, 0);
    EXPECT_TRUE(loop_.runUntil([&] { return indexOf(outputs, "PluggedSpeaker") >= 0; },
                               milliseconds(5000)));
    EXPECT_GT(outputs.Changes(), outputChanges);

    ASSERT_TRUE(unloadModule(speaker));
    ASSERT_TRUE(unloadModule(microphone));
    EXPECT_TRUE(loop_.runUntil(
        [&] {
            return indexOf(inputs, "PluggedMicrophone") < 0 &&
                   indexOf(outputs, "PluggedSpeaker") < 0;
        },
        milliseconds(5000)));
    EXPECT_EQ(inputs.Name(inputs.Current()), PulseDaemon::kSineLabel)
        << "the default is used again";
}

TEST_F(PulseBackendTest, AMicrophoneThatVanishesDuringATakeEndsItWithWhatWasSaid) {
    const int microphone =
        loadModule(ovd::testing::sineSourceArguments("ovd_vanishing", "VanishingMicrophone", 880));
    ASSERT_GE(microphone, 0);
    DeviceList& inputs = backend_->recordingDevices();
    ASSERT_TRUE(loop_.runUntil([&] { return indexOf(inputs, "VanishingMicrophone") >= 0; },
                               milliseconds(5000)));
    ASSERT_TRUE(inputs.setCurrent(indexOf(inputs, "VanishingMicrophone")));

    std::vector<std::string> lost;
    backend_->onCaptureDeviceLost = [&](const std::string& device) { lost.push_back(device); };
    std::size_t framesAtLoss = 0;
    const platform::Result<void> started = backend_->startCapture(
        {kTakeRate, 1}, [this](const std::int16_t* frames, std::size_t count) {
            take_.insert(take_.end(), frames, frames + count);
        });
    ASSERT_TRUE(started) << started.error();
    loop_.runFor(milliseconds(1000));
    ASSERT_GT(take_.size(), static_cast<std::size_t>(kTakeRate / 2)) << "the microphone was heard";

    ASSERT_TRUE(unloadModule(microphone));
    ASSERT_TRUE(loop_.runUntil([&] { return !lost.empty(); }, milliseconds(5000)))
        << "the take is told that its microphone has gone";
    framesAtLoss = take_.size();
    EXPECT_EQ(lost, std::vector<std::string>{"VanishingMicrophone"});
    loop_.runFor(milliseconds(500));
    EXPECT_EQ(take_.size(), framesAtLoss) << "nothing comes in from another microphone";
    // What was said before the loss is the 880 Hz of that microphone, not the
    // 440 Hz of the one the server would have carried the stream over to.
    const Sound heard = measure(take_, kTakeRate);
    EXPECT_NEAR(heard.hz, 880.0, 20.0);
    EXPECT_EQ(indexOf(inputs, "VanishingMicrophone"), -1);
    EXPECT_EQ(inputs.Name(inputs.Current()), PulseDaemon::kSineLabel);

    backend_->onCaptureDeviceLost = nullptr;  // `lost` ends here
}

}  // namespace
}  // namespace ovd::engine
