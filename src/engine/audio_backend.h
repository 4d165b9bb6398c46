#pragma once
// Where sound comes from and goes to: the sound server on the desktop, or the
// virtual backend (a file or a tone in, nothing out) that tests and machines
// without sound use. One small interface, so the wave editor never sees which.
//
// Everything here is called on the loop's thread, and captured sound is handed
// over on that thread too, so the document is only ever touched by one thread.

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "engine/audio_editor.h"
#include "platform/result.h"

namespace ovd::engine {

struct PcmFormat {
    int sampleRate = 16000;
    int channels = 1;
    bool operator==(const PcmFormat&) const = default;
};

// Captured audio: interleaved 16-bit frames, in order, on the loop's thread.
using CaptureCallback = std::function<void(const std::int16_t* frames, std::size_t frameCount)>;

// One playing stream, fed from the loop's thread: the editor tops it up on a timer.
class PlaybackStream {
  public:
    virtual ~PlaybackStream() = default;
    // How many frames can be queued now without blocking.
    [[nodiscard]] virtual std::size_t writable() const = 0;
    virtual void write(const std::int16_t* frames, std::size_t frameCount) = 0;
    // Frames heard so far (written frames minus what is still queued).
    [[nodiscard]] virtual SampleCount played() const = 0;
    virtual void setPaused(bool paused) = 0;
};

class AudioBackend {
  public:
    virtual ~AudioBackend() = default;

    [[nodiscard]] virtual std::string name() const = 0;
    virtual DeviceList& recordingDevices() = 0;
    virtual DeviceList& playbackDevices() = 0;

    // Starts capturing from the current recording device and source line.
    virtual platform::Result<void> startCapture(const PcmFormat& format,
                                                CaptureCallback deliver) = 0;
    virtual void stopCapture() = 0;

    // Opens a stream on the current playback device.
    virtual platform::Result<std::unique_ptr<PlaybackStream>> openPlayback(
        const PcmFormat& format) = 0;

    // Plays a short wave file without waiting for it; a prompt cuts off the one before.
    virtual void playPrompt(const std::string& wavePath) = 0;
    // True while the last prompt is still sounding (the delivery waits on it a while).
    [[nodiscard]] virtual bool promptPlaying() const = 0;

    // The device a capture records from has gone (unplugged, or removed from the
    // sound server). Called on the loop's thread after the capture has ended and
    // delivered all that had arrived, with the name the list showed for it, so the
    // take can be ended in order rather than go on from another microphone.
    std::function<void(const std::string& device)> onCaptureDeviceLost;
};

}  // namespace ovd::engine
