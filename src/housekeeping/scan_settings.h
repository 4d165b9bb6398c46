#pragma once
// FileScan.cfg in the data folder: the drive scan's own settings, one record of
// eight fields in the grammar of DigitalRecorder.cfg, written beside the file and
// moved over it so that a crash leaves the old record or the new one.

#include <optional>
#include <string>

#include "platform/result.h"
#include "settings/config_variant.h"

namespace ovd::housekeeping {

inline constexpr const char* kScanSettingsFileName = "FileScan.cfg";
inline constexpr std::size_t kScanSettingsFields = 8;

// The record, field by field in file order.
struct ScanSettings {
    std::string UserPath;
    settings::ConfigVariant DestPath;     // the folder the scan cleans
    settings::ConfigVariant FileScanDay;  // the weekly time: shown and stored only
    settings::ConfigVariant FileScanHour;
    settings::ConfigVariant FileScanMinute;
    settings::ConfigVariant FileScanAMPM;  // "AM" or "PM"
    settings::ConfigVariant FileScanFlag;  // spare: read and written back untouched
    settings::ConfigVariant DeleteDays;    // files dated on or before today less this go
};

// What a load found.
struct LoadedScanSettings {
    ScanSettings settings;
    bool fileFound = false;
    // Why the file could not be taken; its fields are then not used at all.
    std::string damage;
};

// fName: the record's path in the data folder.
[[nodiscard]] std::string scanSettingsPath(const std::string& dataFolder);
// The folder cleaned when the record names none.
[[nodiscard]] std::string defaultScanFolder(const std::string& dataFolder);

// Reads the record, then the two fill-ins: an empty FileScanAMPM becomes "PM" and
// an empty DestPath the default folder. A file of the wrong shape gives the
// defaults and says why in `damage`.
[[nodiscard]] LoadedScanSettings LoadScanSettings(const std::string& dataFolder);
// Writes the record; an empty FileScanAMPM is written as "PM".
platform::Result<void> SaveScanSettings(const std::string& dataFolder, ScanSettings settings);

// The record in a file's content; the reason it is not one, or nothing when it is.
[[nodiscard]] std::optional<std::string> readScanRecord(const std::string& content,
                                                        ScanSettings& out);
// The record as one line, CR LF included; an empty FileScanAMPM is written as "PM".
[[nodiscard]] std::string formatScanRecord(ScanSettings settings);

// The number of days to keep, when DeleteDays holds a whole number of 0 or more;
// nothing otherwise.
[[nodiscard]] std::optional<int> daysToKeep(const settings::ConfigVariant& DeleteDays);

}  // namespace ovd::housekeeping
