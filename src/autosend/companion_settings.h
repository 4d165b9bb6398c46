#pragma once
// What the companion sender reads for itself from the station's data folder: the
// station's settings (read only, never written: the file is the station's), the
// staging folders below the recordings folder, and its own rescan interval.

#include <chrono>
#include <string>

#include "settings/settings_record.h"

namespace ovd::autosend {

inline constexpr const char* kFtpStagingFolder = "FTPTemp";
inline constexpr const char* kEmailStagingFolder = "EmailTemp";
// The companion's own settings file in the data folder: [AutoSend] RescanSeconds.
inline constexpr const char* kCompanionSettingsFile = "AutoSend.ini";
inline constexpr std::chrono::seconds kDefaultRescan{60};

// DigitalRecorder.cfg as it is now; a missing or short file leaves the defaults.
settings::SettingsRecord readStationSettings(const std::string& dataFolder);

// The folder the station records into (a relative setting lies below the data
// folder, an empty one is the data folder's Recordings, as the station has it).
std::string recordingsFolder(const settings::SettingsRecord& record, const std::string& dataFolder);

// How often the staging folders are looked through even when nothing arrives:
// that is when a file left by a failed send is tried again.
std::chrono::seconds rescanInterval(const std::string& dataFolder);

}  // namespace ovd::autosend
