#include "dictation/hand_off.h"

#include <cstdio>

#include "platform/files.h"
#include "settings/record_grammar.h"

namespace ovd::dictation {

std::string handOffPath(const std::string& dataFolder) {
    return platform::joinPath(dataFolder, kHandOffFileName);
}

platform::Result<void> writeHandOff(const std::string& dataFolder, const HandOff& handOff) {
    deleteHandOff(dataFolder);
    // The line grammar of the settings file: the name quoted, the number plain.
    return platform::writeWholeFile(
        handOffPath(dataFolder), "\"" + handOff.NextString + "\"," + handOff.MyInstance + "\r\n");
}

std::optional<HandOff> readHandOff(const std::string& dataFolder) {
    const auto content = platform::readWholeFile(handOffPath(dataFolder));
    if (!content) return std::nullopt;
    const auto tokens = settings::tokenizeRecord(*content);
    if (tokens.empty() || tokens[0].text.empty()) return std::nullopt;
    HandOff handOff{tokens[0].text, tokens.size() > 1 ? tokens[1].text : std::string()};
    return handOff;
}

void deleteHandOff(const std::string& dataFolder) { std::remove(handOffPath(dataFolder).c_str()); }

std::string commandLineName(const std::string& text) {
    if (!text.empty() && text.back() == '"') {
        return text.size() >= 2 ? text.substr(1, text.size() - 2) : std::string();
    }
    return text;
}

}  // namespace ovd::dictation
