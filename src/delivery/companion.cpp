#include "delivery/companion.h"

#include "delivery/companion_lock.h"
#include "platform/files.h"
#include "platform/processes.h"
#include "platform/system_queries.h"

namespace ovd::delivery {

namespace {

// How long a stop request may take before the log says it did not work.
constexpr platform::Milliseconds kStopTimeout{5000};

}  // namespace

AutoSendCompanion::AutoSendCompanion(platform::EventLoop& loop, settings::EventLog& log,
                                     std::string binaryFolder, std::string dataFolder)
    : loop_(loop),
      log_(log),
      binaryFolder_(std::move(binaryFolder)),
      dataFolder_(std::move(dataFolder)) {}

AutoSendCompanion::~AutoSendCompanion() = default;

void AutoSendCompanion::keep(std::unique_ptr<platform::ChildProcess> child) {
    std::erase_if(children_, [](const auto& held) { return held->ended(); });
    children_.push_back(std::move(child));
}

std::string AutoSendCompanion::programPath() const {
    return platform::joinPath(binaryFolder_, kProgramName);
}

bool AutoSendCompanion::installed() const { return platform::fileExists(programPath()); }

// The companion of this data folder only: another station's companion on the same
// machine delivers another station's letters.
bool AutoSendCompanion::running() const { return runningCompanion(dataFolder_).has_value(); }

void AutoSendCompanion::start() {
    if (running()) return;
    if (!installed()) {
        log_.trace(std::string(kProgramName) +
                   " is not installed beside the station; staged files wait in place");
        return;
    }
    auto child =
        platform::ChildProcess::start(loop_, programPath(), {"--data-folder", dataFolder_});
    if (!child) {
        log_.trace("Could not start " + std::string(kProgramName) + ": " + child.error());
        return;
    }
    log_.trace("Started " + std::string(kProgramName) + " (process " +
               std::to_string((*child)->pid()) + ")");
    keep(std::move(*child));
}

void AutoSendCompanion::stop() {
    if (!installed() || !running()) return;
    const auto couldNotStop = [this](const std::string& reason) {
        log_.trace("Could not stop " + std::string(kProgramName) + ": " + reason);
    };
    // The stop request runs while the station goes on; its end is heard on the loop.
    auto child = platform::ChildProcess::start(
        loop_, programPath(), {"--stop", "--data-folder", dataFolder_}, kStopTimeout,
        [couldNotStop](const platform::Result<int>& status) {
            if (!status) couldNotStop(status.error());
        });
    if (!child) {
        couldNotStop(child.error());
        return;
    }
    keep(std::move(*child));
}

AutoSendMenu::AutoSendMenu(platform::EventLoop& loop, const settings::SettingsRecord& settings,
                           CompanionSender& companion)
    : tmchkAutoSend(loop, "tmchkAutoSend", 500), settings_(settings), companion_(companion) {
    tmchkAutoSend.setOnTick([this] { refresh(); });
}

void AutoSendMenu::refresh() {
    Caption = companion_.running() ? kManuallyStopAutoSend : kManuallyStartAutoSend;
}

void AutoSendMenu::started() { Caption = kManuallyStopAutoSend; }

void AutoSendMenu::mnAutoSend_Click() {
    if (!settings_.AutoFTP && !settings_.AutoEmail) return;
    if (!companion_.running()) {
        // One start for each kind of sending that is on; a running companion
        // ignores the second.
        if (settings_.AutoFTP) companion_.start();
        if (settings_.AutoEmail) companion_.start();
        Caption = kManuallyStopAutoSend;
    } else {
        companion_.stop();
        Caption = kManuallyStartAutoSend;
    }
}

}  // namespace ovd::delivery
