#pragma once
// What the reader needs to know of a HID report descriptor: the top-level usage
// page and usage (which function of the device this is), whether reports carry a
// report number in front, and how many bytes one input report holds.

#include <cstdint>
#include <span>

namespace ovd::devices {

struct HidDescriptorFacts {
    std::uint32_t usagePage = 0;
    std::uint32_t usage = 0;
    bool reportIds = false;
    // Bytes of the first input report, without the report number; 0 when the
    // descriptor declares no input.
    int inputBytes = 0;
};

// Reads the descriptor as far as it makes sense; bytes it cannot make sense of
// end the reading with what was learned so far.
[[nodiscard]] HidDescriptorFacts readHidDescriptor(std::span<const std::uint8_t> descriptor);

}  // namespace ovd::devices
