#include "settings/record_rules.h"

#include <algorithm>

#include "platform/text.h"

namespace ovd::settings {

std::string firstSixCharacters(std::string_view companyName) {
    std::size_t at = 0;
    for (int taken = 0; taken < 6 && at < companyName.size(); ++taken) {
        ++at;
        while (at < companyName.size() &&
               (static_cast<unsigned char>(companyName[at]) & 0xC0U) == 0x80U) {
            ++at;
        }
    }
    return std::string(companyName.substr(0, at));
}

std::string sixCharactersClash(std::string_view name, const std::vector<std::string>& existing,
                               std::string_view self) {
    const std::string six = firstSixCharacters(name);
    for (const auto& other : existing) {
        if (!self.empty() && platform::equalsIgnoreCase(other, self)) continue;
        if (platform::equalsIgnoreCase(firstSixCharacters(other), six)) return other;
    }
    return {};
}

bool keyHasBlank(std::string_view key) {
    return std::any_of(key.begin(), key.end(), [](char c) {
        return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '\v' || c == '\f';
    });
}

}  // namespace ovd::settings
