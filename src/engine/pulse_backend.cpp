#include "engine/pulse_backend.h"

#include "engine/pulse_connection.h"
#include "engine/pulse_devices.h"
#include "engine/pulse_streams.h"

namespace ovd::engine {

platform::Result<std::unique_ptr<PulseBackend>> PulseBackend::connect(platform::EventLoop& loop,
                                                                      const std::string& server) {
    auto connection = PulseConnection::open(server);
    if (!connection) return connection.failed();
    std::unique_ptr<PulseBackend> backend(new PulseBackend(loop, std::move(*connection)));
    for (PulseDevices* devices : {backend->sources_.get(), backend->sinks_.get()}) {
        if (platform::Result<void> read = devices->refresh(); !read) return read.failed();
    }
    return backend;
}

PulseBackend::PulseBackend(platform::EventLoop& loop, std::shared_ptr<PulseConnection> connection)
    : loop_(loop),
      connection_(std::move(connection)),
      sources_(std::make_shared<PulseDevices>(connection_, DeviceDirection::Recording)),
      sinks_(std::make_shared<PulseDevices>(connection_, DeviceDirection::Playback)),
      prompts_(std::make_unique<PulsePrompts>(connection_)) {
    const PulseConnection::Lock held = connection_->lock();
    connection_->setOnChange([this](bool sinksChanged, bool sourcesChanged) {
        if (sinksChanged) sinks_->refreshLater(loop_);
        if (sourcesChanged) sources_->refreshLater(loop_);
    });
    sources_->onRefreshed = [this] { checkCaptureDevice(); };
}

PulseBackend::~PulseBackend() {
    sources_->onRefreshed = nullptr;
    capture_.reset();
    prompts_.reset();
    const PulseConnection::Lock held = connection_->lock();
    connection_->setOnChange({});
}

DeviceList& PulseBackend::recordingDevices() { return *sources_; }
DeviceList& PulseBackend::playbackDevices() { return *sinks_; }

platform::Result<void> PulseBackend::startCapture(const PcmFormat& format,
                                                  CaptureCallback deliver) {
    stopCapture();
    auto started = PulseCapture::start(connection_, loop_, sources_->streamDevice(), format,
                                       std::move(deliver));
    if (!started) return started.failed();
    capture_ = std::move(*started);
    captureDevice_ = sources_->deviceInUse();
    captureLabel_ = sources_->Current() >= 0 ? sources_->Name(sources_->Current()) : std::string();
    return platform::Result<void>::success();
}

void PulseBackend::checkCaptureDevice() {
    if (!capture_ || captureDevice_.empty() || sources_->lists(captureDevice_)) return;
    // The server would carry the stream over to another source without a word; the
    // take would go on from a microphone nobody chose. What came in is kept.
    const std::string lost = captureLabel_.empty() ? captureDevice_ : captureLabel_;
    stopCapture();
    if (onCaptureDeviceLost) onCaptureDeviceLost(lost);
}

void PulseBackend::stopCapture() {
    if (!capture_) return;
    // Moved out first: the last delivery may start another take.
    const std::unique_ptr<PulseCapture> ending = std::move(capture_);
    captureDevice_.clear();
    ending->stop();
}

platform::Result<std::unique_ptr<PlaybackStream>> PulseBackend::openPlayback(
    const PcmFormat& format) {
    return PulsePlayback::open(connection_, sinks_->streamDevice(), format);
}

void PulseBackend::playPrompt(const std::string& wavePath) {
    const platform::Result<void> played = prompts_->play(wavePath, sinks_->streamDevice());
    promptError_ = played ? std::string() : played.error();
}

bool PulseBackend::promptPlaying() const { return prompts_->playing(); }

}  // namespace ovd::engine
