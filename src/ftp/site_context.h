#pragma once
// What an FTP window knows of the site it works on and of the station around it:
// the transcriber's record (the site and its rules), the own company and key for
// the key texts, and the folders it keeps its enciphered copies and sounds in.

#include <string>

#include "platform/prompts.h"
#include "platform/result.h"
#include "settings/transcriber_records.h"

namespace ovd::ftp {

inline constexpr const char* kFtpTempFolderName = "FTPTemp";

struct SiteContext {
    settings::TranscriberRecord record;
    std::string ourCompany;     // g_strOrganization
    std::string ourKey;         // g_strSaveOurCompanyKey
    std::string dataFolder;     // FTPTemp is made here
    std::string programFolder;  // complete.wav is found here

    [[nodiscard]] std::string ftpTempFolder() const;
    [[nodiscard]] bool enciphers() const;
};

// A file ready to go up: the path to send and the name it gets on the site. When
// the site wants files enciphered, a copy is enciphered in FTPTemp and `temporary`
// is set, so the caller removes that copy once it is sent or refused.
struct PreparedUpload {
    std::string path;
    std::string remoteName;
    bool temporary = false;
};

// The encryption step before an upload. `ruleName` gives the name the upload rule
// uses ("_" + six of the own company + "_to_" + six of the transcriber + ".enc")
// instead of the plain name + ".enc". A file the site wants enciphered that can't
// be is not sent at all: it never leaves in clear by accident.
platform::Result<PreparedUpload> prepareUpload(const SiteContext& site, const std::string& path,
                                               bool ruleName, platform::Prompts& prompts);

// The local name a remote file is fetched under. An enciphered one (its name holds
// ".enc") arrives as "ENC_" + its name without the ".enc" and without the
// "_<six>_to_<six>" a transport name carries, so that deciphering, which drops the
// first four characters, leaves the letter under its own name.
std::string downloadName(const SiteContext& site, const std::string& remoteName);

// After a download: an "ENC_" file is deciphered beside itself with the key text of
// a file received from this transcriber, and goes once deciphered. When it can't
// be deciphered it stays, so nothing that arrived is lost; false then.
bool decipherDownload(const SiteContext& site, const std::string& localPath,
                      platform::Prompts& prompts);

}  // namespace ovd::ftp
