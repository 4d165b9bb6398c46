#pragma once
// A wave editor on the virtual backend, loaded with audio the test makes (tones,
// speech from the speech synthesizer with silences between), with the effects
// waited for on the loop, and the measures the effect tests take.

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <cstdlib>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "engine/resampler.h"
#include "engine/spectrum.h"
#include "engine/virtual_backend.h"
#include "engine/wave_editor.h"
#include "engine/wave_header.h"
#include "platform/files.h"
#include "support/temp_folder.h"
#include "support/virtual_event_loop.h"
#include "test_signal.h"

namespace ovd::engine::testing {

inline double rms(const std::vector<std::int16_t>& samples) {
    if (samples.empty()) return 0;
    double sum = 0;
    for (const std::int16_t sample : samples) sum += static_cast<double>(sample) * sample;
    return std::sqrt(sum / static_cast<double>(samples.size()));
}

inline std::vector<std::int16_t> slice(const std::vector<std::int16_t>& samples, std::size_t from,
                                       std::size_t count) {
    if (from >= samples.size()) return {};
    count = std::min(count, samples.size() - from);
    return {samples.begin() + static_cast<std::ptrdiff_t>(from),
            samples.begin() + static_cast<std::ptrdiff_t>(from + count)};
}

// How long something louder than a whisper (-40 dB full scale) sounds, in 10 ms steps.
inline double speechSeconds(const std::vector<std::int16_t>& samples, int rate = 16000) {
    const auto step = static_cast<std::size_t>(rate / 100);
    int loud = 0;
    for (std::size_t at = 0; at + step <= samples.size(); at += step)
        if (rms(slice(samples, at, step)) > 328) ++loud;
    return loud / 100.0;
}

inline std::string waveBytes(const PcmFormat& format, const std::vector<std::int16_t>& samples) {
    const auto header = pcmWaveHeader(format, "", samples.size() * sizeof(std::int16_t));
    return std::string(header.begin(), header.end()) +
           std::string(reinterpret_cast<const char*>(samples.data()),
                       samples.size() * sizeof(std::int16_t));
}

inline std::vector<std::int16_t> toneSamples(const PcmFormat& format, double seconds, double hertz,
                                             double amplitude) {
    std::vector<std::int16_t> samples;
    const auto frames = static_cast<std::size_t>(seconds * format.sampleRate);
    for (std::size_t i = 0; i < frames; ++i) {
        const double phase =
            2.0 * std::numbers::pi * hertz * static_cast<double>(i) / format.sampleRate;
        for (int c = 0; c < format.channels; ++c)
            samples.push_back(static_cast<std::int16_t>(std::lround(amplitude * std::sin(phase))));
    }
    return samples;
}

class EffectsFixture : public ::testing::Test {
  protected:
    EffectsFixture() { editor.setTempFileName(folder.path() + "/Temp"); }

    void load(int rate, const std::vector<std::int16_t>& samples, int channels = 1) {
        const std::string path = folder.file("loaded" + std::to_string(++loads_) + ".wav");
        ASSERT_TRUE(platform::writeWholeFile(path, waveBytes({rate, channels}, samples)).ok());
        ASSERT_TRUE(editor.Open(path).ok());
    }

    void loadTone(int rate, double seconds, double hertz, double amplitude) {
        load(rate, toneSamples({rate, 1}, seconds, hertz, amplitude));
    }

    // Each phrase spoken at 16 kHz, followed by gapSeconds of silence.
    void loadSpeech(const std::vector<std::string>& phrases, double gapSeconds) {
        std::vector<std::int16_t> all;
        for (const std::string& phrase : phrases) {
            const std::string path = folder.file("spoken.wav");
            const std::string command = "espeak-ng -w '" + path + "' '" + phrase + "'";
            ASSERT_EQ(std::system(command.c_str()), 0) << command;
            auto reader = AudioFileReader::open(path);
            ASSERT_TRUE(reader.ok());
            auto converted = ConvertingSource::create(**reader, {16000, 1});
            ASSERT_TRUE(converted.ok());
            const auto spoken = readAll(**converted);
            all.insert(all.end(), spoken.begin(), spoken.end());
            all.resize(all.size() + static_cast<std::size_t>(gapSeconds * 16000));
        }
        load(16000, all);
    }

    // Runs the loop until the effect's outcome is in.
    void waitFor(std::optional<platform::Result<void>>& outcome) {
        const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(60);
        while (!outcome && std::chrono::steady_clock::now() < limit) {
            loop.runPending();
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        ASSERT_TRUE(outcome.has_value()) << "the effect never ended";
    }

    platform::Result<void> apply(Effect effect, SampleCount from, SampleCount to) {
        std::optional<platform::Result<void>> outcome;
        platform::Result<void> started = editor.ApplyEffect(
            effect, from, to, [&](platform::Result<void> result) { outcome = std::move(result); });
        if (!started) return started;
        waitFor(outcome);
        if (!outcome) return platform::failure("no outcome");
        return *outcome;
    }

    std::vector<std::int16_t> all() const {
        std::vector<std::int16_t> out(
            static_cast<std::size_t>(editor.Length() * editor.Channels()));
        out.resize(editor.readFrames(0, out.data(), static_cast<std::size_t>(editor.Length())) *
                   static_cast<std::size_t>(editor.Channels()));
        return out;
    }

    double seconds() const {
        return static_cast<double>(editor.Length()) / editor.SamplesPerSecond();
    }

    // The level a tone comes out at, in dB, measured away from the filter's start.
    double gainDb(Effect effect, int rate, double hertz) {
        loadTone(rate, 2.0, hertz, 8000.0);
        const auto middle = [&] {
            return rms(
                slice(all(), static_cast<std::size_t>(rate) / 2, static_cast<std::size_t>(rate)));
        };
        const double before = middle();
        EXPECT_TRUE(apply(effect, 0, editor.Length()).ok());
        return 20.0 * std::log10(middle() / before);
    }

    static double peakHertz(const std::vector<std::int16_t>& samples, int rate) {
        return toneHertz(samples, 1, rate);
    }

    ovd::testing::TempFolder folder;
    ovd::testing::VirtualEventLoop loop;
    VirtualBackend backend{loop, {}};
    std::shared_ptr<Clipboard> clipboard = std::make_shared<Clipboard>();
    WaveEditor editor{loop, backend, clipboard, "AudioEditor21"};

  private:
    int loads_ = 0;
};

}  // namespace ovd::engine::testing
