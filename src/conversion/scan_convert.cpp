// The recovery window's load, its lists and its buttons.

#include "conversion/scan_convert.h"

#include <filesystem>

#include "platform/files.h"

namespace ovd::conversion {

namespace {
// Started after the load so that the window is up before the first file is touched.
constexpr int kRecoveryDelayMs = 100;

}  // namespace

ScanConvert::ScanConvert(ScanConvertParts parts)
    : recoveryDelay(parts.loop, "Timer1"), parts_(parts), converter(parts.loop) {
    recoveryDelay.setOnTick([this] { recoveryDelayTick(); });
}

std::string ScanConvert::recordings() const {
    return parts_.config.record.CaptureFilePath.toText();
}

std::string ScanConvert::folderFor(FileBox box) const {
    switch (box) {
        case FileBox::Save:
            return platform::joinPath(recordings(), "Save");
        case FileBox::Temp:
            return platform::joinPath(recordings(), "Temp");
        case FileBox::Recordings:
            return recordings();
        case FileBox::Back:
            return platform::joinPath(recordings(), "BACK");
    }
    return recordings();
}

void ScanConvert::Form_Load(ScanMode mode) {
    // Each opening starts afresh: nothing of an earlier run shows as if it were this one's.
    const unsigned long revision = view.revision;
    view = ScanConvertView{};
    view.revision = revision;
    view.caption = mode == ScanMode::Recovery ? kRecoveryCaption : kByHandCaption;
    // Errors on making the folders are not shown: the lists then stay empty.
    for (FileBox box : {FileBox::Temp, FileBox::Back, FileBox::Recordings, FileBox::Save}) {
        (void)platform::createFolder(folderFor(box));
    }
    view.tempFolderText = folderFor(FileBox::Temp);
    view.recordingsFolderText = folderFor(FileBox::Recordings);
    view.backFolderText = folderFor(FileBox::Back);
    view.saveFolderText = folderFor(FileBox::Save);
    refreshLists();
    if (!parts_.config.record.gNormalShutDown) {
        view.restoreButtonVisible = false;
        recoveryDelay.setInterval(kRecoveryDelayMs);
        recoveryDelay.setEnabled(true);
    } else {
        view.restoreButtonVisible = true;
        recoveryDelay.setEnabled(false);
    }
    changed();
}

void ScanConvert::recoveryDelayTick() {
    recoveryDelay.setEnabled(false);
    SetConverterFormat();
    RecoverAll();
}

void ScanConvert::cancelClicked() {
    UserCanceled = true;
    LogEvent("Cancel");
}

void ScanConvert::restoreClicked() {
    if (view.busy) return;
    SetConverterFormat();
    RecoverAll();
}

void ScanConvert::exitClicked() {
    // Leaving stops a conversion under way; its half-made target is removed.
    UserCanceled = true;
    if (onClose) onClose();
}

void ScanConvert::fileBoxClick(FileBox box) {
    view.currentFileText = folderFor(box);
    changed();
}

void ScanConvert::tempFileDoubleClicked(const std::string& name) {
    const std::string path = platform::joinPath(folderFor(FileBox::Temp), name);
    const auto bytes = platform::fileSize(path);
    if (!bytes || *bytes >= kMinimumFileBytes) return;
    parts_.prompts.showMessage(kEmptyFileDeleted, settings::kProductTitle);
    std::error_code error;
    std::filesystem::remove(path, error);
    LogEvent("Deleted " + name);
    refreshLists();
}

void ScanConvert::ConvertChosenFile() {
    if (view.busy) return;
    platform::FileRequest request;
    request.title = "Convert a recording";
    request.initialFolder = recordings();
    request.filters = {
        {"Audio Files", {"*.wav", "*.mp3", "*.mp2", "*.wma", "*.vox", "*.raw", "*.tmp"}},
        {"All Files", {"*"}}};
    const auto chosen = parts_.prompts.chooseFile(request);
    if (!chosen || chosen->empty()) return;
    SetConverterFormat();
    view.busy = true;
    UserCanceled = false;
    const std::int64_t milliseconds = engine::fileLengthMilliseconds(*chosen);
    if (milliseconds < 0) {
        LogEvent("Error: " + *chosen + " is not a recording that can be read");
    } else {
        TempName = platform::joinPath(recordings(), platform::baseNameOf(*chosen) + "-" +
                                                        std::to_string(milliseconds / 1000));
        view.currentFileText = TempName;
        convertToFormatInForce(*chosen);
    }
    view.busy = false;
    refreshLists();
}

void ScanConvert::refreshLists() {
    view.saveFiles = platform::filesInFolder(folderFor(FileBox::Save));
    view.tempFiles = platform::filesInFolder(folderFor(FileBox::Temp));
    view.recordingFiles = platform::filesInFolder(folderFor(FileBox::Recordings));
    view.backFiles = platform::filesInFolder(folderFor(FileBox::Back));
    changed();
}

void ScanConvert::LogEvent(const std::string& text) {
    view.viewEvent.push_back({parts_.log.timeStamp().substr(11), text});
    // The headless station has no window: the log is where the operations show.
    parts_.log.trace("Scan/Convert: " + text);
    changed();
}

void ScanConvert::changed() {
    ++view.revision;
    if (onViewChanged) onViewChanged();
}

}  // namespace ovd::conversion
