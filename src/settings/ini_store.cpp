#include "settings/ini_store.h"

#include "platform/files.h"
#include "platform/text.h"

namespace ovd::settings {

namespace {

// A name or value is one C string on one line: anything from the first NUL, CR or
// LF on would either be lost or start a line of its own in the file.
std::string_view oneLine(std::string_view text) {
    const std::size_t stop = text.find_first_of(std::string_view("\0\r\n", 3));
    return stop == std::string_view::npos ? text : text.substr(0, stop);
}

std::string cleanName(std::string_view name) { return platform::trim(oneLine(name)); }

// The name of a section line: "[", the name, "]" (the last one on the line).
std::optional<std::string> sectionOf(std::string_view line) {
    const std::string text = platform::trim(line);
    if (text.empty() || text.front() != '[') return std::nullopt;
    const std::size_t close = text.rfind(']');
    if (close == std::string::npos || close == 0) return std::nullopt;
    return platform::trim(std::string_view(text).substr(1, close - 1));
}

std::optional<IniEntry> entryOf(std::string_view line) {
    const std::string text = platform::trim(line);
    if (text.empty() || text.front() == ';') return std::nullopt;
    const std::size_t equals = text.find('=');
    if (equals == std::string::npos) return std::nullopt;
    const std::string_view whole(text);
    return IniEntry{platform::trim(whole.substr(0, equals)),
                    platform::trim(whole.substr(equals + 1))};
}

bool isBlankLine(std::string_view line) { return platform::trim(line).empty(); }

// A key the file could not give back as written is refused rather than stored:
// "=" would split it, and a leading ";" or "[" would read as a comment or a section.
bool canHoldKey(std::string_view key) {
    return key.find('=') == std::string_view::npos &&
           (key.empty() || (key.front() != ';' && key.front() != '['));
}

}  // namespace

IniDocument IniDocument::parse(std::string_view text) {
    IniDocument document;
    document.lines_ = platform::splitLines(text);
    return document;
}

std::string IniDocument::serialise() const {
    std::string text;
    for (const auto& line : lines_) {
        text += line;
        text += "\r\n";
    }
    return text;
}

std::optional<IniDocument::Span> IniDocument::findSection(std::string_view section) const {
    const std::string wanted = cleanName(section);
    for (std::size_t i = 0; i < lines_.size(); ++i) {
        const auto name = sectionOf(lines_[i]);
        if (!name || !platform::equalsIgnoreCase(*name, wanted)) continue;
        std::size_t end = i + 1;
        while (end < lines_.size() && !sectionOf(lines_[end])) ++end;
        return Span{i, end};
    }
    return std::nullopt;
}

std::optional<std::size_t> IniDocument::findKey(const Span& span, std::string_view key) const {
    const std::string wanted = cleanName(key);
    for (std::size_t i = span.header + 1; i < span.end; ++i) {
        const auto entry = entryOf(lines_[i]);
        if (entry && platform::equalsIgnoreCase(entry->key, wanted)) return i;
    }
    return std::nullopt;
}

bool IniDocument::hasSection(std::string_view section) const {
    return findSection(section).has_value();
}

std::optional<std::string> IniDocument::value(std::string_view section,
                                              std::string_view key) const {
    const auto span = findSection(section);
    if (!span) return std::nullopt;
    const auto index = findKey(*span, key);
    if (!index) return std::nullopt;
    return entryOf(lines_[*index])->value;
}

std::vector<std::string> IniDocument::sectionNames() const {
    std::vector<std::string> names;
    for (const auto& line : lines_) {
        if (auto name = sectionOf(line)) names.push_back(std::move(*name));
    }
    return names;
}

std::vector<IniEntry> IniDocument::sectionEntries(std::string_view section) const {
    std::vector<IniEntry> entries;
    const auto span = findSection(section);
    if (!span) return entries;
    for (std::size_t i = span->header + 1; i < span->end; ++i) {
        if (auto entry = entryOf(lines_[i])) entries.push_back(std::move(*entry));
    }
    return entries;
}

bool IniDocument::setValue(std::string_view section, std::string_view key, std::string_view value) {
    const std::string name = cleanName(key);
    const std::string text(oneLine(value));
    if (!canHoldKey(name)) return false;
    const auto span = findSection(section);
    if (!span) {
        // A new section is set off from the one before it by a blank line.
        if (!lines_.empty() && !isBlankLine(lines_.back())) lines_.emplace_back();
        lines_.push_back("[" + cleanName(section) + "]");
        lines_.push_back(name + "=" + text);
        return true;
    }
    if (const auto index = findKey(*span, name)) {
        // The key keeps the spelling it has in the file.
        const std::string line = entryOf(lines_[*index])->key + "=" + text;
        if (line == lines_[*index]) return false;
        lines_[*index] = line;
        return true;
    }
    // After the section's last entry, before the blank lines that close it off.
    std::size_t at = span->end;
    while (at > span->header + 1 && isBlankLine(lines_[at - 1])) --at;
    lines_.insert(lines_.begin() + static_cast<std::ptrdiff_t>(at), name + "=" + text);
    return true;
}

bool IniDocument::removeKey(std::string_view section, std::string_view key) {
    const auto span = findSection(section);
    if (!span) return false;
    const auto index = findKey(*span, key);
    if (!index) return false;
    lines_.erase(lines_.begin() + static_cast<std::ptrdiff_t>(*index));
    return true;
}

bool IniDocument::removeSection(std::string_view section) {
    const auto span = findSection(section);
    if (!span) return false;
    lines_.erase(lines_.begin() + static_cast<std::ptrdiff_t>(span->header),
                 lines_.begin() + static_cast<std::ptrdiff_t>(span->end));
    return true;
}

IniStore::IniStore(std::string path, FileAccess access) : path_(std::move(path)), access_(access) {}

bool IniStore::exists() const { return platform::fileExists(path_); }

IniDocument IniStore::load() const {
    if (const auto text = platform::readWholeFile(path_)) return IniDocument::parse(*text);
    return {};
}

platform::Result<void> IniStore::save(const IniDocument& document) const {
    return platform::replaceFile(path_, document.serialise(), access_ == FileAccess::OwnerOnly);
}

std::string IniStore::ReadKey(std::string_view section, std::string_view key) const {
    const auto value = readValue(section, key);
    if (!value) return {};
    std::string_view text(*value);
    text = text.substr(0, text.find('\0'));
    return std::string(text.substr(0, kReadKeyLimit));
}

std::optional<std::string> IniStore::readValue(std::string_view section,
                                               std::string_view key) const {
    return load().value(section, key);
}

platform::Result<void> IniStore::WriteKey(std::string_view section, std::string_view key,
                                          std::optional<std::string_view> value) const {
    IniDocument document = load();
    if (value && !canHoldKey(cleanName(key)))
        return platform::failure("\"" + std::string(key) + "\" can't be a key of " + path_);
    const bool changed =
        value ? document.setValue(section, key, *value) : document.removeKey(section, key);
    if (!changed) return platform::Result<void>::success();
    return save(document);
}

platform::Result<void> IniStore::deleteSection(std::string_view section) const {
    IniDocument document = load();
    if (!document.removeSection(section)) return platform::Result<void>::success();
    return save(document);
}

std::vector<std::string> IniStore::sectionNames() const { return load().sectionNames(); }

std::vector<IniEntry> IniStore::sectionEntries(std::string_view section) const {
    return load().sectionEntries(section);
}

std::vector<std::string> readTextLines(const std::string& path) {
    if (const auto text = platform::readWholeFile(path)) return platform::splitLines(*text);
    return {};
}

std::string textAfterFirstEquals(std::string_view line) {
    const std::size_t equals = line.find('=');
    return std::string(equals == std::string_view::npos ? line : line.substr(equals + 1));
}

}  // namespace ovd::settings
