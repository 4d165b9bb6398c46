#include "ftp/ftp_session.h"

#include <utility>

namespace ovd::ftp {

using platform::Result;

FtpSession::FtpSession(platform::EventLoop& loop, std::unique_ptr<FtpClient> client)
    : loop_(loop), client_(std::move(client)), alive_(std::make_shared<std::atomic<bool>>(true)) {}

FtpSession::~FtpSession() {
    alive_->store(false);
    if (busy_) client_->cancel();
    if (worker_.joinable()) worker_.join();
}

FtpClient* FtpSession::client() {
    if (busy_) return nullptr;
    // A cancelled transfer's request must not stop the window's next one.
    client_->clearCancel();
    return client_.get();
}

void FtpSession::cancel() {
    if (busy_) client_->cancel();
}

Result<void> FtpSession::start(Job job, ProgressCallback progress, DoneCallback done) {
    if (busy_) return platform::failure(kTransferRunningText);
    // The previous job has posted its end already; its thread is about to finish.
    if (worker_.joinable()) worker_.join();
    busy_ = true;
    // Cleared here, on the loop, so that a cancel from the moment of the start on is kept.
    client_->clearCancel();
    auto alive = alive_;
    worker_ = std::thread([this, alive, job = std::move(job), progress = std::move(progress),
                           done = std::move(done)]() mutable {
        const ProgressCallback report = [this, alive, &progress](std::uint64_t sent,
                                                                 std::uint64_t total) {
            if (!progress) return;
            loop_.postFromAnyThread([alive, progress, sent, total] {
                if (alive->load()) progress(sent, total);
            });
        };
        Result<void> outcome = job(*client_, report);
        loop_.postFromAnyThread(
            [this, alive, outcome = std::move(outcome), done = std::move(done)] {
                if (!alive->load()) return;
                busy_ = false;
                if (done) done(outcome);
            });
    });
    return {};
}

Result<void> FtpSession::startUpload(const std::string& localPath, const std::string& remoteFile,
                                     ProgressCallback progress, DoneCallback done) {
    return start(
        [localPath, remoteFile](FtpClient& client, const ProgressCallback& report) {
            return client.upload(localPath, remoteFile, report);
        },
        std::move(progress), std::move(done));
}

Result<void> FtpSession::startQuietUpload(const std::string& localPath,
                                          const std::string& remoteFile, DoneCallback done) {
    return startUpload(localPath, remoteFile, nullptr, std::move(done));
}

Result<void> FtpSession::startDownload(const std::string& remoteFile, const std::string& localPath,
                                       ProgressCallback progress, DoneCallback done) {
    return start(
        [localPath, remoteFile](FtpClient& client, const ProgressCallback& report) {
            return client.download(remoteFile, localPath, report);
        },
        std::move(progress), std::move(done));
}

}  // namespace ovd::ftp
