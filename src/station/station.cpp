#include "station/station.h"

#include "platform/files.h"

namespace ovd::station {

Station::Station(StationParts parts)
    : parts_(std::move(parts)),
      clipboard_(std::make_shared<engine::Clipboard>()),
      soundShare_(parts_.sound),
      AudioEditor1(parts_.loop, soundShare_.mainWindow(), clipboard_, "AudioEditor1"),
      AudioEditor21(parts_.loop, soundShare_.mainWindow(), clipboard_, "AudioEditor21"),
      secondFileEditor_(parts_.loop, soundShare_.secondEditor(), clipboard_, "SecondEditor"),
      voice_(parts_.sound, parts_.promptFolder),
      speakers_(parts_.dataFolder),
      companion_(parts_.loop, parts_.log, parts_.binaryFolder, parts_.dataFolder),
      autoSendMenu_(parts_.loop, parts_.config.record, companion_),
      peerLink_({parts_.loop, parts_.config, parts_.log, parts_.prompts, parts_.orderPort}),
      peer_(peerLink_),
      loadOnAfterRecovery_(parts_.loop, "loadOnAfterRecovery", 1) {
    loadOnAfterRecovery_.setOnTick([this] { loadOnAfterRecovery(); });
    dictation_ = std::make_unique<dictation::Dictation>(dictation::DictationParts{
        parts_.loop, parts_.config, parts_.log, parts_.prompts, AudioEditor1, AudioEditor21, voice_,
        speakers_, peer_, parts_.dataFolder});
    statusLines_ = std::make_unique<ViewStatusLines>(*dictation_);
    timersHold_ = std::make_unique<DictationTimersHold>(*dictation_);
    autoSend_ = std::make_unique<delivery::AutoSend>(delivery::AutoSendParts{
        parts_.loop, parts_.config, parts_.log, parts_.prompts, peerLink_, voice_, autoSendMenu_,
        companion_, *statusLines_, parts_.promptFolder});
    delivery_ = std::make_unique<PipelineDelivery>(*autoSend_);
    endOfLetter_ = std::make_unique<EndOfLetter>(*dictation_, parts_.config, parts_.log,
                                                 parts_.loop, voice_, *delivery_);
    handsFree_ = std::make_unique<devices::HandsFree>(
        devices::HandsFreeParts{*dictation_,
                                AudioEditor1,
                                parts_.config,
                                parts_.log,
                                parts_.prompts,
                                parts_.loop,
                                peer_,
                                *endOfLetter_,
                                platform::joinPath(parts_.programFolder, "Button.cfg"),
                                {}});
    // The exit at end of letter and the pedals' own ends go the one way out.
    const auto exit = [this] { unloadForm(); };
    endOfLetter_->onExit = exit;
    handsFree_->onEndProgram = exit;
    peerLink_.onExitOrder = [this] { TCPSaysExit(); };
    peerLink_.onCloseOrder = [this] { TCPSaysClose(); };
    peerLink_.showStatusText = [this](const std::string& text) {
        statusLines_->showStatusText(text);
    };
    peerLink_.holdTimers = [this] { timersHold_->hold(); };
    peerLink_.releaseTimers = [this] { timersHold_->release(); };
    // A microphone taken away during a take ends the take in order.
    soundShare_.mainWindow().onCaptureDeviceLost = [this](const std::string& device) {
        dictation_->recordingDeviceLost(device);
    };
    makeSecondEditor();
    housekeeping_ = std::make_unique<housekeeping::Housekeeping>(housekeeping::HousekeepingParts{
        parts_.loop, parts_.config, parts_.log, parts_.dataFolder, [this] {
            // The letter in hand, the takes of both editors, a file named to be opened
            // and the file open in the second editor.
            return housekeeping::KeptPaths{
                {dictation_->state().Filename, AudioEditor1.TempFileName(),
                 AudioEditor21.TempFileName(), parts_.commandFileName,
                 secondEditor_->view().fileName},
                {}};
        }});
}

Station::~Station() { soundShare_.mainWindow().onCaptureDeviceLost = nullptr; }

}  // namespace ovd::station
