#include "delivery/auto_send.h"

#include "engine/file_tags.h"
#include "platform/files.h"
#include "platform/system_queries.h"
#include "platform/text.h"
#include "platform/waiting.h"

namespace ovd::delivery {

namespace {

constexpr std::array<const char*, 3> kNumberWords = {"One", "Two", "Three"};
constexpr std::array<const char*, 3> kNotDefinedTraces = {
    "Destination One has not been defined-Bypassing Sending to Destination One.",
    "Destination Two has not been defined-Bypassing step",
    "Destination Three has not been defined-Bypassing step"};
constexpr std::array<const char*, 3> kCopyTags = {" -A", " -C", " -E"};
constexpr std::array<const char*, 3> kPromptTags = {" -B", " -D", " -F"};
constexpr const char* kUserClickedOk = " USER CLICKED OK";

std::size_t index(int destination) { return static_cast<std::size_t>(destination - 1); }

std::string missingFolderText(int destination) {
    return "Auto Send Destination " + std::to_string(destination) +
           " has been check marked but a destination folder has not been defined.";
}

// One row of the peer's report: which destinations were on, which of them
// failed, the messages in order and the box after them.
struct PeerRow {
    int active;  // bit 0 destination 1, bit 1 destination 2, bit 2 destination 3
    int failed;
    struct Message {
        const char* prefix;
        const char* tag;
        const char* queuedPrefix;  // null: the message itself is queued
    };
    std::vector<Message> messages;
    const char* flags;  // the digits stand for the destinations' failure flags
    const char* ending;
};

// The rows as the peer has always been told, slips included: a failure of
// destination 3 alone opens with "DICTERR_", some rows name another destination's
// prefix or queue a different one, and with destinations 2 and 3 on, a failure of
// just one of them is not reported.
const std::vector<PeerRow>& peerRows() {
    static const std::vector<PeerRow> rows = {
        {7,
         1,
         {{"DICT_", " -H", nullptr}, {"ERRDST1_", " -I", nullptr}},
         "1",
         " FAILED-- Call Technical support-1"},
        {7,
         2,
         {{"DICT_", " -J", nullptr}, {"ERRDST2_", " -K", nullptr}},
         "2",
         " FAILED-- Call Technical support-2"},
        {7,
         4,
         {{"DICTERR_", " -O", nullptr},
          {"ERRDST3_", " -P", nullptr},
          {"ERRDST2_", " -Q", "ERRDST3_"}},
         "3",
         " FAILED-- Call Technical support-3"},
        {7,
         3,
         {{"DICTERR_", " -X", nullptr},
          {"ERRDST1&2_", " -Y", nullptr},
          {"ERRDST1&2_", " -Z", nullptr}},
         "1 & 2",
         " FAILED-- Call Technical support-33"},
        {7,
         5,
         {{"DICTERR_", " -U", nullptr},
          {"ERRDST1_", " -V", "ERRDST1&3_"},
          {"ERRDST2_", " -W", "ERRDST1&3_"}},
         "1 & 3",
         " FAILED-- Call Technical support-333"},
        {7,
         6,
         {{"DICTERR_", " -R", nullptr},
          {"ERRDST1_", " -S", "ERRDST2&3_"},
          {"ERRDST2&3_", " -T", nullptr}},
         "2 3",
         " FAILED-- Call Technical support-3"},
        {7,
         7,
         {{"DICTERR_", " -L", nullptr},
          {"ERRDST1&2&3_", " -M", nullptr},
          {"ERRDST1&2&3_", " -N", nullptr}},
         "1 & 2 3",
         " FAILED-- Call Technical support-3"},
        {3,
         1,
         {{"DICT_", " -9", nullptr}, {"ERRDST1_", " -10", nullptr}},
         "1",
         " FAILED-- Call Technical support-1"},
        {3,
         2,
         {{"DICT_", " -11", nullptr}, {"ERRDST2_", " -12", nullptr}},
         "2",
         " FAILED-- Call Technical support-2"},
        {3,
         3,
         {{"DICTERR_", " -11a", nullptr},
          {"ERRDST1&2_", " -12b", nullptr},
          {"ERRDST1&2_", " -13", nullptr}},
         "1 & 2",
         " FAILED-- Call Technical support-3"},
        {1,
         1,
         {{"DICT_", " -A2", nullptr}, {"ERRDST1_", " -A3", nullptr}},
         "1",
         " FAILED-- Call Technical support-4"},
        {2,
         2,
         {{"DICT_", " -A5", nullptr}, {"ERRDST2_", " -A6", nullptr}},
         "2",
         " FAILED-- Call Technical support-5"},
        {4,
         4,
         {{"DICT_", " -A5", nullptr}, {"ERRDST3_", " -A6", nullptr}},
         "3",
         " FAILED-- Call Technical support-5"},
        {5,
         1,
         {{"DICT_", " -H", nullptr}, {"ERRDST1&3_", " -I", "ERRDST1_"}},
         "1",
         " FAILED-- Call Technical support-1"},
        {5,
         4,
         {{"DICTERR_", " -O", nullptr}, {"ERRDST1_", " -P", nullptr}, {"ERRDST2_", " -Q", nullptr}},
         "3",
         " FAILED-- Call Technical support-3"},
        {5,
         5,
         {{"DICTERR_", " -L", nullptr}, {"ERRDST1_", " -M", nullptr}, {"ERRDST2_", " -N", nullptr}},
         "1 & 3",
         " FAILED-- Call Technical support-3"},
        {6,
         6,
         {{"DICTERR_", " -R", nullptr}, {"ERRDST1_", " -S", nullptr}, {"ERRDST2_", " -T", nullptr}},
         "2 3",
         " FAILED-- Call Technical support-3"},
    };
    return rows;
}

}  // namespace

SendWording endOfLetterWording(int destination) {
    const std::string n = std::to_string(destination);
    return {"File has been sending to Destination " + n +
                " for 10 Seconds. Would you like to keep trying to send?",
            "File may have not been sent to Destination " + n, "", ""};
}

AutoSend::AutoSend(AutoSendParts parts)
    : loop_(parts.loop),
      config_(parts.config),
      log_(parts.log),
      prompts_(parts.prompts),
      peer_(parts.peer),
      voice_(parts.voice),
      menu_(parts.menu),
      companion_(parts.companion),
      screen_(parts.screen),
      soundFolder_(std::move(parts.soundFolder)) {}

void AutoSend::trace(const std::string& line) { log_.trace(line); }

void AutoSend::lblReady(const std::string& text) {
    screen_.showLblReady(config_.record.ScreenSize == "SuperThin" ? "" : text);
}

void AutoSend::box(const std::string& text) {
    prompts_.message({text, settings::kProductTitle, platform::Buttons::Ok, platform::Answer::Ok,
                      platform::Severity::Information});
}

platform::Notification errorSendNotification(const std::string& text,
                                             const std::string& soundFolder) {
    platform::Notification notice;
    notice.title = "Error Send Notification!";
    notice.heading = "Error Send File Notification!";
    notice.body = "OVQDUDR Sending Status :       " + text;
    notice.backgroundColor = "#200040";
    notice.backgroundColorEnd = "#100020";
    notice.textColor = "#ffffff";
    notice.soundFile = platform::joinPath(soundFolder, "ding.wav");
    return notice;
}

void AutoSend::ErrorSendFileNotification(const std::string& text) {
    prompts_.notify(errorSendNotification(text, soundFolder_));
}

bool AutoSend::deliver(const std::string& SaveFileNameForSending) {
    const settings::SettingsRecord& record = config_.record;
    const std::array<bool, 3> active = {record.AutoSend1, record.AutoSend2, record.AutoSend3};
    std::array<bool, 3> canceled{};
    for (int n = 1; n <= 3; ++n) {
        if (SaveFileNameForSending.empty()) return false;
        if (!active[index(n)]) continue;
        const std::string source = SaveFileNameForSending;
        canceled[index(n)] =
            copyStep(n, source, endOfLetterWording(n), false) == CopyOutcome::Canceled;
    }
    // A destination the author gave up on leaves the whole report out.
    if (!canceled[0] && !canceled[1] && !canceled[2]) {
        if (record.TCP) {
            ReportOutcomeToPeer(platform::withoutFolder(SaveFileNameForSending));
        } else {
            ReportOutcomeToUser();
        }
    }
    failed_ = {};
    // The staged deliveries do not depend on the folders.
    for (const Staging staging : {Staging::Email, Staging::Ftp}) {
        if (!(staging == Staging::Email ? record.AutoEmail : record.AutoFTP)) continue;
        if (SaveFileNameForSending.empty()) return false;
        stage(staging, SaveFileNameForSending);
        LaunchCompanion();
    }
    return true;
}

AutoSend::CopyOutcome AutoSend::copyStep(int n, const std::string& source,
                                         const SendWording& wording, bool sendAction) {
    const settings::SettingsRecord& record = config_.record;
    const std::array<const std::string*, 3> folders = {&record.SendToOne, &record.SendToTwo,
                                                       &record.SendToThree};
    const std::string baseName = platform::withoutFolder(source);
    for (;;) {
        const std::string folder = *folders[index(n)];
        const std::string target = platform::joinPath(folder, baseName);
        const auto bypass = [&](const std::string& traced) {
            trace(traced);
            SendStatusText = "Destination " + folder + " Error: Not Sent";
            ErrorSendFileNotification(SendStatusText);
            DestFailed(n) = true;
            return CopyOutcome::Bypassed;
        };
        if (folder.empty()) return bypass(kNotDefinedTraces[index(n)]);
        if (!platform::folderExists(folder)) {
            return bypass("Destination " + folder +
                          " Does NOT Exist or NOT Available-Bypassing step: " + target);
        }
        lblReady(std::string("Sending File to Destination ") + kNumberWords[index(n)]);
        // The details of a letter without tags go first, so the letter never
        // stands in the folder without them.
        if (auto details = engine::copyDetailsFile(source, target); !details)
            trace(baseName + " details not copied: " + details.error());
        // A copy that fails shows as a copy that never becomes available.
        (void)platform::copyFileOver(source, target);
        const bool copied = waitForCopy(target, kCopyTags[index(n)]);
        if (sendAction && !platform::fileExists(target)) {
            trace(wording.missingTrace);
            SendStatusText = wording.missingNotice;
            ErrorSendFileNotification(SendStatusText);
            DestFailed(n) = true;
            return CopyOutcome::Bypassed;
        }
        if (copied) {
            trace("Destination " + folder + " Successfull : " + target);
            playSentPrompt(n);
            return CopyOutcome::Copied;
        }
        const bool again =
            prompts_.askYesNo(wording.keepTrying, settings::kProductTitle, platform::Answer::No);
        if (again) {
            // Destination one has never said so in the log.
            if (n != 1)
                trace("Destination " + folder + " User Selected to wait another 10 Seconds.");
            continue;
        }
        box(wording.notSent);
        // The connection words stand in this line whether or not the peer link is used.
        trace("Destination " + folder + " User Canceled-Bypassing step: " + target +
              kConnectionErrorTrace);
        SendStatusText = "Destination " + folder + ": User Canceled-Bypassing step";
        ErrorSendFileNotification(SendStatusText);
        DestFailed(n) = true;
        return CopyOutcome::Canceled;
    }
}

bool AutoSend::waitForCopy(const std::string& target, const std::string& tag) {
    trace(" Pausing = " + std::to_string(kCopyWaitSeconds) + tag);
    const auto until = loop_.now() + std::chrono::seconds(kCopyWaitSeconds);
    for (;;) {
        if (platform::FileAvailable(target)) return true;
        if (loop_.now() >= until) return false;
        loop_.wait(platform::Milliseconds(100));
    }
}

void AutoSend::playSentPrompt(int n) {
    if (!config_.record.VoicePrompts) return;
    voice_.PlayPrompt("FileSent" + std::to_string(n) + "MSG.WAV", true);
    trace(" Pausing = " + std::to_string(kPromptWaitSeconds) + kPromptTags[index(n)]);
    const auto until = loop_.now() + std::chrono::seconds(kPromptWaitSeconds);
    while (voice_.Playing() && loop_.now() < until) loop_.wait(platform::Milliseconds(100));
}

void AutoSend::stage(Staging staging, const std::string& source) {
    const bool email = staging == Staging::Email;
    const std::string folder = platform::joinPath(config_.record.CaptureFilePath.toText(),
                                                  email ? "EmailTemp" : "FTPTemp");
    const std::string baseName = platform::withoutFolder(source);
    // A copy that fails leaves nothing for the companion to send; the letter itself stays.
    platform::Result<void> staged = platform::createFolder(folder);
    if (staged) {
        // The details first, as at a destination; without them the letter still goes.
        if (auto details = engine::copyDetailsFile(source, platform::joinPath(folder, baseName));
            !details)
            trace(baseName + " details not staged: " + details.error());
        staged = platform::copyFileOver(source, platform::joinPath(folder, baseName));
    }
    if (!staged) trace(baseName + " could not be staged in " + folder + ": " + staged.error());
    screen_.showStatusText(email ? "File is ready to EMail" : "File is ready to FTP");
    trace(baseName + (email ? " File is ready to Email" : " File is ready to FTP"));
}

void AutoSend::LaunchCompanion() {
    menu_.started();
    if (!companion_.running()) companion_.start();
}

void AutoSend::missingFolderBoxes(bool destinationThreeAsTwo) {
    const settings::SettingsRecord& record = config_.record;
    const std::array<bool, 3> active = {record.AutoSend1, record.AutoSend2, record.AutoSend3};
    const std::array<const std::string*, 3> folders = {&record.SendToOne, &record.SendToTwo,
                                                       &record.SendToThree};
    for (int n = 1; n <= 3; ++n) {
        if (!active[index(n)] || !folders[index(n)]->empty()) continue;
        box(missingFolderText(n == 3 && destinationThreeAsTwo ? 2 : n));
    }
}

void AutoSend::ReportOutcomeToPeer(const std::string& baseName) {
    const settings::SettingsRecord& record = config_.record;
    const int active =
        (record.AutoSend1 ? 1 : 0) | (record.AutoSend2 ? 2 : 0) | (record.AutoSend3 ? 4 : 0);
    if (active == 0) return;
    if (!failed_[0] && !failed_[1] && !failed_[2]) {
        trace("NO FAILURES");
        return;
    }
    // With destination 3 alone, or 2 and 3, the box of destination 2 speaks for 3 too.
    missingFolderBoxes(active == 4 || active == 6);
    const int failed =
        ((failed_[0] ? 1 : 0) | (failed_[1] ? 2 : 0) | (failed_[2] ? 4 : 0)) & active;
    for (const PeerRow& row : peerRows()) {
        if (row.active != active || row.failed != failed) continue;
        for (const PeerRow::Message& message : row.messages) {
            const std::string text = message.prefix + baseName;
            trace("SENDING MSG " + text);
            peer_.send({text, message.tag,
                        message.queuedPrefix != nullptr ? message.queuedPrefix + baseName : "",
                        kReportSentTrace});
        }
        std::string flags;
        for (const char* c = row.flags; *c != '\0'; ++c) {
            flags += (*c >= '1' && *c <= '3') ? platform::boolText(failed_[index(*c - '0')])
                                              : std::string(1, *c);
        }
        box("SaveFile to " + flags + row.ending);
        trace(kUserClickedOk);
        return;
    }
}

void AutoSend::ReportOutcomeToUser() {
    const settings::SettingsRecord& record = config_.record;
    const std::array<bool, 3> active = {record.AutoSend1, record.AutoSend2, record.AutoSend3};
    const std::array<const std::string*, 3> folders = {&record.SendToOne, &record.SendToTwo,
                                                       &record.SendToThree};
    if (!active[0] && !active[1] && !active[2]) return;
    missingFolderBoxes(false);
    // Each active folder, then its word; the separators are not the same in every
    // combination, nor is the spelling when destinations 1 and 2 alone are on.
    std::vector<int> shown;
    for (int n = 1; n <= 3; ++n) {
        if (active[index(n)]) shown.push_back(n);
    }
    const auto word = [&](int n, const char* failedWord, const char* goodWord) {
        return *folders[index(n)] + (DestFailed(n) ? failedWord : goodWord);
    };
    std::string text;
    if (shown.size() == 3) {
        text = word(1, " Failed - ", " Successful - ") + word(2, " Failed- ", " Successful- ") +
               word(3, " Failed", " Successful");
    } else if (shown.size() == 2 && shown[0] == 1 && shown[1] == 2) {
        text = word(1, " Failed - ", " Sucessful - ") + word(2, " Failed", " Sucessful");
    } else if (shown.size() == 2) {
        text =
            word(shown[0], " Failed- ", " Successful- ") + word(shown[1], " Failed", " Successful");
    } else {
        text = *folders[index(shown[0])] + " Failed";
    }
    bool anyFailed = false;
    for (const int n : shown) anyFailed = anyFailed || DestFailed(n);
    if (!anyFailed) {
        trace("Delivery: " +
              (shown.size() == 1 ? *folders[index(shown[0])] + " Successful" : text));
        return;
    }
    box(text);
    trace(kUserClickedOk);
}

void AutoSend::destinationNotTried(int destination, const std::string& notice) {
    DestFailed(destination) = true;
    SendStatusText = notice;
    ErrorSendFileNotification(SendStatusText);
}

void AutoSend::sendToDestination(int destination, const std::string& path,
                                 const SendWording& wording) {
    (void)copyStep(destination, path, wording, true);
}

void AutoSend::stageForSending(Staging staging, const std::string& path) {
    stage(staging, path);
    LaunchCompanion();
}

}  // namespace ovd::delivery
