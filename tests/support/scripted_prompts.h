#pragma once
// Prompts for tests: answers come from a script, in order, and every box shown is
// kept in a transcript so a test can check each text to the letter. A box with no
// scripted answer left takes its default button (input boxes: cancel).

#include <deque>
#include <optional>
#include <string>
#include <vector>

#include "platform/prompts.h"

namespace ovd::testing {

class ScriptedPrompts : public platform::Prompts {
  public:
    struct Shown {
        std::string kind;  // "message", "input", "file", "folder", "notice"
        std::string title;
        std::string text;
        platform::Buttons buttons = platform::Buttons::Ok;
        platform::Answer defaultAnswer = platform::Answer::Ok;
    };

    void answerNext(platform::Answer answer) { answers_.push_back(answer); }
    void answerNextText(std::optional<std::string> text) { texts_.push_back(std::move(text)); }

    platform::Answer message(const platform::MessageRequest& request) override;
    std::optional<std::string> input(const platform::InputRequest& request) override;
    std::optional<std::string> chooseFile(const platform::FileRequest& request) override;
    std::optional<std::string> chooseFolder(const platform::FolderRequest& request) override;
    void notify(const platform::Notification& notification) override;
    // While scripted answers are left; after them every box takes its default.
    [[nodiscard]] bool someoneAnswers() const override {
        return !answers_.empty() || !texts_.empty();
    }

    [[nodiscard]] const std::vector<Shown>& transcript() const { return transcript_; }
    [[nodiscard]] std::vector<std::string> texts() const;
    [[nodiscard]] std::size_t unusedAnswers() const { return answers_.size() + texts_.size(); }
    void clear() { transcript_.clear(); }

  private:
    std::optional<std::string> nextText(std::optional<std::string> fallback);

    std::deque<platform::Answer> answers_;
    std::deque<std::optional<std::string>> texts_;
    std::vector<Shown> transcript_;
};

}  // namespace ovd::testing
