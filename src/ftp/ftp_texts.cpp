#include "ftp/ftp_texts.h"

#include "ftp/ftp_client.h"

namespace ovd::ftp {

std::string uploadStatusText(std::uint64_t done, std::uint64_t total) {
    return std::to_string(done) + " bytes uploaded out of " + std::to_string(total) +
           " total bytes";
}

std::string downloadStatusText(std::uint64_t done, std::uint64_t total) {
    return std::to_string(done) + " bytes downloaded out of " + std::to_string(total) +
           " total bytes";
}

int percentDone(std::uint64_t done, std::uint64_t total) {
    if (total == 0) return 0;
    if (done >= total) return 100;
    return static_cast<int>(done * 100 / total);
}

std::string connectFailureStatus() {
    return std::string(kCouldNotEstablish) + "\r\n" + kConnectError;
}

std::string ftpErrorStatus(const std::string& error) { return "FTP ERROR: " + error; }

std::string lastFileSentText(const std::string& name) {
    return "Last File: " + name + " was sent via FTP";
}

}  // namespace ovd::ftp
