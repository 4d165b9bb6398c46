#pragma once
// Every question, message box, input box, file or folder chooser and passive
// pop-up the station shows goes through this interface: the desktop shows real
// dialogs, tests answer from a script and keep a transcript, and the headless
// station answers by policy.

#include <optional>
#include <string>
#include <vector>

namespace ovd::platform {

enum class Answer { Ok, Cancel, Yes, No };
enum class Buttons { Ok, OkCancel, YesNo, YesNoCancel };
enum class Severity { Information, Question, Warning, Critical };

struct MessageRequest {
    std::string text;
    std::string title;
    Buttons buttons = Buttons::Ok;
    Answer defaultAnswer = Answer::Ok;
    Severity severity = Severity::Information;
};

struct InputRequest {
    std::string prompt;
    std::string title;
    std::string initialText;
};

struct FileFilter {
    std::string description;            // "Wave Files"
    std::vector<std::string> patterns;  // {"*.wav"}
};

struct FileRequest {
    enum class Mode { Open, Save };
    Mode mode = Mode::Open;
    std::string title;
    std::string initialFolder;
    std::string initialName;
    std::vector<FileFilter> filters;
};

struct FolderRequest {
    std::string title;
    std::string initialFolder;
};

// The passive pop-up: shown without taking the focus, and gone by itself.
struct Notification {
    std::string title;
    std::string heading;
    std::string body;
    std::string backgroundColor;  // "#rrggbb"
    std::string textColor;        // "#rrggbb"
    std::string soundFile;        // played when shown; empty for none
    int showMilliseconds = 8000;
    // When set, the ground shades from backgroundColor at the top to this at the bottom.
    std::string backgroundColorEnd = {};
};

class Prompts {
  public:
    virtual ~Prompts() = default;

    // Returns the button chosen; closing the box gives the default answer.
    virtual Answer message(const MessageRequest& request) = 0;
    // Returns nothing when the user cancels.
    virtual std::optional<std::string> input(const InputRequest& request) = 0;
    virtual std::optional<std::string> chooseFile(const FileRequest& request) = 0;
    virtual std::optional<std::string> chooseFolder(const FolderRequest& request) = 0;
    virtual void notify(const Notification& notification) = 0;
    // False when nobody is there to answer: the next box takes its default or a
    // fixed rule, so asking the same question again can't bring another answer.
    [[nodiscard]] virtual bool someoneAnswers() const { return true; }

    // The shapes the station uses most.
    void showMessage(const std::string& text, const std::string& title = {},
                     Severity severity = Severity::Information);
    [[nodiscard]] bool askYesNo(const std::string& text, const std::string& title = {},
                                Answer defaultAnswer = Answer::Yes);
};

}  // namespace ovd::platform
