#include "settings/record_grammar.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <optional>

#include "platform/text.h"

namespace ovd::settings {

namespace {

constexpr std::string_view kTrue = "#TRUE#";
constexpr std::string_view kFalse = "#FALSE#";
constexpr std::string_view kNull = "#NULL#";

bool isLineEnd(char c) { return c == '\r' || c == '\n'; }

// Past the delimiter that ends a field: a comma, or a line end (CR LF as one).
std::size_t skipDelimiter(std::string_view content, std::size_t pos) {
    if (pos >= content.size()) return pos;
    if (content[pos] == ',') return pos + 1;
    if (content[pos] == '\r') {
        ++pos;
        if (pos < content.size() && content[pos] == '\n') ++pos;
        return pos;
    }
    if (content[pos] == '\n') return pos + 1;
    return pos;
}

std::optional<double> parseNumber(const std::string& raw) {
    const std::string text = platform::trim(raw);
    if (text.empty()) return std::nullopt;
    const char first = text.front();
    if (!(std::isdigit(static_cast<unsigned char>(first)) || first == '-' || first == '+' ||
          first == '.')) {
        return std::nullopt;
    }
    if (text.find_first_of("xXnN") != std::string::npos) return std::nullopt;  // hex, inf, nan
    char* end = nullptr;
    const double value = std::strtod(text.c_str(), &end);
    if (end == nullptr || *end != '\0' || !std::isfinite(value)) return std::nullopt;
    return value;
}

std::optional<bool> parseKeyword(const RecordToken& token) {
    if (token.quoted) return std::nullopt;
    const std::string text = platform::trim(token.text);
    if (text == kTrue) return true;
    if (text == kFalse) return false;
    return std::nullopt;
}

std::optional<std::string> readText(const RecordToken& token) {
    if (token.quoted) return token.text;
    if (const auto flag = parseKeyword(token)) return std::string(*flag ? "True" : "False");
    if (platform::trim(token.text) == kNull) return std::string();
    return token.text;
}

std::optional<std::int16_t> readInteger(const RecordToken& token) {
    if (const auto flag = parseKeyword(token)) return static_cast<std::int16_t>(*flag ? -1 : 0);
    if (platform::trim(token.text).empty()) return static_cast<std::int16_t>(0);
    const auto number = parseNumber(token.text);
    if (!number) return std::nullopt;
    const double rounded = std::nearbyint(*number);  // halves go to the even neighbour
    if (rounded < INT16_MIN || rounded > INT16_MAX) return std::nullopt;
    return static_cast<std::int16_t>(rounded);
}

std::optional<bool> readBoolean(const RecordToken& token) {
    if (const auto flag = parseKeyword(token)) return flag;
    const std::string text = platform::trim(token.text);
    if (text.empty()) return false;
    if (platform::equalsIgnoreCase(text, "True")) return true;
    if (platform::equalsIgnoreCase(text, "False")) return false;
    if (const auto number = parseNumber(text)) return *number != 0.0;
    return std::nullopt;
}

ConfigVariant readVariant(const RecordToken& token) {
    if (token.quoted) return ConfigVariant(token.text);
    if (const auto flag = parseKeyword(token)) return ConfigVariant(*flag);
    const std::string text = platform::trim(token.text);
    if (text.empty() || text == kNull) return {};
    if (const auto number = parseNumber(text)) return ConfigVariant(*number);
    return ConfigVariant(text);
}

std::string writeVariant(const ConfigVariant& value) {
    if (value.isEmpty()) return {};
    if (value.isText()) return "\"" + value.toText() + "\"";
    if (value.isBool()) return std::string(value.toBool() ? kTrue : kFalse);
    return formatNumber(value.toNumber().value_or(0.0));
}

// Text a settings field can hold: no control characters (a line break in a
// value is what damages the record), and no longer than its use can take.
bool fitsField(const std::string& text, std::size_t longest) {
    if (text.size() > longest) return false;
    return std::none_of(text.begin(), text.end(),
                        [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7f; });
}

// Each operator is true when the token was taken onto the field.
struct ApplyToken {
    SettingsRecord& record;
    const RecordToken& token;
    std::size_t longest;
    bool folderSetting;  // a yes/no or a number there is no folder
    bool operator()(std::string SettingsRecord::*member) const {
        auto text = readText(token);
        if (!text || !fitsField(*text, longest)) return false;
        record.*member = std::move(*text);
        return true;
    }
    bool operator()(std::int16_t SettingsRecord::*member) const {
        const auto number = readInteger(token);
        if (number) record.*member = *number;
        return number.has_value();
    }
    bool operator()(bool SettingsRecord::*member) const {
        const auto flag = readBoolean(token);
        if (flag) record.*member = *flag;
        return flag.has_value();
    }
    bool operator()(ConfigVariant SettingsRecord::*member) const {
        ConfigVariant value = readVariant(token);
        if (value.isText() && !fitsField(value.toText(), longest)) return false;
        if (folderSetting && !value.isText() && !value.isEmpty()) return false;
        record.*member = std::move(value);
        return true;
    }
};

struct FormatField {
    const SettingsRecord& record;
    std::string operator()(std::string SettingsRecord::*member) const {
        return "\"" + record.*member + "\"";
    }
    std::string operator()(std::int16_t SettingsRecord::*member) const {
        return std::to_string(record.*member);
    }
    std::string operator()(bool SettingsRecord::*member) const {
        return std::string((record.*member) ? kTrue : kFalse);
    }
    std::string operator()(ConfigVariant SettingsRecord::*member) const {
        return writeVariant(record.*member);
    }
};

}  // namespace

std::vector<RecordToken> tokenizeRecord(std::string_view content) {
    std::vector<RecordToken> tokens;
    std::size_t pos = 0;
    while (pos < content.size()) {
        while (pos < content.size() && (content[pos] == ' ' || content[pos] == '\t')) ++pos;
        if (pos >= content.size()) break;
        RecordToken token;
        if (content[pos] == '"') {
            const std::size_t close = content.find('"', pos + 1);
            const std::size_t end = close == std::string_view::npos ? content.size() : close;
            token.text = std::string(content.substr(pos + 1, end - pos - 1));
            token.quoted = true;
            pos = end == content.size() ? end : end + 1;
            // Whatever follows the closing quote up to the delimiter is lost: that is
            // how a value holding a quote comes back cut short.
            while (pos < content.size() && content[pos] != ',' && !isLineEnd(content[pos])) ++pos;
        } else {
            const std::size_t start = pos;
            while (pos < content.size() && content[pos] != ',' && !isLineEnd(content[pos])) ++pos;
            token.text = platform::trim(content.substr(start, pos - start));
        }
        tokens.push_back(std::move(token));
        pos = skipDelimiter(content, pos);
    }
    return tokens;
}

bool RecordDamage::any() const {
    return !unreadFields.empty() || fieldsFound != settingsFields().size();
}

std::size_t longestValueOf(const std::string& fieldName) {
    // PATH_MAX less its terminating zero, and NAME_MAX.
    constexpr std::size_t kLongestPath = 4095;
    constexpr std::size_t kLongestName = 255;
    for (const char* path : {"LastFolderOpened", "LastPathFileOpened", "CaptureFilePath",
                             "SendToOne", "SendToTwo", "SendToThree"}) {
        if (fieldName == path) return kLongestPath;
    }
    return kLongestName;
}

RecordDamage applyRecord(SettingsRecord& record, const std::vector<RecordToken>& tokens) {
    const auto& fields = settingsFields();
    RecordDamage damage;
    damage.fieldsFound = tokens.size();
    const std::size_t count = std::min(fields.size(), tokens.size());
    for (std::size_t i = 0; i < count; ++i) {
        const std::string name = fields[i].name;
        const bool taken = std::visit(
            ApplyToken{record, tokens[i], longestValueOf(name), name == "CaptureFilePath"},
            fields[i].member);
        if (!taken) damage.unreadFields.emplace_back(fields[i].name);
    }
    return damage;
}

std::string formatRecord(const SettingsRecord& record) {
    std::string line;
    bool first = true;
    for (const SettingsField& field : settingsFields()) {
        if (!first) line += ',';
        first = false;
        line += std::visit(FormatField{record}, field.member);
    }
    line += "\r\n";
    return line;
}

std::optional<std::string> readTextField(const RecordToken& token, std::size_t longest) {
    auto text = readText(token);
    if (!text || !fitsField(*text, longest)) return std::nullopt;
    return text;
}

ConfigVariant readVariantField(const RecordToken& token) { return readVariant(token); }

std::string formatTextField(const std::string& text) { return "\"" + text + "\""; }

std::string formatVariantField(const ConfigVariant& value) { return writeVariant(value); }

}  // namespace ovd::settings
