#include "crypto/decrypt_command.h"

#include "crypto/aes_cbc.h"
#include "crypto/file_cipher.h"
#include "crypto/file_crypt.h"
#include "platform/files.h"
#include "platform/text.h"
#include "settings/databases.h"
#include "settings/passwords_tables.h"

namespace ovd::crypto {

namespace {

constexpr const char* kProgram = "orvane-voice-desk: ";

bool endsWith(const std::string& text, const std::string& ending) {
    return text.size() >= ending.size() &&
           text.compare(text.size() - ending.size(), ending.size(), ending) == 0;
}

}  // namespace

std::string commandOutputName(const std::string& inputPath) {
    const std::string folder = platform::folderOf(inputPath);
    const std::string name = platform::withoutFolder(inputPath);
    std::string outputName;
    if (name.size() > 4 && platform::startsWith(name, kEncipheredPrefix)) {
        outputName = name.substr(4);
    } else if (name.size() > 4 && endsWith(name, ".enc")) {
        outputName = name.substr(0, name.size() - 4);
    } else {
        outputName = name + ".dec";
    }
    return folder.empty() ? outputName : platform::joinPath(folder, outputName);
}

DecryptExit runDecryptCommand(const DecryptCommand& command, std::ostream& out, std::ostream& err) {
    if (command.inputPath.empty()) {
        err << kProgram << "--decrypt needs the file to decrypt\n";
        return kBadCommand;
    }
    if (command.keyTextGiven == !command.keyName.empty()) {
        err << kProgram << "--decrypt needs one of --key-name or --key-text\n";
        return kBadCommand;
    }
    std::string keyText = command.keyText;
    if (!command.keyName.empty()) {
        settings::DecryptPasswordsTable table(command.dataFolder);
        const auto found = table.findPassword(command.keyName);
        if (!found) {
            err << kProgram << "no key named \"" << command.keyName << "\" in "
                << platform::joinPath(command.dataFolder, settings::kPasswordsDatabaseFile) << '\n';
            return kNotDecrypted;
        }
        keyText = found->Password;
    }
    if (keyText.empty()) {
        err << kProgram << "the key text is empty; a file is never enciphered without one\n";
        return kBadCommand;
    }
    const std::string outputPath =
        command.outputPath.empty() ? commandOutputName(command.inputPath) : command.outputPath;
    if (platform::fileExists(outputPath)) {
        err << kProgram << outputPath
            << " is already there; it is left alone (name another with --output)\n";
        return kNotDecrypted;
    }
    bool refusedByCipher = false;
    const auto done = transformFile(Direction::Decipher, command.inputPath, outputPath,
                                    keyFromText(keyText), &refusedByCipher);
    if (!done) {
        if (refusedByCipher) {
            err << kProgram << command.inputPath
                << ": wrong key - the file can't be decrypted with this key\n";
        } else {
            err << kProgram << done.error() << '\n';
        }
        return kNotDecrypted;
    }
    out << outputPath << '\n';
    return kDecrypted;
}

}  // namespace ovd::crypto
