#include "station/shared_sound_device.h"

namespace ovd::station {

// The backend as one of the two windows sees it: everything goes through to the
// sound server but the capture, which is handed over by the rules above.
class SharedSoundDevice::User : public engine::AudioBackend {
  public:
    User(SharedSoundDevice& share, Holder role) : share_(share), role_(role) {}

    [[nodiscard]] std::string name() const override { return share_.sound_.name(); }
    engine::DeviceList& recordingDevices() override { return share_.sound_.recordingDevices(); }
    engine::DeviceList& playbackDevices() override { return share_.sound_.playbackDevices(); }

    platform::Result<void> startCapture(const engine::PcmFormat& format,
                                        engine::CaptureCallback deliver) override {
        if (role_ == Holder::SecondEditor && share_.holder_ == Holder::MainWindow)
            return platform::failure("the letter is recording");
        if (role_ == Holder::MainWindow && share_.stopSecondEditor) share_.stopSecondEditor();
        auto started = share_.sound_.startCapture(format, std::move(deliver));
        if (started) share_.holder_ = role_;
        return started;
    }

    void stopCapture() override {
        if (share_.holder_ != role_) return;
        share_.sound_.stopCapture();
        share_.holder_ = Holder::Nobody;
    }

    platform::Result<std::unique_ptr<engine::PlaybackStream>> openPlayback(
        const engine::PcmFormat& format) override {
        if (role_ == Holder::SecondEditor && share_.holder_ == Holder::MainWindow)
            return platform::failure("the letter is recording");
        return share_.sound_.openPlayback(format);
    }

    void playPrompt(const std::string& wavePath) override { share_.sound_.playPrompt(wavePath); }
    [[nodiscard]] bool promptPlaying() const override { return share_.sound_.promptPlaying(); }

  private:
    SharedSoundDevice& share_;
    Holder role_;
};

SharedSoundDevice::SharedSoundDevice(engine::AudioBackend& sound)
    : sound_(sound),
      main_(std::make_unique<User>(*this, Holder::MainWindow)),
      second_(std::make_unique<User>(*this, Holder::SecondEditor)) {
    // The backend has already ended the capture; the editor that held it is told.
    sound_.onCaptureDeviceLost = [this](const std::string& device) {
        const Holder lost = holder_;
        holder_ = Holder::Nobody;
        User* user = lost == Holder::SecondEditor ? second_.get() : main_.get();
        if (user->onCaptureDeviceLost) user->onCaptureDeviceLost(device);
    };
}

SharedSoundDevice::~SharedSoundDevice() { sound_.onCaptureDeviceLost = nullptr; }

engine::AudioBackend& SharedSoundDevice::mainWindow() { return *main_; }
engine::AudioBackend& SharedSoundDevice::secondEditor() { return *second_; }

}  // namespace ovd::station
