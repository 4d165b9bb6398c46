#pragma once
// The client that speaks a site's kind: FTP (plain or over TLS) or SFTP.

#include <atomic>
#include <memory>

#include "ftp/curl_ftp_client.h"
#include "ftp/curl_sftp_client.h"
#include "ftp/ftp_client.h"

namespace ovd::ftp {

std::unique_ptr<FtpClient> clientFor(const ConnectionSettings& settings);

// A client for a window that may be pointed at a site of either kind: each connect
// takes the kind its settings say, and every later call goes to that one. A cancel
// reaches both, since it may come from the loop while a transfer runs.
class AnySiteClient final : public FtpClient {
  public:
    platform::Result<void> connect(const ConnectionSettings& settings) override;
    void disconnect() override { active().disconnect(); }
    [[nodiscard]] bool connected() const override { return active_.load()->connected(); }
    void setTransferType(TransferType type) override { active().setTransferType(type); }
    platform::Result<void> setCurrentDirectory(const std::string& path) override {
        return active().setCurrentDirectory(path);
    }
    [[nodiscard]] const std::string& currentDirectory() const override {
        return active_.load()->currentDirectory();
    }
    platform::Result<cDirList> list(const std::string& fileSpec) override {
        return active().list(fileSpec);
    }
    platform::Result<std::uint64_t> remoteSize(const std::string& remoteFile) override {
        return active().remoteSize(remoteFile);
    }
    platform::Result<void> download(const std::string& remoteFile, const std::string& localPath,
                                    const ProgressCallback& progress) override {
        return active().download(remoteFile, localPath, progress);
    }
    platform::Result<void> upload(const std::string& localPath, const std::string& remoteFile,
                                  const ProgressCallback& progress) override {
        return active().upload(localPath, remoteFile, progress);
    }
    platform::Result<void> rename(const std::string& oldName, const std::string& newName) override {
        return active().rename(oldName, newName);
    }
    platform::Result<void> deleteFile(const std::string& remoteFile) override {
        return active().deleteFile(remoteFile);
    }
    platform::Result<void> createDirectory(const std::string& path) override {
        return active().createDirectory(path);
    }
    platform::Result<void> removeDirectory(const std::string& path) override {
        return active().removeDirectory(path);
    }
    void cancel() override {
        ftp_.cancel();
        sftp_.cancel();
    }
    void clearCancel() override {
        ftp_.clearCancel();
        sftp_.clearCancel();
    }

  private:
    FtpClient& active() { return *active_.load(); }

    CurlFtpClient ftp_;
    CurlSftpClient sftp_;
    std::atomic<FtpClient*> active_{&ftp_};
};

}  // namespace ovd::ftp
