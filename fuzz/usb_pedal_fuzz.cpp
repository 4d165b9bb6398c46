// Any bytes as USB pedal input: the first byte picks the driver, the rest is cut
// into reads. The decoder must not fail, only one USB pedal may ever count as
// held, and the report descriptor reader must stay within bounds too.

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

#include "devices/usb_hid_descriptor.h"
#include "devices/usb_pedal_decoder.h"

namespace {

class NoSink : public ovd::devices::PedalEventSink {
  public:
    void PedalEventSER(const std::string&, const std::string&) override {}
    void PedalEventUSB(const std::string&, const std::string&) override {}
    void PedalEventGAME(const std::string&, const std::string&) override {}
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace ovd::devices;
    const std::span<const std::uint8_t> input(data, size);
    (void)readHidDescriptor(input);
    if (input.empty()) return 0;

    NoSink sink;
    PedalHits hits;
    ovd::settings::SettingsRecord settings;
    ovd::dictation::DictationState state;
    UsbPedalDecoder decoder(sink, hits, settings, state);
    decoder.USBPedals = true;
    const bool singleReports = (input[0] & 1U) != 0;
    std::array<std::uint8_t, kHIDBatchBytes> buffer{};

    std::size_t at = 1;
    while (at < input.size()) {
        if (singleReports) {
            const std::size_t take = std::min<std::size_t>(kPIEReportBytes, input.size() - at);
            std::array<std::uint8_t, kPIEReportBytes> report{};
            std::copy_n(input.begin() + static_cast<std::ptrdiff_t>(at), take, report.begin());
            decoder.ShowRawHIDButtons(report);
            decoder.UseHIDDataNew(report);
            at += take;
        } else {
            // One byte gives the read's count, the next ones its bytes.
            const int count = input[at++] % (kHIDBatchBytes + 1);
            const std::size_t take =
                std::min<std::size_t>(static_cast<std::size_t>(count), input.size() - at);
            std::copy_n(input.begin() + static_cast<std::ptrdiff_t>(at), take, buffer.begin());
            decoder.useHIDBatch(buffer, count);
            at += take;
        }
        const int held =
            int{hits.LEFTUSBPEDALHit} + int{hits.MIDUSBPEDALHit} + int{hits.RIGHTUSBPEDALHit};
        if (held > 1 || decoder.HIDDecoding || decoder.MSLastUSB < 0 || decoder.MSLastUSB > 5) {
            __builtin_trap();
        }
    }
    return 0;
}
