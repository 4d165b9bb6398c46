// From the editor's work file to a finished file in the recordings folder, and
// the closing of a file: an almost empty take is an error, the save waits
// until the engine lets go of the file, and a disk without room is never
// written to blindly.

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "dictation/dictation.h"
#include "dictation/save_as_name.h"
#include "platform/files.h"
#include "platform/system_queries.h"
#include "platform/text.h"

namespace ovd::dictation {

std::string withExtensionOf(const std::string& chosen, const std::string& source) {
    const auto extensionOf = [](const std::string& path) -> std::string {
        const std::size_t nameStart = path.find_last_of('/') + 1;
        const std::size_t dot = path.find_last_of('.');
        if (dot == std::string::npos || dot < nameStart || dot == nameStart) return "";
        return path.substr(dot);
    };
    const std::string wanted = extensionOf(source);
    if (wanted.empty()) return chosen;
    // The copy holds the source's bytes, so it carries the source's extension: a
    // name typed without it, or with another one, gets it added.
    if (platform::toUpper(extensionOf(chosen)) == platform::toUpper(wanted)) return chosen;
    return chosen + wanted;
}

void Dictation::TempFileNameFileLength() {
    state.NewTempFile = AudioEditor1.TempFileName();
    if (state.NewTempFile.empty()) {
        state.NewTempFileLength.reset();
        return;
    }
    const auto bytes = platform::fileSize(state.NewTempFile);
    if (bytes) {
        state.NewTempFileLength = static_cast<std::int64_t>(*bytes);
    } else {
        state.NewTempFileLength.reset();
    }
    state.FileSaveError = false;
}

void Dictation::Manip_Files() {
    if (state.Filename.empty()) return;
    view.statusPanel2 = sizeText();
    showFileName();
    recent.AddToMRUX(state.Filename);
    view.Reopen = recent.DisplayMRU();
    if (state.WhichBut == "Close") timSave.setEnabled(false);
    changed();
}

void Dictation::SaveFile() {
    // Only every Stop with crash protection, or a save asked for by a close, an
    // end of letter or the save icon, comes through.
    if (!state.FileSaveAtStop && !state.SaveRequested) return;
    state.SaveRequested = false;
    const bool failedBefore = state.FileSaveError;
    const bool superThin = config_.record.ScreenSize == "SuperThin";

    view.busyPointer = true;
    trace("Getting Ready to Save File: " + state.Filename);
    state.FileChanged = false;
    state.FileSaveError = false;
    TempFileNameFileLength();
    trace("SaveFileProcedure-FileSaveError =: " + platform::boolText(state.FileSaveError));
    timSave.setEnabled(false);

    const auto saveFailed = [&](const std::string& line, const std::string& waitTag) {
        state.FileSaveError = true;
        state.FileChanged = false;
        trace(line);
        timSave.setEnabled(true);
        view.lblReady = kReadyAfterSave;
        view.caption = applicationTitle(config_.record.HandsFreeEdition) + " - " + kSaveErrorText;
        if (!superThin) view.lblReady = kSaveErrorText;
        notifyPeer("FileSaveErr_" + platform::withoutFolder(state.Filename), waitTag);
        view.transportLabelsVisible = true;
        view.busyPointer = false;
        changed();
    };

    if (!state.NewTempFileLength) {
        saveFailed(state.Filename + " file length is none - File Save ERROR", " -70");
        // Without a work file crash protection has nothing to protect this run.
        state.FileSaveAtStop = false;
        return;
    }
    trace("Save-NO ERROR(2) : ");
    if (*state.NewTempFileLength < kMinimumRecordedBytes) {
        saveFailed(state.Filename + "  File Length is :" + std::to_string(*state.NewTempFileLength) +
                       " and is < 30311 - File Save ERROR",
                   " -71");
        return;
    }

    view.lblReady = superThin ? "" : "BUSY Saving File";
    view.transportLabelsVisible = false;
    state.FileChanged = false;
    changed();
    if (!makeRoomToSave()) {
        // Nobody made room: the file is not written half way, and the take stays
        // whole in its work file under Temp, where a close leaves it too.
        view.Label40 = kTakeKeptInTemp;
        view.Label40Warning = true;
        saveFailed(
            state.Filename + " File Save ERROR: " + kTakeKeptInTemp + " " + temporaryFolder(),
            " -71");
        return;
    }
    takeWaitsInTemp_ = false;

    trace("Starting File Save : " + state.Filename);
    AudioEditor1.setComment("OVDESK");
    addPriorityMarker(state);
    // Only the log would know: the author is told once, while the take is still safe.
    const auto tellSaveFailed = [&](const std::string& error) {
        if (failedBefore) return;
        prompts_.showMessage(
            "The file " + state.Filename + " could not be saved: " + error +
                ". The recording is kept in the Temp folder and is recovered at the "
                "next start.",
            settings::kProductTitle, platform::Severity::Warning);
    };
    if (auto saved = AudioEditor1.SaveAs(state.Filename); !saved) {
        saveFailed(state.Filename + " File Save ERROR: " + saved.error(), " -71");
        tellSaveFailed(saved.error());
        return;
    }
    waitUntilFileIsFree();
    if (const std::string error = AudioEditor1.lastSaveError(); !error.empty()) {
        // The work file still holds the take: the next save tries again.
        saveFailed(state.Filename + " File Save ERROR: " + error, " -71");
        tellSaveFailed(error);
        return;
    }
    trace("Ending File Save : " + state.Filename);
    Manip_Files();
    trace(state.Filename + " File Save Successfull");
    const auto bytes = platform::fileSize(state.Filename).value_or(0);
    trace("The File Length for file " + state.Filename + " is " + std::to_string(bytes));
    state.SaveFileName = state.Filename;
    timSave.setEnabled(true);
    view.lblReady = kReadyAfterSave;
    view.transportLabelsVisible = true;
    view.busyPointer = false;
    changed();
}

void Dictation::waitUntilFileIsFree() {
    // The engine holds the file while it encodes; there is no limit, and the
    // log shows what is waited for.
    while (!platform::FileAvailable(state.Filename)) {
        // A save that failed leaves no file to wait for.
        if (!AudioEditor1.saving() && !platform::fileExists(state.Filename)) return;
        view.lblReady = "BUSY Saving File";
        changed();
        trace("Trying to File Save : " + state.Filename + " but the file is in use");
        loop_.wait(platform::Milliseconds(100));
    }
}

bool Dictation::makeRoomToSave() {
    const auto room = [this](std::int64_t times) {
        const auto free = static_cast<std::int64_t>(
            platform::freeDiskBytes(config_.record.CaptureFilePath.toText()).value_or(0));
        return free - times * static_cast<std::int64_t>(platform::folderBytes(temporaryFolder()));
    };
    const std::string title = applicationTitle(config_.record.HandsFreeEdition);
    std::int64_t left = room(2);
    while (left < 0) {
        // The station is ending: nobody will answer any more, and the take waits
        // in Temp rather than holding the end up.
        if (state.Imclosing) return giveUpSaveForRoom();
        const bool move = prompts_.askYesNo(kDiskSpaceQuestion, title, platform::Answer::No);
        if (!move) {
            trace("Disk Full Warning --- User Selected to save file in the default location .. "
                  "User Response: 7");
        } else {
            trace("Disk Full Warning --- User Selected to Change file location in order to have "
                  "enough disk space to continue working.. User Resonse: 6");
            const auto folder = prompts_.chooseFolder({"Choose a folder with room for the recordings",
                                                       config_.record.CaptureFilePath.toText()});
            if (folder && !folder->empty()) {
                config_.record.CaptureFilePath = *folder;
                state.Filename = platform::joinPath(*folder, state.Filename.substr(
                                                                  state.Filename.find_last_of('/') + 1));
            }
        }
        config_.WriteConfig();
        left = room(3);
        notifyPeer("DiskErr_" + platform::withoutFolder(state.Filename), " -72");
        // Asking again only helps when someone can answer otherwise; a fixed
        // answer would ask for ever, as fast as the machine can.
        if (left < 0 && !prompts_.someoneAnswers()) return giveUpSaveForRoom();
    }
    return true;
}

bool Dictation::giveUpSaveForRoom() {
    takeWaitsInTemp_ = true;
    trace(state.Filename + " " + kTakeKeptInTemp + " " + temporaryFolder());
    return false;
}

void Dictation::SaveFileAs() {
    state.SaveOldFileName = state.Filename;
    timSave.setEnabled(false);
    timCurPos.setEnabled(false);
    CaseStop();
    if (!state.FileSaveAtStop && state.FileChanged) {
        state.SaveRequested = true;
        SaveFile();
    }
    auto chosen = ChooseFileName(2);
    if (!chosen) {
        state.UserSelectedNo = false;
        state.Filename = state.SaveOldFileName;
        return;
    }
    *chosen = withExtensionOf(*chosen, state.SaveOldFileName);
    // Copied beside the new name and moved onto it once complete, as every save
    // is written: a crash leaves no half file under the name the author chose.
    const std::string partial = *chosen + ".partial";
    std::string reason;
    bool copied = platform::copyFileOver(state.SaveOldFileName, partial, &reason);
    if (copied && std::rename(partial.c_str(), chosen->c_str()) != 0) {
        copied = false;
        reason = std::strerror(errno);
    }
    if (!copied) {
        std::remove(partial.c_str());
        trace("Save As copy to " + *chosen + " failed: " + reason);
    }
    openRecentFile(*chosen);
    CaseEnd();
    view.lblBusyVisible = false;
    changed();
}

void Dictation::OpenFile() {
    state.JustOpened = true;
    if (!state.FromCurrentList) state.Filename = ChooseFileName(1).value_or("");
    if (state.Filename.empty()) {
        state.UserSelectedNo = false;
        ResetRecorderState();
        setFileLabels(kReadyText);
        return;
    }
    const auto bytes = platform::fileSize(state.Filename);
    if (!bytes) {
        state.FileOpenError = true;
        prompts_.showMessage("File does not exist. Please try again!", settings::kProductTitle);
        return;
    }
    if (*bytes < static_cast<std::uintmax_t>(kMinimumOpenBytes)) {
        prompts_.showMessage("It appears because of the file size, that this file has not been "
                             "recorded on.  File will not be opened.",
                             settings::kProductTitle);
        state.Filename.clear();
        return;
    }
    settings::SettingsRecord& record = config_.record;
    record.LastFolderOpened = platform::folderOf(state.Filename);
    record.LastFileOpened = state.Filename.substr(state.Filename.find_last_of('/') + 1);
    record.LastPathFileOpened = state.Filename;
    config_.WriteConfig();

    AudioEditor1.setTempFileName(temporaryFolder());
    if (auto opened = AudioEditor1.Open(state.Filename); !opened) {
        state.FileOpenError = true;
        prompts_.showMessage("The file could not be opened: " + opened.error(), settings::kProductTitle);
        return;
    }
    // Later saves keep the file's own format, at its own rate and channels.
    engine::TargetFormat target = engine::FigureOutFileFormats(chosenFormatGroup(record)).target;
    const auto dot = state.Filename.find_last_of('.');
    if (dot != std::string::npos) {
        std::string extension = state.Filename.substr(dot + 1);
        for (char& c : extension) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
        if (const auto word = engine::parseFormatWord(extension)) target.word = *word;
    }
    target.sampleRate = AudioEditor1.SamplesPerSecond();
    target.channels = AudioEditor1.Channels();
    AudioEditor1.chooseFormat(target);
    state.CurrentFormatType = engine::formatWordText(target.word);

    state.iTotalSecFile = secondsOf(AudioEditor1.Length());
    state.flgfileOpen1 = true;
    view.statusPanel2 = sizeText();
    showFileName();
    changed();
}

void Dictation::CaseClose() {
    trace("File Closed: " + state.Filename);
    view.audioFrameEnabled = true;
    view.frameSpeakerEnabled = true;
    if (!state.Filename.empty()) {
        if (!state.flgfileOpen1) {
            keepUnsavedTake();
            ResetRecorderState();
            state.SaveNCTTempFileName = AudioEditor1.TempFileName();
            AudioEditor1.Close();
            AudioEditor21.Close();
            state.clearSwitchPositions();
        }
        if (!state.FileSaveAtStop && state.FileChanged) {
            state.SaveRequested = true;
            SaveFile();
        }
        if (state.FileChanged &&
            prompts_.askYesNo(kSaveQuestion, settings::kProductTitle, platform::Answer::No)) {
            SaveFile();
        }
    } else {
        state.FileChanged = false;
    }
    keepUnsavedTake();
    state.PRERECORDED = false;
    state.clearSwitchPositions();
    view.mnuScanConvertEnabled = true;
    ResetRecorderState();
    state.SaveNCTTempFileName = AudioEditor1.TempFileName();
    AudioEditor1.Close();
    AudioEditor21.Close();
    view.audioFrameVisible = true;
    state.FileChanged = false;
    state.flgPlay = false;
    state.flgfileOpen1 = false;
    state.flgfileOpen2 = false;
    setFileLabels("");
    view.statusPanel2.clear();
    state.Filename.clear();
    state.WhichBut = "Close";
    state.CommandFileName.clear();
    state.NextString.clear();
    view.Label43.clear();
    for (std::string& workFile : state.LastThreeNCTTmps) {
        if (!workFile.empty() && workFile != keptWorkFile_ && platform::fileExists(workFile)) {
            std::remove(workFile.c_str());
        }
        workFile.clear();
    }
    keptWorkFile_.clear();
    normalise(state);
    SetParam(state.WhichBut);
    view.transportLabelsVisible = false;
    applyEOLRule();
    setRecordButtons(false);
    view.ctSlide1Enabled = false;
    state.RecordedOnce = false;
    view.cmdEOL = false;
    changed();
}

void Dictation::keepUnsavedTake() {
    // Kept once per close: the editor has let go of its work file after the first time.
    if (!keptWorkFile_.empty()) return;
    if (!state.FileSaveError && !takeWaitsInTemp_) return;
    takeWaitsInTemp_ = false;
    TempFileNameFileLength();
    state.FileSaveError = true;
    if (!state.NewTempFileLength || *state.NewTempFileLength < kMinimumRecordedBytes) return;
    // A take that could not be saved stays where the recovery finds it at the next start.
    keptWorkFile_ = state.NewTempFile;
    trace("The take of " + state.Filename + " was not saved; it stays in " + keptWorkFile_);
    AudioEditor1.CloseKeepingWorkFile();
}

void Dictation::closeFile() {
    closeByUserOrPeer(state.TCPClose ? " Closing because TCP sent Msg" : " User Hit Icon to Close File",
                      " -63");
}

void Dictation::closeFromMenu() { closeByUserOrPeer(" User selected File Menu Close", " -65"); }

void Dictation::closeByUserOrPeer(const std::string& logLine, const std::string& waitTag) {
    if (state.Filename.empty()) {
        ResetRecorderState();
        return;
    }
    trace(logLine);
    // The peer hears which file the author closed; a close it ordered itself is not told back.
    if (!state.TCPClose) notifyPeer("UserClose_" + platform::withoutFolder(state.Filename), waitTag);
    TempFileNameFileLength();
    if (state.NewTempFileLength && *state.NewTempFileLength < kMinimumRecordedBytes &&
        !state.RecordedOnce) {
        // Nothing was said worth keeping: the file goes and its number comes back.
        state.FileSaveError = true;
        trace("File Length to be killed is  " + std::to_string(*state.NewTempFileLength));
        state.FileChanged = false;
        const std::string killed = state.Filename;
        CaseClose();
        settings::ConfigVariant& number = config_.record.FileNameIncrementStartingNum;
        number = number.toNumber().value_or(0.0) - 1.0;
        config_.WriteConfig();
        std::remove(killed.c_str());
        state.FileKilled = true;
        trace(" FileKilled = " + platform::boolText(state.FileKilled));
        trace(" Procedure - Closed Procedure - Image10_Click");
        state.clearSwitchPositions();
        return;
    }
    config_.WriteConfig();
    if (state.OverWriteFile) OverWriteFileOK("Image10_Click");
    if (state.DoingAppending) endAppend();
    if (state.DoingInsertUpdate) endInsert();
    CaseStop();
    CaseClose();
    view.lblBusyVisible = false;
    ResetRecorderState();
}

}  // namespace ovd::dictation

namespace ovd::dictation {

// The short close some older routes still take: no save of its own unless the
// author says so, and nothing given back.
void Dictation::CLOSEME() {
    if (!state.flgfileOpen1) return;
    if (state.FileChanged &&
        prompts_.askYesNo(kSaveQuestion, settings::kProductTitle, platform::Answer::No)) {
        state.SaveRequested = true;
        SaveFile();
    }
    state.flgPlay = false;
    state.flgfileOpen1 = false;
    state.Filename.clear();
    state.WhichBut = "Close";
    AudioEditor1.Close();
    changed();
}

}  // namespace ovd::dictation
