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
    state_.NewTempFile = AudioEditor1.TempFileName();
    if (state_.NewTempFile.empty()) {
        state_.NewTempFileLength.reset();
        return;
    }
    const auto bytes = platform::fileSize(state_.NewTempFile);
    if (bytes) {
        state_.NewTempFileLength = static_cast<std::int64_t>(*bytes);
    } else {
        state_.NewTempFileLength.reset();
    }
    state_.FileSaveError = false;
}

void Dictation::Manip_Files() {
    if (state_.Filename.empty()) return;
    screen().statusPanel2 = sizeText();
    showFileName();
    recent.AddToMRUX(state_.Filename);
    screen().Reopen = recent.DisplayMRU();
    if (state_.WhichBut == "Close") timSave.setEnabled(false);
    changed();
}

void Dictation::SaveFile() {
    // Only every Stop with crash protection, or a save asked for by a close, an
    // end of letter or the save icon, comes through.
    if (!state_.FileSaveAtStop && !state_.SaveRequested) return;
    state_.SaveRequested = false;
    const bool failedBefore = state_.FileSaveError;
    const bool superThin = config_.record.ScreenSize == "SuperThin";

    screen().busyPointer = true;
    trace("Getting Ready to Save File: " + state_.Filename);
    state_.FileChanged = false;
    state_.FileSaveError = false;
    TempFileNameFileLength();
    trace("SaveFileProcedure-FileSaveError =: " + platform::boolText(state_.FileSaveError));
    timSave.setEnabled(false);

    const auto saveFailed = [&](const std::string& line, const std::string& waitTag) {
        state_.FileSaveError = true;
        state_.FileChanged = false;
        trace(line);
        timSave.setEnabled(true);
        screen().lblReady = kReadyAfterSave;
        screen().caption =
            applicationTitle(config_.record.HandsFreeEdition) + " - " + kSaveErrorText;
        if (!superThin) screen().lblReady = kSaveErrorText;
        notifyPeer("FileSaveErr_" + platform::withoutFolder(state_.Filename), waitTag);
        screen().transportLabelsVisible = true;
        screen().busyPointer = false;
        changed();
    };

    if (!state_.NewTempFileLength) {
        saveFailed(state_.Filename + " file length is none - File Save ERROR", " -70");
        // Without a work file crash protection has nothing to protect this run.
        state_.FileSaveAtStop = false;
        return;
    }
    trace("Save-NO ERROR(2) : ");
    if (*state_.NewTempFileLength < kMinimumRecordedBytes) {
        saveFailed(state_.Filename +
                       "  File Length is :" + std::to_string(*state_.NewTempFileLength) +
                       " and is < 30311 - File Save ERROR",
                   " -71");
        return;
    }

    screen().lblReady = superThin ? "" : "BUSY Saving File";
    screen().transportLabelsVisible = false;
    state_.FileChanged = false;
    changed();
    if (!makeRoomToSave()) {
        // Nobody made room: the file is not written half way, and the take stays
        // whole in its work file under Temp, where a close leaves it too.
        screen().statusLine = kTakeKeptInTemp;
        screen().statusLineWarning = true;
        saveFailed(
            state_.Filename + " File Save ERROR: " + kTakeKeptInTemp + " " + temporaryFolder(),
            " -71");
        return;
    }
    takeWaitsInTemp_ = false;

    trace("Starting File Save : " + state_.Filename);
    AudioEditor1.setComment("OVDESK");
    addPriorityMarker(state_);
    // Only the log would know: the author is told once, while the take is still safe.
    const auto tellSaveFailed = [&](const std::string& error) {
        if (failedBefore) return;
        prompts_.showMessage(
            "The file " + state_.Filename + " could not be saved: " + error +
                ". The recording is kept in the Temp folder and is recovered at the "
                "next start.",
            settings::kProductTitle, platform::Severity::Warning);
    };
    const auto saved = AudioEditor1.SaveAs(state_.Filename);
    if (!saved) {
        saveFailed(state_.Filename + " File Save ERROR: " + saved.error(), " -71");
        tellSaveFailed(saved.error());
        return;
    }
    waitUntilFileIsFree();
    if (const platform::Result<void>& written = saved->get(); !written) {
        // The work file still holds the take: the next save tries again.
        saveFailed(state_.Filename + " File Save ERROR: " + written.error(), " -71");
        tellSaveFailed(written.error());
        return;
    }
    trace("Ending File Save : " + state_.Filename);
    Manip_Files();
    trace(state_.Filename + " File Save Successfull");
    const auto bytes = platform::fileSize(state_.Filename).valueOr(0);
    trace("The File Length for file " + state_.Filename + " is " + std::to_string(bytes));
    state_.SaveFileName = state_.Filename;
    timSave.setEnabled(true);
    screen().lblReady = kReadyAfterSave;
    screen().transportLabelsVisible = true;
    screen().busyPointer = false;
    changed();
}

