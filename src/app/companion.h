#pragma once
// The companion sender, orvane-autosend: it delivers what the station stages for
// e-mail and FTP while the station goes on dictating. The station starts it when
// automatic sending is on, and stops it where it must not run and at exit.

#include <string>

#include "settings/event_log.h"

namespace ovd::app {

class AutoSendCompanion {
public:
    static constexpr const char* kProgramName = "orvane-autosend";

    // binaryFolder: where the station's own program is installed.
    AutoSendCompanion(settings::EventLog& log, std::string binaryFolder, std::string dataFolder);

    [[nodiscard]] bool installed() const;
    [[nodiscard]] bool running() const;
    // Starts it unless one runs already; a missing program is logged, not shown.
    void start();
    // Asks a running companion to stop and waits a moment for it.
    void stop();

private:
    [[nodiscard]] std::string programPath() const;

    settings::EventLog& log_;
    std::string binaryFolder_;
    std::string dataFolder_;
};

}  // namespace ovd::app
