#pragma once
// A transcriber's FTP site, as ClientsInfo.ini keeps it, turned into what the
// transfer core connects with. Every window, the schedule and the companion
// sender read a site through here, so a key is understood the same everywhere.

#include <string>

#include "ftp/ftp_client.h"
#include "settings/transcriber_records.h"

namespace ovd::ftp {

// Keys this station adds to a site record. A record written before they existed
// reads as plain FTP with the system's authorities, which is what it always was.
inline constexpr const char* kSiteSecurityKey = "FTPSecurity";             // ftp, ftps, sftp
inline constexpr const char* kSitePinnedCertificateKey = "FTPPinnedCert";  // PEM file
inline constexpr const char* kKnownHostsFileName = "sftp_known_hosts";
inline constexpr const char* kSiteKeyFileKey = "FTPKeyFile";  // private key of an SFTP login

// FTPMode and FTPTranferMode as the setup windows write them.
inline constexpr const char* kActiveMode = "Active";
inline constexpr const char* kPassiveMode = "Passive";
inline constexpr const char* kAsciiTransfer = "ASCII";
inline constexpr const char* kBinaryTransfer = "Binary";

// How the site is reached: the peers' plain FTP, FTP over explicit TLS, or SSH.
enum class SiteScheme { Ftp, Ftps, Sftp };

SiteScheme schemeFromText(const std::string& text);
const char* schemeText(SiteScheme scheme);

struct SiteConnection {
    SiteScheme scheme = SiteScheme::Ftp;
    ConnectionSettings settings;
};

// The connection of a site record: server, port (21 when blank or not a port, 22
// for SFTP), login, passive unless "Active" is chosen, binary unless ASCII is, the
// proxy as "host:port" when its option is on, and the security of the added keys.
// A server typed as "ftps://host" or "sftp://host" says its kind itself and wins
// over FTPSecurity. An SFTP site's key is checked against the known-hosts file of
// the data folder.
SiteConnection connectionFor(const settings::TranscriberRecord& record,
                             const std::string& dataFolder);

// Whether a yes/no key of a record is on; the record files have held "1", "True"
// and "-1" for yes over the years.
bool recordOptionOn(const std::string& value);

}  // namespace ovd::ftp