void Dictation::waitUntilFileIsFree() {
    // The engine holds the file while it encodes; there is no limit, and the
    // log shows what is waited for.
    while (!platform::FileAvailable(state_.Filename)) {
        // A save that failed leaves no file to wait for.
        if (!AudioEditor1.saving() && !platform::fileExists(state_.Filename)) return;
        screen().lblReady = "BUSY Saving File";
        changed();
        trace("Trying to File Save : " + state_.Filename + " but the file is in use");
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
        if (state_.Imclosing) return giveUpSaveForRoom();
        const bool move = prompts_.askYesNo(kDiskSpaceQuestion, title, platform::Answer::No);
        if (!move) {
            trace(
                "Disk Full Warning --- User Selected to save file in the default location .. "
                "User Response: 7");
        } else {
            trace(
                "Disk Full Warning --- User Selected to Change file location in order to have "
                "enough disk space to continue working.. User Resonse: 6");
            const auto folder =
                prompts_.chooseFolder({"Choose a folder with room for the recordings",
                                       config_.record.CaptureFilePath.toText()});
            if (folder && !folder->empty()) {
                config_.record.CaptureFilePath = *folder;
                state_.Filename = platform::joinPath(
                    *folder, state_.Filename.substr(state_.Filename.find_last_of('/') + 1));
            }
        }
        config_.WriteConfig();
        left = room(3);
        notifyPeer("DiskErr_" + platform::withoutFolder(state_.Filename), " -72");
        // Asking again only helps when someone can answer otherwise; a fixed
        // answer would ask for ever, as fast as the machine can.
        if (left < 0 && !prompts_.someoneAnswers()) return giveUpSaveForRoom();
    }
    return true;
}

bool Dictation::giveUpSaveForRoom() {
    takeWaitsInTemp_ = true;
    trace(state_.Filename + " " + kTakeKeptInTemp + " " + temporaryFolder());
    return false;
}

void Dictation::SaveFileAs() {
    state_.SaveOldFileName = state_.Filename;
    timSave.setEnabled(false);
    timCurPos.setEnabled(false);
    CaseStop();
    if (!state_.FileSaveAtStop && state_.FileChanged) {
        state_.SaveRequested = true;
        SaveFile();
    }
    auto chosen = ChooseFileName(2);
    if (!chosen) {
        state_.UserSelectedNo = false;
        state_.Filename = state_.SaveOldFileName;
        return;
    }
    *chosen = withExtensionOf(*chosen, state_.SaveOldFileName);
    // Copied beside the new name and moved onto it once complete, as every save
    // is written: a crash leaves no half file under the name the author chose.
    const std::string partial = *chosen + ".partial";
    const platform::Result<void> copy = platform::copyFileOver(state_.SaveOldFileName, partial);
    bool copied = copy.ok();
    std::string reason = copy.error();
    if (copied && std::rename(partial.c_str(), chosen->c_str()) != 0) {
        copied = false;
        reason = std::strerror(errno);
    }
    if (!copied) {
        std::remove(partial.c_str());
        trace("Save As copy to " + *chosen + " failed: " + reason);
    } else if (auto details = engine::copyDetailsFile(state_.SaveOldFileName, *chosen); !details) {
        trace("Letter details not copied to " + *chosen + ": " + details.error());
    }
    openRecentFile(*chosen);
    CaseEnd();
    screen().lblBusyVisible = false;
    changed();
}

