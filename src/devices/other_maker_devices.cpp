#include "devices/other_maker_devices.h"

#include "settings/ini_store.h"

namespace ovd::devices {

namespace {

// The HID page of the maker's own pedal function, the one the USB pedal driver takes.
constexpr std::uint32_t kConsumerPage = 0x0C;

}  // namespace

OtherMakerDevices::OtherMakerDevices(platform::EventLoop& loop, std::string dataFolder,
                                     std::string tablePath,
                                     const settings::SettingsRecord& settings,
                                     const dictation::DictationState& state, PedalHits& hits,
                                     PedalEventSink& sink, HidrawRoots roots)
    : dataFolder_(std::move(dataFolder)),
      tablePath_(std::move(tablePath)),
      settings_(settings),
      state_(state),
      hits_(hits),
      sink_(sink),
      watch_(loop, table_, std::move(roots)) {
    watch_.onChange = [this](const HidDeviceWatch::Device& device,
                             const HidControlDecoder::Change& c) { change(device, c); };
    watch_.note = [this](const std::string& text) { tell(text); };
    watch_.leaveAlone = [this](const HidDeviceRow& row, const HidrawDevice& found) {
        // The station's own pedal, while the USB pedal driver reads it: read twice,
        // every press would count twice.
        return usbPedalsInUse && usbPedalsInUse() && row.vendor == kPedalVendor &&
               found.facts.usagePage == kConsumerPage;
    };
}

void OtherMakerDevices::tell(const std::string& text) const {
    if (note) note(text);
}

bool OtherMakerDevices::enabled() const {
    const settings::IniStore store(dataFolder_ + "/" + kDictationDevicesIni);
    return store.ReadKey(kDictationDevicesSection, kDictationDevicesEnabledKey) == "1";
}

void OtherMakerDevices::setEnabled(bool on) const {
    settings::IniStore store(dataFolder_ + "/" + kDictationDevicesIni);
    if (!store.WriteKey(kDictationDevicesSection, kDictationDevicesEnabledKey, on ? "1" : "0"))
        tell("Dictation devices: the choice could not be written to " + store.path());
}

void OtherMakerDevices::start() {
    if (!enabled() || running()) return;
    if (!tableRead_) {
        table_ = readHidDeviceTable(tablePath_);
        tableRead_ = true;
        for (const std::string& problem : table_.problems)
            tell("Dictation devices: " + tablePath_ + ", " + problem + "; the line is skipped");
        tell("Dictation devices: " + std::to_string(table_.rows.size()) + " devices known");
    }
    watch_.start();
}

void OtherMakerDevices::stop() {
    watch_.stop();
    if (heldPedal_) {
        if (bool* hit = hitFlag(kLeft)) *hit = false;
        if (bool* hit = hitFlag(kMiddle)) *hit = false;
        if (bool* hit = hitFlag(kRight)) *hit = false;
        heldPedal_.reset();
    }
}

void OtherMakerDevices::toggle() {
    const bool on = !enabled();
    setEnabled(on);
    if (on) {
        start();
    } else {
        stop();
    }
}

bool* OtherMakerDevices::hitFlag(const std::string& pedal) {
    if (pedal == kLeft) return &hits_.LEFTUSBPEDALHit;
    if (pedal == kMiddle) return &hits_.MIDUSBPEDALHit;
    if (pedal == kRight) return &hits_.RIGHTUSBPEDALHit;
    return nullptr;
}

bool OtherMakerDevices::anotherPedalHeld() const {
    return heldPedal_.has_value() || hits_.LEFTUSBPEDALHit || hits_.MIDUSBPEDALHit ||
           hits_.RIGHTUSBPEDALHit || hits_.LEFTSERPEDALHit || hits_.MIDSERPEDALHit ||
           hits_.RIGHTSERPEDALHit || hits_.LEFTQDUPEDALHit || hits_.MIDQDUPEDALHit ||
           hits_.RIGHTQDUPEDALHit;
}

void OtherMakerDevices::change(const HidDeviceWatch::Device& device,
                               const HidControlDecoder::Change& c) {
    const HidControl& control = device.row->controls[c.control];
    if (control.isPedal()) {
        pedal(device, c);
        return;
    }
    // A button gives its word when pressed; letting go of it changes nothing.
    if (!c.down) return;
    hits_.HandSetHitNotHit = true;
    if (command) command(control.target);
}

void OtherMakerDevices::pedal(const HidDeviceWatch::Device& device,
                              const HidControlDecoder::Change& c) {
    const std::string& which = device.row->controls[c.control].target;
    if (!c.down) {
        if (!heldPedal_ || heldPedal_->device != device.number || heldPedal_->control != c.control)
            return;  // the release of a press that did not count
        heldPedal_.reset();
        if (bool* hit = hitFlag(which)) *hit = false;
        sink_.PedalEventUSB(which, kUp);
        if (stopStepBack) stopStepBack();
        return;
    }
    // One pedal counts at a time, whichever device it is on.
    if (anotherPedalHeld()) {
        tell("Dictation device " + device.row->name + ": " + which +
             " pedal ignored, another pedal is held");
        return;
    }
    // A press that would break into a running insert or overwrite is lost whole,
    // as for the station's own USB pedal.
    if (!settings_.OneTapRecPause && (state_.DoingInsertUpdate || state_.OverWriteFile)) return;
    heldPedal_ = HeldPedal{device.number, c.control};
    hits_.HandSetHitNotHit = true;
    if (bool* hit = hitFlag(which)) *hit = true;
    sink_.PedalEventUSB(which, kDown);
}

}  // namespace ovd::devices
