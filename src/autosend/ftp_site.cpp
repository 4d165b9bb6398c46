#include "autosend/ftp_site.h"

#include <cstdlib>

#include "platform/files.h"
#include "platform/text.h"
#include "settings/delivery_defaults.h"

namespace ovd::autosend {

namespace {

// A check box is stored as "1", "True" or "-1", depending on who wrote it.
bool checked(const std::string& value) {
    return value == "1" || value == "-1" || platform::equalsIgnoreCase(value, "True");
}

bool startsWithIgnoringCase(const std::string& text, const std::string& prefix) {
    return text.size() >= prefix.size() &&
           platform::equalsIgnoreCase(text.substr(0, prefix.size()), prefix);
}

int portOr(const std::string& text, int fallback) {
    char* end = nullptr;
    const long port = std::strtol(text.c_str(), &end, 10);
    if (text.empty() || end == text.c_str() || port <= 0 || port > 65535) return fallback;
    return static_cast<int>(port);
}

}  // namespace

platform::Result<FtpSite> defaultFtpSite(const settings::CompanyRecords& records) {
    const auto values = settings::LoadDefaultFTP(records);
    const auto get = [&values](const char* key) {
        const auto found = values.find(key);
        return found == values.end() ? std::string() : platform::trim(found->second);
    };
    std::string host = get("FTPServer");
    if (host.empty()) return platform::failure("No default FTP site has been selected.");

    FtpSite site;
    ftp::ConnectionSettings& connection = site.connection;
    int defaultPort = 21;
    if (startsWithIgnoringCase(host, "sftp://")) {
        connection.security = ftp::Security::Sftp;
        defaultPort = 22;
        host = host.substr(7);
    } else if (startsWithIgnoringCase(host, "ftps://")) {
        connection.security = ftp::Security::ExplicitTls;
        host = host.substr(7);
    } else if (startsWithIgnoringCase(host, "ftp://")) {
        host = host.substr(6);
    }
    if (const auto slash = host.find('/'); slash != std::string::npos) host.resize(slash);
    connection.hostName = host;
    connection.port = portOr(get("FTPPort"), defaultPort);
    connection.userName = get("FTPUserName");
    connection.password = values.contains("FTPPassword") ? values.at("FTPPassword") : "";
    connection.passiveMode = !platform::equalsIgnoreCase(get("FTPMode"), "Active");
    connection.transferType = platform::equalsIgnoreCase(get("FTPTranferMode"), "ASCII")
                                  ? ftp::TransferType::Ascii
                                  : ftp::TransferType::Binary;
    connection.pinnedCertificateFile = get("FTPCertificate");
    connection.privateKeyFile = get("FTPKeyFile");
    connection.knownHostsFile = platform::joinPath(records.dataFolder(), kKnownHostsFile);
    if (checked(get("FTPUseProxyServer")) && !get("FTPProxyAddress").empty()) {
        connection.proxyAddress = get("FTPProxyAddress");
        if (!get("FTPProxyPort").empty()) connection.proxyAddress += ":" + get("FTPProxyPort");
    }
    site.description = get("FTPDescription");
    site.remoteFolder = get("FTPUFLMRemotePath");
    site.encrypt = checked(get("FTPEncryptOption"));
    site.key = get("FTPEncryptKey");
    return site;
}

}  // namespace ovd::autosend