void Dictation::OpenFile() {
    state_.JustOpened = true;
    if (!state_.FromCurrentList) state_.Filename = ChooseFileName(1).value_or("");
    if (state_.Filename.empty()) {
        state_.UserSelectedNo = false;
        ResetRecorderState();
        setFileLabels(kReadyText);
        return;
    }
    const auto bytes = platform::fileSize(state_.Filename);
    if (!bytes) {
        state_.FileOpenError = true;
        prompts_.showMessage("File does not exist. Please try again!", settings::kProductTitle);
        return;
    }
    if (*bytes < static_cast<std::uintmax_t>(kMinimumOpenBytes)) {
        prompts_.showMessage(
            "It appears because of the file size, that this file has not been "
            "recorded on.  File will not be opened.",
            settings::kProductTitle);
        state_.Filename.clear();
        return;
    }
    settings::SettingsRecord& record = config_.record;
    record.LastFolderOpened = platform::folderOf(state_.Filename);
    record.LastFileOpened = state_.Filename.substr(state_.Filename.find_last_of('/') + 1);
    record.LastPathFileOpened = state_.Filename;
    config_.WriteConfig();

    AudioEditor1.setTempFileName(temporaryFolder());
    if (auto opened = AudioEditor1.Open(state_.Filename); !opened) {
        state_.FileOpenError = true;
        prompts_.showMessage("The file could not be opened: " + opened.error(),
                             settings::kProductTitle);
        return;
    }
    // Later saves keep the file's own format, at its own rate and channels.
    engine::TargetFormat target =
        engine::FigureOutFileFormats(chosenFormatGroup(record),
                                     conversion::rawLayoutInForce(dataFolder_),
                                     conversion::mp3EncodingInForce(dataFolder_))
            .target;
    const auto dot = state_.Filename.find_last_of('.');
    if (dot != std::string::npos) {
        std::string extension = state_.Filename.substr(dot + 1);
        for (char& c : extension)
            c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
        if (const auto word = engine::parseFormatWord(extension)) target.word = *word;
    }
    target.sampleRate = AudioEditor1.SamplesPerSecond();
    target.channels = AudioEditor1.Channels();
    AudioEditor1.chooseFormat(target);
    state_.CurrentFormatType = engine::formatWordText(target.word);

    state_.iTotalSecFile = secondsOf(AudioEditor1.Length());
    state_.flgfileOpen1 = true;
    screen().statusPanel2 = sizeText();
    showFileName();
    changed();
}

void Dictation::CaseClose() {
    trace("File Closed: " + state_.Filename);
    screen().audioFrameEnabled = true;
    screen().frameSpeakerEnabled = true;
    if (!state_.Filename.empty()) {
        if (!state_.flgfileOpen1) {
            keepUnsavedTake();
            ResetRecorderState();
            state_.SaveNCTTempFileName = AudioEditor1.TempFileName();
            AudioEditor1.Close();
            AudioEditor21.Close();
            state_.clearSwitchPositions();
        }
        if (!state_.FileSaveAtStop && state_.FileChanged) {
            state_.SaveRequested = true;
            SaveFile();
        }
        if (state_.FileChanged &&
            prompts_.askYesNo(kSaveQuestion, settings::kProductTitle, platform::Answer::No)) {
            SaveFile();
        }
    } else {
        state_.FileChanged = false;
    }
    keepUnsavedTake();
    state_.PRERECORDED = false;
    state_.clearSwitchPositions();
    screen().mnuScanConvertEnabled = true;
    ResetRecorderState();
    state_.SaveNCTTempFileName = AudioEditor1.TempFileName();
    AudioEditor1.Close();
    AudioEditor21.Close();
    screen().audioFrameVisible = true;
    state_.FileChanged = false;
    state_.flgPlay = false;
    state_.flgfileOpen1 = false;
    state_.flgfileOpen2 = false;
    setFileLabels("");
    screen().statusPanel2.clear();
    state_.Filename.clear();
    state_.WhichBut = "Close";
    state_.CommandFileName.clear();
    state_.NextString.clear();
    screen().fileSizeText.clear();
    for (std::string& workFile : state_.LastThreeNCTTmps) {
        if (!workFile.empty() && workFile != keptWorkFile_ && platform::fileExists(workFile)) {
            std::remove(workFile.c_str());
        }
        workFile.clear();
    }
    keptWorkFile_.clear();
    normalise(state_);
    SetParam(state_.WhichBut);
    screen().transportLabelsVisible = false;
    applyEOLRule();
    setRecordButtons(false);
    screen().positionSliderEnabled = false;
    state_.RecordedOnce = false;
    screen().endOfLetterEnabled = false;
    changed();
}

