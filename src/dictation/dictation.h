#pragma once
// The one dictation of a station: the transport routines every button, menu,
// pedal and peer order ends in, the timers that keep the screen in step with the
// engine, insert and overwrite through the scratch editor, and the way a take
// reaches a file on disk. Everything runs on the loop's thread; the screen is
// written into MainView and never touched directly.

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "dictation/dictation_state.h"
#include "dictation/file_naming.h"
#include "dictation/main_view.h"
#include "dictation/pedal_hits.h"
#include "dictation/peer_notices.h"
#include "dictation/recent_files.h"
#include "engine/audio_editor.h"
#include "engine/prompt_player.h"
#include "platform/event_loop.h"
#include "platform/prompts.h"
#include "platform/timer.h"
#include "settings/config_file.h"
#include "settings/event_log.h"
#include "settings/passwords_tables.h"

namespace ovd::dictation {

// The desk unit's switch texts.
inline constexpr const char* kSwitchDictate = "4 Position Switch STATUS: DICTATE";
inline constexpr const char* kSwitchListen = "4 Position Switch STATUS: LISTEN";
inline constexpr const char* kSwitchStop = "4 Position Switch STATUS: STOP";
inline constexpr const char* kSwitchStepBack = "4 Position Switch STATUS: STEPBACK";
inline constexpr const char* kSwitchPlain = "4 Position Switch";
inline constexpr const char* kDeskUnitMissing = "QDU Device NOT CONNECTED";

inline constexpr const char* kReadyText = "Ready to Create New File or Load a File";
inline constexpr const char* kReadyAfterSave = "Ready to Create File or Load File";
inline constexpr const char* kSaveErrorText = "File Save Error!!";
inline constexpr const char* kSaveQuestion = "File Needs to be Saved. Would you like to do this?";
inline constexpr const char* kDiskSpaceQuestion =
    "You may not have enough disk space to save file. Would you like change the default "
    "file location in order to have enough disk space to continue working?";
inline constexpr const char* kTakeKeptInTemp =
    "Not enough disk space to save the file: the recording is kept in";
inline constexpr const char* kMoveSwitchToRecord =
    "Please move the 4 Position Switch on the Quadrant Desk Unit to the RECORD position.";

// A work file below this many bytes holds nothing worth keeping.
inline constexpr std::int64_t kMinimumRecordedBytes = 30311;
// A file to open below this many bytes has never been recorded on.
inline constexpr std::int64_t kMinimumOpenBytes = 1025;

// The timSave interval a SAVEEVERY value gives: a quarter, half, three quarters
// or all of the longest interval the station's timers ever allowed; 0 off. Any
// other value leaves the interval as it was (nothing returned).
std::optional<int> saveIntervalFor(std::int16_t SAVEEVERY);

// The application title the caption starts with.
std::string applicationTitle(bool handsFreeEdition);

// "hh:mm:ss" of whole seconds, each part two digits.
std::string clockText(std::int32_t seconds);

// What the dictation needs around it. The station wires these.
struct DictationParts {
    platform::EventLoop& loop;
    settings::ConfigFile& config;
    settings::EventLog& log;
    platform::Prompts& prompts;
    engine::AudioEditor& AudioEditor1;   // the file under dictation
    engine::AudioEditor& AudioEditor21;  // the scratch take of an insert or overwrite
    engine::PromptPlayer& voice;
    settings::SpeakersTable& speakers;
    PeerNotices& peer;
    std::string dataFolder;
};

class Dictation : private NamingHooks {
public:
    explicit Dictation(DictationParts parts);
    ~Dictation() override;
    Dictation(const Dictation&) = delete;
    Dictation& operator=(const Dictation&) = delete;

    // The screen as the station starts: no file, timers as loaded. The load of
    // the station runs the same steps one by one, in its own order.
    void start();
    // No file, lamps off, the recent files read.
    void loadScreen();
    // What the dictation takes from the settings once they are read: the save
    // interval, crash protection, the work files' folder, the step.
    void takeSettings();

    DictationState state;
    MainView view;
    PedalHits hits;
    FileNaming naming;
    RecentFiles recent;

