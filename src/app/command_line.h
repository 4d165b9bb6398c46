#pragma once
// The station's command line: options, and at most one file name to dictate into,
// with or without double quotes around it.

#include <string>
#include <vector>

namespace ovd::app {

struct StationOptions {
    bool showHelp = false;
    bool showVersion = false;
    bool headless = false;
    std::string dataFolder;      // empty: the default data folder
    std::string answersFile;     // headless answers to message boxes
    std::string audio = "auto";  // "auto", "pulse" or "virtual"
    std::string virtualInput;    // a WAV file for the virtual microphone
    int orderPort = 2013;        // where the peer's orders are heard
    // The decryptor without a window: the file, and its key by name or as text.
    std::string decryptFile;
    std::string keyName;
    std::string keyText;
    bool keyTextGiven = false;
    std::string outputFile;
    std::string fileName;  // the file named on the command line, quotes removed
    std::string error;     // set when the command line can't be used
};

StationOptions parseCommandLine(const std::vector<std::string>& arguments);
std::string usageText(const std::string& program);

}  // namespace ovd::app
