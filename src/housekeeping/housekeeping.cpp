#include "housekeeping/housekeeping.h"

#include "housekeeping/scan_settings.h"

namespace ovd::housekeeping {

Housekeeping::Housekeeping(HousekeepingParts parts)
    : purge({parts.loop, parts.config, [this](const std::string& line) { trace(line); },
             [this] { return keptNow(); }}),
      parts_(std::move(parts)) {}

KeptPaths Housekeeping::keptNow() const {
    KeptPaths kept = parts_.inHand ? parts_.inHand() : KeptPaths{};
    for (std::string& folder : recoveryFolders(parts_.config.record.CaptureFilePath.toText()))
        kept.folders.push_back(std::move(folder));
    // The settings, the databases and the event log: a scan of a folder above them
    // must not leave a station that can't start.
    kept.folders.push_back(parts_.dataFolder);
    return kept;
}

void Housekeeping::runAtStart() {
    if (!parts_.config.record.AutoFileDeltion) return;
    purge.checkClock();
    runDriveScan();
}

CleanSummary Housekeeping::runDriveScan() {
    const LoadedScanSettings loaded = LoadScanSettings(parts_.dataFolder);
    if (!loaded.damage.empty()) {
        // A record that can't be read says nothing about what may go.
        trace("Drive Scan: " + scanSettingsPath(parts_.dataFolder) + " can't be read (" +
              loaded.damage + "); nothing deleted");
        return {};
    }
    const auto days = daysToKeep(loaded.settings.DeleteDays);
    if (!days) {
        // No number of days is no age at all: the scan must not take it as 0 and
        // empty the folder. 0 itself is the user's choice and is taken as given.
        trace("Drive Scan: no number of days set in " + scanSettingsPath(parts_.dataFolder) +
              "; nothing deleted");
        return {};
    }
    const std::string folder = loaded.settings.DestPath.toText();
    if (folder.empty() || folder.front() != '/') {
        trace("Drive Scan: the folder \"" + folder + "\" is no full path; nothing deleted");
        return {};
    }
    const Day lastDay = localDayOf(parts_.loop.now()) - std::chrono::days(*days);
    trace("Drive Scan: deleting files of " + folder + " dated on or before " + dateText(lastDay));
    const CleanSummary summary = ScanAndDelete(folder, lastDay, KeptFiles(keptNow()),
                                               [this](const std::string& line) { trace(line); });
    trace("Drive Scan: " + std::to_string(summary.deleted) + " files deleted");
    return summary;
}

}  // namespace ovd::housekeeping