    // Calls the dictation makes upward, into the switch model and the end of
    // letter, which live above it. Unset: nothing happens.
    std::function<void(const std::string&)> switchCommand;
    // The view model changed; the window redraws.
    std::function<void()> onViewChanged;
    // A new file has been made (or given up) and nothing else is under way:
    // a record press that waited for it may go ahead.
    std::function<void()> fileReady;
    // CaseNew is part way through: the file is half made.
    [[nodiscard]] bool newFileUnderWay() const { return newFilesUnderWay_ > 0; }

    // ---- The transport routines ----
    void SetParam(const std::string& action);
    void ResetRecorderState() override;
    void CaseNew();
    void CaseNewFileName();
    void CaseOpen();
    void CaseRecord();
    void CaseStop();
    void CasePlay(const std::string& from);
    void CasePlayLooped();
    void CasePlayToEnd();
    void CasePause(const std::string& from);
    void CaseContinue();
    void CasePauseStop();
    void CaseBeginning();
    void CaseEnd();
    void CaseStepForward();
    void CaseStepBackward();
    void CaseThreeSeconds();
    void CaseLastThreeSecondsCon();
    void CaseCopy();
    void CaseCut();
    void CasePaste();
    void CaseUndo();
    void CaseRedo();
    void CaseInsSilence();
    void CaseInsertAppend();
    void CasePlayRec();
    void CaseSave();
    void CaseSaveAs();
    void CaseClose() override;
    void CaseDefault();
    void TurnOffTimers();

    // ---- Routes: what the window's controls and the devices call ----
    void play();  // MMControl1_PlayClick
    void recordTake();  // MMControl1_RecordClick
    void stop();  // MMControl1_StopClick
    void pause();  // MMControl1_PauseClick
    void goToBeginning();  // MMControl1_PrevClick
    void goToEnd();  // MMControl1_NextClick
    void stepBack();  // MMControl1_BackClick
    void stepForward();  // MMControl1_StepClick
    void newLetter();              // Image2_Click
    void openLetter();             // Image3_Click
    void saveNow();                // Image4_Click
    void restoreFactoryFormats();  // Image7_Click
    void closeFile();              // Image10_Click
    // The last save found no room, and the take waits in its work file.
    [[nodiscard]] bool takeWaitsInTemp() const { return takeWaitsInTemp_; }
    void CLOSEME();
    void closeFromMenu();  // mnclose_Click
    void saveAs();  // mnuSaveAs_Click
    void addToBeginning();          // Command1_Click: add comments to the beginning
    void insertAtCursor();          // Command2_Click
    void overwriteAtCursor();       // cmdOVR_Click
    void replayLastThreeSeconds();  // Command3_Click
    void endInsert();               // ButtonEx1_Click
    void endAppend();               // ButtonEx2_Click
    void finishLetter();  // cmdEOL_Click: the end of letter button
    void toolbarButton(const std::string& key);  // Toolbar1_ButtonClick
    // The form's right-click menu.
    void insertAtBeginningFromMenu();         // mnuInsertBeginning_Click
    void appendAtEnd();                       // mnuAppendEnd_Click
    void lastThreeSecondsContinueFromMenu();  // mnuLastThreeContinue_Click
    void openRecentFile(const std::string& path);  // OpenMyList
    void clearRecentFiles();  // Clear_Click: File > Reopen > Clear
    void stepAmountChanged(const std::string& text);  // txtStepAmt_Change

    // ---- Position and recording ----
    void StepForward();
    void StepBackward();
    void LastThreeSecondsContinue();
    void OverWriteFileOK(const std::string& from);
    void ActuallyInsert();
    void positionSliderPressed();           // ctSlide1_MouseDown
    void positionSliderMoved(int value);     // ctSlide1_Change
    void positionSliderReleased(int value);  // ctSlide1_MouseUp
    // Rescales the times to the engine's figures when nothing else moves them.
    void AdjustNCTTimeDisplay();
    // The microphone of a take has gone: the take ends as a Stop would end it,
    // with all that was said kept, and the author is told why it stopped.
    void recordingDeviceLost(const std::string& device);

    // ---- Saving and closing ----
    void SaveFile();
    void SaveFileAs();
    void Manip_Files();
    void TempFileNameFileLength();
    void OpenFile();
    void PlayPrompt(const std::string& name);

    // ---- Timers, under their names ----
    platform::Timer timCurPos;
    platform::Timer timRecord;
    platform::Timer timLight;
    platform::Timer timSave;
    platform::Timer timLastThreeSecondsCon;
    platform::Timer timsync;
    platform::Timer Reader;  // where a desk unit link polls; no tick of its own

