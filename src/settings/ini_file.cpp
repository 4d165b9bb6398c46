#include "settings/ini_file.h"

#include <array>
#include <climits>
#include <filesystem>

#include "platform/files.h"
#include "platform/text.h"

namespace ovd::settings {

namespace {

constexpr std::array<std::string_view, 7> kTrueWords = {"YES", "Y", "TRUE", "T", "ON", "1", "-1"};
constexpr std::array<std::string_view, 6> kFalseWords = {"NO", "N", "FALSE", "F", "OFF", "0"};

bool isOneOf(std::string_view word, const auto& words) {
    for (const auto candidate : words) {
        if (word == candidate) return true;
    }
    return false;
}

// A leading sign and digits, as far as they go; too large a number stops at the
// bounds of an int rather than wrapping.
int leadingNumber(std::string_view text) {
    std::size_t at = 0;
    bool negative = false;
    if (at < text.size() && (text[at] == '-' || text[at] == '+')) negative = text[at++] == '-';
    long long number = 0;
    while (at < text.size() && text[at] >= '0' && text[at] <= '9') {
        number = number * 10 + (text[at++] - '0');
        if (number > static_cast<long long>(INT_MAX) + 1) break;
    }
    if (negative) number = -number;
    if (number > INT_MAX) return INT_MAX;
    if (number < INT_MIN) return INT_MIN;
    return static_cast<int>(number);
}

}  // namespace

clsIniFile::clsIniFile(platform::Prompts& prompts, std::string mainIniFolder, FileAccess access)
    : prompts_(prompts),
      mainIniPath_(platform::joinPath(mainIniFolder, kMainIniName)),
      access_(access) {}

void clsIniFile::FullPath(std::string_view path) { privatePath_ = platform::trim(path); }

std::string clsIniFile::FullPath() const { return useWinIni_ ? mainIniPath_ : privatePath_; }

void clsIniFile::SectionName(std::string_view name) { section_ = platform::trim(name); }

std::string clsIniFile::ExtractName(std::string_view path, NamePart part) {
    const std::size_t slash = path.rfind('/');
    const std::string_view name = slash == std::string_view::npos ? path : path.substr(slash + 1);
    const std::size_t dot = name.rfind('.');
    if (part == NamePart::Extension) {
        return dot == std::string_view::npos ? std::string()
                                             : platform::toUpper(name.substr(dot + 1));
    }
    return platform::toUpper(name.substr(0, dot));
}

std::string clsIniFile::ExtractPath(std::string_view path) {
    const std::size_t slash = path.rfind('/');
    if (slash != std::string_view::npos) return platform::toUpper(path.substr(0, slash + 1));
    std::error_code ec;
    const std::string current = std::filesystem::current_path(ec).string();
    return platform::toUpper(platform::joinPath(current, ""));
}

bool clsIniFile::registered() const {
    if (!section_.empty() && !FullPath().empty()) return true;
    prompts_.showMessage(kIniLogicErrorText, kIniLogicErrorTitle, platform::Severity::Critical);
    return false;
}

void clsIniFile::DeleteStrEntry(std::string_view key) {
    if (registered()) (void)store().WriteKey(section_, key, std::nullopt);
}

void clsIniFile::DeleteNumEntry(std::string_view key) {
    if (registered()) (void)store().WriteKey(section_, key, std::nullopt);
}

void clsIniFile::DeleteSection() {
    if (registered()) (void)store().deleteSection(section_);
}

int clsIniFile::GetInt(std::string_view key, int defaultValue) const {
    if (!registered()) return 0;
    const std::string value = store().readValue(section_, key).value_or("");
    return value.empty() ? defaultValue : leadingNumber(value);
}

std::vector<std::string> clsIniFile::GetSectEntries() const {
    std::vector<std::string> keys;
    if (!registered()) return keys;
    for (auto& entry : store().sectionEntries(section_)) keys.push_back(std::move(entry.key));
    return keys;
}

std::vector<IniEntry> clsIniFile::GetSectEntriesEx() const {
    if (!registered()) return {};
    return store().sectionEntries(section_);
}

std::vector<std::string> clsIniFile::sectionLines() const {
    std::vector<std::string> names;
    for (const auto& line : readTextLines(FullPath())) {
        if (line.size() >= 2 && line.front() == '[' && line.back() == ']') {
            names.push_back(line.substr(1, line.size() - 2));
        }
    }
    return names;
}

std::string clsIniFile::GetSections() const {
    std::string joined;
    if (!registered()) return joined;
    for (const auto& name : sectionLines()) {
        joined += name;
        joined += '\0';
    }
    return joined;
}

std::vector<std::string> clsIniFile::GetSectionsEx() const {
    if (!registered()) return {};
    return sectionLines();
}

std::string clsIniFile::GetString(std::string_view key, std::string_view defaultValue) const {
    return IniRead(section_, key, defaultValue);
}

bool clsIniFile::GetTF(std::string_view key, bool defaultValue) const {
    if (!registered()) return false;
    const std::string word =
        platform::toUpper(platform::trim(store().readValue(section_, key).value_or("")));
    if (isOneOf(word, kTrueWords)) return true;
    if (isOneOf(word, kFalseWords)) return false;
    return defaultValue;
}

void clsIniFile::FlushCache() const { (void)registered(); }

std::string clsIniFile::IniRead(std::string_view section, std::string_view key,
                                std::string_view defaultValue) const {
    if (!registered()) return {};
    return store().readValue(section, key).value_or(std::string(defaultValue));
}

platform::Result<void> clsIniFile::IniWrite(std::string_view section, std::string_view key,
                                            std::string_view value) {
    if (!registered()) return platform::failure("no settings file is registered");
    return store().WriteKey(section, key, value);
}

void clsIniFile::PutInt(std::string_view key, int value) {
    (void)IniWrite(section_, key, std::to_string(value));
}

void clsIniFile::PutString(std::string_view key, std::string_view value) {
    (void)IniWrite(section_, key, value);
}

void clsIniFile::PutTF(std::string_view key, bool value) {
    (void)IniWrite(section_, key, value ? "True" : "False");
}

bool clsIniFile::SectExist(std::string_view section) const {
    if (!registered()) return false;
    const std::string wanted = platform::toUpper(section);
    for (const auto& name : sectionLines()) {
        if (platform::toUpper(name) == wanted) return true;
    }
    return false;
}

}  // namespace ovd::settings
