#pragma once
// A remote folder's entries as the FTP windows show them: name, size, last-write
// time and the four attribute marks, read from the server's LIST answer.

#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace ovd::ftp {

struct cDirItem {
    std::string name;
    std::uint64_t size = 0;
    std::chrono::system_clock::time_point lastWrite{};
    bool archive = false;
    bool compressed = false;
    bool directory = false;
    bool hidden = false;
};

using cDirList = std::vector<cDirItem>;

// Reads a Unix-style LIST answer ("-rw-r--r-- 1 103 107 3 Nov 24 06:05 a b.txt").
// Lines that are not entries ("total 8", blanks, anything odd) are skipped, and
// so are "." and "..": the window adds its own "..". `now` places a date shown
// without a year in the last twelve months, as the listing means it.
cDirList parseListing(std::string_view listing, std::chrono::system_clock::time_point now);

// Whether a name matches the window's pattern; an empty pattern and "*.*" take
// every name, dotless ones included, as the window's users expect.
bool matchesFileSpec(const std::string& name, const std::string& fileSpec);

// " A ", " C ", " D ", " H " in that order, a missing mark shown as " - ".
std::string attributeMarks(const cDirItem& item);

}  // namespace ovd::ftp
