#include "autosend/ftp_sender.h"

#include <cstdio>

#include "crypto/transport.h"
#include "platform/files.h"

namespace ovd::autosend {

namespace {

bool sameConnection(const ftp::ConnectionSettings& a, const ftp::ConnectionSettings& b) {
    return a.hostName == b.hostName && a.port == b.port && a.userName == b.userName &&
           a.password == b.password && a.security == b.security &&
           a.privateKeyFile == b.privateKeyFile;
}

}  // namespace

FtpSender::FtpSender(platform::EventLoop& loop, platform::Prompts& prompts,
                     ClientFactory makeClient)
    : loop_(loop), prompts_(prompts), makeClient_(std::move(makeClient)) {}

void FtpSender::SendOneFile(const FtpSite& site, const std::string& folder, const std::string& file,
                            const std::string& workFolder, Done done) {
    const std::string path = platform::joinPath(folder, file);
    crypto::FtpUpload upload{path, file};
    if (site.encrypt) {
        auto enciphered = crypto::encipherFtpUpload(path, site.key, workFolder, prompts_);
        // The site wants files locked: one that could not be enciphered does not go.
        if (!enciphered) {
            done(enciphered.failed());
            return;
        }
        upload = *enciphered;
    }
    // The enciphered copy is ours alone and goes once the transfer is over, sent or not.
    const std::string scratch = upload.path != path ? upload.path : std::string();

    if (session_ && !sameConnection(connectedWith_, site.connection)) session_.reset();
    if (!session_) {
        session_ = std::make_unique<ftp::FtpSession>(loop_, makeClient_(site.connection));
        connectedWith_ = site.connection;
    }
    const ftp::ConnectionSettings settings = site.connection;
    const std::string remoteFolder = site.remoteFolder;
    const std::string local = upload.path;
    const std::string remote = upload.remoteName;
    auto job = [settings, remoteFolder, local, remote](ftp::FtpClient& client,
                                                       const ftp::ProgressCallback&) {
        if (!client.connected()) {
            auto connected = client.connect(settings);
            if (!connected) {
                return platform::Result<void>(platform::failure(
                    std::string(ftp::kCouldNotEstablish) + " " + connected.error()));
            }
            if (!remoteFolder.empty()) {
                auto moved = client.setCurrentDirectory(remoteFolder);
                if (!moved) {
                    client.disconnect();
                    return moved;
                }
            }
        }
        auto sent = client.upload(local, remote, {});
        // A connection that failed mid-way is not trusted for the next file.
        if (!sent) client.disconnect();
        return sent;
    };
    auto started =
        session_->start(std::move(job), {},
                        [scratch, done = std::move(done)](const platform::Result<void>& outcome) {
                            if (!scratch.empty()) std::remove(scratch.c_str());
                            done(outcome);
                        });
    if (!started) {
        if (!scratch.empty()) std::remove(scratch.c_str());
        done(started);
    }
}

void FtpSender::disconnect() {
    if (!busy()) session_.reset();
}

void FtpSender::cancel() {
    // The session's end cancels the transfer, waits for it and lets nothing more reach the loop.
    session_.reset();
}

}  // namespace ovd::autosend
