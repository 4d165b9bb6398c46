#include "devices/usb_pedal_decoder.h"

#include <cmath>

namespace ovd::devices {

namespace {

// Clears the decoder's guard on every way out of a decode.
class DecodingGuard {
  public:
    explicit DecodingGuard(bool& flag) : flag_(flag) { flag_ = true; }
    ~DecodingGuard() { flag_ = false; }
    DecodingGuard(const DecodingGuard&) = delete;
    DecodingGuard& operator=(const DecodingGuard&) = delete;

  private:
    bool& flag_;
};

struct PedalSlot {
    const char* which;
    std::uint8_t bit;
    bool PedalHits::*hit;
};

constexpr std::array<PedalSlot, 3> kSlots{{
    {kLeft, 0x01, &PedalHits::LEFTUSBPEDALHit},
    {kMiddle, 0x02, &PedalHits::MIDUSBPEDALHit},
    {kRight, 0x04, &PedalHits::RIGHTUSBPEDALHit},
}};

}  // namespace

std::string HexPad(std::uint32_t value, int width) {
    static constexpr const char* kDigits = "0123456789ABCDEF";
    std::string text;
    do {
        text.insert(text.begin(), kDigits[value & 0xFU]);
        value >>= 4U;
    } while (value != 0);
    if (static_cast<int>(text.size()) < width) {
        text.insert(0, static_cast<std::size_t>(width) - text.size(), '0');
    }
    return text;
}

UsbPedalDecoder::UsbPedalDecoder(PedalEventSink& sink, PedalHits& hits,
                                 const settings::SettingsRecord& settings,
                                 const dictation::DictationState& state)
    : sink_(sink), hits_(hits), settings_(settings), state_(state) {}

void UsbPedalDecoder::useHIDBatch(std::span<const std::uint8_t, kHIDBatchBytes> buffer, int count) {
    if (count <= 0) return;
    if (count > kHIDBatchBytes) count = kHIDBatchBytes;
    if (HIDReportSize < 2) {
        if (count % 2 == 1) {
            HIDReportSize = 3;
        } else if (count % 3 == 0) {
            // Two or three bytes a report both fit such a batch: it teaches nothing
            // and is dropped.
            return;
        } else {
            HIDReportSize = 2;
        }
    }
    // Ties go to the even number; the learned size can only round a batch that
    // does not fit it, and then the last report reads what the buffer still holds.
    const long reports = std::lrint(static_cast<double>(count) / HIDReportSize);
    for (long i = 1; i <= reports; ++i) {
        const auto offset = static_cast<std::size_t>((i - 1) * HIDReportSize);
        if (offset + 2 > buffer.size()) break;
        UseHIDData(buffer.subspan(offset, 2));
    }
}

void UsbPedalDecoder::UseHIDData(std::span<const std::uint8_t> report) { decode(report, false); }

void UsbPedalDecoder::UseHIDDataNew(std::span<const std::uint8_t> report) { decode(report, true); }

void UsbPedalDecoder::ShowRawHIDButtons(std::span<const std::uint8_t> report) {
    const std::uint8_t bits = report.size() > 1 ? report[1] : 0;
    view.buttonsText = kRawButtonsPrefix + HexPad(bits, 2) + " ";
    for (std::size_t i = 0; i < view.indicators.size(); ++i) {
        view.indicators[i] = UsbRawView::Indicator::ButtonFace;
        if ((bits >> i) & 1U) view.indicators[i] = UsbRawView::Indicator::Green;
    }
}

bool UsbPedalDecoder::otherDeviceHeld() const {
    return hits_.LEFTSERPEDALHit || hits_.MIDSERPEDALHit || hits_.RIGHTSERPEDALHit ||
           hits_.LEFTQDUPEDALHit || hits_.MIDQDUPEDALHit || hits_.RIGHTQDUPEDALHit;
}

bool UsbPedalDecoder::anyUsbHit() const {
    return hits_.LEFTUSBPEDALHit || hits_.MIDUSBPEDALHit || hits_.RIGHTUSBPEDALHit;
}

void UsbPedalDecoder::decode(std::span<const std::uint8_t> report, bool showRaw) {
    if (HIDDecoding) return;
    const DecodingGuard guard(HIDDecoding);
    if (!USBPedals || otherDeviceHeld()) return;
    if (showRaw) {
        std::string raw = std::to_string(MSLastUSB) + "   ";
        for (std::size_t i = 0; i < report.size(); ++i) {
            if (i > 0) raw += ' ';
            raw += HexPad(report[i], 2);
        }
        view.rawReport = raw;
    }
    if (report.size() < 2 || report[0] != 0) return;
    const std::uint8_t bits = report[1];

    for (std::size_t slot = 0; slot < kSlots.size(); ++slot) {
        const PedalSlot& pedal = kSlots[slot];
        const auto k = static_cast<std::int16_t>(slot + 1);
        const bool down = (bits & pedal.bit) != 0;
        if (down && !anyUsbHit()) {
            // While an insert or overwrite runs under hold-to-record, a press is lost
            // whole: no flag, so no release follows from it either.
            if (!settings_.OneTapRecPause && (state_.DoingInsertUpdate || state_.OverWriteFile)) {
                return;
            }
            hits_.HandSetHitNotHit = true;
            hits_.*pedal.hit = true;
            if (slot == 0) MSLastUSB = k;
            sink_.PedalEventUSB(pedal.which, kDown);
            MSLastUSB = k;
            if (slot == 1 && onMiddleDown) onMiddleDown();
        } else if (!down && MSLastUSB == k && hits_.*pedal.hit) {
            sink_.PedalEventUSB(pedal.which, kUp);
            hits_.*pedal.hit = false;
            // The right pedal's release leaves 3, as if still held: kept as the
            // station has always done; the stopped repeat below makes it harmless.
            if (slot < 2) MSLastUSB = static_cast<std::int16_t>(k + 3);
            if (stopStepBack) stopStepBack();
        }
    }
}

}  // namespace ovd::devices