void Dictation::keepUnsavedTake() {
    // Kept once per close: the editor has let go of its work file after the first time.
    if (!keptWorkFile_.empty()) return;
    if (!state_.FileSaveError && !takeWaitsInTemp_) return;
    takeWaitsInTemp_ = false;
    TempFileNameFileLength();
    state_.FileSaveError = true;
    if (!state_.NewTempFileLength || *state_.NewTempFileLength < kMinimumRecordedBytes) return;
    // A take that could not be saved stays where the recovery finds it at the next start.
    keptWorkFile_ = state_.NewTempFile;
    trace("The take of " + state_.Filename + " was not saved; it stays in " + keptWorkFile_);
    AudioEditor1.CloseKeepingWorkFile();
}

void Dictation::closeFile() {
    closeByUserOrPeer(
        state_.TCPClose ? " Closing because TCP sent Msg" : " User Hit Icon to Close File", " -63");
}

void Dictation::closeFromMenu() { closeByUserOrPeer(" User selected File Menu Close", " -65"); }

void Dictation::closeByUserOrPeer(const std::string& logLine, const std::string& waitTag) {
    if (state_.Filename.empty()) {
        ResetRecorderState();
        return;
    }
    trace(logLine);
    // The peer hears which file the author closed; a close it ordered itself is not told back.
    if (!state_.TCPClose)
        notifyPeer("UserClose_" + platform::withoutFolder(state_.Filename), waitTag);
    TempFileNameFileLength();
    if (state_.NewTempFileLength && *state_.NewTempFileLength < kMinimumRecordedBytes &&
        !state_.RecordedOnce) {
        // Nothing was said worth keeping: the file goes and its number comes back.
        state_.FileSaveError = true;
        trace("File Length to be killed is  " + std::to_string(*state_.NewTempFileLength));
        state_.FileChanged = false;
        const std::string killed = state_.Filename;
        CaseClose();
        settings::ConfigVariant& number = config_.record.FileNameIncrementStartingNum;
        number = number.toNumber().value_or(0.0) - 1.0;
        config_.WriteConfig();
        std::remove(killed.c_str());
        state_.FileKilled = true;
        trace(" FileKilled = " + platform::boolText(state_.FileKilled));
        trace(" Procedure - Closed Procedure - Image10_Click");
        state_.clearSwitchPositions();
        return;
    }
    config_.WriteConfig();
    if (state_.OverWriteFile) OverWriteFileOK("Image10_Click");
    if (state_.DoingAppending) endAppend();
    if (state_.DoingInsertUpdate) endInsert();
    CaseStop();
    CaseClose();
    screen().lblBusyVisible = false;
    ResetRecorderState();
}

}  // namespace ovd::dictation

namespace ovd::dictation {

// The short close some older routes still take: no save of its own unless the
// author says so, and nothing given back.
void Dictation::CLOSEME() {
    if (!state_.flgfileOpen1) return;
    if (state_.FileChanged &&
        prompts_.askYesNo(kSaveQuestion, settings::kProductTitle, platform::Answer::No)) {
        state_.SaveRequested = true;
        SaveFile();
    }
    state_.flgPlay = false;
    state_.flgfileOpen1 = false;
    state_.Filename.clear();
    state_.WhichBut = "Close";
    AudioEditor1.Close();
    changed();
}

}  // namespace ovd::dictation
