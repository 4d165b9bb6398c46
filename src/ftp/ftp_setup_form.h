#pragma once
// The two FTP setup windows as data: a transcriber's site and its rules loaded into
// the boxes (GetInfoForCrypt), edited, and written back with the key questions
// (WriteCryptoInfo). The automatic window's setup shows every box, the manual
// window's the site alone; both keep the same record.

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "platform/prompts.h"
#include "settings/company_records.h"
#include "settings/transcriber_records.h"

namespace ovd::ftp {

// Every key the setup windows edit, those this station added last.
inline constexpr std::array<std::string_view, 31> kFtpSetupKeys = {
    "FTPServer",
    "FTPPort",
    "FTPDescription",
    "FTPUserName",
    "FTPPassword",
    "FTPAccount",
    "FTPMode",
    "FTPTranferMode",
    "FTPUseProxyServer",
    "FTPProxyAddress",
    "FTPProxyPort",
    "FTPProxyUser",
    "FTPProxyPassword",
    "FTPEncryptOption",
    "FTPEncryptKey",
    "FTPEncryptINIT",
    "FTPAutoScheduler",
    "FTPAutoSchedulerMinutes",
    "FTPUFLMOption",
    "FTPUFLMFileSpec",
    "FTPUFLMRemotePath",
    "FTPUFLMUploadFrom",
    "FTPUFLMMoveLocalAfterUploadOption",
    "FTPUFLMMoveTO",
    "FTPDFRSOption",
    "FTPDFRSFileSpec",
    "FTPDFRSRemotePath",
    "FTPDFRSDownloadTo",
    "FTPDFRSDelete",
    "FTPSecurity",
    "FTPPinnedCert"};

class FtpSetupForm {
  public:
    FtpSetupForm(const settings::CompanyRecords& records, platform::Prompts& prompts);

    // The transcribers, and the default site's transcriber loaded when there is one.
    void Form_Load();
    [[nodiscard]] const std::vector<std::string>& companies() const { return companies_; }
    [[nodiscard]] const std::string& company() const { return company_; }

    // Loads the site of that transcriber into the boxes. No transcriber: the box
    // "No Current Transcriber selected'  Information Not Available", and false.
    bool GetInfoForCrypt(const std::string& company);
    [[nodiscard]] std::string field(std::string_view key) const { return record_.get(key); }
    void setField(std::string_view key, std::string value);
    [[nodiscard]] bool changed() const { return changed_; }

    // Asks for the key (and its two characters) when enciphering is on without
    // one, then writes the record; the default site's copy in DefaultInfo.ini
    // follows when this transcriber's site is the default. True when saved.
    bool WriteCryptoInfo();
    // Makes this transcriber's site the one unattended sending uses.
    bool makeDefaultSite();

  private:
    bool askForKey();
    void writeDefaultCopy() const;

    const settings::CompanyRecords& records_;
    platform::Prompts& prompts_;
    std::vector<std::string> companies_;
    std::string company_;
    settings::TranscriberRecord record_;
    bool changed_ = false;
};

}  // namespace ovd::ftp
