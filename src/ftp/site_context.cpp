#include "ftp/site_context.h"

#include <cstdio>

#include "crypto/file_crypt.h"
#include "crypto/transport.h"
#include "ftp/site_connection.h"
#include "platform/files.h"

namespace ovd::ftp {

std::string SiteContext::ftpTempFolder() const {
    return platform::joinPath(dataFolder, kFtpTempFolderName);
}

bool SiteContext::enciphers() const { return recordOptionOn(record.get("FTPEncryptOption")); }

platform::Result<PreparedUpload> prepareUpload(const SiteContext& site, const std::string& path,
                                               bool ruleName, platform::Prompts& prompts) {
    const std::string fileName = platform::withoutFolder(path);
    if (!site.enciphers()) return PreparedUpload{path, fileName, false};
    auto enciphered = crypto::encipherFtpUpload(path, site.record.get("FTPEncryptKey"),
                                                site.ftpTempFolder(), prompts);
    if (!enciphered) return enciphered.failed();
    PreparedUpload prepared{enciphered->path, enciphered->remoteName, enciphered->path != path};
    if (prepared.temporary && ruleName) {
        prepared.remoteName =
            crypto::emailTransportName(fileName, site.ourCompany, site.record.companyName());
    }
    return prepared;
}

std::string downloadName(const SiteContext& site, const std::string& remoteName) {
    if (!crypto::alreadyEnciphered(remoteName)) return remoteName;
    std::string name = remoteName;
    const std::string extension = crypto::kEncipheredExtension;
    if (name.ends_with(extension)) name.resize(name.size() - extension.size());
    const std::string transport = "_" + crypto::sixCharacters(site.record.companyName()) + "_to_" +
                                  crypto::sixCharacters(site.ourCompany);
    if (name.size() > transport.size() && name.ends_with(transport)) {
        name.resize(name.size() - transport.size());
    }
    return crypto::kEncipheredPrefix + name;
}

bool decipherDownload(const SiteContext& site, const std::string& localPath,
                      platform::Prompts& prompts) {
    if (!platform::withoutFolder(localPath).starts_with(crypto::kEncipheredPrefix)) return true;
    const std::string keyText =
        crypto::ftpReceivingKeyText(site.record.get("RECEncryptKey"), site.ourCompany, site.ourKey);
    if (crypto::DecryptFile(localPath, keyText, prompts).DecryptFailed) return false;
    std::remove(localPath.c_str());
    return true;
}

}  // namespace ovd::ftp
