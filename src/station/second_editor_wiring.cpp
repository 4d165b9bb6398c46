// The second editor beside the letter: its own engine editor on the shared
// clipboard, the sound device it gets only when the letter's take leaves it,
// and its work files kept apart from the letter's so the recovery never takes
// them for a crashed letter.

#include "configuration/ogg_options.h"
#include "platform/files.h"
#include "station/station.h"

namespace ovd::station {

namespace {
constexpr const char* kSecondEditorWorkFolder = "SecondEditor";
}

void Station::makeSecondEditor() {
    secondFileEditor_.setTempFileName(
        platform::joinPath(parts_.dataFolder, kSecondEditorWorkFolder));
    second_editor::SecondEditorParts parts{
        parts_.loop,
        parts_.prompts,
        secondFileEditor_,
        clipboard_,
        [this] {
            const dictation::DictationState& s = dictation_->state();
            const int recording = static_cast<int>(engine::EditorState::Recording);
            // A letter merely armed for its next take ("in Recording Mode but is
            // Stopped", which every new letter is) leaves the microphone free: its take,
            // when it starts, stops the second editor first.
            return s.Recordingstatus || s.DoingInsertUpdate || s.OverWriteFile ||
                   AudioEditor1.State() == recording || AudioEditor21.State() == recording;
        },
        [this] { return parts_.config.record.CaptureFilePath.toText(); },
        [this] {
            // A passage made here goes into the letter: it starts in the letter's format.
            if (AudioEditor1.hasDocument())
                return engine::PcmFormat{AudioEditor1.SamplesPerSecond(), AudioEditor1.Channels()};
            return engine::PcmFormat{};
        },
        [this] {
            return configuration::oggTargetOf(settings::loadOggSettings(parts_.dataFolder));
        }};
    secondEditor_ = std::make_unique<second_editor::SecondEditor>(std::move(parts));
    soundShare_.stopSecondEditor = [this] { secondEditor_->stopForLetter(); };
    soundShare_.secondEditor().onCaptureDeviceLost = [this](const std::string& device) {
        secondEditor_->stop();
        parts_.log.trace("The second editor's microphone " + device + " has gone");
    };
}

void Station::closeSecondEditor() {
    if (!secondEditor_ || !secondFileEditor_.hasDocument()) return;
    if (secondEditor_->close()) return;
    secondFileEditor_.Stop();
    secondFileEditor_.finishSaving();
    parts_.log.trace("The second editor's recording was not saved; it stays in " +
                     secondFileEditor_.TempFileName());
    secondFileEditor_.CloseKeepingWorkFile();
}

}  // namespace ovd::station
