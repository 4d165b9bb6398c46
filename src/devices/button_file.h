#pragma once
// The desk unit's message texts: Button.cfg in the program's folder, one message a
// line, read once at start. A button set to "MSG1".."MSG20" sends its message to
// the peer.

#include <array>
#include <string>
#include <string_view>

namespace ovd::devices {

inline constexpr std::size_t kButtonMessages = 20;
inline constexpr std::size_t kButtonMessageLength = 256;

struct ButtonMessages {
    // Line n (from 1) fills index n - 1 of each list.
    std::array<std::string, kButtonMessages> firstLabels;   // read and kept, used by nothing
    std::array<std::string, kButtonMessages> secondLabels;  // the same
    std::array<std::string, kButtonMessages> texts;         // what the button sends
};

// Splits each line at its first two commas; further commas belong to the text.
// A line with fewer commas leaves the missing fields empty, without a word.
ButtonMessages parseButtonFile(std::string_view content);

// A missing or unreadable file leaves every list empty.
ButtonMessages ReadButtonFile(const std::string& path);

// "BTN" + button (1 to 8) + "_" + the file's name without folder and extension
// + " " + the message + CR LF: what the peer receives for a message button.
std::string buttonMessageLine(int button, const std::string& filename, const std::string& message);

}  // namespace ovd::devices
