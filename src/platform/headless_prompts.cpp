#include "platform/headless_prompts.h"

#include <ostream>
#include <sstream>

#include "platform/text.h"

namespace ovd::platform {

namespace {
constexpr const char* kCancelWord = "<cancel>";
constexpr const char* kArrow = "=>";

bool allows(Buttons buttons, Answer answer) {
    switch (buttons) {
        case Buttons::Ok:
            return answer == Answer::Ok;
        case Buttons::OkCancel:
            return answer == Answer::Ok || answer == Answer::Cancel;
        case Buttons::YesNo:
            return answer == Answer::Yes || answer == Answer::No;
        case Buttons::YesNoCancel:
            return answer != Answer::Ok;
    }
    return false;
}
}  // namespace

std::optional<Answer> parseAnswer(const std::string& word) {
    const std::string w = toUpper(trim(word));
    if (w == "OK") return Answer::Ok;
    if (w == "CANCEL") return Answer::Cancel;
    if (w == "YES") return Answer::Yes;
    if (w == "NO") return Answer::No;
    return std::nullopt;
}

std::string answerName(Answer answer) {
    switch (answer) {
        case Answer::Ok:
            return "Ok";
        case Answer::Cancel:
            return "Cancel";
        case Answer::Yes:
            return "Yes";
        case Answer::No:
            return "No";
    }
    return "?";
}

HeadlessPrompts::HeadlessPrompts(EventLineSink eventLog, std::ostream& err)
    : eventLog_(std::move(eventLog)), err_(err) {}

void HeadlessPrompts::loadRules(const std::string& text) {
    int lineNumber = 0;
    for (const std::string& raw : splitLines(text)) {
        ++lineNumber;
        const std::string line = trim(raw);
        if (line.empty() || line.front() == '#') continue;
        const auto arrow = line.find(kArrow);
        if (arrow == std::string::npos || trim(line.substr(0, arrow)).empty()) {
            err_ << "answers file line " << lineNumber << " has no \"fragment => answer\": " << line
                 << '\n';
            continue;
        }
        rules_.push_back({trim(line.substr(0, arrow)), trim(line.substr(arrow + 2))});
    }
}

const HeadlessPrompts::Rule* HeadlessPrompts::findRule(const std::string& text,
                                                       const std::string& title) const {
    for (const Rule& rule : rules_) {
        if (text.find(rule.fragment) != std::string::npos ||
            title.find(rule.fragment) != std::string::npos) {
            return &rule;
        }
    }
    return nullptr;
}

void HeadlessPrompts::tell(const std::string& line) {
    err_ << line << '\n';
    err_.flush();
    if (eventLog_) eventLog_(line);
}

Answer HeadlessPrompts::message(const MessageRequest& request) {
    Answer answer = request.defaultAnswer;
    if (const Rule* rule = findRule(request.text, request.title)) {
        const auto ruled = parseAnswer(rule->answer);
        if (ruled && allows(request.buttons, *ruled)) answer = *ruled;
    }
    if (!allows(request.buttons, answer)) {
        answer = request.buttons == Buttons::YesNo || request.buttons == Buttons::YesNoCancel
                     ? Answer::Yes
                     : Answer::Ok;
    }
    tell("[message] " + request.title + ": " + request.text + " -> " + answerName(answer));
    return answer;
}

std::optional<std::string> HeadlessPrompts::input(const InputRequest& request) {
    std::optional<std::string> result = request.initialText;
    if (const Rule* rule = findRule(request.prompt, request.title)) {
        result = rule->answer == kCancelWord ? std::nullopt : std::optional(rule->answer);
    }
    tell("[input] " + request.title + ": " + request.prompt + " -> " +
         (result ? "\"" + *result + "\"" : std::string(kCancelWord)));
    return result;
}

std::optional<std::string> HeadlessPrompts::chooseFile(const FileRequest& request) {
    std::optional<std::string> result;
    if (const Rule* rule = findRule(request.title, request.title)) {
        if (rule->answer != kCancelWord) result = rule->answer;
    }
    tell("[file] " + request.title + " -> " + result.value_or(kCancelWord));
    return result;
}

std::optional<std::string> HeadlessPrompts::chooseFolder(const FolderRequest& request) {
    std::optional<std::string> result;
    if (const Rule* rule = findRule(request.title, request.title)) {
        if (rule->answer != kCancelWord) result = rule->answer;
    }
    tell("[folder] " + request.title + " -> " + result.value_or(kCancelWord));
    return result;
}

void HeadlessPrompts::notify(const Notification& notification) {
    tell("[notice] " + notification.title + ": " + notification.heading + " " + notification.body);
}

}  // namespace ovd::platform
