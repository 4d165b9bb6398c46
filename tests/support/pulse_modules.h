#pragma once
// Devices plugged in and taken away while a test runs: modules loaded into and
// unloaded from the private sound server (PULSE_SERVER points at it while a
// PulseDaemon runs) with pactl, as a desktop's sound settings would.

#include <cstdio>
#include <cstdlib>
#include <string>

namespace ovd::testing {

// The module's index, or -1 with what pactl said in `error`.
inline int loadPulseModule(const std::string& arguments, std::string* error = nullptr) {
    const std::string command = "pactl load-module " + arguments + " 2>&1";
    FILE* out = popen(command.c_str(), "r");
    if (out == nullptr) return -1;
    char line[256] = {};
    const bool read = std::fgets(line, sizeof line, out) != nullptr;
    const int status = pclose(out);
    if (!read || status != 0) {
        if (error != nullptr) *error = command + ": " + line;
        return -1;
    }
    return std::atoi(line);
}

inline bool unloadPulseModule(int index) {
    return std::system(
               ("pactl unload-module " + std::to_string(index) + " >/dev/null 2>&1").c_str()) == 0;
}

// A sine source the lists show under `label`: a microphone that can be plugged in.
inline std::string sineSourceArguments(const std::string& name, const std::string& label, int hz) {
    return "module-sine-source source_name=" + name + " frequency=" + std::to_string(hz) +
           " source_properties=device.description=" + label;
}

}  // namespace ovd::testing
