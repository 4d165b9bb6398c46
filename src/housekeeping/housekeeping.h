#pragma once
// The station's housekeeping: the weekly purge on the clock, the drive scan at
// start, and which of the windows that change them is open. The station owns one
// and tells it what it has in hand, so no clean ever deletes that.

#include <string>

#include "housekeeping/folder_clean.h"
#include "housekeeping/kept_files.h"
#include "housekeeping/open_windows.h"
#include "housekeeping/scheduled_deletion.h"
#include "platform/event_loop.h"
#include "settings/config_file.h"
#include "settings/event_log.h"

namespace ovd::housekeeping {

struct HousekeepingParts {
    platform::EventLoop& loop;
    settings::ConfigFile& config;
    settings::EventLog& log;
    std::string dataFolder;
    // The letter open, the work files of the editors, a file named to be opened.
    KeptPathsSource inHand;
};

class Housekeeping {
  public:
    explicit Housekeeping(HousekeepingParts parts);

    // The load, once the work files of a crashed run are recovered: with automatic
    // file deletion on, the clock check once and the drive scan.
    void runAtStart();
    // The clock check on when a day of the week is set.
    void startClock() { purge.turnOnWhenScheduled(); }

    // The drive scan of the folder FileScan.cfg names, by its number of days.
    CleanSummary runDriveScan();

    ScheduledDeletion purge;
    OpenWindows windows;
    [[nodiscard]] const std::string& dataFolder() const { return parts_.dataFolder; }
    [[nodiscard]] platform::EventLoop& loop() { return parts_.loop; }
    [[nodiscard]] settings::ConfigFile& config() { return parts_.config; }
    void trace(const std::string& text) { parts_.log.trace(text); }

  private:
    // What the station has in hand, and the folders of its work files.
    [[nodiscard]] KeptPaths keptNow() const;

    HousekeepingParts parts_;
};

}  // namespace ovd::housekeeping
