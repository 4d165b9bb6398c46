#include "settings/config_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ctime>

#include "platform/files.h"

namespace ovd::settings {

namespace {
constexpr const char* kRecordingsFolder = "Recordings";
constexpr const char* kRegularFace = "Regular";

// The text beside the file, synced, then renamed over it: a full disk or a
// crash leaves the old record whole. The failure is the system's words for why.
platform::Result<void> writeBesideAndRename(const std::string& path, const std::string& text) {
    const std::string fresh = path + ".new";
    const int fd = ::open(fresh.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (fd < 0) return platform::failure(std::strerror(errno));
    platform::Result<void> written = platform::writeAll(fd, text.data(), text.size());
    if (written && ::fsync(fd) != 0) written = platform::failure(std::strerror(errno));
    if (::close(fd) != 0 && written) written = platform::failure(std::strerror(errno));
    if (written && std::rename(fresh.c_str(), path.c_str()) != 0)
        written = platform::failure(std::strerror(errno));
    if (!written) std::remove(fresh.c_str());
    return written;
}

std::string localStamp() {
    const std::time_t now = std::time(nullptr);
    std::tm parts{};
    localtime_r(&now, &parts);
    char buffer[32];
    const std::size_t length = std::strftime(buffer, sizeof buffer, "%Y%m%d-%H%M%S", &parts);
    return std::string(buffer, length);
}
}  // namespace

std::string damagedSettingsText(const std::string& path, const RecordDamage& damage,
                                const std::string& copy) {
    std::string text = "The settings file " + path + " was damaged";
    text += copy.empty() ? ", and no copy of it could be kept."
                         : "; a copy of it is kept as " + copy + ".";
    const std::size_t expected = settingsFields().size();
    if (damage.fieldsFound < expected) {
        text += " It held " + std::to_string(damage.fieldsFound) + " of its " +
                std::to_string(expected) + " settings: the settings after the " +
                std::to_string(damage.fieldsFound) + " that were there keep their first values.";
    } else if (damage.fieldsFound > expected) {
        text += " It held " + std::to_string(damage.fieldsFound) + " values where there are " +
                std::to_string(expected) + " settings.";
    }
    if (!damage.unreadFields.empty()) {
        text += " These settings could not be read and were reset:";
        for (std::size_t i = 0; i < damage.unreadFields.size(); ++i) {
            text += (i == 0 ? " " : ", ") + damage.unreadFields[i];
        }
        text += ".";
    }
    text += " Please check the settings before dictating.";
    return text;
}

ConfigFile::ConfigFile(std::string dataFolder)
    : dataFolder_(std::move(dataFolder)), path_(platform::joinPath(dataFolder_, kConfigFileName)) {}

void ConfigFile::ReadConfig() {
    if (unwritten_) {
        // The file is older than the settings in force: going back to it would hand
        // out a file number again.
        record = *unwritten_;
    } else if (const auto content = platform::readWholeFile(path_)) {
        RecordDamage found = applyRecord(record, tokenizeRecord(*content));
        if (found.any() && !damage_) {
            damage_ = std::move(found);
            keepDamagedCopy();
        }
    }
    resolveFolderSettings();
    if (record.ScreenSize.empty()) {
        record.ScreenSize = kRegularFace;
        WriteConfig();
    }
    if (record.CaptureFilePath.isBlank()) {
        record.CaptureFilePath = platform::joinPath(dataFolder_, kRecordingsFolder);
        WriteConfig();
    }
}

bool ConfigFile::WriteConfig() {
    if (record.Port == 0) record.Port = 1;
    ++writeCount_;
    const platform::Result<void> written = writeBesideAndRename(path_, formatRecord(record));
    if (written) {
        unwritten_.reset();
        return true;
    }
    // The settings stay in force in memory; the user hears of it once, not at every change.
    const bool first = !unwritten_;
    unwritten_ = record;
    if (first && onWriteFailed) onWriteFailed(written.error());
    return false;
}

void ConfigFile::keepDamagedCopy() {
    const std::string copy = path_ + ".damaged-" + localStamp();
    if (platform::copyFileOver(path_, copy).ok()) damagedCopy_ = copy;
}

void ConfigFile::resolveFolderSettings() {
    const auto resolved = [this](const std::string& folder) {
        return folder.empty() || folder.front() == '/' ? folder
                                                       : platform::joinPath(dataFolder_, folder);
    };
    if (record.CaptureFilePath.isText()) {
        const std::string folder = record.CaptureFilePath.toText();
        if (resolved(folder) != folder) record.CaptureFilePath = resolved(folder);
    }
    for (std::string* folder : {&record.SendToOne, &record.SendToTwo, &record.SendToThree}) {
        *folder = resolved(*folder);
    }
}

void ConfigFile::ResetRecorderState(const std::function<void()>& clearWorkingState) {
    WriteConfig();
    record.Channel.clear();
    record.Channel2.clear();
    record.FileBit.clear();
    record.FileBit2.clear();
    record.FormatType.clear();
    record.FormatType2.clear();
    record.Frequency.clear();
    record.Frequency2.clear();
    record.FileLabelActive = false;
    record.LastFileOpened.clear();
    record.LastFolderOpened.clear();
    record.LastPathFileOpened.clear();
    record.Last3SecsAR = false;
    record.sldrVolBalanceInp = 0;
    record.sldrVolBalanceOut = 0;
    record.chSelectInput = false;
    record.chSelectOutput = false;
    if (clearWorkingState) clearWorkingState();
    ReadConfig();
}

bool ConfigFile::startUp(platform::Prompts& prompts) {
    const auto size = platform::fileSize(path_);
    if (!size || *size == 0) {
        prompts.showMessage(kConfigMissingMessage, kProductTitle, platform::Severity::Critical);
        return false;
    }
    ReadConfig();
    if (damage_ && !damageTold_) {
        damageTold_ = true;
        prompts.showMessage(damagedSettingsText(path_, *damage_, damagedCopy_), kProductTitle,
                            platform::Severity::Warning);
    }
    if (!record.FirstRunDone) {
        record.FirstRunDone = true;
        WriteConfig();
    }
    if (!record.TCP) record.TCPButtonScreen = false;
    return true;
}

void ConfigFile::takeRecordingDevice(const std::string& index, const std::string& name) {
    if (!record.InputDeviceName.empty() && record.InputDeviceName != "0") return;
    record.kDeviceInput = index;
    record.InputDeviceName = name;
    WriteConfig();
}

RecoveryAtStart ConfigFile::recoveryAtStart(bool workFilesPresent) {
    if (!record.RecoveryModule || !workFilesPresent) return RecoveryAtStart::Nothing;
    if (record.gNormalShutDown) {
        // Cleared so that the same files are offered for recovery if this run crashes.
        record.gNormalShutDown = false;
        WriteConfig();
        return RecoveryAtStart::LetBeThisOnce;
    }
    return RecoveryAtStart::OpenRecovery;
}

void ConfigFile::takeWindowPosition(int left, int top) {
    if (!record.MainWindowLeft.isEmpty()) return;
    record.MainWindowLeft = left;
    record.MainWindowTop = top;
}

}  // namespace ovd::settings
