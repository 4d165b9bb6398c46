#pragma once
// Starting the station's companion programs: the folder they are installed in,
// and the two ways they are run (left running, or run to the end).

#include <optional>
#include <string>
#include <vector>

namespace ovd::platform {

// The folder of the running program, where its companions are installed.
std::string executableFolder();

// Starts the program and leaves it running; its process number, or nothing with
// the reason in error.
std::optional<int> startProgram(const std::string& path, const std::vector<std::string>& arguments,
                                std::string& error);

// Runs the program to its end and gives its exit status; nothing when it could not
// start or did not end within the time (it is then left to end on its own).
std::optional<int> runProgram(const std::string& path, const std::vector<std::string>& arguments,
                              int timeoutMilliseconds, std::string& error);

}  // namespace ovd::platform
