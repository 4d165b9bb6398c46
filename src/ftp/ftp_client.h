#pragma once
// What the FTP windows and the companion sender need of an FTP client: one
// connection at a time, and every operation named, when it fails, by the error
// name the station's users and logs know it by, with the client's own error
// number and text and the server's last reply attached.

#include <cstdint>
#include <functional>
#include <string>

#include "ftp/dir_list.h"
#include "platform/result.h"

namespace ovd::ftp {

// The error names of the operations, as they appear in "FTP ERROR: " lines.
inline constexpr const char* kConnectError = "Can NOT Connect to FTP Server";
inline constexpr const char* kCouldNotEstablish = "Could not establish connection.";
inline constexpr const char* kSetDirectoryError = "FtpSetCurrentDirectory";
inline constexpr const char* kFindFirstError = "FtpFindFirstFile";
inline constexpr const char* kFindNextError = "InternetFindNextFile";
inline constexpr const char* kOpenForGetError = "FtpOpenFile:GetFile";
inline constexpr const char* kReadError = "InternetReadFile";
inline constexpr const char* kReadRemainderError = "InternetReadFile2";
inline constexpr const char* kOpenForPutError = "FtpOpenFile:PutFile";
inline constexpr const char* kWriteError = "InternetWriteFile";
inline constexpr const char* kWriteRemainderError = "InternetWriteFile2";
inline constexpr const char* kRemoveDirectoryError = "RemoveFTPDirectory";
inline constexpr const char* kDeleteError = "DeleteFTPFile";
inline constexpr const char* kRenameError = "RenameFTPFile";
inline constexpr const char* kCreateDirectoryError = "CreateFTPDirectory";

// Files move in chunks of this size: large enough that throughput does not
// suffer, while progress is still reported several times a second on a slow line.
inline constexpr std::uint64_t kChunkBytes = 64 * 1024;

enum class TransferType { Ascii, Binary };

// Plain FTP as the peers speak it, or the same with the login and the files
// over TLS after "AUTH TLS" (the server's certificate is always checked), or
// SFTP over SSH (the server's host key is always checked against knownHostsFile).
enum class Security { Plain, ExplicitTls, Sftp };

struct ConnectionSettings {
    std::string hostName;
    int port = 21;
    std::string userName;
    std::string password;
    bool passiveMode = true;
    TransferType transferType = TransferType::Binary;
    Security security = Security::Plain;
    // A PEM certificate to trust instead of the system's authorities: a site
    // with a certificate of its own making is trusted by that one certificate.
    std::string pinnedCertificateFile;
    // SFTP: the OpenSSH known-hosts file holding the keys of trusted servers; a
    // server whose key is not there, or differs, is refused.
    std::string knownHostsFile;
    // SFTP: log in with this private key (its passphrase, if any, in `password`)
    // instead of the password.
    std::string privateKeyFile;
    // "host:port" of a proxy; empty for a direct connection.
    std::string proxyAddress;
    // Bytes per second, 0 for none: a site on a slow line can be kept from
    // filling it, and tests use it to stand for one.
    std::uint64_t maxBytesPerSecond = 0;
};

// Bytes moved so far and the file's whole size.
using ProgressCallback = std::function<void(std::uint64_t done, std::uint64_t total)>;

class FtpClient {
  public:
    virtual ~FtpClient() = default;

    // Logs in; the current directory becomes the one the server starts in.
    virtual platform::Result<void> connect(const ConnectionSettings& settings) = 0;
    virtual void disconnect() = 0;
    [[nodiscard]] virtual bool connected() const = 0;
    virtual void setTransferType(TransferType type) = 0;

    // An absolute path, or one relative to the current directory.
    virtual platform::Result<void> setCurrentDirectory(const std::string& path) = 0;
    [[nodiscard]] virtual const std::string& currentDirectory() const = 0;

    // The current directory's entries matching `fileSpec` (empty: all).
    virtual platform::Result<cDirList> list(const std::string& fileSpec) = 0;
    virtual platform::Result<std::uint64_t> remoteSize(const std::string& remoteFile) = 0;

    // A remote file of no length is refused: there is nothing to fetch.
    virtual platform::Result<void> download(const std::string& remoteFile,
                                            const std::string& localPath,
                                            const ProgressCallback& progress) = 0;
    // The file goes up under a temporary name and gets its final name only when
    // all of it has arrived, so nobody ever picks up half a letter.
    virtual platform::Result<void> upload(const std::string& localPath,
                                          const std::string& remoteFile,
                                          const ProgressCallback& progress) = 0;

    virtual platform::Result<void> rename(const std::string& oldName,
                                          const std::string& newName) = 0;
    virtual platform::Result<void> deleteFile(const std::string& remoteFile) = 0;
    virtual platform::Result<void> createDirectory(const std::string& path) = 0;
    virtual platform::Result<void> removeDirectory(const std::string& path) = 0;

    // Asks a running transfer to stop at its next chunk; safe from any thread.
    // The request stands, for every transfer, until clearCancel().
    virtual void cancel() = 0;
    virtual void clearCancel() = 0;
};

// The temporary remote name a file is uploaded under before it is renamed.
std::string temporaryUploadName(const std::string& remoteFile);

}  // namespace ovd::ftp
