#pragma once
// The texts the FTP windows show in their status label while files move and
// when a connection or a transfer fails.

#include <cstdint>
#include <string>

namespace ovd::ftp {

inline constexpr const char* kCantConnectToServerText =
    "Can't Connect to Server. Please check Username, IP address, Password, on your connection "
    "to the internet.\r\nor check to see if Server is available";

// "<done> bytes uploaded out of <total> total bytes", and its download twin.
std::string uploadStatusText(std::uint64_t done, std::uint64_t total);
std::string downloadStatusText(std::uint64_t done, std::uint64_t total);

// The bar's position: the whole part of the percentage, 0 for an empty file.
int percentDone(std::uint64_t done, std::uint64_t total);

// "Could not establish connection." over "Can NOT Connect to FTP Server".
std::string connectFailureStatus();
// "FTP ERROR: " and the failure's text.
std::string ftpErrorStatus(const std::string& error);
// "Last File: <name> was sent via FTP", shown after an unattended upload.
std::string lastFileSentText(const std::string& name);

}  // namespace ovd::ftp
