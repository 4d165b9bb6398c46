#pragma once
// The SFTP client on libcurl (libssh2 underneath): the same operations and error
// names as the FTP client, over SSH. The server's host key must stand in the
// known-hosts file of the settings, else nothing is sent; the login is by password
// or by a private key file.

#include <memory>

#include "ftp/ftp_client.h"

namespace ovd::ftp {

class CurlSftpClient final : public FtpClient {
  public:
    CurlSftpClient();
    ~CurlSftpClient() override;
    CurlSftpClient(const CurlSftpClient&) = delete;
    CurlSftpClient& operator=(const CurlSftpClient&) = delete;

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

  private:
    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace ovd::ftp