    void timCurPos_Timer();
    void timRecord_Timer();
    void timLight_Timer();
    void timSave_Timer();
    void playbackWatch_Timer();
    void timLastThreeSeconds_Timer();
    void timsync_Timer();

    // ---- A file named from outside (command line, a second instance) ----
    platform::Timer tmCommand;  // one shot: the first file of the run
    platform::Timer handOffLookTimer;  // Timer28: one shot: looks for a hand-off after a named letter
    platform::Timer handOffWaitTimer;  // Timer34: waits until no file is open, then takes the hand-off
    // The screen follows a playback that ends by itself while the position timer rests.
    platform::Timer playbackWatch;
    void tmCommand_Timer();
    void handOffLook_Timer();  // Timer28_Timer
    void handOffWait_Timer();  // Timer34_Timer
    // A file begun under the temporary name takes the handed-over name when one
    // waits; moment is "recording" or "EOL" for the log. True when it was renamed.
    bool renameToHandedOffName(const std::string& moment);

    // Seconds of a length in samples of the document under dictation.
    [[nodiscard]] std::int32_t secondsOf(std::int64_t samples) const;
    // The samples of one second of the document (its length over its seconds).
    [[nodiscard]] double samplesPerSecond() const;

private:
    // NamingHooks
    void prepareFormat(const engine::FormatGroup& group) override;
    void startSaveTimer() override;
    std::optional<std::string> ChooseFileName(int mode) override;
    std::string sendLoaded(const std::string& baseName) override;
    void tellPeerNewFileRefused() override;

    // Shows the refusal when a take runs; true when the routine must stop.
    bool refusedWhileRecording(const std::string& tag);
    void setBar(BarAfter after);
    void applyEOLRule();
    void setRecordButtons(bool enabled);
    void setLamps(bool on);
    void setFileLabels(const std::string& text);
    void showFileName();
    // The screen rules that hold once an action is over, whatever the action.
    void showFileJustOpened();
    void showNoTakeRunning();
    void refreshSeconds();
    void totalSecondsFromEngine();
    void etprocess(const std::string& from);
    void barByPosition();
    bool deskUnitAllowsTake();
    [[nodiscard]] bool positionAllowsScratchTake() const;
    // True while an insert or an overwrite records into the scratch editor.
    [[nodiscard]] bool scratchTakeRuns() const;
    void beginScratchTake(engine::SampleCount at, bool showEndButton);
    void selectScratchTake();
    void copyScratchTake();
    void closeScratchTake(const std::string& waitTag);
    void finishPendingInsertOrAppend();
    void closeBeforeNewFile();
    void newFileSteps();
    // The user gave up naming the new file: nothing is open.
    bool newFileAbandoned();
    void rotateWorkFileNames();
    void closeByUserOrPeer(const std::string& logLine, const std::string& waitTag);
    // At a close: a take whose save failed keeps its work file for the recovery.
    void keepUnsavedTake();
    void notifyPeer(const std::string& message, const std::string& waitTag);
    void waitTraced(double seconds, const std::string& tag);
    void trace(const std::string& line);
    [[nodiscard]] std::string sizeText() const;
    [[nodiscard]] std::string temporaryFolder() const;
    void waitUntilFileIsFree();
    // The free-space dialogue before a save; false when the save must not be
    // written because nobody made room.
    bool makeRoomToSave();
    bool giveUpSaveForRoom();
    // Before the editor closes: a take whose save found no room keeps its work
    // file in Temp under the letter's name.
    void changed();

    platform::EventLoop& loop_;
    settings::ConfigFile& config_;
    settings::EventLog& log_;
    platform::Prompts& prompts_;
    engine::AudioEditor& AudioEditor1;
    engine::AudioEditor& AudioEditor21;
    engine::PromptPlayer& voice_;
    PeerNotices& peer_;
    std::string dataFolder_;
    std::string keptWorkFile_;  // the work file of an unsaved take, left for the recovery
    platform::WallClock::time_point startedAt_;
    // The last save found no room: the take lives only in its work file.
    bool takeWaitsInTemp_ = false;
    int newFilesUnderWay_ = 0;
    // When the disk warning of a take was last logged and sent; while it stays
    // true it is repeated at the pace of the peer's wait, not at every tick.
    std::optional<platform::WallClock::time_point> lastDiskWarning_;
};

}  // namespace ovd::dictation
