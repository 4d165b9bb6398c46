#pragma once
// Runs the FTP client's work off the loop's thread, one job at a time, and
// brings its progress and its outcome back onto the loop, so the windows stay
// responsive while a file moves. A second job while one runs is refused.

#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <thread>

#include "ftp/ftp_client.h"
#include "platform/event_loop.h"
#include "platform/result.h"

namespace ovd::ftp {

inline constexpr const char* kTransferRunningText = "A transfer is already running.";

class FtpSession {
  public:
    // A job gets the client and a progress callback that reaches the loop.
    using Job = std::function<platform::Result<void>(FtpClient&, const ProgressCallback&)>;
    using DoneCallback = std::function<void(const platform::Result<void>&)>;

    FtpSession(platform::EventLoop& loop, std::unique_ptr<FtpClient> client);
    // Cancels a running job and waits for it; nothing more reaches the loop.
    ~FtpSession();
    FtpSession(const FtpSession&) = delete;
    FtpSession& operator=(const FtpSession&) = delete;

    // Starts the job on its own thread. `progress` and `done` run on the loop.
    // Refused, with nothing started, while another job runs.
    platform::Result<void> start(Job job, ProgressCallback progress, DoneCallback done);

    platform::Result<void> startUpload(const std::string& localPath, const std::string& remoteFile,
                                       ProgressCallback progress, DoneCallback done);
    // As the unattended sender uploads: no progress on the way.
    platform::Result<void> startQuietUpload(const std::string& localPath,
                                            const std::string& remoteFile, DoneCallback done);
    platform::Result<void> startDownload(const std::string& remoteFile,
                                         const std::string& localPath, ProgressCallback progress,
                                         DoneCallback done);

    // True from a start until its `done` has run on the loop.
    [[nodiscard]] bool busy() const { return busy_; }
    void cancel();

    // The client itself, for the quick commands of a window; only while not busy.
    [[nodiscard]] FtpClient* client();

  private:
    platform::EventLoop& loop_;
    std::unique_ptr<FtpClient> client_;
    std::thread worker_;
    bool busy_ = false;
    // Calls posted to the loop check this before they touch the session.
    std::shared_ptr<std::atomic<bool>> alive_;
};

}  // namespace ovd::ftp
