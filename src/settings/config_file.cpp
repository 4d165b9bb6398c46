#include "settings/config_file.h"

#include "platform/files.h"
#include "settings/record_grammar.h"

namespace ovd::settings {

namespace {
constexpr const char* kRecordingsFolder = "Recordings";
constexpr const char* kRegularFace = "Regular";
}  // namespace

ConfigFile::ConfigFile(std::string dataFolder)
    : dataFolder_(std::move(dataFolder)), path_(platform::joinPath(dataFolder_, kConfigFileName)) {}

void ConfigFile::ReadConfig() {
    if (const auto content = platform::readWholeFile(path_)) {
        applyRecord(record, tokenizeRecord(*content));
    }
    if (record.ScreenSize.empty()) {
        record.ScreenSize = kRegularFace;
        WriteConfig();
    }
    if (record.CaptureFilePath.isBlank()) {
        record.CaptureFilePath = platform::joinPath(dataFolder_, kRecordingsFolder);
        WriteConfig();
    }
}

void ConfigFile::WriteConfig() {
    if (record.Port == 0) record.Port = 1;
    ++writeCount_;
    // A failed write is let be: the settings stay in force in memory.
    (void)platform::replaceFile(path_, formatRecord(record));
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
