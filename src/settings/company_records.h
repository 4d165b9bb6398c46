#pragma once
// The files that describe the people at both ends of a delivery, all in the data
// folder: who we are (OurCompanyInfo.ini), who the transcribers are (ClientsInfo.ini,
// one section per transcriber, named by its company), which ones are the defaults
// (DefaultInfo.ini); and Help.INI, the help window's tree. Beside them, the
// FileFolders tree with six folders per transcriber.
//
// The first three hold passwords and keys, so they are written readable by their
// owner only. Nothing is kept in memory: each reader goes to the file again.

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "platform/prompts.h"
#include "settings/ini_store.h"

namespace ovd::settings {

inline constexpr const char* kOurCompanyFileName = "OurCompanyInfo.ini";
inline constexpr const char* kClientsFileName = "ClientsInfo.ini";
inline constexpr const char* kDefaultsFileName = "DefaultInfo.ini";
inline constexpr const char* kHelpFileName = "Help.INI";
inline constexpr const char* kFileFoldersName = "FileFolders";

// The folders of one transcriber are its company name followed by each of these,
// in this order: work dropped for a channel, and the files renamed for it.
inline constexpr std::array<std::string_view, 6> kClientFolderSuffixes = {
    " _EMAILScan", " _EMAILOutputRenamed", " _FTPScan", " _FTPOutputRenamed",
    " _PTPScan",   " _PTPOutputRenamed"};

inline constexpr const char* kCompanyNameMissingMessage =
    "Company Name must be entered to Save record";
inline constexpr const char* kContactNameMissingMessage = "Name must be entered to Save record";
inline constexpr const char* kEncryptKeyMissingMessage =
    "An ecryption key needs to be entered.  Please re-enter";
inline constexpr const char* kCompanySavedMessage =
    "Thank You... All required fields have been entered --- Company Information saved";

// The transcribers as every dialog lists them. The three lists have one slot per
// section of ClientsInfo.ini; HowMany of them are filled, from the first on.
struct ClientList {
    std::vector<std::string> companyNames;
    std::vector<std::string> emails;
    std::vector<std::string> encryptKeys;
    int HowMany = 0;
};

// What the own-company window holds when the user saves.
struct OurCompanyFields {
    std::string CompanyName;
    std::string Name;
    std::string Address;
    std::string City;
    std::string St;
    std::string Zip;
    std::string Phone;
    std::string EncryptKey;
};

// One line of the help window's tree, as Help.INI describes it.
struct HelpEntry {
    std::string ListItem;
    std::string ListTarget;
    std::string Relative;
    std::string Node;
    std::string Key;
    bool operator==(const HelpEntry&) const = default;
};

struct HelpIndex {
    int Entries = 1;
    int ListWidth = 225;
    std::string FormTitle = "Help";
    std::vector<HelpEntry> items;  // sections "1" to Entries
};

class CompanyRecords {
  public:
    explicit CompanyRecords(std::string dataFolder);

    [[nodiscard]] const std::string& dataFolder() const { return dataFolder_; }
    [[nodiscard]] std::string ourCompanyPath() const;
    [[nodiscard]] std::string clientsPath() const;
    [[nodiscard]] std::string defaultsPath() const;
    [[nodiscard]] std::string helpPath() const;
    [[nodiscard]] std::string fileFoldersPath() const;
    // One folder of a transcriber: FileFolders, then the company name and the suffix.
    [[nodiscard]] std::string clientFolder(std::string_view companyName,
                                           std::string_view suffix) const;

    [[nodiscard]] IniStore ourCompany() const;
    [[nodiscard]] IniStore clients() const;
    [[nodiscard]] IniStore defaults() const;

    // Rebuilt from the file at each call; a missing file gives no transcribers.
    [[nodiscard]] ClientList LoadClients() const;
    // The sender addresses of the own mail accounts, in file order.
    [[nodiscard]] std::vector<std::string> LoadOurEmails() const;
    // FileFolders and the six folders of each transcriber, those that are missing.
    // A folder that can't be made is passed over without a word.
    void CreateClientFolders() const;
    // The transcriber whose FTP site is the default: a section of ClientsInfo.ini,
    // or empty when there is none (or no ClientsInfo.ini at all).
    [[nodiscard]] std::string defaultFtpClient() const;

  private:
    std::string dataFolder_;
};

// The save button of the own-company window: a required field left empty is told
// and nothing is written; otherwise the company's keys are written, then thanked
// for. True when saved.
bool saveOurCompanyInformation(const CompanyRecords& records, const OurCompanyFields& fields,
                               platform::Prompts& prompts);

// Help.INI with its defaults for every missing key: General Entries "1", ListWidth
// "225", Form Title "Help"; per entry ListTarget "<UNKNOWN>", Relative "Root", Node
// "False". A missing file gives the defaults and one entry of them.
HelpIndex readHelpIndex(const CompanyRecords& records, platform::Prompts& prompts);

}  // namespace ovd::settings
