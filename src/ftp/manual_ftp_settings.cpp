#include "ftp/manual_ftp_settings.h"

#include <charconv>

#include "ftp/site_connection.h"
#include "platform/files.h"
#include "settings/ini_store.h"

namespace ovd::ftp {

namespace {

settings::IniStore storeIn(const std::string& dataFolder) {
    return settings::IniStore(platform::joinPath(dataFolder, kFtpSettingsFileName));
}

const char* flag(bool on) { return on ? "True" : "False"; }

}  // namespace

void ManualFtpSettings::applyTo(ConnectionSettings& settings) const {
    settings.passiveMode = ManPassive || !ManActive;
    settings.transferType = ManAscii && !ManBin ? TransferType::Ascii : TransferType::Binary;
}

ManualFtpSettings loadManualFtpSettings(const std::string& dataFolder) {
    const settings::IniStore store = storeIn(dataFolder);
    ManualFtpSettings loaded;
    if (const auto active = store.readValue(kFtpSettingsSection, "ManActive")) {
        loaded.ManActive = recordOptionOn(*active);
        loaded.ManPassive = !loaded.ManActive;
    }
    if (const auto passive = store.readValue(kFtpSettingsSection, "ManPassive")) {
        loaded.ManPassive = recordOptionOn(*passive);
        loaded.ManActive = !loaded.ManPassive;
    }
    if (const auto ascii = store.readValue(kFtpSettingsSection, "ManAscii")) {
        loaded.ManAscii = recordOptionOn(*ascii);
        loaded.ManBin = !loaded.ManAscii;
    }
    if (const auto binary = store.readValue(kFtpSettingsSection, "ManBin")) {
        loaded.ManBin = recordOptionOn(*binary);
        loaded.ManAscii = !loaded.ManBin;
    }
    const std::string timer = store.ReadKey(kFtpSettingsSection, "Timer");
    int minutes = 0;
    if (std::from_chars(timer.data(), timer.data() + timer.size(), minutes).ec == std::errc()) {
        loaded.Timer = minutes;
    }
    return loaded;
}

platform::Result<void> saveManualFtpSettings(const std::string& dataFolder,
                                             const ManualFtpSettings& settings) {
    const settings::IniStore store = storeIn(dataFolder);
    const std::pair<const char*, std::string> keys[] = {
        {"Timer", std::to_string(settings.Timer)}, {"ManActive", flag(settings.ManActive)},
        {"ManPassive", flag(settings.ManPassive)}, {"ManAscii", flag(settings.ManAscii)},
        {"ManBin", flag(settings.ManBin)},
    };
    for (const auto& [key, value] : keys) {
        if (auto written = store.WriteKey(kFtpSettingsSection, key, value); !written)
            return written;
    }
    return platform::Result<void>::success();
}

}  // namespace ovd::ftp
