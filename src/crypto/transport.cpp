#include "crypto/transport.h"

#include <cstdio>

#include "crypto/file_crypt.h"
#include "platform/files.h"
#include "settings/record_rules.h"

namespace ovd::crypto {

namespace {

bool moveFile(const std::string& from, const std::string& to) {
    return std::rename(from.c_str(), to.c_str()) == 0;
}

}  // namespace

std::string sixCharacters(std::string_view companyName) {
    return settings::firstSixCharacters(companyName);
}

std::string emailSendingKeyText(std::string_view ourKey, std::string_view receiverCompany,
                                std::string_view receiverKey) {
    return std::string(ourKey) + std::string(receiverCompany) + std::string(receiverKey);
}

std::string ftpReceivingKeyText(std::string_view senderKey, std::string_view ourCompany,
                                std::string_view ourKey) {
    return std::string(senderKey) + std::string(ourCompany) + std::string(ourKey);
}

std::string ftpSendingKeyText(std::string_view siteKey) { return std::string(siteKey); }

std::string emailTransportName(std::string_view fileName, std::string_view ourCompany,
                               std::string_view receiverCompany) {
    return std::string(fileName) + "_" + sixCharacters(ourCompany) + "_to_" +
           sixCharacters(receiverCompany) + kEncipheredExtension;
}

std::string ftpTransportName(std::string_view fileName) {
    return std::string(fileName) + kEncipheredExtension;
}

ListedName splitAtLastDot(std::string_view fileName) {
    const auto dot = fileName.rfind('.');
    if (dot == std::string_view::npos) return {std::string(fileName), {}};
    return {std::string(fileName.substr(0, dot)), std::string(fileName.substr(dot + 1))};
}

bool alreadyEnciphered(std::string_view fileName) {
    return fileName.find(kEncipheredExtension) != std::string_view::npos;
}

std::string alreadyEncipheredMessage(std::string_view fileName) {
    return std::string(fileName) + " has already been encrypted." + "\r\n" +
           "A file can 'NOT' be ecncrypted more than once." + "\r\n" +
           "File will 'NOT' BE encrypted again.";
}

platform::Result<std::string> encipherEmailAttachment(const EmailEncipherRequest& request,
                                                      platform::Prompts& prompts) {
    const std::string fileName = platform::withoutFolder(request.filePath);
    const auto notAttached = [&](const std::string& why) -> platform::Result<std::string> {
        prompts.showMessage(fileName + kNotAttachedSuffix);
        return platform::failure(why);
    };
    const std::string tempFolder = platform::joinPath(request.dataFolder, kEmailTempFolderName);
    if (!platform::createFolder(tempFolder)) return notAttached("Can't make " + tempFolder);
    const std::string copy = platform::joinPath(tempFolder, fileName);
    if (auto copied = platform::copyFileOver(request.filePath, copy); !copied) {
        return notAttached(copied.error());
    }

    const auto enciphered = EncryptFile(
        copy, emailSendingKeyText(request.ourKey, request.receiverCompany, request.receiverKey),
        prompts);
    // Only the enciphered file travels: a plain copy left in the folder would be the
    // letter in clear beside its locked form.
    std::remove(copy.c_str());
    if (!enciphered || !platform::fileExists(*enciphered)) {
        return notAttached(enciphered ? "No enciphered file" : enciphered.error());
    }
    const std::string attachment = platform::joinPath(
        tempFolder, emailTransportName(fileName, request.ourCompany, request.receiverCompany));
    if (!moveFile(*enciphered, attachment)) {
        std::remove(enciphered->c_str());
        return notAttached(platform::systemFailure("Can't name " + attachment, errno).reason);
    }
    return attachment;
}

platform::Result<FtpUpload> encipherFtpUpload(const std::string& filePath,
                                              const std::string& siteKey,
                                              const std::string& ftpTempFolder,
                                              platform::Prompts& prompts) {
    const std::string fileName = platform::withoutFolder(filePath);
    const FtpUpload plain{filePath, fileName};
    if (alreadyEnciphered(fileName)) {
        prompts.showMessage(alreadyEncipheredMessage(fileName));
        return plain;
    }
    if (siteKey.empty()) {
        prompts.showMessage(kFtpNoKeyWarning, {}, platform::Severity::Warning);
        return plain;
    }
    if (!platform::createFolder(ftpTempFolder)) {
        return platform::failure("Can't make " + ftpTempFolder);
    }
    const std::string copy = platform::joinPath(ftpTempFolder, fileName);
    if (auto copied = platform::copyFileOver(filePath, copy); !copied) return copied.failed();
    const auto enciphered = EncryptFile(copy, ftpSendingKeyText(siteKey), prompts);
    std::remove(copy.c_str());
    if (!enciphered) return enciphered.failed();
    const std::string upload = platform::joinPath(ftpTempFolder, ftpTransportName(fileName));
    if (!moveFile(*enciphered, upload)) {
        std::remove(enciphered->c_str());
        return platform::systemFailure("Can't name " + upload, errno);
    }
    return FtpUpload{upload, ftpTransportName(fileName)};
}

}  // namespace ovd::crypto
