#pragma once
// The three kinds of stream the station opens on the sound server: a take being
// recorded, a document being played, and a voice prompt.

#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "engine/audio_backend.h"
#include "platform/event_loop.h"

struct pa_operation;
struct pa_stream;

namespace ovd::engine {

class PulseConnection;

// Captured sound on its way from the sound thread to the station's loop. The sound
// thread appends and asks for one delivery; however many fragments arrive before
// the loop gets to it, they go out together and in order.
class CaptureHandover : public std::enable_shared_from_this<CaptureHandover> {
  public:
    CaptureHandover(platform::EventLoop& loop, int channels, CaptureCallback deliver)
        : loop_(loop),
          channels_(static_cast<std::size_t>(channels)),
          deliver_(std::move(deliver)) {}

    // Sound thread: samples (or, with null samples, a gap of silence) to hand over.
    void push(const std::int16_t* samples, std::size_t sampleCount);
    // Loop thread: delivers whole frames handed over so far.
    void deliver();
    // Loop thread: nothing more is delivered, even what is still on its way.
    void close() { deliver_ = nullptr; }

  private:
    platform::EventLoop& loop_;
    const std::size_t channels_;
    CaptureCallback deliver_;  // touched on the loop thread only
    std::mutex mutex_;
    std::vector<std::int16_t> pending_;
    bool deliveryAsked_ = false;
};

class PulseCapture {
  public:
    // Records from device (empty: the server's default) at low latency; frames
    // reach deliver on the loop's thread. The failure says why it can't record.
    static platform::Result<std::unique_ptr<PulseCapture>> start(
        std::shared_ptr<PulseConnection> connection, platform::EventLoop& loop,
        const std::string& device, const PcmFormat& format, CaptureCallback deliver);
    // Ends the stream without delivering what is still on its way.
    ~PulseCapture();
    PulseCapture(const PulseCapture&) = delete;
    PulseCapture& operator=(const PulseCapture&) = delete;

    // Ends the stream and delivers what had already arrived; nothing comes after.
    void stop();

  private:
    PulseCapture(std::shared_ptr<PulseConnection> connection,
                 std::shared_ptr<CaptureHandover> handover)
        : connection_(std::move(connection)), handover_(std::move(handover)) {}
    static void onReadable(pa_stream* stream, std::size_t bytes, void* self);
    void endStream();

    std::shared_ptr<PulseConnection> connection_;
    std::shared_ptr<CaptureHandover> handover_;
    pa_stream* stream_ = nullptr;
};

class PulsePlayback : public PlaybackStream {
  public:
    static platform::Result<std::unique_ptr<PlaybackStream>> open(
        std::shared_ptr<PulseConnection> connection, const std::string& device,
        const PcmFormat& format);
    ~PulsePlayback() override;
    PulsePlayback(const PulsePlayback&) = delete;
    PulsePlayback& operator=(const PulsePlayback&) = delete;

    [[nodiscard]] std::size_t writable() const override;
    void write(const std::int16_t* frames, std::size_t frameCount) override;
    [[nodiscard]] SampleCount played() const override;
    void setPaused(bool paused) override;

  private:
    PulsePlayback(std::shared_ptr<PulseConnection> connection, const PcmFormat& format)
        : connection_(std::move(connection)), format_(format) {}
    void startPlaying();  // with the lock held: play what is queued, full buffer or not
    static void onTimingUpdate(pa_stream* stream, int success, void* pending);

    std::shared_ptr<PulseConnection> connection_;
    PcmFormat format_;
    pa_stream* stream_ = nullptr;
    std::uint64_t writtenBytes_ = 0;
    // Pausing takes back what the sink held; the position shown never runs back.
    mutable SampleCount lastPlayed_ = 0;
    mutable pa_operation* timingUpdate_ = nullptr;  // a position asked for and not yet in
};

// At most one prompt sounds at a time: a new one cuts off the one before.
class PulsePrompts {
  public:
    explicit PulsePrompts(std::shared_ptr<PulseConnection> connection)
        : connection_(std::move(connection)) {}
    ~PulsePrompts();
    PulsePrompts(const PulsePrompts&) = delete;
    PulsePrompts& operator=(const PulsePrompts&) = delete;

    // Loads the wave file and starts it on device (empty: the server's default)
    // without waiting for it to sound.
    platform::Result<void> play(const std::string& wavePath, const std::string& device);
    [[nodiscard]] bool playing() const;

  private:
    static void onState(pa_stream* stream, void* self);
    static void onDrained(pa_stream* stream, int success, void* self);
    void cutOff();  // with the connection's lock held

    std::shared_ptr<PulseConnection> connection_;
    pa_stream* stream_ = nullptr;  // these three with the connection's lock held
    pa_operation* draining_ = nullptr;
    std::vector<std::int16_t> sound_;  // the prompt's frames until the stream takes them
};

}  // namespace ovd::engine
