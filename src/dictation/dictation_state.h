#pragma once
// The state of the one dictation a station runs: the flags and strings every
// transport routine tests and sets, under the names the station's routines and
// its support dump use. Plain data: the routines own the rules.

#include <array>
#include <cstdint>
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

    // The current action word: "New", "Record", "Stop", "Play"...
    std::string WhichBut;
    // Full path of the current file; empty: no file.
    std::string Filename;
    std::string CommandFileName;
    std::string CurrentFormatType;
    std::string Response;

    std::int32_t iTotalSecFile = 0;
    std::int32_t iCurSecond = 0;
    std::int16_t percentrun = 0;
    std::int32_t Positionfromslide = 0;
    std::int64_t SaveCurrentPosition = 0;
    std::int32_t DictatorSeqNo = 0;

    // Names of the engine's last three work files.
    std::array<std::string, 3> LastThreeNCTTmps;
    platform::WallClock::time_point StartTime{};
    platform::WallClock::time_point EndTime{};
};

}  // namespace ovd::dictation
