#pragma once
// The manual decryption window as data: a named key chosen from the decryption keys
// (or typed), an enciphered file picked, deciphered beside itself, and the result
// saved where the user says.

#include <string>
#include <vector>

#include "platform/prompts.h"
#include "settings/key_records_form.h"

namespace ovd::crypto {

inline constexpr const char* kGetEncryptedFileTitle = "Get Encrypted File";
inline constexpr const char* kFileDecryptedText = "File Decrypted";
inline constexpr const char* kKeyMustMatchText =
    "Your key must match the information provided by the person from whom the file was sent- "
    "Unable to Decrypt file ";
inline constexpr const char* kProblemSolvingText = "Problem Solving: ";
inline constexpr const char* kEnterCorrectKeyText =
    "To Decrypt a file: Please enter the correct key and try again.";
inline constexpr const char* kNoKeyText = "Please choose a name or enter the key first.";

class ManualDecryptForm {
  public:
    ManualDecryptForm(const std::string& dataFolder, platform::Prompts& prompts);

    bool Form_Load() { return keys.Form_Load(); }
    // cboName, txtKey and txtKeyDecrypt: the same fields and rules as the key records.
    settings::KeyRecordsForm keys;

    // Asks for the file, deciphers it, and fills the status lines. True when deciphered.
    bool decryptChosenFile();
    // Deciphers the named file without asking for one.
    bool decryptFile(const std::string& path);
    // Copies the deciphered file where the Save File dialog says. False when there is
    // nothing deciphered or the user cancels.
    bool saveDecryptedFile();

    // What the window shows under the buttons, one line each.
    [[nodiscard]] const std::vector<std::string>& status() const { return status_; }
    [[nodiscard]] const std::string& decryptedPath() const { return decryptedPath_; }

  private:
    platform::Prompts& prompts_;
    std::vector<std::string> status_;
    std::string decryptedPath_;
};

}  // namespace ovd::crypto
