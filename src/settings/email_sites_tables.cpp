#include "settings/email_sites_tables.h"

#include <utility>

namespace ovd::settings {

namespace {

constexpr const char* kAllReceivers =
    R"(SELECT * FROM "AvailEmails" ORDER BY "EmailCompanyName" COLLATE NOCASE, rowid)";
constexpr const char* kOneReceiver =
    R"(SELECT * FROM "AvailEmails" WHERE "EmailCompanyName" = ?1 COLLATE NOCASE )"
    R"(ORDER BY rowid LIMIT 1)";
// The row found by the company name as typed; its default mark is not touched.
constexpr const char* kChangeReceiver =
    R"(UPDATE "AvailEmails" SET "EmailCompanyName" = ?1, "EmailEmailAddress" = ?2, )"
    R"("EmailEncryptKey" = ?3, "EmailINITS" = ?4 WHERE rowid = (SELECT rowid FROM "AvailEmails" )"
    R"(WHERE "EmailCompanyName" = ?1 COLLATE NOCASE ORDER BY rowid LIMIT 1))";
constexpr const char* kAddReceiver =
    R"(INSERT INTO "AvailEmails" ("EmailCompanyName", "EmailEmailAddress", "EmailEncryptKey", )"
    R"("EmailINITS", "EmailDeFault") VALUES (?1, ?2, ?3, ?4, ?5))";
constexpr const char* kDeleteReceiver =
    R"(DELETE FROM "AvailEmails" WHERE rowid = (SELECT rowid FROM "AvailEmails" )"
    R"(WHERE "EmailCompanyName" = ?1 COLLATE NOCASE ORDER BY rowid LIMIT 1))";

constexpr const char* kAllSites =
    R"(SELECT * FROM "AvailFTPSites" ORDER BY "FTPSiteServer" COLLATE NOCASE, rowid)";
constexpr const char* kOneSite =
    R"(SELECT * FROM "AvailFTPSites" WHERE "FTPSiteServer" = ?1 COLLATE NOCASE )"
    R"(ORDER BY rowid LIMIT 1)";
constexpr const char* kDeleteSite =
    R"(DELETE FROM "AvailFTPSites" WHERE rowid = (SELECT rowid FROM "AvailFTPSites" )"
    R"(WHERE "FTPSiteServer" = ?1 COLLATE NOCASE ORDER BY rowid LIMIT 1))";

EmailReceiver receiverOf(const Recordset& rows, std::size_t row) {
    return {rows.field(row, "EmailCompanyName").text(), rows.field(row, "EmailEmailAddress").text(),
            rows.field(row, "EmailEncryptKey").text(), rows.field(row, kEmailInitialsColumn).text(),
            isTrueValue(rows.field(row, "EmailDeFault"))};
}

FtpSite siteOf(const Recordset& rows, std::size_t row) {
    const auto text = [&](const char* column) { return rows.field(row, column).text(); };
    const auto yes = [&](const char* column) { return isTrueValue(rows.field(row, column)); };
    return {text("FTPSiteServer"),    text("FTPPort"),
            text("FTPDescription"),   text("FTPUserName"),
            text("FTPPassword"),      yes("FTPProxyCheck"),
            text("FTPProxyAddress"),  text("FTPProxyUser"),
            text("FTPProxyPassword"), text("FTPProxyPort"),
            text("FTPRemotePath"),    text("FTPFileSpecification"),
            yes("FTPEncryption"),     text("FTPEncyptionPassword"),
            text(kFtpInitialsColumn), yes("FTPDeFault")};
}

// The new row's columns in the order the setup window writes them; the proxy fields only
// for a site that uses a proxy, so a site without one keeps them null.
std::vector<std::pair<const char*, DbValue>> siteColumns(const FtpSite& site) {
    std::vector<std::pair<const char*, DbValue>> columns = {
        {"FTPSiteServer", site.FTPSiteServer},   {"FTPPort", site.FTPPort},
        {"FTPDescription", site.FTPDescription}, {"FTPUserName", site.FTPUserName},
        {"FTPPassword", site.FTPPassword},       {"FTPProxyCheck", booleanText(site.FTPProxyCheck)},
    };
    if (site.FTPProxyCheck) {
        columns.insert(columns.end(), {{"FTPProxyAddress", site.FTPProxyAddress},
                                       {"FTPProxyUser", site.FTPProxyUser},
                                       {"FTPProxyPassword", site.FTPProxyPassword},
                                       {"FTPProxyPort", site.FTPProxyPort}});
    }
    columns.insert(columns.end(), {{"FTPRemotePath", site.FTPRemotePath},
                                   {"FTPFileSpecification", site.FTPFileSpecification},
                                   {"FTPEncryption", booleanText(site.FTPEncryption)},
                                   {"FTPEncyptionPassword", site.FTPEncyptionPassword},
                                   {kFtpInitialsColumn, site.FTPINITS},
                                   {"FTPDeFault", booleanText(site.FTPDeFault)}});
    return columns;
}

}  // namespace

EmailReceiversTable::EmailReceiversTable(const std::string& dataFolder)
    : session_(dataFolder, StationDatabase::EmailAddress) {}

std::vector<EmailReceiver> EmailReceiversTable::receivers() {
    const Recordset rows = session_.select(kAllReceivers);
    std::vector<EmailReceiver> receivers;
    for (std::size_t row = 0; row < rows.rowCount(); ++row) {
        receivers.push_back(receiverOf(rows, row));
    }
    return receivers;
}

std::optional<EmailReceiver> EmailReceiversTable::findReceiver(const std::string& companyName) {
    const Recordset rows = session_.select(kOneReceiver, {companyName});
    if (rows.rowCount() == 0) return std::nullopt;
    return receiverOf(rows, 0);
}

bool EmailReceiversTable::saveReceiver(const EmailReceiver& receiver) {
    const DbParameters changed = {receiver.EmailCompanyName, receiver.EmailEmailAddress,
                                  receiver.EmailEncryptKey, receiver.EmailINITS};
    if (session_.changeRows(kChangeReceiver, changed)) return true;
    DbParameters added = changed;
    added.emplace_back(booleanText(receiver.EmailDeFault));
    return session_.addRow(kAddReceiver, added);
}

bool EmailReceiversTable::deleteReceiver(const std::string& companyName) {
    return session_.changeRows(kDeleteReceiver, {companyName});
}

FtpSitesTable::FtpSitesTable(const std::string& dataFolder)
    : session_(dataFolder, StationDatabase::FTPSites) {}

std::vector<FtpSite> FtpSitesTable::sites() {
    const Recordset rows = session_.select(kAllSites);
    std::vector<FtpSite> sites;
    for (std::size_t row = 0; row < rows.rowCount(); ++row) sites.push_back(siteOf(rows, row));
    return sites;
}

std::optional<FtpSite> FtpSitesTable::findSite(const std::string& server) {
    const Recordset rows = session_.select(kOneSite, {server});
    if (rows.rowCount() == 0) return std::nullopt;
    return siteOf(rows, 0);
}

bool FtpSitesTable::addSite(const FtpSite& site) {
    std::string names;
    std::string placeholders;
    DbParameters values;
    for (auto& [column, value] : siteColumns(site)) {
        if (!values.empty()) {
            names += ", ";
            placeholders += ", ";
        }
        values.push_back(std::move(value));
        names += quoteIdentifier(column);
        placeholders += "?" + std::to_string(values.size());
    }
    return session_.addRow("INSERT INTO " + quoteIdentifier(kAvailFtpSitesTable) + " (" + names +
                               ") VALUES (" + placeholders + ")",
                           values);
}

bool FtpSitesTable::deleteSite(const std::string& server) {
    return session_.changeRows(kDeleteSite, {server});
}

}  // namespace ovd::settings
