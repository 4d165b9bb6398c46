#include "devices/button_file.h"

#include <filesystem>

#include "platform/files.h"
#include "platform/text.h"

namespace ovd::devices {

ButtonMessages parseButtonFile(std::string_view content) {
    ButtonMessages messages;
    std::size_t index = 0;
    for (const std::string& line : platform::splitLines(content)) {
        if (index == kButtonMessages) break;
        const std::size_t first = line.find(',');
        const std::size_t second =
            first == std::string::npos ? std::string::npos : line.find(',', first + 1);
        messages.firstLabels[index] = line.substr(0, first);
        if (first != std::string::npos) {
            messages.secondLabels[index] = line.substr(
                first + 1, second == std::string::npos ? std::string::npos : second - first - 1);
        }
        if (second != std::string::npos) {
            messages.texts[index] = line.substr(second + 1, kButtonMessageLength);
        }
        ++index;
    }
    return messages;
}

ButtonMessages ReadButtonFile(const std::string& path) {
    const auto content = platform::readWholeFile(path);
    return content ? parseButtonFile(*content) : ButtonMessages{};
}

std::string buttonMessageLine(int button, const std::string& filename, const std::string& message) {
    const std::string stem = std::filesystem::path(filename).stem().string();
    return "BTN" + std::to_string(button) + "_" + stem + " " + message + "\r\n";
}

}  // namespace ovd::devices
