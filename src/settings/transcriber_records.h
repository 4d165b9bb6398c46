#pragma once
// The transcribers of ClientsInfo.ini: one section per transcriber, named by its
// company, holding its address, its peer and mail addresses, the key agreed with
// it and its FTP site. A save writes the whole file beside itself and moves it into
// place, so a failed write never costs another transcriber's record.

#include <array>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "platform/result.h"
#include "settings/company_records.h"

namespace ovd::settings {

// Every key a transcriber's section holds, in the order a save writes them.
inline constexpr std::array<std::string_view, 41> kTranscriberKeys = {
    "CompanyName", "Name", "Address", "City", "St", "Zip", "Phone", "PTPHostName", "PTPHostIP",
    "Email", "RECEncryptKey", "RECEncryptINITS",
    // The FTP site of the transcriber.
    "FTPServer", "FTPPort", "FTPDescription", "FTPUserName", "FTPPassword", "FTPAccount", "FTPMode",
    "FTPTranferMode", "FTPUseProxyServer", "FTPProxyAddress", "FTPProxyPort", "FTPProxyUser",
    "FTPProxyPassword", "FTPEncryptOption", "FTPEncryptKey", "FTPEncryptINIT", "FTPAutoScheduler",
    "FTPAutoSchedulerMinutes",
    // What goes up to the site and what comes down from it.
    "FTPUFLMOption", "FTPUFLMFileSpec", "FTPUFLMRemotePath", "FTPUFLMUploadFrom",
    "FTPUFLMMoveLocalAfterUploadOption", "FTPUFLMMoveTO", "FTPDFRSOption", "FTPDFRSFileSpec",
    "FTPDFRSRemotePath", "FTPDFRSDownloadTo", "FTPDFRSDelete"};

// One transcriber: each key of its section and its value; a key never written reads
// as the empty text.
struct TranscriberRecord {
    std::map<std::string, std::string> values;

    [[nodiscard]] std::string get(std::string_view key) const;
    void set(std::string_view key, std::string value);
    [[nodiscard]] std::string companyName() const { return get("CompanyName"); }
    bool operator==(const TranscriberRecord&) const = default;
};

class TranscriberStore {
  public:
    explicit TranscriberStore(const CompanyRecords& records) : records_(records) {}

    // The section names, in file order. A file that is there but can't be read, or
    // holds what no text file holds, fails; a missing file is no transcribers.
    [[nodiscard]] platform::Result<std::vector<std::string>> companies() const;
    // The record of that company, found without regard to case; empty when there is none.
    [[nodiscard]] platform::Result<TranscriberRecord> load(std::string_view companyName) const;
    // Writes every key of the record under its company name. When the record was
    // loaded under another name, that section goes: the transcriber was renamed.
    platform::Result<void> save(const TranscriberRecord& record,
                                std::string_view previousName = {}) const;

  private:
    [[nodiscard]] platform::Result<IniDocument> document() const;
    const CompanyRecords& records_;
};

}  // namespace ovd::settings
