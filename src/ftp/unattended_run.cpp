#include "ftp/unattended_run.h"

#include <algorithm>
#include <cstdio>
#include <memory>

#include "ftp/ftp_texts.h"
#include "ftp/ftp_window_texts.h"
#include "platform/files.h"

namespace ovd::ftp {

namespace {

// A file moved after its upload may cross to another disk: then it is copied and
// the original removed only once the copy is whole.
bool moveLocalFile(const std::string& from, const std::string& to) {
    if (std::rename(from.c_str(), to.c_str()) == 0) return true;
    if (!platform::copyFileOver(from, to)) return false;
    return std::remove(from.c_str()) == 0;
}

platform::Result<void> enterFolder(FtpClient& client, const std::string& folder) {
    if (folder.empty()) return {};
    return client.setCurrentDirectory(folder);
}

}  // namespace

UnattendedFtpRun::UnattendedFtpRun(FtpSiteWindow& window, FtpSession& session,
                                   platform::Prompts& prompts, PlaySound playSound)
    : window_(window), session_(session), prompts_(prompts), playSound_(std::move(playSound)) {}

bool UnattendedFtpRun::start(Finished finished) {
    if (running_ || session_.busy()) return false;
    running_ = true;
    canceled_ = false;
    connectedHere_ = false;
    outcome_ = {};
    uploads_.clear();
    downloads_.clear();
    finished_ = std::move(finished);
    if (window_.view().connected) {
        afterConnect(true);
    } else {
        connectedHere_ = true;
        window_.connect([this](bool connected) { afterConnect(connected); });
    }
    return true;
}

void UnattendedFtpRun::cancel() {
    if (!running_) return;
    canceled_ = true;
    session_.cancel();
}

bool UnattendedFtpRun::stopIfCanceled() {
    if (!canceled_) return false;
    finish();
    return true;
}

void UnattendedFtpRun::afterConnect(bool connected) {
    if (!connected) {
        // The connect's own status stays on screen: it says why nothing moved.
        connectedHere_ = false;
        outcome_.complete = false;
        running_ = false;
        if (finished_) finished_(outcome_);
        return;
    }
    if (stopIfCanceled()) return;
    const auto& record = site().record;
    if (recordOptionOn(record.get("FTPUFLMOption"))) {
        const std::string spec = record.get("FTPUFLMFileSpec");
        const std::string folder = record.get("FTPUFLMUploadFrom");
        for (const std::string& name : platform::filesInFolder(folder)) {
            if (matchesFileSpec(name, spec)) uploads_.push_back(platform::joinPath(folder, name));
        }
        std::sort(uploads_.begin(), uploads_.end());
    }
    uploadNext(0);
}

void UnattendedFtpRun::uploadNext(std::size_t index) {
    if (stopIfCanceled()) return;
    if (index >= uploads_.size()) return listDownloads();
    const std::string path = uploads_[index];
    auto prepared = prepareUpload(site(), path, /*ruleName=*/true, prompts_);
    if (!prepared) {
        window_.reportFailure(prepared.error());
        outcome_.complete = false;
        return finish();
    }
    const PreparedUpload file = *prepared;
    const std::string remoteFolder = site().record.get("FTPUFLMRemotePath");
    auto started = session_.start(
        [file, remoteFolder](FtpClient& client, const ProgressCallback& report) {
            if (auto entered = enterFolder(client, remoteFolder); !entered) return entered;
            return client.upload(file.path, file.remoteName, report);
        },
        [this](std::uint64_t done, std::uint64_t total) {
            window_.setStatus(uploadStatusText(done, total));
            window_.setPercent(percentDone(done, total));
        },
        [this, file, path, index](const platform::Result<void>& outcome) {
            if (file.temporary) std::remove(file.path.c_str());
            if (stopIfCanceled()) return;
            if (!outcome) {
                window_.reportFailure(outcome.error());
                window_.setStatus(kRuleUploadFailedText);
                outcome_.complete = false;
                return finish();
            }
            outcome_.uploaded.push_back(platform::withoutFolder(path));
            const auto& record = site().record;
            if (recordOptionOn(record.get("FTPUFLMMoveLocalAfterUploadOption"))) {
                const std::string target =
                    platform::joinPath(record.get("FTPUFLMMoveTO"), platform::withoutFolder(path));
                // The file is on the site already; one that can't be moved stays in
                // the upload folder and the run says it did not complete.
                if (!moveLocalFile(path, target)) outcome_.complete = false;
            }
            uploadNext(index + 1);
        });
    if (!started) {
        if (file.temporary) std::remove(file.path.c_str());
        window_.reportFailure(started.error());
        outcome_.complete = false;
        finish();
    }
}

void UnattendedFtpRun::listDownloads() {
    const auto& record = site().record;
    if (!recordOptionOn(record.get("FTPDFRSOption"))) return finish();
    const std::string remoteFolder = record.get("FTPDFRSRemotePath");
    const std::string spec = record.get("FTPDFRSFileSpec");
    auto listing = std::make_shared<cDirList>();
    auto started = session_.start(
        [remoteFolder, spec, listing](FtpClient& client, const ProgressCallback&) {
            if (auto entered = enterFolder(client, remoteFolder); !entered) return entered;
            auto listed = client.list(spec);
            if (!listed) return platform::Result<void>(listed.failed());
            *listing = std::move(*listed);
            return platform::Result<void>();
        },
        nullptr,
        [this, listing](const platform::Result<void>& outcome) {
            if (stopIfCanceled()) return;
            if (!outcome) {
                window_.reportFailure(outcome.error());
                outcome_.complete = false;
                return finish();
            }
            for (const cDirItem& item : *listing) {
                if (!item.directory) downloads_.push_back(item);
            }
            downloadNext(0);
        });
    if (!started) {
        window_.reportFailure(started.error());
        outcome_.complete = false;
        finish();
    }
}

void UnattendedFtpRun::downloadNext(std::size_t index) {
    if (stopIfCanceled()) return;
    if (index >= downloads_.size()) return finish();
    const cDirItem item = downloads_[index];
    if (item.size == 0) {
        // Nothing to fetch; the empty file stays on the site, told but not counted
        // as a failure of the run.
        window_.setStatus(kZeroLengthText);
        return downloadNext(index + 1);
    }
    const auto& record = site().record;
    const std::string remoteFolder = record.get("FTPDFRSRemotePath");
    const bool deleteAfter = recordOptionOn(record.get("FTPDFRSDelete"));
    const std::string local =
        platform::joinPath(record.get("FTPDFRSDownloadTo"), downloadName(site(), item.name));
    auto started = session_.start(
        [remoteFolder, item, local, deleteAfter](FtpClient& client,
                                                 const ProgressCallback& report) {
            if (auto entered = enterFolder(client, remoteFolder); !entered) return entered;
            if (auto fetched = client.download(item.name, local, report); !fetched) return fetched;
            // Only a file that is whole on this side leaves the site.
            if (deleteAfter) return client.deleteFile(item.name);
            return platform::Result<void>();
        },
        [this](std::uint64_t done, std::uint64_t total) {
            window_.setStatus(downloadStatusText(done, total));
            window_.setPercent(percentDone(done, total));
        },
        [this, item, local, index](const platform::Result<void>& outcome) {
            if (stopIfCanceled()) return;
            if (!outcome) {
                window_.reportFailure(outcome.error());
                outcome_.complete = false;
                return finish();
            }
            outcome_.downloaded.push_back(item.name);
            decipherDownload(site(), local, prompts_);
            downloadNext(index + 1);
        });
    if (!started) {
        window_.reportFailure(started.error());
        outcome_.complete = false;
        finish();
    }
}

void UnattendedFtpRun::finish() {
    running_ = false;
    window_.setPercent(0);
    if (canceled_) {
        outcome_.canceled = true;
        outcome_.complete = false;
        window_.setStatus(kUserCanceledText);
    } else {
        if (playSound_) {
            playSound_(platform::joinPath(site().programFolder, kCompleteSoundName));
        }
        // The failure itself stays in FTPError; the status line tells what is left.
        if (!outcome_.complete) window_.setStatus(kRunIncompleteText);
    }
    window_.refreshLocal();
    if (connectedHere_ && window_.view().connected) {
        window_.disconnect();
    } else {
        window_.refreshRemote();
    }
    if (finished_) finished_(outcome_);
}

}  // namespace ovd::ftp
