#pragma once
// The state of the one dictation a station runs: the flags and strings every
// transport routine tests and sets, under the names the station's routines and
// its support dump use. Plain data: the routines own the rules.

#include <array>
#include <cstdint>
#include <optional>
#include <string>

#include "platform/event_loop.h"

namespace ovd::dictation {

struct DictationState {
    // A file is loaded in the editor.
    bool flgfileOpen1 = false;
    bool flgfileOpen2 = false;  // cleared with flgfileOpen1, never tested
    bool flgNewToRecord = false;
    bool flgPlay = false;
    bool flgRecord = false;  // shown in the dump only
    // A take is running: what every "Recording in Progress" test reads.
    bool Recordingstatus = false;
    // Recording is armed but not running.
    bool RecordingstatusPaused = false;
    bool PausedRecording = false;
    bool FileChanged = false;
    bool RecordedOnce = false;
    bool PlayedOnce = false;
    bool JustOpened = false;
    bool SavedAlready = false;
    bool EOLHAPPENED = false;
    bool UserSelectedNo = false;
    bool CheckedOnce = false;
    // Insert, overwrite and append in progress.
    bool DoingInsertUpdate = false;
    bool OverWriteFile = false;
    bool DoingAppending = false;
    bool InsertingFile = false;
    bool AppendingFile = false;
    bool HitOnce = false;
    bool HitTwice = false;
    bool MYDirty = false;
    bool ManuallyMovedctSlide = false;
    bool SaveRequested = false;
    bool FileSaveError = false;
    bool FileOpenError = false;
    bool FromCurrentList = false;
    bool TrueSpeech = false;
    bool PriorityOn = false;
    bool PRERECORDED = false;
    bool Once = false;
    // Every Stop also saves ("enhanced crash protection"): loaded from the
    // settings, and dropped for the rest of the run when a take left no work file.
    bool FileSaveAtStop = false;
    bool FileKilled = false;
    bool UserClose = false;
    bool TCPClose = false;
    bool BackClickKeyFirstTime = false;
    bool CheckingKey = false;  // cleared with the rest, set by nothing
    // A routine the pedals must not enter is half done (the end of an overwrite,
    // the start of a file named from outside).
    bool PedalsBusy = false;
    // A step back of the listen pedal or the switch is under way; the next stop
    // then only ends it.
    bool StepBackRequest = false;

    // The current action word: "New", "Record", "Stop", "Play"...
    std::string WhichBut;
    // Full path of the current file; empty: no file.
    std::string Filename;
    std::string CommandFileName;
    std::string CurrentFormatType;
    std::string Response;
    std::string NextString;

    // The desk unit's switch: the last four positions, newest first, and the
    // label as it was when the last command came in.
    std::string FirstSwitchPosition;
    std::string SecondSwitchPosition;
    std::string ThirdSwitchPosition;
    std::string FourthSwitchPosition;
    std::string RememberLastSwitchLabel;
    std::string CurrentButtonSelected;
    std::string WAITINGFORButtonSelected;
    std::string StatusMessage;

    // Saving: the engine's work file and its length (none when there is no
    // work file), and the names around a save.
    std::string NewTempFile;
    std::optional<std::int64_t> NewTempFileLength;
    std::string SaveFileName;
    std::string SaveOldFileName;
    std::string SaveNCTTempFileName;

    std::int32_t iTotalSecFile = 0;
    std::int32_t iCurSecond = 0;
    std::int16_t percentrun = 0;
    std::int32_t Positionfromslide = 0;
    std::int64_t SaveCurrentPosition = 0;
    std::int32_t DictatorSeqNo = 0;
    std::int32_t PreviousNextFile = 0;  // how far back in the recent files the desk unit went

    // A file named from outside: by this process's command line or handed over by a
    // second one. These belong to the run, not to one file: the reset of the
    // recorder keeps them, and the close and the end of letter clear what they must.
    struct CommandLine {
        bool DIDDOCOMMANDLINE = false;  // the file was begun under the temporary name
        bool CommandLineLaunched = false;
        bool SecondCommand = false;
        std::string MyInstance;       // the process that handed the name over
        std::string MyCommandString;  // the last name taken, for the status dump
    } commandLine;
    // Load and shutdown under way: the pedals are not listened to.
    bool OnLoad = false;
    bool Imclosing = false;

    // Names of the engine's last three work files.
    std::array<std::string, 3> LastThreeNCTTmps;
    platform::WallClock::time_point StartTime{};
    platform::WallClock::time_point EndTime{};

    void clearSwitchPositions() {
        FirstSwitchPosition.clear();
        SecondSwitchPosition.clear();
        ThirdSwitchPosition.clear();
        FourthSwitchPosition.clear();
    }
};

}  // namespace ovd::dictation
