#include "engine/prompt_player.h"

#include "platform/files.h"

namespace ovd::engine {

PromptPlayer::PromptPlayer(AudioBackend& backend, std::string promptFolder)
    : backend_(backend), folder_(std::move(promptFolder)) {}

std::string PromptPlayer::pathOf(const std::string& name) const {
    return !name.empty() && name.front() == '/' ? name : platform::joinPath(folder_, name);
}

void PromptPlayer::PlayPrompt(const std::string& name, bool voicePrompts) {
    if (!voicePrompts || name.empty()) return;
    last_ = pathOf(name);
    backend_.playPrompt(last_);
}

}  // namespace ovd::engine
