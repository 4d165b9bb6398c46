#pragma once
// The two routines the sending and receiving windows call file by file: encipher a
// file for its journey, decipher one that arrived. Each tells the user what went
// wrong in its own boxes and leaves the caller a plain answer.

#include <string>

#include "platform/prompts.h"
#include "platform/result.h"

namespace ovd::crypto {

inline constexpr const char* kEncipheredPrefix = "ENC_";
inline constexpr const char* kOverwriteTitle = "Overwrite?";
inline constexpr const char* kWillNotDecryptMessage = "File will not be decrypted.";
inline constexpr const char* kDecryptErrorMessage =
    "Decrypt File error: The key is incorrect. - Unable to Decrypt file ";

// Folder of the input + "ENC_" + its file name, extension kept.
std::string encipheredName(const std::string& inputPath);
// The file name without its first four characters, in the same folder. A name that
// does not start with "ENC_" loses its first four characters all the same: that is
// what the receiving side has always done, and files are named for it.
std::string decipheredName(const std::string& inputPath);

// Writes the enciphered file beside the input (see encipheredName). A failure is
// shown in a box with the reason; the caller goes on and looks for the file.
platform::Result<std::string> EncryptFile(const std::string& inputPath, const std::string& keyText,
                                          platform::Prompts& prompts);

struct DecryptOutcome {
    bool DecryptFailed = true;
    std::string outputPath;  // where the deciphered file is, when it did not fail
};

// Deciphers beside the input (see decipheredName), asking first when that name is
// taken. The input always stays; a refusal or a wrong key leaves whatever was
// under the output name as it was.
DecryptOutcome DecryptFile(const std::string& inputPath, const std::string& keyText,
                           platform::Prompts& prompts);

}  // namespace ovd::crypto
