// Any text as the table of other makers' devices, and its bytes as reports for
// every row it yields: reading never fails, every control a row keeps lies
// inside its report, and a report of the row's length only ever changes each
// control to the other state.

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "devices/hid_device_table.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace ovd::devices;
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const HidDeviceTable table = parseHidDeviceTable(text);
    const std::span<const std::uint8_t> bytes(data, size);
    for (const HidDeviceRow& row : table.rows) {
        for (const HidControl& control : row.controls) {
            if (control.kind == HidControl::Kind::Bit &&
                control.byte + (control.word16 ? 1 : 0) >= row.reportBytes)
                __builtin_trap();
        }
        HidControlDecoder decoder(row);
        std::vector<bool> down(row.controls.size(), false);
        for (std::size_t at = 0; at + static_cast<std::size_t>(row.reportBytes) <= bytes.size();
             at += static_cast<std::size_t>(row.reportBytes)) {
            for (const auto& change :
                 decoder.decode(bytes.subspan(at, static_cast<std::size_t>(row.reportBytes)))) {
                if (down[change.control] == change.down) __builtin_trap();
                down[change.control] = change.down;
            }
        }
    }
    return 0;
}
