#include "delivery/companion.h"

#include "platform/files.h"
#include "platform/processes.h"
#include "platform/system_queries.h"

namespace ovd::delivery {

AutoSendCompanion::AutoSendCompanion(settings::EventLog& log, std::string binaryFolder,
                                     std::string dataFolder)
    : log_(log), binaryFolder_(std::move(binaryFolder)), dataFolder_(std::move(dataFolder)) {}

std::string AutoSendCompanion::programPath() const {
    return platform::joinPath(binaryFolder_, kProgramName);
}

bool AutoSendCompanion::installed() const { return platform::fileExists(programPath()); }

bool AutoSendCompanion::running() const { return platform::ProcessRunning(kProgramName); }

void AutoSendCompanion::start() {
    if (running()) return;
    if (!installed()) {
        log_.trace(std::string(kProgramName) + " is not installed beside the station; staged files wait in place");
        return;
    }
    std::string error;
    if (const auto pid = platform::startProgram(programPath(), {"--data-folder", dataFolder_}, error)) {
        log_.trace("Started " + std::string(kProgramName) + " (process " + std::to_string(*pid) + ")");
    } else {
        log_.trace("Could not start " + std::string(kProgramName) + ": " + error);
    }
}

void AutoSendCompanion::stop() {
    if (!installed() || !running()) return;
    std::string error;
    if (!platform::runProgram(programPath(), {"--stop", "--data-folder", dataFolder_}, 5000, error)) {
        log_.trace("Could not stop " + std::string(kProgramName) + ": " + error);
    }
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
