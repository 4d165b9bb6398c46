#include "app/command_line.h"

#include <cstdlib>
#include <filesystem>

#include "dictation/hand_off.h"

namespace ovd::app {

StationOptions parseCommandLine(const std::vector<std::string>& arguments) {
    StationOptions options;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& argument = arguments[i];
        const auto takeValue = [&](std::string& into) {
            if (i + 1 >= arguments.size()) {
                options.error = argument + " needs a value";
                return;
            }
            into = arguments[++i];
        };
        if (argument == "--help" || argument == "-h") {
            options.showHelp = true;
        } else if (argument == "--version") {
            options.showVersion = true;
        } else if (argument == "--headless") {
            options.headless = true;
        } else if (argument == "--data-folder") {
            takeValue(options.dataFolder);
        } else if (argument == "--answers") {
            takeValue(options.answersFile);
        } else if (argument == "--audio") {
            takeValue(options.audio);
            if (options.audio != "auto" && options.audio != "pulse" && options.audio != "virtual") {
                options.error = "--audio takes auto, pulse or virtual";
            }
        } else if (argument == "--virtual-input") {
            takeValue(options.virtualInput);
        } else if (argument == "--order-port") {
            std::string port;
            takeValue(port);
            const int number = std::atoi(port.c_str());
            if (options.error.empty() &&
                (number < 1 || number > 65535 || std::to_string(number) != port)) {
                options.error = "--order-port takes a port number from 1 to 65535";
            }
            options.orderPort = number;
        } else if (argument == "--decrypt") {
            takeValue(options.decryptFile);
        } else if (argument == "--key-name") {
            takeValue(options.keyName);
        } else if (argument == "--key-text") {
            takeValue(options.keyText);
            options.keyTextGiven = true;
        } else if (argument == "--output") {
            takeValue(options.outputFile);
        } else if (argument.rfind("--", 0) == 0) {
            options.error = "unknown option " + argument;
        } else if (options.fileName.empty()) {
            options.fileName = dictation::commandLineName(argument);
        } else {
            options.error = "only one file name can be given";
        }
        if (!options.error.empty()) break;
    }
    const bool keyGiven = !options.keyName.empty() || options.keyTextGiven;
    if (options.error.empty() && options.decryptFile.empty() &&
        (keyGiven || !options.outputFile.empty())) {
        options.error = "--key-name, --key-text and --output go with --decrypt";
    }
    // Folder settings are placed below the data folder: a relative one would
    // move with the current directory, and the next start would nest it again.
    if (!options.dataFolder.empty()) {
        std::error_code error;
        const auto absolute = std::filesystem::absolute(options.dataFolder, error);
        if (!error) options.dataFolder = absolute.lexically_normal().string();
    }
    return options;
}

std::string usageText(const std::string& program) {
    return "Usage: " + program +
           " [options] [file]\n"
           "Orvane Voice Desk: a hands-free digital dictation station.\n\n"
           "  --data-folder DIR  settings, databases and event logs (default\n"
           "                     $XDG_DATA_HOME/orvane-voice-desk)\n"
           "  --headless         run without a window; message boxes take their\n"
           "                     default button and are written to the event log\n"
           "  --answers FILE     headless answers, one \"text fragment => answer\" a line\n"
           "  --audio WHICH      auto (the sound server when one answers, else virtual),\n"
           "                     pulse, or virtual (a tone or a file in, nothing out)\n"
           "  --virtual-input F  a WAV file the virtual microphone plays in a loop\n"
           "  --order-port PORT  where the peer's orders are heard when the TCP link is\n"
           "                     on (default 2013), for a second station on one machine\n"
           "  --decrypt FILE     decrypt a received .enc file with no window, with\n"
           "    --key-name NAME  the key of that name in the decryption keys, or\n"
           "    --key-text TEXT  the key text itself; the result goes beside the file\n"
           "    --output FILE    (or here); exit status 0 decrypted, 1 not, 2 misused\n"
           "  --version          print the version and stop\n"
           "  --help             print this text and stop\n"
           "  file               a recording to dictate into\n";
}

}  // namespace ovd::app
