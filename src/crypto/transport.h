#pragma once
// How a file is enciphered for the road: the key text each route forms, the name
// the enciphered file travels under, and the warnings when it can't be enciphered.

#include <string>
#include <string_view>

#include "platform/prompts.h"
#include "platform/result.h"

namespace ovd::crypto {

inline constexpr const char* kEmailTempFolderName = "AutoEmailTemp";
inline constexpr const char* kEncipheredExtension = ".enc";

inline constexpr const char* kEmailNoKeyWarning =
    "Encryption has been checked in the 'Email Options' "
    "but this email address does not have a valid encrytion key. "
    "WARNING---Message will not be encrypted.";
inline constexpr const char* kFtpNoKeyWarning =
    "Encryption has been checked for this Transcriber "
    "but this Transcriber does not have a valid encrytion key. "
    "WARNING---Message will not be encrypted.";
inline constexpr const char* kNotAttachedSuffix =
    "--File not attached! File Not found or File already Attached";

// The first six characters of a company name; a shorter name whole. They are what
// tells transcribers apart in file and folder names.
std::string sixCharacters(std::string_view companyName);

// The parts of each route's key text, joined with nothing between them.
// Sending by e-mail: our key, the receiver's company, the receiver's key.
std::string emailSendingKeyText(std::string_view ourKey, std::string_view receiverCompany,
                                std::string_view receiverKey);
// Receiving by FTP, the mirror of the e-mail form: the sender's key (RECEncryptKey),
// our company (g_strOrganization), our key (g_strSaveOurCompanyKey).
std::string ftpReceivingKeyText(std::string_view senderKey, std::string_view ourCompany,
                                std::string_view ourKey);
// Sending by FTP: the site's key alone.
std::string ftpSendingKeyText(std::string_view siteKey);

// name + "_" + six of our company + "_to_" + six of the receiver's + ".enc". The
// whole name stays inside, extension and all; a name with no dot is no different.
std::string emailTransportName(std::string_view fileName, std::string_view ourCompany,
                               std::string_view receiverCompany);
// name + ".enc", the extension kept inside.
std::string ftpTransportName(std::string_view fileName);

// A file name split at its last dot, as the attachment list shows it; no dot gives
// the whole name and an empty extension.
struct ListedName {
    std::string name;
    std::string extension;  // without the dot
};
ListedName splitAtLastDot(std::string_view fileName);

// A name that already holds ".enc" anywhere has been enciphered before.
bool alreadyEnciphered(std::string_view fileName);
std::string alreadyEncipheredMessage(std::string_view fileName);

struct EmailEncipherRequest {
    std::string filePath;         // the attachment as the author left it
    std::string dataFolder;       // AutoEmailTemp is made here
    std::string ourKey;           // g_strSaveOurCompanyKey
    std::string ourCompany;       // g_strOrganization
    std::string receiverCompany;  // cboCo
    std::string receiverKey;      // cboRecKey
};

// Copies the attachment to AutoEmailTemp, enciphers the copy and gives the path of
// the file to attach under its transport name. When no enciphered file comes of it,
// the box says the file is not attached and the failure comes back; the caller goes
// on with the next attachment. The author's file is never touched.
platform::Result<std::string> encipherEmailAttachment(const EmailEncipherRequest& request,
                                                      platform::Prompts& prompts);

struct FtpUpload {
    std::string path;        // the file to send
    std::string remoteName;  // the name it goes up under
};

// The file to send to a site that wants files enciphered: a copy in `ftpTempFolder`
// enciphered under the site's key, going up as name + ".enc". A file already
// enciphered, or a site with no key, is told and goes up as it is. When enciphering
// itself fails (the box has said why) the failure comes back and nothing goes up:
// the site asked for the file locked, so it never leaves in clear by accident.
platform::Result<FtpUpload> encipherFtpUpload(const std::string& filePath,
                                              const std::string& siteKey,
                                              const std::string& ftpTempFolder,
                                              platform::Prompts& prompts);

}  // namespace ovd::crypto
