#include "devices/hid_device_table.h"

#include <array>
#include <charconv>
#include <fstream>
#include <sstream>

namespace ovd::devices {

namespace {

constexpr std::array<std::string_view, 6> kCommandWords = {"Record",   "LISTEN",     "STOP",
                                                           "STEPBACK", "STEPFOWARD", "EOL"};
constexpr int kMaxReportBytes = 64;
// Keys of a keyboard report: after the modifier byte and the reserved byte.
constexpr std::size_t kFirstKeyByte = 2;

std::string_view trim(std::string_view text) {
    while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) text.remove_prefix(1);
    while (!text.empty() && (text.back() == ' ' || text.back() == '\t' || text.back() == '\r'))
        text.remove_suffix(1);
    return text;
}

std::vector<std::string_view> split(std::string_view text, char separator) {
    std::vector<std::string_view> parts;
    std::size_t start = 0;
    for (;;) {
        const std::size_t at = text.find(separator, start);
        parts.push_back(trim(text.substr(start, at == std::string_view::npos ? at : at - start)));
        if (at == std::string_view::npos) return parts;
        start = at + 1;
    }
}

std::vector<std::string_view> words(std::string_view text) {
    std::vector<std::string_view> out;
    std::size_t at = 0;
    while (at < text.size()) {
        while (at < text.size() && (text[at] == ' ' || text[at] == '\t')) ++at;
        const std::size_t start = at;
        while (at < text.size() && text[at] != ' ' && text[at] != '\t') ++at;
        if (at > start) out.push_back(text.substr(start, at - start));
    }
    return out;
}

std::optional<std::uint32_t> number(std::string_view text, int base, std::uint32_t limit) {
    std::uint32_t value = 0;
    if (text.empty()) return std::nullopt;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, base);
    if (error != std::errc{} || end != text.data() + text.size() || value > limit)
        return std::nullopt;
    return value;
}

// "vvvv:pppp" with "*" allowed on the right (or both sides for the usage).
bool pair(std::string_view text, bool leftMayBeAny, std::optional<std::uint32_t>& left,
          std::optional<std::uint32_t>& right) {
    const std::size_t colon = text.find(':');
    if (colon == std::string_view::npos) return false;
    const std::string_view a = text.substr(0, colon);
    const std::string_view b = text.substr(colon + 1);
    if (a == "*" && leftMayBeAny) {
        left.reset();
    } else if (auto value = number(a, 16, 0xFFFF)) {
        left = value;
    } else {
        return false;
    }
    if (b == "*") {
        right.reset();
    } else if (auto value = number(b, 16, 0xFFFF)) {
        right = value;
    } else {
        return false;
    }
    return true;
}

std::optional<std::string> parseControl(std::string_view text, int reportBytes,
                                        HidControl& control) {
    const std::size_t equals = text.find('=');
    if (equals == std::string_view::npos) return "a control without \"=\": " + std::string(text);
    control.target = std::string(text.substr(0, equals));
    const std::string_view where = text.substr(equals + 1);
    if (!control.isPedal() && !isDeviceCommandWord(control.target))
        return "unknown target \"" + control.target + "\"";
    if (where.rfind("key:", 0) == 0) {
        const auto key = number(where.substr(4), 16, 0xFF);
        if (!key || *key == 0) return "a bad key in " + std::string(text);
        if (reportBytes < 3) return "key controls need a keyboard report of 3 bytes or more";
        control.kind = HidControl::Kind::Key;
        control.key = static_cast<std::uint8_t>(*key);
        return std::nullopt;
    }
    std::string_view position = where;
    if (position.size() > 3 && position.substr(position.size() - 3) == "+16") {
        control.word16 = true;
        position.remove_suffix(3);
    }
    const std::size_t dot = position.find('.');
    if (dot == std::string_view::npos) return "a position without \".\": " + std::string(text);
    const auto byte = number(position.substr(0, dot), 10, kMaxReportBytes);
    const auto bit = number(position.substr(dot + 1), 10, control.word16 ? 15 : 7);
    if (!byte || !bit) return "a bad position in " + std::string(text);
    const int last = static_cast<int>(*byte) + (control.word16 ? 1 : 0);
    if (last >= reportBytes) return "a position beyond the report in " + std::string(text);
    control.kind = HidControl::Kind::Bit;
    control.byte = static_cast<int>(*byte);
    control.bit = static_cast<int>(*bit);
    return std::nullopt;
}

