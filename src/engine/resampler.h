#pragma once
// Bringing audio to the rate and channel count a file format is written at.
// A dictation recorded at 16 kHz mono may be saved at 44.1 kHz stereo, or must
// go down to 8 kHz mono for the speech codecs; either way the length in time and
// the pitch stay what was said.

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "engine/codecs.h"

namespace ovd::engine {

// Rate conversion of interleaved 16-bit frames; the channel count stays.
class Resampler {
  public:
    // Fails with the library's reason when the conversion can't be set up.
    static platform::Result<std::unique_ptr<Resampler>> create(int inputRate, int outputRate,
                                                               int channels);
    ~Resampler();
    Resampler(const Resampler&) = delete;
    Resampler& operator=(const Resampler&) = delete;

    // Converts frameCount input frames, appending what is ready to out. With no
    // input (frameCount 0) it gives out what it still holds: the end of the audio.
    platform::Result<void> convert(const std::int16_t* input, std::size_t frameCount,
                                   std::vector<std::int16_t>& out);

  private:
    struct State;
    explicit Resampler(std::unique_ptr<State> state);
    std::unique_ptr<State> state_;
};

// Mono to stereo puts the voice on both sides at full level; stereo to mono takes
// the average of the two sides. Returns the samples written (frames * to).
std::size_t remixChannels(const std::int16_t* input, std::size_t frameCount, int from, int to,
                          std::int16_t* out);

// A source read at another rate and channel count. It reads the wrapped source on
// demand, a block at a time, so an hour-long file never sits in memory.
class ConvertingSource : public PcmSource {
  public:
    // Fails with the reason when the conversion can't be set up.
    static platform::Result<std::unique_ptr<ConvertingSource>> create(PcmSource& source,
                                                                      const PcmFormat& target);
    ~ConvertingSource() override;

    [[nodiscard]] PcmFormat format() const override { return target_; }
    [[nodiscard]] SampleCount frames() const override;
    std::size_t read(std::int16_t* out, std::size_t frameCount) override;

    // Frames taken from the wrapped source so far: how far the work has come.
    [[nodiscard]] SampleCount sourceFramesRead() const { return sourceRead_; }
    // Set when reading stopped on a conversion failure rather than at the end.
    [[nodiscard]] const std::string& error() const { return error_; }

  private:
    ConvertingSource(PcmSource& source, const PcmFormat& target,
                     std::unique_ptr<Resampler> resampler);
    void refill();

    PcmSource& source_;
    PcmFormat target_;
    std::unique_ptr<Resampler> resampler_;  // null when the rate stays
    std::vector<std::int16_t> input_;
    std::vector<std::int16_t> remixed_;
    std::vector<std::int16_t> pending_;  // converted samples not yet handed out
    std::size_t pendingStart_ = 0;
    SampleCount sourceRead_ = 0;
    SampleCount produced_ = 0;
    bool sourceEnded_ = false;
    bool flushed_ = false;
    std::string error_;
};

}  // namespace ovd::engine
