#include "crypto/manual_decrypt.h"

#include "crypto/file_crypt.h"
#include "platform/files.h"

namespace ovd::crypto {

ManualDecryptForm::ManualDecryptForm(const std::string& dataFolder, platform::Prompts& prompts)
    : keys(dataFolder, prompts), prompts_(prompts) {}

bool ManualDecryptForm::decryptChosenFile() {
    platform::FileRequest request;
    request.mode = platform::FileRequest::Mode::Open;
    request.title = kGetEncryptedFileTitle;
    request.initialName = "*.enc";
    request.filters = {{"Encrypted Files", {"*.enc"}}};
    const auto chosen = prompts_.chooseFile(request);
    if (!chosen) return false;
    return decryptFile(*chosen);
}

bool ManualDecryptForm::decryptFile(const std::string& path) {
    status_.clear();
    decryptedPath_.clear();
    if (keys.key().empty()) {
        status_ = {kNoKeyText};
        return false;
    }
    const DecryptOutcome outcome = DecryptFile(path, keys.key(), prompts_);
    if (outcome.DecryptFailed) {
        status_ = {kKeyMustMatchText, kProblemSolvingText, kEnterCorrectKeyText};
        return false;
    }
    decryptedPath_ = outcome.outputPath;
    status_ = {kFileDecryptedText};
    return true;
}

bool ManualDecryptForm::saveDecryptedFile() {
    if (decryptedPath_.empty()) return false;
    platform::FileRequest request;
    request.mode = platform::FileRequest::Mode::Save;
    request.title = "Save File";
    request.initialFolder = platform::folderOf(decryptedPath_);
    request.initialName = platform::withoutFolder(decryptedPath_);
    request.filters = {{"All Files", {"*.*"}}};
    const auto chosen = prompts_.chooseFile(request);
    if (!chosen || *chosen == decryptedPath_) return false;
    if (auto copied = platform::copyFileOver(decryptedPath_, *chosen); !copied) {
        prompts_.showMessage(copied.error(), {}, platform::Severity::Warning);
        return false;
    }
    return true;
}

}  // namespace ovd::crypto
