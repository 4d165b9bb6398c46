// Effects, mixing, the desktop clipboard and the spectral view of the editor.

#include "engine/wave_editor.h"

namespace ovd::engine {

namespace {
constexpr const char* kNotYet = "not available yet";
}  // namespace

platform::Result<void> WaveEditor::ApplyEffect(Effect, SampleCount, SampleCount,
                                               std::function<void(platform::Result<void>)>) {
    return platform::failure(kNotYet);
}

platform::Result<void> WaveEditor::MixFile(const std::string&) {
    return platform::failure(kNotYet);
}

platform::Result<void> WaveEditor::MixClipboard() { return platform::failure(kNotYet); }

platform::Result<AudioEditor::SaveOutcome> WaveEditor::SaveSelectionAs(const std::string&) {
    return platform::failure(kNotYet);
}

std::string WaveEditor::ClipboardAsWav() const { return {}; }

platform::Result<void> WaveEditor::setClipboardFromWav(const std::string&) {
    return platform::failure(kNotYet);
}

std::vector<std::vector<float>> WaveEditor::Spectrum(SampleCount, SampleCount, int, int) const {
    return {};
}

}  // namespace ovd::engine