std::optional<std::string> parseRow(std::string_view line, HidDeviceRow& row) {
    const std::vector<std::string_view> fields = split(line, '|');
    if (fields.size() != 5) return "5 fields split by \"|\" expected";
    row.name = std::string(fields[0]);
    if (row.name.empty()) return "no name";
    std::optional<std::uint32_t> vendor;
    if (!pair(fields[1], false, vendor, row.product) || !vendor)
        return "bad vendor:product \"" + std::string(fields[1]) + "\"";
    row.vendor = *vendor;
    if (fields[2] != "*" && !pair(fields[2], true, row.usagePage, row.usage))
        return "bad usage \"" + std::string(fields[2]) + "\"";
    const auto bytes = number(fields[3], 10, kMaxReportBytes);
    if (!bytes || *bytes == 0) return "bad report length \"" + std::string(fields[3]) + "\"";
    row.reportBytes = static_cast<int>(*bytes);
    for (const std::string_view text : words(fields[4])) {
        HidControl control;
        if (auto problem = parseControl(text, row.reportBytes, control)) return problem;
        row.controls.push_back(std::move(control));
    }
    if (row.controls.empty()) return "no controls";
    return std::nullopt;
}

}  // namespace

bool HidControl::isPedal() const {
    return target == "LEFT" || target == "MIDDLE" || target == "RIGHT";
}

bool isDeviceCommandWord(std::string_view word) {
    for (const std::string_view known : kCommandWords) {
        if (known == word) return true;
    }
    return false;
}

bool HidDeviceRow::matches(std::uint32_t deviceVendor, std::uint32_t deviceProduct,
                           std::uint32_t deviceUsagePage, std::uint32_t deviceUsage) const {
    return deviceVendor == vendor && (!product || *product == deviceProduct) &&
           (!usagePage || *usagePage == deviceUsagePage) && (!usage || *usage == deviceUsage);
}

const HidDeviceRow* HidDeviceTable::find(std::uint32_t vendor, std::uint32_t product,
                                         std::uint32_t usagePage, std::uint32_t usage) const {
    for (const HidDeviceRow& row : rows) {
        if (row.matches(vendor, product, usagePage, usage)) return &row;
    }
    return nullptr;
}

HidDeviceTable parseHidDeviceTable(std::string_view text) {
    HidDeviceTable table;
    int lineNumber = 0;
    for (const std::string_view raw : split(text, '\n')) {
        ++lineNumber;
        const std::string_view line = trim(raw);
        if (line.empty() || line.front() == '#') continue;
        HidDeviceRow row;
        row.line = lineNumber;
        if (auto problem = parseRow(line, row)) {
            table.problems.push_back("line " + std::to_string(lineNumber) + ": " + *problem);
            continue;
        }
        table.rows.push_back(std::move(row));
    }
    return table;
}

HidDeviceTable readHidDeviceTable(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        HidDeviceTable table;
        table.problems.push_back(path + " can't be read");
        return table;
    }
    std::ostringstream text;
    text << in.rdbuf();
    return parseHidDeviceTable(text.str());
}

bool HidControlDecoder::lengthFits(std::size_t bytes) const {
    return bytes == static_cast<std::size_t>(row_->reportBytes);
}

bool HidControlDecoder::held(const HidControl& control,
                             std::span<const std::uint8_t> report) const {
    if (control.kind == HidControl::Kind::Key) {
        for (std::size_t i = kFirstKeyByte; i < report.size(); ++i) {
            if (report[i] == control.key) return true;
        }
        return false;
    }
    const auto at = static_cast<std::size_t>(control.byte);
    unsigned value = report[at];
    if (control.word16) value |= static_cast<unsigned>(report[at + 1]) << 8U;
    return ((value >> static_cast<unsigned>(control.bit)) & 1U) != 0;
}

std::vector<HidControlDecoder::Change> HidControlDecoder::decode(
    std::span<const std::uint8_t> report) {
    std::vector<Change> changes;
    if (!lengthFits(report.size())) return changes;
    down_.resize(row_->controls.size(), false);
    for (std::size_t i = 0; i < row_->controls.size(); ++i) {
        const bool now = held(row_->controls[i], report);
        if (now != down_[i]) {
            down_[i] = now;
            changes.push_back({i, now});
        }
    }
    return changes;
}

std::vector<HidControlDecoder::Change> HidControlDecoder::releaseAll() {
    std::vector<Change> changes;
    for (std::size_t i = 0; i < down_.size(); ++i) {
        if (down_[i]) changes.push_back({i, false});
        down_[i] = false;
    }
    return changes;
}

}  // namespace ovd::devices
