#include "autosend/companion.h"

#include <cstdio>

#include "autosend/companion_settings.h"
#include "delivery/auto_send.h"
#include "platform/files.h"
#include "platform/system_queries.h"
#include "settings/company_records.h"

namespace ovd::autosend {

namespace {

constexpr const char* kFtpPeerPrefix = "ERREFTP_";
constexpr const char* kFtpPeerQueuedPrefix = "ERRFTP_";
constexpr const char* kFtpPeerTag = " -54";
constexpr const char* kEmailPeerPrefix = "ERREMAIL_";
constexpr const char* kEmailPeerTag = " -55";
// Files often arrive in bursts (a letter to both folders): one look takes them all.
constexpr std::chrono::milliseconds kArrivalDelay{200};
// How long a sent file may still be held by someone before it is let go anyway.
constexpr std::chrono::milliseconds kReleaseWait{10000};
constexpr std::chrono::milliseconds kReleaseStep{100};

int milliseconds(std::chrono::milliseconds duration) { return static_cast<int>(duration.count()); }

}  // namespace

Companion::Companion(CompanionParts parts)
    : parts_(std::move(parts)),
      ftp_(parts_.loop, parts_.prompts, parts_.makeClient),
      settle_(parts_.settleTime),
      watch_(parts_.loop, [this] { lookSoon(kArrivalDelay); }),
      rescan_(parts_.loop, "rescan", milliseconds(parts_.rescanInterval)),
      soon_(parts_.loop, "lookSoon", 0) {
    rescan_.setOnTick([this] { look(); });
    soon_.setOnTick([this] {
        soon_.setEnabled(false);
        look();
    });
}

Companion::~Companion() {
    stop();
    if (emailWorker_.joinable()) emailWorker_.join();
}

void Companion::trace(const std::string& text) { parts_.log.trace(text); }

std::string Companion::stagingFolder(Kind kind) const {
    return platform::joinPath(recordings_,
                              kind == Kind::Ftp ? kFtpStagingFolder : kEmailStagingFolder);
}

void Companion::watchStaging() {
    for (const Kind kind : {Kind::Ftp, Kind::Email}) {
        const std::string folder = stagingFolder(kind);
        if (watched_.contains(folder)) continue;
        if (!platform::folderExists(folder) && !platform::createFolder(folder)) continue;
        auto watching = watch_.watchTree(folder);
        if (!watching) {
            trace("orvane-autosend: " + watching.error() + "; looking every rescan only");
            continue;
        }
        watched_.insert(folder);
    }
}

void Companion::start() {
    stopped_ = false;
    parts_.config.record = readStationSettings(parts_.dataFolder);
    recordings_ = recordingsFolder(parts_.config.record, parts_.dataFolder);
    watchStaging();
    trace("orvane-autosend: watching " + stagingFolder(Kind::Ftp) + " and " +
          stagingFolder(Kind::Email));
    rescan_.setEnabled(true);
    look();
}

void Companion::stop() {
    if (stopped_) return;
    stopped_ = true;
    rescan_.setEnabled(false);
    soon_.setEnabled(false);
    queue_.clear();
    if (sending_) trace("orvane-autosend: stopped during a transfer; the file stays staged");
    ftp_.cancel();
    if (emailWorker_.joinable() && parts_.cancelEmail) parts_.cancelEmail();
    sending_ = false;
}

void Companion::lookSoon(std::chrono::milliseconds delay) {
    if (stopped_ || soon_.Enabled()) return;
    soon_.setInterval(milliseconds(delay));
    soon_.setEnabled(true);
}

void Companion::look() {
    if (stopped_) return;
    if (sending_) {
        // The files of this look are still going out; the next look follows them.
        lookAgain_ = true;
        return;
    }
    parts_.config.record = readStationSettings(parts_.dataFolder);
    recordings_ = recordingsFolder(parts_.config.record, parts_.dataFolder);
    watchStaging();
    const settings::SettingsRecord& record = parts_.config.record;
    bool unsettled = false;
    std::set<std::string> seen;
    if (record.AutoFTP) collect(Kind::Ftp, stagingFolder(Kind::Ftp), unsettled, seen);
    if (record.AutoEmail) collect(Kind::Email, stagingFolder(Kind::Email), unsettled, seen);
    settle_.keepOnly(seen);
    if (unsettled) lookSoon(parts_.settleTime);
    siteKnown_ = false;
    sendNext();
}

void Companion::collect(Kind kind, const std::string& folder, bool& unsettled,
                        std::set<std::string>& seen) {
    const auto now = SteadyClock::now();
    for (const std::string& name : stagedFilesIn(folder)) {
        const std::string path = platform::joinPath(folder, name);
        FileLook look;
        if (!lookAt(path, look)) continue;
        seen.insert(path);
        // A file still growing, or held by its writer, is left for a later look.
        if (!settle_.settled(path, look, now) || !platform::FileAvailable(path)) {
            unsettled = true;
            continue;
        }
        queue_.push_back(Staged{kind, folder, name, look});
    }
    for (const std::string& sub : subFoldersOf(folder)) {
        collect(kind, platform::joinPath(folder, sub), unsettled, seen);
    }
}

void Companion::sendNext() {
    if (stopped_) return;
    if (queue_.empty()) {
        sending_ = false;
        ftp_.disconnect();
        ++looksDone_;
        if (lookAgain_) {
            lookAgain_ = false;
            lookSoon(kArrivalDelay);
        }
        return;
    }
    sending_ = true;
    const Staged file = queue_.front();
    queue_.pop_front();
    if (file.kind == Kind::Email) {
        sendEmail(file);
        return;
    }
    if (!siteKnown_) {
        const settings::CompanyRecords records(parts_.dataFolder);
        auto site = defaultFtpSite(records);
        if (!site) {
            outcome(file, site.failed());
            return;
        }
        site_ = *site;
        siteKnown_ = true;
    }
    // FTPSendBusy: one file at a time, the next after this one's outcome.
    trace("Sending via FTP : " + file.name);
    ftp_.SendOneFile(site_, file.folder, file.name,
                     platform::joinPath(stagingFolder(Kind::Ftp), kWorkFolder),
                     [this, file](const platform::Result<void>& result) { outcome(file, result); });
}

void Companion::sendNextSoon() {
    // A companion ended meanwhile (the program's end, a test's) hears nothing more.
    parts_.loop.postFromAnyThread([this, alive = std::weak_ptr<int>(alive_)] {
        if (!alive.expired()) sendNext();
    });
}

void Companion::sendEmail(const Staged& file) {
    if (!parts_.sendEmail) {
        trace(kEmailNotAvailable);
        // One line a look is enough: the other staged e-mails wait the same way.
        std::erase_if(queue_, [](const Staged& waiting) { return waiting.kind == Kind::Email; });
        sendNextSoon();
        return;
    }
    if (emailWorker_.joinable()) emailWorker_.join();  // the last one has told its outcome
    emailWorker_ = std::thread([this, file, send = parts_.sendEmail, &loop = parts_.loop,
                                alive = std::weak_ptr<int>(alive_)] {
        const platform::Result<void> result = send(platform::joinPath(file.folder, file.name));
        loop.postFromAnyThread([this, file, result, alive] {
            if (!alive.expired()) outcome(file, result);
        });
    });
}

void Companion::outcome(const Staged& file, const platform::Result<void>& result) {
    if (stopped_) return;
    const bool ftp = file.kind == Kind::Ftp;
    if (result) {
        trace((ftp ? "FTP File " : "Email File ") + file.name + " Sucessfully Sent");
        letGo(file);
    } else {
        const std::string& error = result.error();
        trace(ftp ? "Sending via FTP : " + file.name + " - FAILED: " + error
                  : "Sending via Email ERROR: " + error + " FAILED--");
        const std::string SendStatusText =
            (ftp ? "Sending via FTP - FAILED: " : "Sending via Email - FAILED: ") + error;
        if (parts_.config.record.TCP) {
            const std::string prefix = ftp ? kFtpPeerPrefix : kEmailPeerPrefix;
            parts_.peer.send({prefix + file.name, ftp ? kFtpPeerTag : kEmailPeerTag,
                              ftp ? kFtpPeerQueuedPrefix + file.name : std::string()});
        }
        parts_.prompts.notify(delivery::errorSendNotification(SendStatusText, parts_.soundFolder));
    }
    sendNextSoon();
}

void Companion::letGo(const Staged& file) {
    const std::string path = platform::joinPath(file.folder, file.name);
    const auto until = SteadyClock::now() + kReleaseWait;
    while (!platform::FileAvailable(path) && platform::fileExists(path) &&
           SteadyClock::now() < until && !stopped_) {
        parts_.loop.wait(kReleaseStep);
    }
    FileLook now;
    if (!lookAt(path, now)) return;
    // Staged again while it went out: the new copy is another letter and goes next time.
    if (!(now == file.look)) {
        trace("orvane-autosend: " + path + " was staged again while it was sent; it goes again");
        return;
    }
    if (std::remove(path.c_str()) != 0) {
        trace("orvane-autosend: could not delete " + path + " after sending it");
    }
}

}  // namespace ovd::autosend
