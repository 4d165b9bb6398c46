#pragma once
// What happens to a finished letter: it is copied to up to three folders, each
// copy watched for ten seconds before the author is asked whether to keep trying;
// the outcome goes to the peer or to the author; and the letter is staged for the
// companion sender's e-mail and FTP. No failure stops the sequence: each is noted,
// shown in the error pop-up, and the next step runs.

#include <array>
#include <string>

#include "delivery/companion.h"
#include "delivery/peer_link.h"
#include "engine/prompt_player.h"
#include "platform/event_loop.h"
#include "platform/prompts.h"
#include "settings/config_file.h"
#include "settings/event_log.h"

namespace ovd::delivery {

inline constexpr const char* kWaitingForFile = "Waiting For File to be Available";
inline constexpr int kCopyWaitSeconds = 10;
inline constexpr int kPromptWaitSeconds = 3;

// The words of one destination's copy: the end of letter has its own, the desk
// unit's one-destination send has others.
struct SendWording {
    std::string keepTrying;     // the question after 10 seconds without the copy
    std::string notSent;        // the box after No
    std::string missingTrace;   // a send action's copy is not in the folder after the wait: traced
    std::string missingNotice;  // and shown in the error pop-up
};

// The end of letter's words for destination 1 to 3.
SendWording endOfLetterWording(int destination);

enum class Staging { Email, Ftp };

// The passive pop-up of a failed delivery (ErrorSendFileNotification), which the
// companion sender shows too; ding.wav comes from the sound folder.
platform::Notification errorSendNotification(const std::string& text,
                                             const std::string& soundFolder);

// Where the pipeline writes on the main window.
class DeliveryScreen {
  public:
    virtual ~DeliveryScreen() = default;
    virtual void showStatusText(const std::string& text) = 0;  // showLabel40
    // lblReady; the caller has already blanked it for the thinnest face.
    virtual void showLblReady(const std::string& text) = 0;
};

struct AutoSendParts {
    platform::EventLoop& loop;
    settings::ConfigFile& config;
    settings::EventLog& log;
    platform::Prompts& prompts;
    PeerLink& peer;
    engine::PromptPlayer& voice;
    AutoSendMenu& menu;
    CompanionSender& companion;
    DeliveryScreen& screen;
    std::string soundFolder;  // ding.wav for the error pop-up
};

class AutoSend {
  public:
    explicit AutoSend(AutoSendParts parts);

    // The copies, the report and the staging of the closed letter whose path the
    // variable holds. It is read again before each destination and each staging:
    // emptied meanwhile, the sequence stops there and false is returned.
    bool deliver(const std::string& SaveFileNameForSending);

    // ---- The desk unit's sends of the file now open ----
    void destinationNotTried(int destination, const std::string& notice);
    void sendToDestination(int destination, const std::string& path, const SendWording& wording);
    void stageForSending(Staging staging, const std::string& path);

    // The reports, run after the copies of an end of letter.
    void ReportOutcomeToPeer(const std::string& baseName);
    void ReportOutcomeToUser();

    // The passive pop-up for a failed delivery, with SendStatusText's kind of text.
    void ErrorSendFileNotification(const std::string& text);
    // Starts the companion sender unless it runs.
    void LaunchCompanion();

    bool& DestFailed(int destination) {
        return failed_.at(static_cast<std::size_t>(destination - 1));
    }
    [[nodiscard]] bool DestFailed(int destination) const {
        return failed_.at(static_cast<std::size_t>(destination - 1));
    }
    std::string SendStatusText;

  private:
    enum class CopyOutcome { Copied, Bypassed, Canceled };
    CopyOutcome copyStep(int destination, const std::string& source, const SendWording& wording,
                         bool sendAction);
    bool waitForCopy(const std::string& target, const std::string& tag);
    void playSentPrompt(int destination);
    void stage(Staging staging, const std::string& source);
    void missingFolderBoxes(bool destinationThreeAsTwo);
    void box(const std::string& text);
    void lblReady(const std::string& text);
    void trace(const std::string& line);

    platform::EventLoop& loop_;
    settings::ConfigFile& config_;
    settings::EventLog& log_;
    platform::Prompts& prompts_;
    PeerLink& peer_;
    engine::PromptPlayer& voice_;
    AutoSendMenu& menu_;
    CompanionSender& companion_;
    DeliveryScreen& screen_;
    std::string soundFolder_;
    std::array<bool, 3> failed_{};
};

}  // namespace ovd::delivery
