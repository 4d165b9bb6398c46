#include "settings/company_records.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "platform/files.h"
#include "platform/text.h"
#include "settings/config_file.h"
#include "settings/ini_file.h"

namespace ovd::settings {

namespace {

constexpr const char* kCompanySection = "Company";
constexpr const char* kKeySection = "Key";

// Bounds the help tree, so that a damaged entry count can't keep the help window
// reading the file for ever.
constexpr int kMostHelpEntries = 999;

// One folder level, made only where the folder above already stands, as a plain
// make-folder does: a name holding "/" would otherwise reach into other folders.
void makeFolder(const std::string& path) {
    if (platform::folderExists(path)) return;
    std::error_code ec;
    std::filesystem::create_directory(path, ec);
}

}  // namespace

CompanyRecords::CompanyRecords(std::string dataFolder) : dataFolder_(std::move(dataFolder)) {}

std::string CompanyRecords::ourCompanyPath() const {
    return platform::joinPath(dataFolder_, kOurCompanyFileName);
}

std::string CompanyRecords::clientsPath() const {
    return platform::joinPath(dataFolder_, kClientsFileName);
}

std::string CompanyRecords::defaultsPath() const {
    return platform::joinPath(dataFolder_, kDefaultsFileName);
}

std::string CompanyRecords::helpPath() const {
    return platform::joinPath(dataFolder_, kHelpFileName);
}

std::string CompanyRecords::fileFoldersPath() const {
    return platform::joinPath(dataFolder_, kFileFoldersName);
}

std::string CompanyRecords::clientFolder(std::string_view companyName,
                                         std::string_view suffix) const {
    std::string name(companyName);
    name += suffix;
    return platform::joinPath(fileFoldersPath(), name);
}

IniStore CompanyRecords::ourCompany() const {
    return IniStore(ourCompanyPath(), FileAccess::OwnerOnly);
}

IniStore CompanyRecords::clients() const { return IniStore(clientsPath(), FileAccess::OwnerOnly); }

IniStore CompanyRecords::defaults() const {
    return IniStore(defaultsPath(), FileAccess::OwnerOnly);
}

ClientList CompanyRecords::LoadClients() const {
    const std::vector<std::string> lines = readTextLines(clientsPath());

    // One slot per section line.
    const auto sections = static_cast<std::size_t>(
        std::count_if(lines.begin(), lines.end(),
                      [](const std::string& line) { return platform::startsWith(line, "["); }));
    ClientList list;
    list.companyNames.resize(sections);
    list.emails.resize(sections);
    list.encryptKeys.resize(sections);

    // The names come from the CompanyName lines in file order, not from the section
    // lines: a section without one leaves the list one short at the end, and every
    // dialog has always shown it so. Kept as it is.
    std::vector<std::string> names;
    for (const auto& line : lines) {
        if (platform::startsWith(line, "CompanyName")) names.push_back(textAfterFirstEquals(line));
    }
    // More CompanyName lines than sections have no slot to go to.
    if (names.size() > sections) names.resize(sections);

    const IniStore store = clients();
    for (std::size_t i = 0; i < names.size(); ++i) {
        list.companyNames[i] = store.ReadKey(names[i], "CompanyName");
        list.emails[i] = store.ReadKey(names[i], "Email");
        list.encryptKeys[i] = store.ReadKey(names[i], "RECEncryptKey");
    }
    list.HowMany = static_cast<int>(names.size());
    return list;
}

std::vector<std::string> CompanyRecords::LoadOurEmails() const {
    std::vector<std::string> emails;
    for (const auto& line : readTextLines(ourCompanyPath())) {
        if (platform::startsWith(line, "Email")) emails.push_back(textAfterFirstEquals(line));
    }
    return emails;
}

void CompanyRecords::CreateClientFolders() const {
    const ClientList list = LoadClients();
    makeFolder(fileFoldersPath());
    for (std::size_t i = 0; i < static_cast<std::size_t>(list.HowMany); ++i) {
        const std::string& name = list.companyNames[i];
        // A company name that can't be a folder name makes no folders; its record
        // stays as it is.
        if (name.find('/') != std::string::npos) continue;
        for (const auto suffix : kClientFolderSuffixes) makeFolder(clientFolder(name, suffix));
    }
}

std::string CompanyRecords::defaultFtpClient() const {
    if (!platform::fileExists(clientsPath())) return {};
    return defaults().ReadKey("DefaultFTPClient", "DefaultFTP");
}

bool saveOurCompanyInformation(const CompanyRecords& records, const OurCompanyFields& fields,
                               platform::Prompts& prompts) {
    const auto refuse = [&prompts](const char* text) {
        prompts.showMessage(text, kProductTitle, platform::Severity::Warning);
        return false;
    };
    if (fields.CompanyName.empty()) return refuse(kCompanyNameMissingMessage);
    if (fields.Name.empty()) return refuse(kContactNameMissingMessage);
    if (fields.EncryptKey.empty()) return refuse(kEncryptKeyMissingMessage);

    // A failed write is not told: the user sees the thanks either way.
    const IniStore store = records.ourCompany();
    (void)store.WriteKey(kCompanySection, "CompanyName", fields.CompanyName);
    (void)store.WriteKey(kCompanySection, "Name", fields.Name);
    (void)store.WriteKey(kCompanySection, "Address", fields.Address);
    (void)store.WriteKey(kCompanySection, "City", fields.City);
    (void)store.WriteKey(kCompanySection, "St", fields.St);
    (void)store.WriteKey(kCompanySection, "Zip", fields.Zip);
    (void)store.WriteKey(kCompanySection, "Phone", fields.Phone);
    (void)store.WriteKey(kKeySection, "EncryptKey", fields.EncryptKey);
    prompts.showMessage(kCompanySavedMessage, kProductTitle, platform::Severity::Information);
    return true;
}

HelpIndex readHelpIndex(const CompanyRecords& records, platform::Prompts& prompts) {
    clsIniFile ini(prompts, records.dataFolder());
    ini.FullPath(records.helpPath());
    ini.SectionName("General");

    HelpIndex index;
    index.Entries = std::clamp(ini.GetInt("Entries", 1), 0, kMostHelpEntries);
    index.ListWidth = ini.GetInt("ListWidth", 225);
    index.FormTitle = ini.GetString("Form Title", "Help");
    for (int number = 1; number <= index.Entries; ++number) {
        ini.SectionName(std::to_string(number));
        HelpEntry entry;
        entry.ListItem = ini.GetString("ListItem", "");
        entry.ListTarget = ini.GetString("ListTarget", "<UNKNOWN>");
        entry.Relative = ini.GetString("Relative", "Root");
        entry.Node = ini.GetString("Node", "False");
        entry.Key = ini.GetString("Key", "");
        index.items.push_back(std::move(entry));
    }
    return index;
}

}  // namespace ovd::settings
