#include "support/scripted_prompts.h"

namespace ovd::testing {

using platform::Answer;

Answer ScriptedPrompts::message(const platform::MessageRequest& request) {
    transcript_.push_back(
        {"message", request.title, request.text, request.buttons, request.defaultAnswer});
    if (answers_.empty()) return request.defaultAnswer;
    const Answer answer = answers_.front();
    answers_.pop_front();
    return answer;
}

std::optional<std::string> ScriptedPrompts::nextText(std::optional<std::string> fallback) {
    if (texts_.empty()) return fallback;
    auto text = std::move(texts_.front());
    texts_.pop_front();
    return text;
}

std::optional<std::string> ScriptedPrompts::input(const platform::InputRequest& request) {
    transcript_.push_back({"input", request.title, request.prompt});
    return nextText(std::nullopt);
}

std::optional<std::string> ScriptedPrompts::chooseFile(const platform::FileRequest& request) {
    transcript_.push_back({"file", request.title, request.initialFolder});
    return nextText(std::nullopt);
}

std::optional<std::string> ScriptedPrompts::chooseFolder(const platform::FolderRequest& request) {
    transcript_.push_back({"folder", request.title, request.initialFolder});
    return nextText(std::nullopt);
}

void ScriptedPrompts::notify(const platform::Notification& notification) {
    transcript_.push_back({"notice", notification.title, notification.body});
}

std::vector<std::string> ScriptedPrompts::texts() const {
    std::vector<std::string> out;
    out.reserve(transcript_.size());
    for (const Shown& shown : transcript_) out.push_back(shown.text);
    return out;
}

}  // namespace ovd::testing
