#pragma once
// The number boxes of the settings windows hold text as typed; a number is
// digits only, no sign, no blanks.

#include <optional>
#include <string>

namespace ovd::configuration {

// The value of a box of digits; nothing for an empty box, any other character,
// or more digits than a setting could ever hold.
inline std::optional<long long> wholeNumber(const std::string& text) {
    if (text.empty() || text.size() > 15) return std::nullopt;
    long long value = 0;
    for (const char c : text) {
        if (c < '0' || c > '9') return std::nullopt;
        value = value * 10 + (c - '0');
    }
    return value;
}

}  // namespace ovd::configuration
