#pragma once
// The end of letter: the one action that finishes a dictation. The file is
// ended, saved and closed, handed to delivery, and the next file opens (or the
// program ends, when the settings say so). A second trigger while it runs does
// nothing.

#include <functional>
#include <string>

#include "devices/letter_actions.h"
#include "dictation/dictation.h"
#include "engine/prompt_player.h"
#include "platform/timer.h"

namespace ovd::station {

using devices::SendWording;
using devices::Staging;

inline constexpr const char* kEOLExecuting = "EOL is Executing";
inline constexpr const char* kFinishedLetterPicture = "Match.ico";

// What happens to a closed letter: the destination copies, the report and the
// staging for e-mail and FTP, and the desk unit's one-destination sends.
class LetterDelivery {
  public:
    virtual ~LetterDelivery() = default;
    // Copies, reports and stages the closed file whose path the variable holds,
    // as the settings ask. The variable is read again before each destination and
    // each staging; found empty, the delivery stops there and returns false.
    virtual bool deliver(const std::string& SaveFileNameForSending) = 0;
    virtual void destinationNotTried(int destination, const std::string& notice) = 0;
    virtual void sendToDestination(int destination, const std::string& path,
                                   const SendWording& wording) = 0;
    virtual void stageForSending(Staging staging, const std::string& path) = 0;
};

class EndOfLetter : public devices::LetterActions {
  public:
    EndOfLetter(dictation::Dictation& dictation, settings::ConfigFile& config,
                settings::EventLog& log, platform::EventLoop& loop, engine::PromptPlayer& voice,
                LetterDelivery& delivery);

    void beep() override;
    void startEndOfLetter() override;
    void endOfLetter() override;
    [[nodiscard]] bool exitRequested() const override { return ExitRequested; }
    void startTimClose() override;
    void exitProgram() override;
    void destinationNotTried(int destination, const std::string& notice) override;
    void sendToDestination(int destination, const std::string& path,
                           const SendWording& wording) override;
    void stageForSending(Staging staging, const std::string& path) override;

    bool DoingEOL = false;
    bool ExitRequested = false;
    std::string SaveFileNameForSending;
    // Ends the program in order; the station sets it.
    std::function<void()> onExit;
    platform::Timer TimClose;

  private:
    void showReady();
    void waitForFile();

    dictation::Dictation& d_;
    settings::ConfigFile& config_;
    settings::EventLog& log_;
    platform::EventLoop& loop_;
    engine::PromptPlayer& voice_;
    LetterDelivery& delivery_;
};

}  // namespace ovd::station
