#include "ftp/site_connection.h"

#include <charconv>

#include "platform/files.h"
#include "platform/text.h"

namespace ovd::ftp {

namespace {

int portOf(const std::string& text, int fallback) {
    const std::string trimmed = platform::trim(text);
    int port = 0;
    const auto [end, error] =
        std::from_chars(trimmed.data(), trimmed.data() + trimmed.size(), port);
    if (error != std::errc() || end != trimmed.data() + trimmed.size()) return fallback;
    return port > 0 && port < 65536 ? port : fallback;
}

}  // namespace

bool recordOptionOn(const std::string& value) {
    const std::string text = platform::trim(value);
    return text == "1" || text == "-1" || platform::equalsIgnoreCase(text, "True") ||
           platform::equalsIgnoreCase(text, "Yes");
}

SiteScheme schemeFromText(const std::string& text) {
    const std::string trimmed = platform::trim(text);
    if (platform::equalsIgnoreCase(trimmed, "ftps")) return SiteScheme::Ftps;
    if (platform::equalsIgnoreCase(trimmed, "sftp")) return SiteScheme::Sftp;
    return SiteScheme::Ftp;
}

const char* schemeText(SiteScheme scheme) {
    switch (scheme) {
        case SiteScheme::Ftp:
            return "ftp";
        case SiteScheme::Ftps:
            return "ftps";
        case SiteScheme::Sftp:
            return "sftp";
    }
    return "ftp";
}

SiteConnection connectionFor(const settings::TranscriberRecord& record,
                             const std::string& dataFolder) {
    SiteConnection site;
    site.scheme = schemeFromText(record.get(kSiteSecurityKey));
    ConnectionSettings& s = site.settings;
    s.hostName = platform::trim(record.get("FTPServer"));
    if (const auto marker = s.hostName.find("://"); marker != std::string::npos) {
        site.scheme = schemeFromText(s.hostName.substr(0, marker));
        s.hostName.erase(0, marker + 3);
    }
    if (const auto slash = s.hostName.find('/'); slash != std::string::npos)
        s.hostName.resize(slash);
    s.port = portOf(record.get("FTPPort"), site.scheme == SiteScheme::Sftp ? 22 : 21);
    s.userName = record.get("FTPUserName");
    s.password = record.get("FTPPassword");
    s.passiveMode = !platform::equalsIgnoreCase(platform::trim(record.get("FTPMode")), kActiveMode);
    s.transferType =
        platform::equalsIgnoreCase(platform::trim(record.get("FTPTranferMode")), kAsciiTransfer)
            ? TransferType::Ascii
            : TransferType::Binary;
    s.security = site.scheme == SiteScheme::Ftps   ? Security::ExplicitTls
                 : site.scheme == SiteScheme::Sftp ? Security::Sftp
                                                   : Security::Plain;
    s.pinnedCertificateFile = platform::trim(record.get(kSitePinnedCertificateKey));
    s.privateKeyFile = platform::trim(record.get(kSiteKeyFileKey));
    s.knownHostsFile = platform::joinPath(dataFolder, kKnownHostsFileName);
    const std::string proxyHost = platform::trim(record.get("FTPProxyAddress"));
    if (recordOptionOn(record.get("FTPUseProxyServer")) && !proxyHost.empty()) {
        const std::string proxyPort = platform::trim(record.get("FTPProxyPort"));
        s.proxyAddress = proxyPort.empty() ? proxyHost : proxyHost + ":" + proxyPort;
    }
    return site;
}

}  // namespace ovd::ftp
