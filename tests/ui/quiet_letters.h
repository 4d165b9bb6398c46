#pragma once
// The end of letter's actions, done by nobody: for windows tested without delivery.

#include "devices/letter_actions.h"

namespace ovd::ui::testing {

struct QuietLetters : devices::LetterActions {
    void beep() override {}
    void startEndOfLetter() override {}
    void endOfLetter() override {}
    bool exitRequested() const override { return false; }
    void startTimClose() override {}
    void exitProgram() override {}
    void destinationNotTried(int, const std::string&) override {}
    void sendToDestination(int, const std::string&, const devices::SendWording&) override {}
    void stageForSending(devices::Staging, const std::string&) override {}
};

}  // namespace ovd::ui::testing
