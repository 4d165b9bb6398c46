#include "settings/config_variant.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "platform/text.h"

namespace ovd::settings {

std::string formatNumber(double number) {
    char buffer[40];
    if (std::isfinite(number) && std::floor(number) == number && std::fabs(number) < 1e15) {
        std::snprintf(buffer, sizeof buffer, "%lld", static_cast<long long>(number));
    } else {
        // The shortest form that reads back to the same number.
        for (int digits = 15; digits <= 17; ++digits) {
            std::snprintf(buffer, sizeof buffer, "%.*g", digits, number);
            if (std::strtod(buffer, nullptr) == number) break;
        }
    }
    return buffer;
}

std::string ConfigVariant::toText() const {
    if (const auto* text = std::get_if<std::string>(&value_)) return *text;
    if (const auto* number = std::get_if<double>(&value_)) return formatNumber(*number);
    if (const auto* flag = std::get_if<bool>(&value_)) return *flag ? "True" : "False";
    return {};
}

std::optional<double> ConfigVariant::toNumber() const {
    if (const auto* number = std::get_if<double>(&value_)) return *number;
    if (const auto* flag = std::get_if<bool>(&value_)) return *flag ? -1.0 : 0.0;
    if (const auto* text = std::get_if<std::string>(&value_)) {
        const std::string trimmed = platform::trim(*text);
        if (trimmed.empty()) return std::nullopt;
        char* end = nullptr;
        const double parsed = std::strtod(trimmed.c_str(), &end);
        if (end != nullptr && *end == '\0' && std::isfinite(parsed)) return parsed;
    }
    return std::nullopt;
}

bool ConfigVariant::toBool() const {
    if (const auto* flag = std::get_if<bool>(&value_)) return *flag;
    if (const auto* text = std::get_if<std::string>(&value_)) {
        if (platform::equalsIgnoreCase(platform::trim(*text), "True")) return true;
        if (platform::equalsIgnoreCase(platform::trim(*text), "False")) return false;
    }
    const auto number = toNumber();
    return number.has_value() && *number != 0.0;
}

}  // namespace ovd::settings
