#pragma once
// Small text helpers shared by the stores and parsers.

#include <string>
#include <string_view>
#include <vector>

namespace ovd::platform {

std::string trim(std::string_view text);  // blanks, tabs and line ends at both sides
std::string toUpper(std::string_view text);
// "True" or "False", as the log and the settings files show a flag.
std::string boolText(bool value);
bool equalsIgnoreCase(std::string_view a, std::string_view b);
bool startsWith(std::string_view text, std::string_view prefix);

// Lines of a text ended by CR LF or LF; a last line without an ending counts.
std::vector<std::string> splitLines(std::string_view text);

}  // namespace ovd::platform
