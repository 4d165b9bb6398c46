#pragma once
// The e-mail receivers (`AvailEmails` in EmailAddress.db) and the FTP sites
// (`AvailFTPSites` in FTPSites.db), as their setup windows keep them. Opening either
// table is the window opening: it runs the upgrade that adds the initials column.
//
// Keys are compared and lists ordered without regard to case. A null field (a key never
// entered, initials of a row older than the initials column, a proxy field of a site
// without proxy) reads as the empty text; the null itself stays in the file.

#include <optional>
#include <string>
#include <vector>

#include "settings/databases.h"

namespace ovd::settings {

// One row of `AvailEmails`.
struct EmailReceiver {
    std::string EmailCompanyName;
    std::string EmailEmailAddress;
    std::string EmailEncryptKey;
    std::string EmailINITS;
    bool EmailDeFault = false;
};

class EmailReceiversTable {
  public:
    explicit EmailReceiversTable(const std::string& dataFolder);

    // Ordered by company name.
    [[nodiscard]] std::vector<EmailReceiver> receivers();
    // The first row of that company, in any case.
    [[nodiscard]] std::optional<EmailReceiver> findReceiver(const std::string& companyName);
    // The setup window's save. A company already there has its name, address, key and
    // initials changed, and keeps its default mark; a new one is added with all five
    // fields. Makes the file when there is none.
    bool saveReceiver(const EmailReceiver& receiver);
    // Deletes the row findReceiver() gives; false when there is none.
    bool deleteReceiver(const std::string& companyName);

  private:
    DatabaseSession session_;
};

// One row of `AvailFTPSites`.
struct FtpSite {
    std::string FTPSiteServer;
    std::string FTPPort;
    std::string FTPDescription;
    std::string FTPUserName;
    std::string FTPPassword;
    bool FTPProxyCheck = false;
    // Stored only when FTPProxyCheck is set.
    std::string FTPProxyAddress;
    std::string FTPProxyUser;
    std::string FTPProxyPassword;
    std::string FTPProxyPort;
    std::string FTPRemotePath;
    std::string FTPFileSpecification;
    bool FTPEncryption = false;
    std::string FTPEncyptionPassword;
    std::string FTPINITS;
    bool FTPDeFault = false;
};

class FtpSitesTable {
  public:
    explicit FtpSitesTable(const std::string& dataFolder);

    // Ordered by server.
    [[nodiscard]] std::vector<FtpSite> sites();
    // The first row of that server, in any case.
    [[nodiscard]] std::optional<FtpSite> findSite(const std::string& server);
    // Always a new row; the window decides beforehand whether the server is new. Makes
    // the file when there is none.
    bool addSite(const FtpSite& site);
    // Deletes the row findSite() gives; false when there is none.
    bool deleteSite(const std::string& server);

  private:
    DatabaseSession session_;
};

}  // namespace ovd::settings
