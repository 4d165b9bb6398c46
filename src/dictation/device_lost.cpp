// A microphone taken away in the middle of a take. The sound server would carry
// the recording over to another device without a word; the station stops the
// take instead, keeps every word that came in, and says why it stopped.

#include "dictation/dictation.h"

namespace ovd::dictation {

namespace {

constexpr int kRecording = static_cast<int>(engine::EditorState::Recording);

std::string deviceLostText(const std::string& device) {
    return "The microphone \"" + device +
           "\" is no longer available. Recording has been stopped; everything recorded up to "
           "now is kept. Choose another microphone before recording again.";
}

}  // namespace

void Dictation::recordingDeviceLost(const std::string& device) {
    trace("Recording device lost: " + device);
    const bool taking = AudioEditor1.State() == kRecording || AudioEditor21.State() == kRecording;
    if (!taking) return;
    // The same way out as the Stop button: an insert or overwrite is put in place,
    // an ordinary take ends at the end of the file.
    stop();
    changed();
    prompts_.showMessage(deviceLostText(device), settings::kProductTitle,
                         platform::Severity::Warning);
}

}  // namespace ovd::dictation
