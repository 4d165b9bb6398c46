#include "app/station.h"

#include "platform/files.h"

namespace ovd::app {

Station::Station(StationParts parts)
    : parts_(std::move(parts)),
      clipboard_(std::make_shared<engine::Clipboard>()),
      AudioEditor1(parts_.loop, parts_.sound, clipboard_, "AudioEditor1"),
      AudioEditor21(parts_.loop, parts_.sound, clipboard_, "AudioEditor21"),
      voice_(parts_.sound, parts_.promptFolder),
      speakers_(parts_.dataFolder),
      delivery_(parts_.log),
      tmCommand(parts_.loop, "tmCommand", 10) {
    // Work files of both editors lie in Temp under the recordings.
    const std::string temporaryFolder =
        platform::joinPath(parts_.config.record.CaptureFilePath.toText(), "Temp");
    platform::createFolder(temporaryFolder);
    AudioEditor1.setTempFileName(temporaryFolder);
    AudioEditor21.setTempFileName(temporaryFolder);
    dictation_ = std::make_unique<dictation::Dictation>(dictation::DictationParts{
        parts_.loop, parts_.config, parts_.log, parts_.prompts, AudioEditor1, AudioEditor21, voice_,
        speakers_, peer_, parts_.dataFolder});
    endOfLetter_ = std::make_unique<devices::EndOfLetter>(*dictation_, parts_.config, parts_.log,
                                                          parts_.loop, voice_, delivery_);
    handsFree_ = std::make_unique<devices::HandsFree>(devices::HandsFreeParts{
        *dictation_, AudioEditor1, parts_.config, parts_.log, parts_.prompts, parts_.loop, peer_,
        *endOfLetter_, platform::joinPath(parts_.programFolder, "Button.cfg"), {}});
    const auto exit = [this] {
        if (onExit) onExit();
    };
    endOfLetter_->onExit = exit;
    handsFree_->onEndProgram = exit;
    tmCommand.setOnTick([this] { tmCommand_Timer(); });
}

Station::~Station() = default;

void Station::start() {
    if (parts_.config.record.TCP) {
        parts_.log.trace("TCP peer link: not available in this build; nothing is sent to " +
                         parts_.config.record.TCPIP);
    }
    dictation_->start();
    handsFree_->start();
    if (parts_.config.record.QDUDisconnected) {
        dictation_->view.Label40 = dictation::kDeskUnitMissing;
        tmCommand.setEnabled(true);
    }
}

void Station::tmCommand_Timer() {
    tmCommand.setEnabled(false);
    dictation::Dictation& d = *dictation_;
    d.ResetRecorderState();
    if (d.state.flgfileOpen1 || !d.state.Filename.empty() || d.state.FileChanged) return;
    d.state.FirstSwitchPosition = "FirstTime";
    parts_.log.trace(" Calling Case New from tmCommand_Timer ");
    d.CaseNew();
}

void Station::shutDown() {
    tmCommand.setEnabled(false);
    dictation::Dictation& d = *dictation_;
    if (!d.state.Filename.empty()) d.Image10_Click();
    handsFree_->stop();
}

}  // namespace ovd::app
