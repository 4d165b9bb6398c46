#include "ftp/dir_list.h"

#include <fnmatch.h>

#include <array>
#include <charconv>
#include <ctime>
#include <sstream>

namespace ovd::ftp {

namespace {

constexpr std::array<std::string_view, 12> kMonths = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                      "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

bool readNumber(std::string_view text, std::uint64_t& value) {
    if (text.empty()) return false;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc() && end == text.data() + text.size();
}

int monthIndex(std::string_view text) {
    for (std::size_t index = 0; index < kMonths.size(); ++index) {
        if (kMonths[index] == text) return static_cast<int>(index);
    }
    return -1;
}

// The next blank-separated word of `line` from `position`, which moves past it.
std::string_view nextWord(std::string_view line, std::size_t& position) {
    while (position < line.size() && line[position] == ' ') ++position;
    const std::size_t start = position;
    while (position < line.size() && line[position] != ' ') ++position;
    return line.substr(start, position - start);
}

int yearOf(std::chrono::system_clock::time_point when) {
    const std::time_t seconds = std::chrono::system_clock::to_time_t(when);
    std::tm parts{};
    ::gmtime_r(&seconds, &parts);
    return parts.tm_year + 1900;
}

std::chrono::system_clock::time_point utcTime(int year, int month, int day, int hour, int minute) {
    std::tm parts{};
    parts.tm_year = year - 1900;
    parts.tm_mon = month;
    parts.tm_mday = day;
    parts.tm_hour = hour;
    parts.tm_min = minute;
    return std::chrono::system_clock::from_time_t(::timegm(&parts));
}

// "Nov 24 06:05" (within the last year) or "Nov 24 2025".
bool readTime(std::string_view monthText, std::string_view dayText, std::string_view clockOrYear,
              std::chrono::system_clock::time_point now,
              std::chrono::system_clock::time_point& result) {
    const int month = monthIndex(monthText);
    std::uint64_t day = 0;
    if (month < 0 || !readNumber(dayText, day) || day < 1 || day > 31) return false;
    const std::size_t colon = clockOrYear.find(':');
    if (colon == std::string_view::npos) {
        std::uint64_t year = 0;
        if (!readNumber(clockOrYear, year)) return false;
        result = utcTime(static_cast<int>(year), month, static_cast<int>(day), 0, 0);
        return true;
    }
    std::uint64_t hour = 0;
    std::uint64_t minute = 0;
    if (!readNumber(clockOrYear.substr(0, colon), hour) ||
        !readNumber(clockOrYear.substr(colon + 1), minute) || hour > 23 || minute > 59) {
        return false;
    }
    const int year = yearOf(now);
    result = utcTime(year, month, static_cast<int>(day), static_cast<int>(hour),
                     static_cast<int>(minute));
    // A time without a year lies within the last twelve months; a day later than
    // tomorrow belongs to last year.
    if (result > now + std::chrono::hours(24)) {
        result = utcTime(year - 1, month, static_cast<int>(day), static_cast<int>(hour),
                         static_cast<int>(minute));
    }
    return true;
}

bool readEntry(std::string_view line, std::chrono::system_clock::time_point now, cDirItem& item) {
    std::size_t position = 0;
    const std::string_view mode = nextWord(line, position);
    if (mode.size() < 10 || std::string_view("-dl").find(mode[0]) == std::string_view::npos) {
        return false;
    }
    nextWord(line, position);  // links
    nextWord(line, position);  // owner
    nextWord(line, position);  // group
    if (!readNumber(nextWord(line, position), item.size)) return false;
    const std::string_view month = nextWord(line, position);
    const std::string_view day = nextWord(line, position);
    const std::string_view clockOrYear = nextWord(line, position);
    if (!readTime(month, day, clockOrYear, now, item.lastWrite)) return false;
    // Exactly one blank separates the time from the name; the name keeps its own blanks.
    if (position >= line.size()) return false;
    std::string_view name = line.substr(position + 1);
    if (mode[0] == 'l') {
        const std::size_t arrow = name.find(" -> ");
        if (arrow != std::string_view::npos) name = name.substr(0, arrow);
    }
    if (name.empty() || name == "." || name == "..") return false;
    item.name = std::string(name);
    item.directory = mode[0] == 'd';
    // The server keeps no archive or compressed bits: a file counts as not yet
    // backed up, as a freshly written file does on the transcriber's own machine.
    item.archive = !item.directory;
    item.compressed = false;
    item.hidden = item.name.front() == '.';
    return true;
}

}  // namespace

cDirList parseListing(std::string_view listing, std::chrono::system_clock::time_point now) {
    cDirList result;
    std::size_t start = 0;
    while (start < listing.size()) {
        std::size_t end = listing.find('\n', start);
        if (end == std::string_view::npos) end = listing.size();
        std::string_view line = listing.substr(start, end - start);
        if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
        cDirItem item;
        if (readEntry(line, now, item)) result.push_back(std::move(item));
        start = end + 1;
    }
    return result;
}

bool matchesFileSpec(const std::string& name, const std::string& fileSpec) {
    if (fileSpec.empty() || fileSpec == "*.*" || fileSpec == "*") return true;
    return ::fnmatch(fileSpec.c_str(), name.c_str(), FNM_PERIOD) == 0;
}

std::string attributeMarks(const cDirItem& item) {
    std::string marks;
    marks += item.archive ? " A " : " - ";
    marks += item.compressed ? " C " : " - ";
    marks += item.directory ? " D " : " - ";
    marks += item.hidden ? " H " : " - ";
    return marks;
}

}  // namespace ovd::ftp
