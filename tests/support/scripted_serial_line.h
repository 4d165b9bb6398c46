#pragma once
// A serial line played from a script: the bytes a pedal would send, in order,
// and the modem lines as the test sets them. Header-only, so the fuzz targets
// use it too without the test library.

#include <cstdint>
#include <deque>
#include <optional>

#include "devices/serial_pedal_decoder.h"

namespace ovd::testing {

struct ScriptedSerialLine : devices::SerialByteSource {
    std::deque<std::uint8_t> bytes;
    bool cd = false, dsr = false, cts = false;

    std::optional<std::uint8_t> readByte() override {
        if (bytes.empty()) return std::nullopt;
        const auto byte = bytes.front();
        bytes.pop_front();
        return byte;
    }
    bool CDHolding() override { return cd; }
    bool DSRHolding() override { return dsr; }
    bool CTSHolding() override { return cts; }
};

}  // namespace ovd::testing
