// Any bytes as Button.cfg: the read must not fail, and no message outgrows its limit.

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "devices/button_file.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto messages =
        ovd::devices::parseButtonFile(std::string_view(reinterpret_cast<const char*>(data), size));
    for (const auto& text : messages.texts) {
        if (text.size() > ovd::devices::kButtonMessageLength) __builtin_trap();
    }
    return 0;
}
