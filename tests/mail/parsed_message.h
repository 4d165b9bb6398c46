#pragma once
// A message file as a mail program reads it: the test support's Python script
// parses it with the `email` package and gives back what a reader sees.

#include <cstdio>
#include <map>
#include <string>

namespace ovd::mail::testing {

using ParsedMessage = std::map<std::string, std::string>;

inline std::string commandOutput(const std::string& command) {
    std::string out;
    std::FILE* pipe = ::popen(command.c_str(), "r");
    if (pipe == nullptr) return out;
    char buffer[4096];
    while (const std::size_t got = std::fread(buffer, 1, sizeof buffer, pipe)) {
        out.append(buffer, got);
    }
    ::pclose(pipe);
    return out;
}

inline ParsedMessage parseMessageFile(const std::string& path) {
    const std::string out = commandOutput(
        "/usr/bin/python3 '" OVD_TEST_SUPPORT_DIR "/mail_parse.py' '" + path + "' 2>&1");
    ParsedMessage parsed;
    std::size_t at = 0;
    while (at < out.size()) {
        const std::size_t end = out.find('\n', at);
        const std::string line = out.substr(at, end - at);
        const std::size_t equals = line.find('=');
        if (equals != std::string::npos) parsed[line.substr(0, equals)] = line.substr(equals + 1);
        if (end == std::string::npos) break;
        at = end + 1;
    }
    if (parsed.empty()) parsed["error"] = out;
    return parsed;
}

inline std::string sha256Of(const std::string& path) {
    const std::string out = commandOutput("sha256sum '" + path + "'");
    return out.substr(0, out.find(' '));
}

}  // namespace ovd::mail::testing
