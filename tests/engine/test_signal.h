#pragma once
// A dictation stand-in for codec tests: a steady tone generated as it is read,
// and the measures a test takes of audio read back (length, pitch).

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <numbers>
#include <string>
#include <vector>

#include "engine/codecs.h"

namespace ovd::engine::testing {

class ToneSource : public PcmSource {
  public:
    ToneSource(PcmFormat format, double seconds, double hertz = 440.0)
        : format_(format),
          frames_(static_cast<SampleCount>(seconds * format.sampleRate)),
          hertz_(hertz) {}

    [[nodiscard]] PcmFormat format() const override { return format_; }
    [[nodiscard]] SampleCount frames() const override { return frames_; }
    std::size_t read(std::int16_t* out, std::size_t frameCount) override {
        std::size_t done = 0;
        for (; done < frameCount && position_ < frames_; ++done, ++position_) {
            const double phase = 2.0 * std::numbers::pi * hertz_ * static_cast<double>(position_) /
                                 format_.sampleRate;
            const auto sample = static_cast<std::int16_t>(std::lround(16000.0 * std::sin(phase)));
            for (int c = 0; c < format_.channels; ++c)
                out[done * static_cast<std::size_t>(format_.channels) +
                    static_cast<std::size_t>(c)] = sample;
        }
        return done;
    }

  private:
    PcmFormat format_;
    SampleCount frames_;
    double hertz_;
    SampleCount position_ = 0;
};

// Every frame of a reader, interleaved.
inline std::vector<std::int16_t> readAll(PcmSource& source) {
    const auto channels = static_cast<std::size_t>(source.format().channels);
    std::vector<std::int16_t> all;
    std::vector<std::int16_t> block(4096 * channels);
    while (const std::size_t got = source.read(block.data(), 4096)) {
        all.insert(all.end(), block.begin(),
                   block.begin() + static_cast<std::ptrdiff_t>(got * channels));
    }
    return all;
}

// The pitch of a steady tone from its upward zero crossings in the middle 80 %
// of the first channel (the ends may carry codec start-up and padding). A small
// dead band keeps codec noise around zero from counting as crossings.
inline double toneHertz(const std::vector<std::int16_t>& samples, int channels, int sampleRate) {
    const std::size_t frames = samples.size() / static_cast<std::size_t>(channels);
    const std::size_t first = frames / 10;
    const std::size_t last = frames - frames / 10;
    int crossings = 0;
    bool below = false;
    for (std::size_t frame = first; frame < last; ++frame) {
        const int sample = samples[frame * static_cast<std::size_t>(channels)];
        if (sample < -1000) below = true;
        if (below && sample > 1000) {
            ++crossings;
            below = false;
        }
    }
    return crossings / (static_cast<double>(last - first) / sampleRate);
}

// Standard output of a shell command (an outside tool's view of a file).
inline std::string commandOutput(const std::string& command) {
    std::string text;
    if (FILE* pipe = ::popen(command.c_str(), "r")) {
        char buffer[512];
        while (const std::size_t got = std::fread(buffer, 1, sizeof buffer, pipe))
            text.append(buffer, got);
        ::pclose(pipe);
    }
    return text;
}

}  // namespace ovd::engine::testing
