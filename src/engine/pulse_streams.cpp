#include "engine/pulse_streams.h"

#include <pulse/pulseaudio.h>
#include <sndfile.h>

#include <algorithm>

#include "engine/pulse_connection.h"

namespace ovd::engine {

namespace {

// A take is handed over in fragments of about this length: short enough for the
// level meter and the work file to follow the voice, long enough to cost little.
constexpr pa_usec_t kCaptureFragmentUs = 20'000;
// Queued ahead of the speaker while playing: enough to ride out a busy loop tick,
// little enough that Stop and Pause are heard at once.
constexpr pa_usec_t kPlaybackBufferUs = 150'000;

void wakeOnState(pa_stream*, void* connection) {
    static_cast<PulseConnection*>(connection)->wake();
}

// With the lock held: forgets the stream's callbacks, ends it and lets it go.
void releaseStream(pa_stream*& stream) {
    if (stream == nullptr) return;
    pa_stream_set_state_callback(stream, nullptr, nullptr);
    pa_stream_set_read_callback(stream, nullptr, nullptr);
    if (PA_STREAM_IS_GOOD(pa_stream_get_state(stream))) pa_stream_disconnect(stream);
    pa_stream_unref(stream);
    stream = nullptr;
}

// With the lock held: waits until the stream is ready or has failed.
bool waitUntilReady(PulseConnection& connection, pa_stream* stream) {
    connection.waitUntil([stream] {
        const pa_stream_state_t state = pa_stream_get_state(stream);
        return state == PA_STREAM_READY || !PA_STREAM_IS_GOOD(state);
    });
    return pa_stream_get_state(stream) == PA_STREAM_READY;
}

pa_sample_spec sampleSpec(const PcmFormat& format) {
    pa_sample_spec spec;
    spec.format = PA_SAMPLE_S16LE;
    spec.rate = static_cast<std::uint32_t>(std::max(format.sampleRate, 0));
    spec.channels = static_cast<std::uint8_t>(std::clamp(format.channels, 0, 255));
    return spec;
}

const char* deviceOrDefault(const std::string& device) {
    return device.empty() ? nullptr : device.c_str();
}

std::size_t frameBytes(const PcmFormat& format) {
    return sizeof(std::int16_t) * static_cast<std::size_t>(format.channels);
}

}  // namespace

void CaptureHandover::push(const std::int16_t* samples, std::size_t sampleCount) {
    bool ask = false;
    {
        const std::lock_guard held(mutex_);
        if (samples != nullptr) {
            pending_.insert(pending_.end(), samples, samples + sampleCount);
        } else {
            pending_.resize(pending_.size() + sampleCount, 0);
        }
        ask = !deliveryAsked_;
        deliveryAsked_ = true;
    }
    if (ask) loop_.postFromAnyThread([self = shared_from_this()] { self->deliver(); });
}

void CaptureHandover::deliver() {
    std::vector<std::int16_t> ready;
    {
        const std::lock_guard held(mutex_);
        deliveryAsked_ = false;
        const std::size_t whole = pending_.size() / channels_ * channels_;
        if (whole == pending_.size()) {
            ready.swap(pending_);
        } else {
            const auto end = pending_.begin() + static_cast<std::ptrdiff_t>(whole);
            ready.assign(pending_.begin(), end);
            pending_.erase(pending_.begin(), end);
        }
    }
    if (!deliver_ || ready.empty()) return;
    // The receiver may stop the capture from inside the call.
    const CaptureCallback receiver = deliver_;
    receiver(ready.data(), ready.size() / channels_);
}

platform::Result<std::unique_ptr<PulseCapture>> PulseCapture::start(
    std::shared_ptr<PulseConnection> connection, platform::EventLoop& loop,
    const std::string& device, const PcmFormat& format, CaptureCallback deliver) {
    const pa_sample_spec spec = sampleSpec(format);
    if (pa_sample_spec_valid(&spec) == 0)
        return platform::failure("sound server: unusable recording format");
    std::unique_ptr<PulseCapture> capture(new PulseCapture(
        connection, std::make_shared<CaptureHandover>(loop, format.channels, std::move(deliver))));
    const PulseConnection::Lock held = connection->lock();
    pa_channel_map map;
    pa_channel_map_init_extend(&map, spec.channels, PA_CHANNEL_MAP_DEFAULT);
    capture->stream_ = pa_stream_new(connection->context(), "Dictation", &spec, &map);
    if (capture->stream_ == nullptr)
        return connection->failure("opening a recording stream").failed();
    pa_stream_set_state_callback(capture->stream_, &wakeOnState, connection.get());
    pa_stream_set_read_callback(capture->stream_, &PulseCapture::onReadable, capture.get());
    pa_buffer_attr buffer;
    buffer.maxlength = static_cast<std::uint32_t>(-1);
    buffer.tlength = static_cast<std::uint32_t>(-1);
    buffer.prebuf = static_cast<std::uint32_t>(-1);
    buffer.minreq = static_cast<std::uint32_t>(-1);
    buffer.fragsize = static_cast<std::uint32_t>(pa_usec_to_bytes(kCaptureFragmentUs, &spec));
    if (pa_stream_connect_record(capture->stream_, deviceOrDefault(device), &buffer,
                                 PA_STREAM_ADJUST_LATENCY) < 0 ||
        !waitUntilReady(*connection, capture->stream_)) {
        platform::Result<void> refused = connection->failure(
            "recording from " + (device.empty() ? "the default device" : device));
        releaseStream(capture->stream_);
        return refused.failed();
    }
    return capture;
}

PulseCapture::~PulseCapture() {
    // Whoever receives the take may be gone already: nothing more is delivered.
    handover_->close();
    endStream();
}

void PulseCapture::stop() {
    endStream();
    handover_->deliver();
    handover_->close();
}

void PulseCapture::endStream() {
    if (stream_ == nullptr) return;
    const PulseConnection::Lock held = connection_->lock();
    releaseStream(stream_);
}

void PulseCapture::onReadable(pa_stream* stream, std::size_t, void* self) {
    auto& handover = *static_cast<PulseCapture*>(self)->handover_;
    const void* data = nullptr;
    std::size_t bytes = 0;
    while (pa_stream_peek(stream, &data, &bytes) == 0 && bytes > 0) {
        // No data with a length is a gap in the recording: it is kept as silence
        // so that the take stays as long as the time it covered.
        handover.push(static_cast<const std::int16_t*>(data), bytes / sizeof(std::int16_t));
        pa_stream_drop(stream);
    }
}

platform::Result<std::unique_ptr<PlaybackStream>> PulsePlayback::open(
    std::shared_ptr<PulseConnection> connection, const std::string& device,
    const PcmFormat& format) {
    const pa_sample_spec spec = sampleSpec(format);
    if (pa_sample_spec_valid(&spec) == 0)
        return platform::failure("sound server: unusable playback format");
    std::unique_ptr<PulsePlayback> playback(new PulsePlayback(connection, format));
    const PulseConnection::Lock held = connection->lock();
    pa_channel_map map;
    pa_channel_map_init_extend(&map, spec.channels, PA_CHANNEL_MAP_DEFAULT);
    playback->stream_ = pa_stream_new(connection->context(), "Playback", &spec, &map);
    if (playback->stream_ == nullptr)
        return connection->failure("opening a playback stream").failed();
    pa_stream_set_state_callback(playback->stream_, &wakeOnState, connection.get());
    pa_buffer_attr buffer;
    buffer.maxlength = static_cast<std::uint32_t>(-1);
    buffer.tlength = static_cast<std::uint32_t>(pa_usec_to_bytes(kPlaybackBufferUs, &spec));
    buffer.prebuf = static_cast<std::uint32_t>(-1);
    buffer.minreq = static_cast<std::uint32_t>(-1);
    buffer.fragsize = static_cast<std::uint32_t>(-1);
    if (pa_stream_connect_playback(playback->stream_, deviceOrDefault(device), &buffer,
                                   PA_STREAM_ADJUST_LATENCY, nullptr, nullptr) < 0 ||
        !waitUntilReady(*connection, playback->stream_)) {
        releaseStream(playback->stream_);
        return connection->failure("playing on " + (device.empty() ? "the default device" : device))
            .failed();
    }
    return std::unique_ptr<PlaybackStream>(std::move(playback));
}

PulsePlayback::~PulsePlayback() {
    const PulseConnection::Lock held = connection_->lock();
    if (timingUpdate_ != nullptr) {
        pa_operation_cancel(timingUpdate_);
        pa_operation_unref(timingUpdate_);
    }
    releaseStream(stream_);
}

std::size_t PulsePlayback::writable() const {
    const PulseConnection::Lock held = connection_->lock();
    const std::size_t bytes = pa_stream_writable_size(stream_);
    return bytes == static_cast<std::size_t>(-1) ? 0 : bytes / frameBytes(format_);
}

void PulsePlayback::write(const std::int16_t* frames, std::size_t frameCount) {
    if (frameCount == 0) return;
    const std::size_t bytes = frameCount * frameBytes(format_);
    const PulseConnection::Lock held = connection_->lock();
    if (pa_stream_write(stream_, frames, bytes, nullptr, 0, PA_SEEK_RELATIVE) < 0) return;
    writtenBytes_ += bytes;
    // The server waits for a full buffer before it starts. A write that leaves room
    // is the end of the document (or all there is for now): play what is there,
    // or a selection shorter than the buffer would never be heard.
    const std::size_t room = pa_stream_writable_size(stream_);
    if (room > 0 && room != static_cast<std::size_t>(-1)) startPlaying();
}

SampleCount PulsePlayback::played() const {
    const PulseConnection::Lock held = connection_->lock();
    const auto written = static_cast<SampleCount>(writtenBytes_ / frameBytes(format_));
    // Once the server has run dry at the end of what was written, all of it has
    // gone to the speaker.
    const std::int64_t dryAt = pa_stream_get_underflow_index(stream_);
    if (writtenBytes_ > 0 && dryAt >= 0 && static_cast<std::uint64_t>(dryAt) >= writtenBytes_) {
        lastPlayed_ = written;
        return written;
    }
    // The position comes from the server's own count of what the sink has taken,
    // less what the sink still holds, asked for afresh at each call. (The
    // library's interpolating clock is not used: it runs on while the server is
    // still waiting to fill its buffer, before anything sounds.)
    if (timingUpdate_ == nullptr) {
        timingUpdate_ =
            pa_stream_update_timing_info(stream_, &PulsePlayback::onTimingUpdate, &timingUpdate_);
    }
    if (const pa_timing_info* timing = pa_stream_get_timing_info(stream_);
        timing != nullptr && timing->read_index_corrupt == 0) {
        pa_sample_spec spec = sampleSpec(format_);
        const std::int64_t inSink =
            static_cast<std::int64_t>(pa_usec_to_bytes(timing->sink_usec, &spec));
        const std::int64_t heard = std::max<std::int64_t>(0, timing->read_index - inSink);
        const auto frames =
            static_cast<SampleCount>(static_cast<std::uint64_t>(heard) / frameBytes(format_));
        lastPlayed_ = std::max(lastPlayed_, std::min(written, frames));
    }
    return lastPlayed_;
}

void PulsePlayback::onTimingUpdate(pa_stream*, int, void* pending) {
    auto*& update = *static_cast<pa_operation**>(pending);
    if (update == nullptr) return;
    pa_operation_unref(update);
    update = nullptr;
}

void PulsePlayback::setPaused(bool paused) {
    const PulseConnection::Lock held = connection_->lock();
    if (pa_operation* cork = pa_stream_cork(stream_, paused ? 1 : 0, nullptr, nullptr)) {
        pa_operation_unref(cork);
    }
    // Resumed near the end, less than a full buffer may be left: the server would
    // wait for more that never comes.
    if (!paused) startPlaying();
}

void PulsePlayback::startPlaying() {
    if (pa_operation* start = pa_stream_trigger(stream_, nullptr, nullptr)) {
        pa_operation_unref(start);
    }
}

PulsePrompts::~PulsePrompts() {
    const PulseConnection::Lock held = connection_->lock();
    cutOff();
}

platform::Result<void> PulsePrompts::play(const std::string& wavePath, const std::string& device) {
    SF_INFO info{};
    SNDFILE* file = sf_open(wavePath.c_str(), SFM_READ, &info);
    if (file == nullptr) {
        return platform::failure("prompt " + wavePath + ": " + sf_strerror(nullptr));
    }
    std::vector<std::int16_t> frames(static_cast<std::size_t>(info.frames) *
                                     static_cast<std::size_t>(info.channels));
    const sf_count_t got = sf_readf_short(file, frames.data(), info.frames);
    sf_close(file);
    frames.resize(static_cast<std::size_t>(got) * static_cast<std::size_t>(info.channels));
    const pa_sample_spec spec = sampleSpec({info.samplerate, info.channels});
    if (frames.empty() || pa_sample_spec_valid(&spec) == 0) {
        return platform::failure("prompt " + wavePath + ": no sound in the file");
    }

    const PulseConnection::Lock held = connection_->lock();
    cutOff();
    pa_proplist* properties = pa_proplist_new();
    pa_proplist_sets(properties, PA_PROP_MEDIA_ROLE, "event");
    pa_stream* stream = pa_stream_new_with_proplist(connection_->context(), "Voice prompt", &spec,
                                                    nullptr, properties);
    pa_proplist_free(properties);
    if (stream == nullptr) return connection_->failure("opening a prompt stream");
    pa_stream_set_state_callback(stream, &PulsePrompts::onState, this);
    if (pa_stream_connect_playback(stream, deviceOrDefault(device), nullptr, PA_STREAM_NOFLAGS,
                                   nullptr, nullptr) < 0) {
        platform::Result<void> failed = connection_->failure("playing " + wavePath);
        releaseStream(stream);
        return failed;
    }
    // The sound goes out from the sound thread once the stream is ready.
    stream_ = stream;
    sound_ = std::move(frames);
    return platform::Result<void>::success();
}

bool PulsePrompts::playing() const {
    const PulseConnection::Lock held = connection_->lock();
    return stream_ != nullptr;
}

void PulsePrompts::onState(pa_stream* stream, void* self) {
    auto* prompts = static_cast<PulsePrompts*>(self);
    if (stream != prompts->stream_) return;
    const pa_stream_state_t state = pa_stream_get_state(stream);
    if (state == PA_STREAM_READY) {
        pa_stream_write(stream, prompts->sound_.data(),
                        prompts->sound_.size() * sizeof(std::int16_t), nullptr, 0,
                        PA_SEEK_RELATIVE);
        prompts->sound_ = {};
        // Draining starts a prompt shorter than the server's buffer and tells when it has sounded.
        prompts->draining_ = pa_stream_drain(stream, &PulsePrompts::onDrained, self);
    } else if (!PA_STREAM_IS_GOOD(state)) {
        prompts->cutOff();
    }
}

void PulsePrompts::onDrained(pa_stream* stream, int, void* self) {
    auto* prompts = static_cast<PulsePrompts*>(self);
    if (prompts->draining_ != nullptr) {
        pa_operation_unref(prompts->draining_);
        prompts->draining_ = nullptr;
    }
    if (stream == prompts->stream_) prompts->cutOff();
}

void PulsePrompts::cutOff() {
    if (draining_ != nullptr) {
        pa_operation_cancel(draining_);
        pa_operation_unref(draining_);
        draining_ = nullptr;
    }
    releaseStream(stream_);
    sound_.clear();
}

}  // namespace ovd::engine
