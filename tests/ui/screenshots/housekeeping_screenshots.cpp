// Pictures of the scheduled deletion and drive scan windows for the README, on a
// real X display.
//
//   housekeeping_screenshots OUTPUT_FOLDER     (DISPLAY must name a running X server)

#include <QApplication>
#include <QPixmap>
#include <iostream>

#include "housekeeping/housekeeping.h"
#include "housekeeping/scan_settings.h"
#include "platform/files.h"
#include "screenshot_shots.h"
#include "settings/config_file.h"
#include "settings/event_log.h"
#include "support/scripted_prompts.h"
#include "support/temp_folder.h"
#include "support/virtual_event_loop.h"
#include "ui/drive_scan_window.h"
#include "ui/weekly_delete_window.h"

namespace {

using namespace ovd;

}  // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    const auto outputFolder =
        ovd::testing::screenshotFolder(argc, argv, "housekeeping_screenshots");
    if (!outputFolder) return 2;
    const std::string& output = *outputFolder;
    testing::TempFolder data;
    testing::ScriptedPrompts prompts;
    testing::VirtualEventLoop loop(testing::localTime(2026, 3, 2, 16, 45, 10));
    settings::ConfigFile config(data.path());
    settings::SettingsRecord& r = config.record;
    r.CaptureFilePath = "/home/ann/Dictation/Recordings";
    r.DeleteDay = 5;
    r.DeleteHour = 6;
    r.DeleteMinute = 30;
    r.DeleteAMPM = "PM";
    config.WriteConfig();
    settings::EventLog log(loop, data.path(), config.record);
    housekeeping::Housekeeping house({loop, config, log, data.path(), {}});
    house.purge.setPurgeDays(30);

    housekeeping::ScanSettings scan;
    scan.DestPath = "/home/ann/Dictation/Archive";
    scan.FileScanDay = "Saturday";
    scan.FileScanHour = 7;
    scan.FileScanMinute = 0;
    scan.FileScanAMPM = "AM";
    scan.DeleteDays = 90;
    if (!housekeeping::SaveScanSettings(data.path(), scan))
        std::cerr << "can't write FileScan.cfg\n";

    {
        ui::WeeklyDeleteWindow window(house);
        testing::saveScreenshot(window, output, "scheduled-deletion.png");
    }
    {
        ui::DriveScanWindow window(house, prompts);
        testing::saveScreenshot(window, output, "drive-scan-scheduler.png");
    }
    return 0;
}
