#pragma once
// The file client on libcurl, whatever the protocol: one easy handle holds the one
// connection, and curl keeps it alive between the operations, so a window's
// commands do not log in again each time. What FTP and SFTP do differently (the
// URLs, the options, the remote commands, what explains a failure) is a dialect
// each protocol's client gives it. Not for use from two threads at once:
// FtpSession sees to that.

#include <memory>

#include "ftp/ftp_client.h"

namespace ovd::ftp {

namespace curl_parts {
class Dialect;
}

class CurlClient : public FtpClient {
  public:
    ~CurlClient() override;
    CurlClient(const CurlClient&) = delete;
    CurlClient& operator=(const CurlClient&) = delete;

    platform::Result<void> connect(const ConnectionSettings& settings) override;
    void disconnect() override;
    [[nodiscard]] bool connected() const override;
    void setTransferType(TransferType type) override;

    platform::Result<void> setCurrentDirectory(const std::string& path) override;
    [[nodiscard]] const std::string& currentDirectory() const override;

    platform::Result<cDirList> list(const std::string& fileSpec) override;
    platform::Result<std::uint64_t> remoteSize(const std::string& remoteFile) override;

    platform::Result<void> download(const std::string& remoteFile, const std::string& localPath,
                                    const ProgressCallback& progress) override;
    platform::Result<void> upload(const std::string& localPath, const std::string& remoteFile,
                                  const ProgressCallback& progress) override;

    platform::Result<void> rename(const std::string& oldName, const std::string& newName) override;
    platform::Result<void> deleteFile(const std::string& remoteFile) override;
    platform::Result<void> createDirectory(const std::string& path) override;
    platform::Result<void> removeDirectory(const std::string& path) override;

    void cancel() override;
    void clearCancel() override;

  protected:
    explicit CurlClient(std::unique_ptr<curl_parts::Dialect> dialect);

  private:
    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace ovd::ftp
