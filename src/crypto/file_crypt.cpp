#include "crypto/file_crypt.h"

#include "crypto/aes_cbc.h"
#include "crypto/file_cipher.h"
#include "platform/files.h"

namespace ovd::crypto {

namespace {

std::string inFolderOf(const std::string& path, const std::string& name) {
    const std::string folder = platform::folderOf(path);
    return folder.empty() ? name : platform::joinPath(folder, name);
}

// The name cut by characters, not bytes, so a name in any script stays whole text.
std::string withoutFirstCharacters(const std::string& name, std::size_t count) {
    std::size_t at = 0;
    for (std::size_t taken = 0; taken < count && at < name.size(); ++taken) {
        ++at;
        while (at < name.size() && (static_cast<unsigned char>(name[at]) & 0xC0U) == 0x80U) ++at;
    }
    return name.substr(at);
}

}  // namespace

std::string encipheredName(const std::string& inputPath) {
    return inFolderOf(inputPath, kEncipheredPrefix + platform::withoutFolder(inputPath));
}

std::string decipheredName(const std::string& inputPath) {
    return inFolderOf(inputPath, withoutFirstCharacters(platform::withoutFolder(inputPath), 4));
}

platform::Result<std::string> EncryptFile(const std::string& inputPath, const std::string& keyText,
                                          platform::Prompts& prompts) {
    const std::string outputPath = encipheredName(inputPath);
    auto done = transformFile(Direction::Encipher, inputPath, outputPath, keyFromText(keyText));
    if (!done) {
        prompts.showMessage(done.error(), {}, platform::Severity::Warning);
        return done.failed();
    }
    return outputPath;
}

DecryptOutcome DecryptFile(const std::string& inputPath, const std::string& keyText,
                           platform::Prompts& prompts) {
    DecryptOutcome outcome;
    const std::string outputName = platform::withoutFolder(decipheredName(inputPath));
    if (outputName.empty()) {
        // Nothing would be left to name the result: the folder itself must not be the target.
        prompts.showMessage(std::string("Decrypt File error: ") + "The file name " +
                                platform::withoutFolder(inputPath) +
                                " is too short to name the decrypted file.",
                            {}, platform::Severity::Warning);
        return outcome;
    }
    const std::string outputPath = decipheredName(inputPath);
    if (platform::fileExists(outputPath)) {
        const bool overwrite = prompts.askYesNo(
            "File " + outputPath + " already exsists. Do you want to overwrite this file?",
            kOverwriteTitle, platform::Answer::No);
        if (!overwrite) {
            prompts.showMessage(kWillNotDecryptMessage);
            return outcome;
        }
    }
    bool refusedByCipher = false;
    auto done = transformFile(Direction::Decipher, inputPath, outputPath, keyFromText(keyText),
                              &refusedByCipher);
    if (!done) {
        // A file that can't be read or written is told as it is, not blamed on the key.
        prompts.showMessage(refusedByCipher ? std::string(kDecryptErrorMessage)
                                            : "Decrypt File error: " + done.error(),
                            {}, platform::Severity::Warning);
        return outcome;
    }
    outcome.DecryptFailed = false;
    outcome.outputPath = outputPath;
    return outcome;
}

}  // namespace ovd::crypto
