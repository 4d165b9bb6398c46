#pragma once
// Sound for machines without a sound server, and for tests: the input is a tone
// or a wave file (played in a loop), the output is discarded or, for tests, kept.
// Both run on the loop's clock, so a virtual minute of recording takes as long as
// the test's clock says.

#include <memory>
#include <string>
#include <vector>

#include "engine/audio_backend.h"
#include "platform/event_loop.h"
#include "platform/timer.h"

namespace ovd::engine {

class VirtualBackend : public AudioBackend {
  public:
    struct Options {
        double toneHz = 440.0;    // used when inputFile is empty
        double toneLevel = 0.25;  // of full scale
        std::string inputFile;    // a WAV file looped as the microphone
    };

    VirtualBackend(platform::EventLoop& loop, Options options);
    ~VirtualBackend() override;

    [[nodiscard]] std::string name() const override { return "virtual"; }
    DeviceList& recordingDevices() override;
    DeviceList& playbackDevices() override;
    platform::Result<void> startCapture(const PcmFormat& format, CaptureCallback deliver) override;
    void stopCapture() override;
    platform::Result<std::unique_ptr<PlaybackStream>> openPlayback(
        const PcmFormat& format) override;
    void playPrompt(const std::string& wavePath) override;
    // As long as the prompt file lasts, on the loop's clock.
    [[nodiscard]] bool promptPlaying() const override;

    // What the virtual output received, kept for tests (all streams, in order).
    [[nodiscard]] const std::vector<std::int16_t>& playedSamples() const { return played_; }
    [[nodiscard]] const std::vector<std::string>& promptsPlayed() const { return prompts_; }

  private:
    class Devices;
    class Stream;
    void captureTick();
    void fillInput(std::int16_t* out, std::size_t frames);

    platform::EventLoop& loop_;
    Options options_;
    std::unique_ptr<Devices> inputs_;
    std::unique_ptr<Devices> outputs_;
    platform::Timer captureTimer_;
    PcmFormat captureFormat_;
    CaptureCallback deliver_;
    platform::WallClock::time_point captureStart_;
    SampleCount captured_ = 0;
    double phase_ = 0.0;
    std::vector<std::int16_t> inputSamples_;  // the input file, at the capture format
    std::size_t inputPosition_ = 0;
    std::vector<std::int16_t> played_;
    std::vector<std::string> prompts_;
    platform::WallClock::time_point promptEnds_{};
};

}  // namespace ovd::engine
