#include "devices/usb_pedals.h"

#include <charconv>
#include <filesystem>
#include <system_error>

namespace ovd::devices {

namespace {

// The number behind "#" of a device description, read as far as it is a number.
std::int32_t numberAfterHash(const std::string& description) {
    const auto hash = description.find('#');
    if (hash == std::string::npos || hash + 2 > description.size()) return 0;
    const std::string_view rest = std::string_view(description).substr(hash + 2);
    std::int32_t value = 0;
    std::from_chars(rest.data(), rest.data() + rest.size(), value);
    return value;
}

}  // namespace

UsbPedals::UsbPedals(settings::ConfigFile& config, platform::Prompts& prompts,
                     platform::EventLoop& loop, PedalEventSink& sink, PedalHits& hits,
                     const dictation::DictationState& state, platform::Timer& timUSBStepBACK,
                     HidrawRoots roots)
    : TmrHIDRead(loop, "TmrHIDRead", kPedalPollMs),
      TmrHIDReadNew(loop, "TmrHIDReadNew", kPedalPollMs),
      decoder(sink, hits, config.record, state),
      reader(loop, std::move(roots)),
      config_(config),
      prompts_(prompts),
      loop_(loop),
      state_(state) {
    TmrHIDRead.setOnTick([this] { ReadHIDWatch(); });
    TmrHIDReadNew.setOnTick([this] { ReadPIE(); });
    // A release ends the step-back repeat at once; the dispatcher runs its ticks.
    decoder.stopStepBack = [&timUSBStepBACK] { timUSBStepBACK.setEnabled(false); };
    decoder.onMiddleDown = [this] { traceMiddleDown(); };
}

void UsbPedals::start() {
    menu.usbChecked = config_.record.UserSelectUSB;
    menu.gameChecked = config_.record.UserSelectGame;
    menu.vec30Checked = config_.record.Use30VEC;
    if (config_.record.UserSelectUSB) OpenUSBPedals();
}

void UsbPedals::OpenUSBPedals() {
    NoUSBPedalConnected = false;
    TmrHIDRead.setEnabled(false);
    TmrHIDReadNew.setEnabled(false);
    TmrHIDRead.setInterval(kPedalPollMs);
    TmrHIDReadNew.setInterval(kPedalPollMs);
    HIDReading = false;
    PIEReading = false;
    if (config_.record.Use30VEC) {
        ConnectPIE();
    } else {
        ConnectHIDWatch();
    }
}

void UsbPedals::ConnectHIDWatch() {
    HIDHandle = 0;
    if (reader.StartWatch(kWatchProduct, kWatchUsagePage, kWatchUsage, HIDHandle) == 1) {
        NoUSBPedalConnected = false;
        TmrHIDRead.setEnabled(true);
        decoder.USBPedals = true;
    } else {
        NoUSBPedalConnected = true;
        TmrHIDRead.setEnabled(false);
        decoder.USBPedals = false;
    }
}

void UsbPedals::ConnectPIE() {
    if (TmrHIDReadNew.Enabled()) TmrHIDReadNew.setEnabled(false);
    PieList list{};
    int count = 0;
    if (reader.EnumeratePIE(kPedalVendor, list, count) != 0) {
        NoUSBPedalConnected = true;
        decoder.USBPedals = false;
        TmrHIDReadNew.setEnabled(false);
        return;
    }
    // Only the first device listed is looked at; any other kind leaves the pedal
    // state as it was.
    if (list[2] != kPieUsagePage || list[0] == kPieSkippedProduct) return;
    const std::string description =
        "PID: " + HexPad(static_cast<std::uint32_t>(list[0]), 3) +
        ", Usg: " + HexPad(static_cast<std::uint32_t>(list[1]), 3) +
        ", UP: " + HexPad(static_cast<std::uint32_t>(kPieUsagePage), 3) + " -- splat device # " +
        std::to_string(list[3]);
    // The handle is read back out of the description on purpose: the description
    // exists for this step only.
    PIEHandle = numberAfterHash(description);
    if (reader.SetupInterface(PIEHandle) == 0) {
        decoder.USBPedals = true;
        TmrHIDReadNew.setEnabled(true);
    }
}

void UsbPedals::ReadHIDWatch() {
    if (busy() || !decoder.USBPedals) return;
    HIDReading = true;
    int count = 0;
    if (reader.GetData(HIDHandle, hidBuffer_, count) != 1 || count == 0) {
        HIDReading = false;
        return;
    }
    decoder.useHIDBatch(hidBuffer_, count);
    HIDReading = false;
}

void UsbPedals::ReadPIE() {
    if (busy() || !decoder.USBPedals) return;
    const int result = reader.ReadData(PIEHandle, pieBuffer_);
    if (result == kReadDataReport) {
        PIEReading = true;
        decoder.ShowRawHIDButtons(pieBuffer_);
        decoder.UseHIDDataNew(pieBuffer_);
        PIEReading = false;
    } else if (result == kReadDataGone) {
        // The pedal stays dead until it is switched on again or the station
        // restarts; USBPedals stays set.
        TmrHIDReadNew.setEnabled(false);
        reader.CleanupInterface(PIEHandle);
        PIEReading = false;
    }
}

void UsbPedals::CloseUSBPedals() {
    if (!config_.record.Use30VEC) {
        TmrHIDRead.setEnabled(false);
        if (HIDReading) {
            prompts_.showMessage(kWaitingForReadMessage);
            while (HIDReading) loop_.wait(platform::Milliseconds(200));
        }
        closeHIDWatch();
    } else {
        TmrHIDReadNew.setEnabled(false);
        reader.CleanupInterface(PIEHandle);
    }
}

void UsbPedals::closeHIDWatch() {
    if (HIDHandle == 0) return;
    if (reader.StopWatch(HIDHandle) == 0) {
        prompts_.showMessage(std::string("Can't close the ") + settings::kProductTitle +
                             " USB Foot Pedal");
    }
}

void UsbPedals::unload() {
    if (config_.record.Use30VEC) reader.CloseInterface(PIEHandle);
}

void UsbPedals::traceMiddleDown() {
    if (trace == nullptr || !trace->DebugOn) return;
    std::error_code error;
    const auto size = std::filesystem::file_size(state_.Filename, error);
    trace->DebugPrint(state_.Filename + "  MIDDLE DOWN " +
                      "File Size = " + std::to_string(error ? 0 : size));
}

void UsbPedals::toggleUsbPedals() {
    if (!menu.usbChecked) {
        menu.usbChecked = true;
        menu.gameChecked = false;
        if (uncheckSerialMenu) uncheckSerialMenu();
        config_.record.UserSelectUSB = true;
        if (showConfigDialog) showConfigDialog();
        OpenUSBPedals();
    } else {
        menu.usbChecked = false;
        config_.record.UserSelectUSB = false;
        CloseUSBPedals();
    }
    config_.WriteConfig();
}

void UsbPedals::toggleVec30Pedal() {
    if (state_.flgfileOpen1) {
        prompts_.showMessage(kCloseFileFirstMessage);
        return;
    }
    if (!prompts_.askYesNo(kChangeDriverQuestion)) {
        prompts_.showMessage(kNoChangeMessage);
        return;
    }
    config_.record.Use30VEC = !config_.record.Use30VEC;
    menu.vec30Checked = config_.record.Use30VEC;
    config_.WriteConfig();
    if (endProgram) endProgram();
}

}  // namespace ovd::devices
