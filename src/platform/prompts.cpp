#include "platform/prompts.h"

namespace ovd::platform {

void Prompts::showMessage(const std::string& text, const std::string& title, Severity severity) {
    message({text, title, Buttons::Ok, Answer::Ok, severity});
}

bool Prompts::askYesNo(const std::string& text, const std::string& title, Answer defaultAnswer) {
    return message({text, title, Buttons::YesNo, defaultAnswer, Severity::Question}) == Answer::Yes;
}

}  // namespace ovd::platform
