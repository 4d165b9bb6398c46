#pragma once
// Sound through the desktop's sound server (PulseAudio, or PipeWire through its
// PulseAudio service): recording from sources, playing on sinks, voice prompts,
// and the device lists with their volume, balance and mute.
//
// The sound library runs its own thread; captured sound is handed over to the
// station's loop in order, so the wave editor sees everything on its one thread.

#include <memory>
#include <string>

#include "engine/audio_backend.h"
#include "platform/event_loop.h"

namespace ovd::engine {

class PulseCapture;
class PulseConnection;
class PulseDevices;
class PulsePrompts;

class PulseBackend : public AudioBackend {
  public:
    // Connects to the sound server (server empty: the usual lookup, PULSE_SERVER
    // first) and reads its devices. The reason when no server answers
    // within two seconds: the station then records on the virtual backend.
    static platform::Result<std::unique_ptr<PulseBackend>> connect(platform::EventLoop& loop,
                                                                   const std::string& server = {});
    ~PulseBackend() override;
    PulseBackend(const PulseBackend&) = delete;
    PulseBackend& operator=(const PulseBackend&) = delete;

    [[nodiscard]] std::string name() const override { return "pulse"; }
    DeviceList& recordingDevices() override;
    DeviceList& playbackDevices() override;

    // Records from the chosen source (or the server's default) at low latency.
    platform::Result<void> startCapture(const PcmFormat& format, CaptureCallback deliver) override;
    // Delivers what had already arrived, then nothing more.
    void stopCapture() override;

    platform::Result<std::unique_ptr<PlaybackStream>> openPlayback(
        const PcmFormat& format) override;

    // A prompt that cannot be played is skipped: the reason is kept in promptError().
    void playPrompt(const std::string& wavePath) override;
    // Why the last prompt did not sound; empty when it did.
    [[nodiscard]] const std::string& promptError() const { return promptError_; }
    // True until the last prompt has sounded to its end (or was cut off).
    [[nodiscard]] bool promptPlaying() const override;

  private:
    PulseBackend(platform::EventLoop& loop, std::shared_ptr<PulseConnection> connection);
    // After the sources were read again: a capture whose device has gone ends here.
    void checkCaptureDevice();

    platform::EventLoop& loop_;
    std::shared_ptr<PulseConnection> connection_;  // outlives everything below
    std::shared_ptr<PulseDevices> sources_;
    std::shared_ptr<PulseDevices> sinks_;
    std::unique_ptr<PulseCapture> capture_;
    std::unique_ptr<PulsePrompts> prompts_;
    std::string promptError_;
    // The source the running capture records from: the server's name and the list's.
    std::string captureDevice_;
    std::string captureLabel_;
};

}  // namespace ovd::engine
