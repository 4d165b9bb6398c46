#include "ftp/site_window.h"

#include <algorithm>
#include <ctime>
#include <memory>

#include "ftp/ftp_texts.h"
#include "ftp/ftp_window_texts.h"
#include "ftp/sftp_host_keys.h"
#include "platform/files.h"

namespace ovd::ftp {

namespace {

std::string clockText(platform::WallClock::time_point when) {
    const std::time_t seconds = platform::WallClock::to_time_t(when);
    std::tm local{};
    localtime_r(&seconds, &local);
    char text[32];
    std::strftime(text, sizeof text, "%H:%M:%S", &local);
    return text;
}

std::string dateText(std::chrono::system_clock::time_point when) {
    const std::time_t seconds = std::chrono::system_clock::to_time_t(when);
    std::tm local{};
    localtime_r(&seconds, &local);
    char text[32];
    std::strftime(text, sizeof text, "%Y-%m-%d %H:%M", &local);
    return text;
}

}  // namespace

std::vector<RemoteRow> remoteRowsOf(const cDirList& list) {
    std::vector<RemoteRow> rows;
    rows.push_back({"..", "", "", "", true});
    for (const cDirItem& item : list) {
        rows.push_back({item.name, std::to_string(item.size), dateText(item.lastWrite),
                        attributeMarks(item), item.directory});
    }
    return rows;
}

FtpSiteWindow::FtpSiteWindow(platform::EventLoop& loop, platform::Prompts& prompts,
                             FtpSession& session, SiteContext site)
    : loop_(loop),
      prompts_(prompts),
      session_(session),
      site_(std::move(site)),
      connection_(connectionFor(site_.record, site_.dataFolder).settings) {
    view_.session = kNoSessionText;
}

void FtpSiteWindow::changed() {
    if (onChange) onChange();
}

void FtpSiteWindow::setStatus(const std::string& text) {
    view_.status = text;
    changed();
}

void FtpSiteWindow::reportFailure(const std::string& error) {
    view_.FTPFailed = true;
    view_.FTPError = error;
    view_.status = ftpErrorStatus(error);
    changed();
}

void FtpSiteWindow::setPercent(int percent) {
    view_.percent = percent;
    changed();
}

void FtpSiteWindow::markConnected(bool connected) {
    view_.connected = connected;
    view_.session = connected ? kSessionEstablishedText : kNoSessionText;
    if (!connected) {
        view_.remoteRows.clear();
        view_.remoteFolder.clear();
    }
    changed();
}

bool FtpSiteWindow::changeSite(SiteContext site) {
    if (view_.connected) {
        prompts_.showMessage(kDisconnectToChangeText);
        return false;
    }
    site_ = std::move(site);
    connection_ = connectionFor(site_.record, site_.dataFolder).settings;
    return true;
}

void FtpSiteWindow::setLocalFolder(const std::string& folder) {
    view_.localFolder = folder;
    refreshLocal();
}

void FtpSiteWindow::refreshLocal() {
    view_.localFiles.clear();
    if (!view_.localFolder.empty()) {
        view_.localFiles = platform::filesInFolder(view_.localFolder);
    }
    changed();
}

FtpClient* FtpSiteWindow::idleClient() {
    if (session_.busy()) {
        setStatus(kTransferRunningText);
        return nullptr;
    }
    if (!view_.connected) {
        prompts_.showMessage(kNotConnectedText);
        return nullptr;
    }
    return session_.client();
}

bool FtpSiteWindow::command(const std::string& key) {
    if (key == kConnectKey || key == kConnectButton) {
        connect();
    } else if (key == kDisconnectKey || key == kDisconnectButton) {
        disconnect();
    } else if (key == kDownloadKey || key == kDownloadButton) {
        download(selectedRemote_);
    } else if (key == kUploadKey || key == kUploadButton) {
        upload(selectedLocal_);
    } else if (key == kDeleteKey || key == kDeleteButton) {
        deleteItems(selectedRemote_);
    } else if (key == kRenameKey || key == kRenameButton) {
        renameFile(selectedRemote_.empty() ? std::string() : selectedRemote_.front());
    } else if (key == kRefreshKey || key == kRefreshButton) {
        refreshLocal();
        refreshRemote();
    } else if (key == kCreateDirectoryKey || key == kCreateDirectoryButton) {
        createDirectory();
    } else {
        return false;
    }
    return true;
}

void FtpSiteWindow::connect(std::function<void(bool)> connected) {
    if (view_.connected) {
        prompts_.showMessage(kAlreadyConnectedText);
        if (connected) connected(true);
        return;
    }
    const ConnectionSettings settings = connection_;
    auto started = session_.start(
        [settings](FtpClient& client, const ProgressCallback&) { return client.connect(settings); },
        nullptr,
        [this, settings, connected](const platform::Result<void>& outcome) {
            // One question per connect: a key trusted a moment ago that is still
            // refused is told as the failure it is.
            if (!outcome && !hostKeyJustTrusted_ && trustedOnFirstUse(outcome)) {
                hostKeyJustTrusted_ = true;
                connect(connected);
                return;
            }
            hostKeyJustTrusted_ = false;
            if (!outcome) {
                // The reason the station has always kept for a refused connection; the
                // client's own words stay beside it for the log.
                view_.FTPFailed = true;
                view_.FTPError = kCouldNotEstablish;
                view_.status = connectFailureStatus() + "\r\n" + outcome.error();
                markConnected(false);
                if (connected) connected(false);
                return;
            }
            view_.FTPFailed = false;
            view_.FTPError.clear();
            view_.status =
                connectedStatusText(settings.hostName, settings.userName, clockText(loop_.now()));
            markConnected(true);
            refreshRemote();
            if (connected) connected(true);
        });
    if (!started) {
        setStatus(started.error());
        if (connected) connected(false);
    }
}

bool FtpSiteWindow::trustedOnFirstUse(const platform::Result<void>& refused) {
    if (connection_.security != Security::Sftp ||
        refused.error().find(kHostKeyNotKnownText) == std::string::npos) {
        return false;
    }
    // The server has just answered, so looking at its key again takes a moment.
    const auto key = offeredHostKey(connection_);
    if (!key) return false;
    const std::string question = "The SFTP server " + connection_.hostName +
                                 " is not known yet.\r\n" + "Its host key: " + key->type + " " +
                                 key->fingerprint + "\r\n\r\n" +
                                 "Compare it with the key the transcriber reads on the server. "
                                 "Trust this server from now on?";
    if (!prompts_.askYesNo(question, "SFTP", platform::Answer::No)) return false;
    const auto trusted =
        trustHostKey(connection_.knownHostsFile, connection_.hostName, connection_.port, *key);
    if (!trusted) {
        prompts_.showMessage(trusted.error());
        return false;
    }
    return true;
}

void FtpSiteWindow::disconnect() {
    if (session_.busy()) {
        setStatus(kTransferRunningText);
        return;
    }
    if (!view_.connected) {
        prompts_.showMessage(kMustConnectFirstText);
        return;
    }
    session_.client()->disconnect();
    markConnected(false);
}

void FtpSiteWindow::refreshRemote() {
    if (!view_.connected || session_.busy()) return;
    FtpClient* client = session_.client();
    auto listed = client->list("");
    view_.remoteFolder = client->currentDirectory();
    if (!listed) {
        view_.remoteRows = remoteRowsOf({});
        reportFailure(listed.error());
        return;
    }
    view_.remoteRows = remoteRowsOf(*listed);
    changed();
}

const RemoteRow* FtpSiteWindow::row(const std::string& name) const {
    for (const RemoteRow& candidate : view_.remoteRows) {
        if (candidate.name == name) return &candidate;
    }
    return nullptr;
}

void FtpSiteWindow::openRemote(const std::string& name) {
    FtpClient* client = idleClient();
    if (client == nullptr) return;
    const RemoteRow* entry = row(name);
    if (entry == nullptr || !entry->directory) return;
    if (auto moved = client->setCurrentDirectory(name); !moved) {
        reportFailure(moved.error());
        return;
    }
    refreshRemote();
}

void FtpSiteWindow::createDirectory() {
    FtpClient* client = idleClient();
    if (client == nullptr) return;
    const auto name = prompts_.input({kDirectoryNamePrompt, {}, {}});
    if (!name || name->empty()) return;
    if (auto made = client->createDirectory(*name); !made) {
        reportFailure(made.error());
        return;
    }
    prompts_.showMessage(directoryCreatedText(*name));
    refreshRemote();
}

void FtpSiteWindow::deleteItems(const std::vector<std::string>& names) {
    FtpClient* client = idleClient();
    if (client == nullptr) return;
    for (const std::string& name : names) {
        const RemoteRow* entry = row(name);
        if (entry == nullptr || name == "..") continue;
        const bool directory = entry->directory;
        if (!prompts_.askYesNo(deleteQuestionText(name), kDeleteTitle, platform::Answer::No)) {
            continue;
        }
        auto removed = directory ? client->removeDirectory(name) : client->deleteFile(name);
        if (!removed) {
            reportFailure(removed.error());
            break;
        }
        prompts_.showMessage(directory ? directoryRemovedText(name) : fileDeletedText(name));
    }
    refreshRemote();
}

void FtpSiteWindow::renameFile(const std::string& name) {
    FtpClient* client = idleClient();
    if (client == nullptr || name.empty() || name == "..") return;
    const auto newName = prompts_.input({kNewFileNamePrompt, {}, name});
    if (!newName || newName->empty() || *newName == name) return;
    if (auto renamed = client->rename(name, *newName); !renamed) {
        reportFailure(renamed.error());
        return;
    }
    prompts_.showMessage(fileRenamedText(name, *newName));
    refreshRemote();
}

void FtpSiteWindow::upload(const std::vector<std::string>& localNames) {
    if (idleClient() == nullptr || localNames.empty()) return;
    view_.FTPFailed = false;
    if (onTransferring) onTransferring(true);
    uploadNext(localNames, 0);
}

void FtpSiteWindow::uploadNext(std::vector<std::string> names, std::size_t index) {
    if (index >= names.size()) return transferEnded();
    const std::string path = platform::joinPath(view_.localFolder, names[index]);
    auto prepared = prepareUpload(site_, path, /*ruleName=*/false, prompts_);
    if (!prepared) {
        reportFailure(prepared.error());
        return transferEnded();
    }
    view_.transferring = true;
    changed();
    const PreparedUpload file = *prepared;
    auto started = session_.startUpload(
        file.path, file.remoteName,
        [this](std::uint64_t done, std::uint64_t total) {
            view_.status = uploadStatusText(done, total);
            setPercent(percentDone(done, total));
        },
        [this, names = std::move(names), index, file](const platform::Result<void>& outcome) {
            if (file.temporary) std::remove(file.path.c_str());
            if (!outcome) {
                reportFailure(outcome.error());
                return transferEnded();
            }
            uploadNext(names, index + 1);
        });
    if (!started) {
        if (file.temporary) std::remove(file.path.c_str());
        reportFailure(started.error());
        transferEnded();
    }
}

void FtpSiteWindow::download(const std::vector<std::string>& remoteNames) {
    if (idleClient() == nullptr || remoteNames.empty()) return;
    view_.FTPFailed = false;
    if (onTransferring) onTransferring(true);
    downloadNext(remoteNames, 0);
}

void FtpSiteWindow::downloadNext(std::vector<std::string> names, std::size_t index) {
    if (index >= names.size()) return transferEnded();
    const std::string name = names[index];
    const RemoteRow* entry = row(name);
    if (entry != nullptr && entry->directory) return downloadNext(std::move(names), index + 1);
    if (entry != nullptr && entry->size == "0") {
        setStatus(kZeroLengthText);
        return downloadNext(std::move(names), index + 1);
    }
    const std::string local = platform::joinPath(view_.localFolder, downloadName(site_, name));
    view_.transferring = true;
    changed();
    auto started = session_.startDownload(
        name, local,
        [this](std::uint64_t done, std::uint64_t total) {
            view_.status = downloadStatusText(done, total);
            setPercent(percentDone(done, total));
        },
        [this, names = std::move(names), index, local](const platform::Result<void>& outcome) {
            if (!outcome) {
                reportFailure(outcome.error());
                return transferEnded();
            }
            decipherDownload(site_, local, prompts_);
            downloadNext(names, index + 1);
        });
    if (!started) {
        reportFailure(started.error());
        transferEnded();
    }
}

void FtpSiteWindow::transferEnded() {
    view_.transferring = false;
    if (!view_.FTPFailed) {
        view_.status.clear();
        view_.percent = 0;
    }
    refreshLocal();
    refreshRemote();
    if (onTransferring) onTransferring(false);
}

void FtpSiteWindow::cancel() { session_.cancel(); }

}  // namespace ovd::ftp
