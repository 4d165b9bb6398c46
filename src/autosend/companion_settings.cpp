#include "autosend/companion_settings.h"

#include <cstdlib>

#include "platform/files.h"
#include "settings/config_file.h"
#include "settings/ini_store.h"
#include "settings/record_grammar.h"

namespace ovd::autosend {

settings::SettingsRecord readStationSettings(const std::string& dataFolder) {
    settings::SettingsRecord record;
    const auto content =
        platform::readWholeFile(platform::joinPath(dataFolder, settings::kConfigFileName));
    if (content) (void)settings::applyRecord(record, settings::tokenizeRecord(*content));
    return record;
}

std::string recordingsFolder(const settings::SettingsRecord& record,
                             const std::string& dataFolder) {
    const std::string folder =
        record.CaptureFilePath.isText() ? record.CaptureFilePath.toText() : std::string();
    if (folder.empty()) return platform::joinPath(dataFolder, "Recordings");
    if (folder.front() == '/') return folder;
    return platform::joinPath(dataFolder, folder);
}

std::chrono::seconds rescanInterval(const std::string& dataFolder) {
    const settings::IniStore store(platform::joinPath(dataFolder, kCompanionSettingsFile));
    const std::string text = store.ReadKey("AutoSend", "RescanSeconds");
    char* end = nullptr;
    const long seconds = std::strtol(text.c_str(), &end, 10);
    if (text.empty() || end == text.c_str() || seconds < 1) return kDefaultRescan;
    return std::chrono::seconds(seconds);
}

}  // namespace ovd::autosend
