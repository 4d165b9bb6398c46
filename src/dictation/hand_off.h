#pragma once
// The hand-off between two station processes: a second one started with a file
// name writes the name (and its own process number) to ovtitemp.ini in the data
// folder and ends; the running station reads the record, deletes the file and
// dictates into that name once its own file is closed. One record at a time: a
// newer hand-off replaces one not yet taken.

#include <optional>
#include <string>

#include "platform/result.h"

namespace ovd::dictation {

inline constexpr const char* kHandOffFileName = "ovtitemp.ini";

struct HandOff {
    std::string NextString;  // the file name handed over
    std::string MyInstance;  // the process that handed it over
};

std::string handOffPath(const std::string& dataFolder);
// Replaces any older hand-off. False when the file can't be written.
platform::Result<void> writeHandOff(const std::string& dataFolder, const HandOff& handOff);
// Nothing when there is no hand-off (or it holds no name).
std::optional<HandOff> readHandOff(const std::string& dataFolder);
void deleteHandOff(const std::string& dataFolder);

// A name from a command line: with a double quote at its end, the first and last
// characters go; otherwise it is taken whole.
std::string commandLineName(const std::string& text);

}  // namespace ovd::dictation
