#pragma once
// The one dictation of a station: the transport routines every button, menu,
// pedal and peer order ends in, the timers that keep the screen in step with the
// engine, insert and overwrite through the scratch editor, and the way a take
// reaches a file on disk. Everything runs on the loop's thread; the screen is
// written into MainView and never touched directly.

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "dictation/announced_view.h"
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
    // First of all: naming and the timers are built on them.
    DictationState state_;
    AnnouncedView view_;
    PedalHits hits_;

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

    // ---- What the window, the support dump and the devices read ----
    [[nodiscard]] const DictationState& state() const { return state_; }
    // The screen as data; every change of it is announced through onViewChanged.
    [[nodiscard]] const MainView& view() const { return view_.read(); }
    [[nodiscard]] const PedalHits& hits() const { return hits_; }
    // The press state the pedal readers keep up to date. It is shown in the
    // support dump only, never on the screen, so writing it announces nothing.
    PedalHits& pedalPresses() { return hits_; }
    // Every timer of the dictation in the order the support dump lists them.
    [[nodiscard]] std::vector<const platform::Timer*> timers() const;
    // The timSave interval in milliseconds; 0 when saving on a timer is off.
    [[nodiscard]] int saveInterval() const { return timSave.Interval(); }
    // How many view changes have been announced, and whether one waits for the
    // loop to turn.
    [[nodiscard]] unsigned long viewAnnouncements() const { return view_.announcements(); }
    [[nodiscard]] bool viewAnnouncementDue() const { return view_.announcementDue(); }

    FileNaming naming;
    RecentFiles recent;

    // Calls the dictation makes upward, into the switch model and the end of
    // letter, which live above it. Unset: nothing happens.
    std::function<void(const std::string&)> switchCommand;
    // The view differs from the one last announced: at most once a loop turn,
    // after the routine that changed it, whoever that was. The window redraws on it.
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
    // The letter resampled and remixed to the rate and channels given, and saved
    // in them from then on; refused while a take records.
    void CaseConvertSampleType(int samplesPerSecond, int channels);
    void CaseInsertAppend();
    void CasePlayRec();
    void CaseSave();
    void CaseSaveAs();
    void CaseClose() override;
    void CaseDefault();
    void TurnOffTimers();

    // ---- The station's load and end ----
    // The load begins: the hand-off timers as a fresh start has them, the file
    // named on the command line taken, and the pedals not listened to yet.
    void beginLoad(const std::string& commandFileName);
    // The load stopped before the pedals: they may be listened to again.
    void loadAbandoned();
    // The recovery is over: Scan/Convert can be opened again, and the pedals
    // starting now are not listened to until the load is done.
    void beforePedalsStart();
    // No desk unit answered: the status line says so and the first file of
    // the run is looked for at once.
    void showDeskUnitMissing();
    // The load is done: the caption shows the edition and the pedals count.
    void finishLoad(bool handsFreeEdition);
    // The station is ending: routines waiting further down the stack let go.
    void beginShutdown();
    // The end of the run: nothing named from outside is taken any more.
    void stopForExit();
    // The peer closed the file; then the station looks for the next hand-off.
    void closeForPeer();
    // A file named from outside may have been handed over: look for it.
    void lookForHandOff();
    // Delivery holds the screen's timers while it works, and lets them go as
    // they were.
    void holdTimers();
    void releaseTimers();

    // ---- The desk unit's switch and the pedals, as the switch model moves them ----
    // The newest switch position goes to the front of the last four, unless it
    // is already there.
    void pushSwitchPosition(const std::string& status);
    void replaceNewestSwitchPosition(const std::string& status);
    void showSwitchPosition(const std::string& label);
    void rememberSwitchLabel();
    void showMode(const std::string& text);
    // The next record press inserts (HitOnce) or overwrites (HitTwice).
    void armInsert();
    void armOverwrite();
    void disarmInsertOverwrite();
    void setPausedRecording(bool paused);
    void setJustOpened(bool justOpened);
    void setStepBackUnderWay(bool underWay);
    void forgetFirstBackClick();
    void noteSwitchWord(const std::string& word);
    // The unit's display shows the request while the status message is set.
    void askToMoveSwitch(const std::string& message, const std::string& waitingFor);
    void withdrawSwitchRequest();
    void forgetDiscardedFile();
    void rereadCursorSecond();
    // The end of letter button as the bar now stands.
    void refreshEndOfLetterButton();
    void rememberRecentStep(int step);

    // ---- What the end of letter and the devices show and ask ----
    void showStatus(const std::string& text);        // the status line
    void showFileLabel(const std::string& text);     // the file label
    void showTitlePicture(const std::string& path);  // the title's icon
    // A save asked for rather than one the timer or a Stop makes.
    void saveOnRequest();
    void clearSaveError();
    void forgetCommandFileName();
    // The letter went out: the next command only stops the transport.
    void markLetterFinished();

    // ---- Routes: what the window's controls and the devices call ----
    void play();                   // MMControl1_PlayClick
    void recordTake();             // MMControl1_RecordClick
    void stop();                   // MMControl1_StopClick
    void pause();                  // MMControl1_PauseClick
    void goToBeginning();          // MMControl1_PrevClick
    void goToEnd();                // MMControl1_NextClick
    void stepBack();               // MMControl1_BackClick
    void stepForward();            // MMControl1_StepClick
    void newLetter();              // Image2_Click
    void openLetter();             // Image3_Click
    void saveNow();                // Image4_Click
    void restoreFactoryFormats();  // Image7_Click
    void closeFile();              // Image10_Click
    // The last save found no room, and the take waits in its work file.
    [[nodiscard]] bool takeWaitsInTemp() const { return takeWaitsInTemp_; }
    void CLOSEME();
    void closeFromMenu();                        // mnclose_Click
    void saveAs();                               // mnuSaveAs_Click
    void addToBeginning();                       // Command1_Click: add comments to the beginning
    void insertAtCursor();                       // Command2_Click
    void overwriteAtCursor();                    // cmdOVR_Click
    void replayLastThreeSeconds();               // Command3_Click
    void endInsert();                            // ButtonEx1_Click
    void endAppend();                            // ButtonEx2_Click
    void finishLetter();                         // cmdEOL_Click: the end of letter button
    void toolbarButton(const std::string& key);  // Toolbar1_ButtonClick
    // The form's right-click menu.
    void insertAtBeginningFromMenu();                 // mnuInsertBeginning_Click
    void appendAtEnd();                               // mnuAppendEnd_Click
    void lastThreeSecondsContinueFromMenu();          // mnuLastThreeContinue_Click
    void openRecentFile(const std::string& path);     // OpenMyList
    void clearRecentFiles();                          // Clear_Click: File > Reopen > Clear
    void stepAmountChanged(const std::string& text);  // txtStepAmt_Change

    // ---- Position and recording ----
    void StepForward();
    void StepBackward();
    void LastThreeSecondsContinue();
    void OverWriteFileOK(const std::string& from);
    void ActuallyInsert();
    void positionSliderPressed();            // ctSlide1_MouseDown
    void positionSliderMoved(int value);     // ctSlide1_Change
    void positionSliderReleased(int value);  // ctSlide1_MouseUp
    // Rescales the times to the engine's figures when nothing else moves them.
    void AdjustNCTTimeDisplay();
    // The microphone of a take has gone: the take ends as a Stop would end it,
    // with all that was said kept, and the author is told why it stopped.
    void recordingDeviceLost(const std::string& device);

    // ---- The letter in hand, as other windows see it ----
    // A letter is open and holds a take not saved yet.
    [[nodiscard]] bool hasUnsavedTake() const;
    // The letter in hand is saved and closed, as the close button does it; a take
    // under way ends first.
    void saveAndCloseLetter();
    // What the letter in hand says about itself (author, priority, meeting...):
    // an opened letter brings its own, a new letter starts without any.
    [[nodiscard]] const engine::LetterDetails& letterDetails() const {
        return AudioEditor1.details();
    }
    // The author edits the letter's details: they go into the file at its next save,
    // which writes the file whole, during a take too. False with no letter open.
    bool setLetterDetails(const engine::LetterDetails& details);

    // ---- Saving and closing ----
    void SaveFile();
    void SaveFileAs();
    void Manip_Files();
    void TempFileNameFileLength();
    void OpenFile();
    void PlayPrompt(const std::string& name);

    // ---- Timer ticks ----
    void timCurPos_Timer();
    void timRecord_Timer();
    void timLight_Timer();
    void timSave_Timer();
    void playbackWatch_Timer();
    void timLastThreeSeconds_Timer();
    void timsync_Timer();

    // ---- A file named from outside (command line, a second instance) ----
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
    friend class DictationProbe;  // tests arrange states no command reaches

    // The one door through which the dictation writes its screen.
    MainView& screen() { return view_.edit(); }

    // ---- Timers, under their names ----
    platform::Timer timCurPos;
    platform::Timer timRecord;
    platform::Timer timLight;
    platform::Timer timSave;
    platform::Timer timLastThreeSecondsCon;
    platform::Timer timsync;
    platform::Timer Reader;     // where a desk unit link polls; no tick of its own
    platform::Timer tmCommand;  // one shot: the first file of the run
    platform::Timer
        handOffLookTimer;  // Timer28: one shot: looks for a hand-off after a named letter
    platform::Timer
        handOffWaitTimer;  // Timer34: waits until no file is open, then takes the hand-off
    // The screen follows a playback that ends by itself while the position timer rests.
    platform::Timer playbackWatch;
    // What holdTimers found running.
    std::array<bool, 5> heldTimersWere_{};
    bool timersHeld_ = false;

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
    // The screen rule that holds after every action: with no file no transport
    // button looks as if it could act.
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
