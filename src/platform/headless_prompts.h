#pragma once
// The headless station's answers: nobody is there to click, so each box takes
// its default button unless an answers file says otherwise, and every text shown
// is written to standard error and to the event log, so nothing goes unseen.
//
// Answers file: one rule per line, "fragment => answer". The first rule whose
// fragment occurs in the box's text or title decides. For message boxes the
// answer is Ok, Cancel, Yes or No; for input boxes and choosers it is the text to
// return, or <cancel>. Lines starting with '#' are comments.

#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

#include "platform/prompts.h"
#include "platform/waiting.h"

namespace ovd::platform {

class HeadlessPrompts : public Prompts {
  public:
    HeadlessPrompts(EventLineSink eventLog, std::ostream& err);

    // Reads rules from text; malformed lines are reported on the error stream and skipped.
    void loadRules(const std::string& text);

    Answer message(const MessageRequest& request) override;
    std::optional<std::string> input(const InputRequest& request) override;
    std::optional<std::string> chooseFile(const FileRequest& request) override;
    std::optional<std::string> chooseFolder(const FolderRequest& request) override;
    void notify(const Notification& notification) override;
    // The answers are a policy: the same box always gets the same one.
    [[nodiscard]] bool someoneAnswers() const override { return false; }

  private:
    struct Rule {
        std::string fragment;
        std::string answer;
    };
    [[nodiscard]] const Rule* findRule(const std::string& text, const std::string& title) const;
    void tell(const std::string& line);

    EventLineSink eventLog_;
    std::ostream& err_;
    std::vector<Rule> rules_;
};

// "Yes" -> Answer::Yes and so on, without regard to case; nothing for other words.
std::optional<Answer> parseAnswer(const std::string& word);
std::string answerName(Answer answer);

}  // namespace ovd::platform
