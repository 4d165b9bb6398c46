#pragma once
// The manual FTP window's own choices, kept for the user apart from any site: data
// connection mode and transfer type (ManActive/ManPassive, ManAscii/ManBin) and the
// automatic window's minutes (Timer), in OrvaneTransport.ini, section FTPSettings.

#include <string>

#include "ftp/ftp_client.h"

namespace ovd::ftp {

inline constexpr const char* kFtpSettingsFileName = "OrvaneTransport.ini";
inline constexpr const char* kFtpSettingsSection = "FTPSettings";

struct ManualFtpSettings {
    bool ManActive = false;
    bool ManPassive = true;
    bool ManAscii = false;
    bool ManBin = true;
    int Timer = 0;

    // The two pairs as the connection uses them; passive and binary win a tie.
    void applyTo(ConnectionSettings& settings) const;
};

// A missing file or key keeps the default. One button of a pair on makes the other
// off, as option buttons do.
ManualFtpSettings loadManualFtpSettings(const std::string& dataFolder);
// False when the file could not be written.
platform::Result<void> saveManualFtpSettings(const std::string& dataFolder,
                                             const ManualFtpSettings& settings);

}  // namespace ovd::ftp
