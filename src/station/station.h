#pragma once
// The composition root of the station: it makes the sound backend's two
// editors, the voice prompts, the speaker list and the dictation, and wires
// them together. It holds no dictation logic of its own.

#include <functional>
#include <memory>
#include <string>

#include "conversion/scan_convert.h"
#include "delivery/auto_send.h"
#include "delivery/companion.h"
#include "delivery/peer_link.h"
#include "devices/hands_free.h"
#include "dictation/dictation.h"
#include "engine/audio_backend.h"
#include "engine/clipboard.h"
#include "engine/prompt_player.h"
#include "engine/wave_editor.h"
#include "housekeeping/housekeeping.h"
#include "platform/event_loop.h"
#include "platform/prompts.h"
#include "platform/timer.h"
#include "second_editor/second_editor.h"
#include "settings/config_file.h"
#include "settings/delivery_startup_checks.h"
#include "settings/event_log.h"
#include "settings/passwords_tables.h"
#include "station/delivery_wiring.h"
#include "station/end_of_letter.h"
#include "station/shared_sound_device.h"

namespace ovd::station {

struct StationParts {
    platform::EventLoop& loop;
    settings::ConfigFile& config;
    settings::EventLog& log;
    platform::Prompts& prompts;
    engine::AudioBackend& sound;
    std::string dataFolder;
    std::string promptFolder;              // the prompt sounds of the program's folder
    std::string programFolder;             // Button.cfg
    std::string binaryFolder;              // where the companion programs are installed
    std::string commandFileName;           // the file named on the command line, if any
    int orderPort = delivery::kOrderPort;  // where the peer's orders are heard
};

// How far the load of the station came.
enum class LoadResult {
    Ready,         // everything is up
    Recovering,    // the work files of a crashed run are recovered first; the rest loads after
    NothingReady,  // no recording device: the window stays, with nothing to record on
    EndProgram,    // the station must not run; the reason was shown
};

class Station {
  public:
    explicit Station(StationParts parts);
    ~Station();
    Station(const Station&) = delete;
    Station& operator=(const Station&) = delete;

    // The station comes up in a fixed order: the settings, the folders, the
    // devices, the recovery of a crashed run, the pedals, the companion. With no
    // desk unit connected a new dictation begins by itself a moment later. A
    // recovery at start runs on the loop; the load goes on from there when it is over.
    LoadResult Form_Load();
    // The load is over and the station is up (ready, or with nothing to record on):
    // the window takes its face and devices now.
    std::function<void()> onLoadDone;
    // The way out every exit ends in: the file in hand closed (saved when it holds
    // a take), the pedals let go, the settings written with the run marked as
    // ended in order, the companion stopped.
    void Form_Unload();

    // ---- The entrances of an exit ----
    void exitFromMenu();  // mnuExit_Click
    void TCPSaysExit();
    void TCPSaysClose();

    dictation::Dictation& dictation() { return *dictation_; }
    devices::HandsFree& handsFree() { return *handsFree_; }
    // The two editors, for the window's waveform, level meter and device lists.
    engine::WaveEditor& recordingEditor() { return AudioEditor1; }
    engine::WaveEditor& scratchEditor() { return AudioEditor21; }
    // The second editor ("Insert Recording"), where a passage is made ready for the letter.
    second_editor::SecondEditor& secondEditor() { return *secondEditor_; }
    [[nodiscard]] const SharedSoundDevice& soundDevice() const { return soundShare_; }
    delivery::PeerLink& peerLink() { return peerLink_; }
    delivery::AutoSendMenu& autoSendMenu() { return autoSendMenu_; }

    // Ends the program in order: the exit at end of letter, a port change.
    std::function<void()> onExit;
    // The recovery window: opened at load for the work files of a run that did not
    // end in order, and from the menu. The window shows it; headless, its operations
    // go to the event log.
    void openScanConvertByHand();  // mnuScanConvert_Click
    std::function<void(conversion::ScanConvert&)> onShowScanConvert;
    // The setup windows the start-up checks of delivery open on Yes; none headless.
    settings::SetupWindows setupWindows;
    // The weekly purge, the drive scan and their windows' refusal of each other.
    housekeeping::Housekeeping& housekeeping() { return *housekeeping_; }

  private:
    bool loadRecordingDevice();
    // The steps after the recovery at start: the pedals, the destination folders,
    // the companion sender, the first file.
    void loadPedalsAndDelivery();
    void loadOnAfterRecovery();
    // The user hears once when the settings can't be written, after the step that wrote.
    void tellWhenSettingsCantBeWritten();
    // The chosen recordings folder, or, after telling the user, the data folder's own
    // when the chosen one can't hold takes.
    std::string recordingsFolderInUse();
    void createDestinationFolders();
    void loadAutoSend();
    void KillAllPedals();
    conversion::ScanConvert& openScanConvert(conversion::ScanMode mode);
    void unloadForm();
    // At the end: the editors let go of their work files unless a take in them
    // could not be saved.
    void closeWorkFiles();
    // The second editor over its own engine editor, and what it is told of the letter.
    void makeSecondEditor();
    // At the end: the second editor's changes are asked about; a document the author
    // would rather keep open leaves its work file where it is.
    void closeSecondEditor();

    StationParts parts_;
    std::shared_ptr<engine::Clipboard> clipboard_;
    SharedSoundDevice soundShare_;
    engine::WaveEditor AudioEditor1;
    engine::WaveEditor AudioEditor21;
    engine::WaveEditor secondFileEditor_;  // the second editor's AudioEditor1
    engine::PromptPlayer voice_;
    settings::SpeakersTable speakers_;
    delivery::AutoSendCompanion companion_;
    delivery::AutoSendMenu autoSendMenu_;
    delivery::PeerLink peerLink_;
    LinkNotices peer_;
    std::unique_ptr<dictation::Dictation> dictation_;
    std::unique_ptr<ViewStatusLines> statusLines_;
    std::unique_ptr<DictationTimersHold> timersHold_;
    std::unique_ptr<delivery::AutoSend> autoSend_;
    std::unique_ptr<PipelineDelivery> delivery_;
    std::unique_ptr<EndOfLetter> endOfLetter_;
    std::unique_ptr<devices::HandsFree> handsFree_;
    std::unique_ptr<conversion::ScanConvert> scanConvert_;
    std::unique_ptr<second_editor::SecondEditor> secondEditor_;
    platform::Timer loadOnAfterRecovery_;
    bool unloaded_ = false;
    // Last, so it goes first: it asks the dictation and the editors what they hold.
    std::unique_ptr<housekeeping::Housekeeping> housekeeping_;
};

}  // namespace ovd::station
