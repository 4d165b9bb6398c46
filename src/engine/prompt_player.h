#pragma once
// The station's voice prompts: short wave files from the program's folder,
// played without waiting, and only while spoken prompts are switched on.

#include <string>

#include "engine/audio_backend.h"

namespace ovd::engine {

class PromptPlayer {
  public:
    PromptPlayer(AudioBackend& backend, std::string promptFolder);

    // Plays the file (a name in the prompt folder, or a full path) when voicePrompts
    // is on and the name is not empty; never waits for the end.
    void PlayPrompt(const std::string& name, bool voicePrompts);

    [[nodiscard]] const std::string& LastVoicePrompt() const { return last_; }
    // True while the last prompt is still sounding.
    [[nodiscard]] bool Playing() const { return backend_.promptPlaying(); }
    [[nodiscard]] std::string pathOf(const std::string& name) const;

  private:
    AudioBackend& backend_;
    std::string folder_;
    std::string last_;
};

}  // namespace ovd::engine
