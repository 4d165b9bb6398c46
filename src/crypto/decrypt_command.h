#pragma once
// The transcriber's decryptor without a window:
//   orvane-voice-desk --decrypt FILE.enc --key-name NAME [--output FILE]
//   orvane-voice-desk --decrypt FILE.enc --key-text TEXT [--output FILE]
// for a script or a file manager's "open with". A name is looked up among the
// named keys of the manual decryption window.

#include <ostream>
#include <string>

namespace ovd::crypto {

struct DecryptCommand {
    std::string inputPath = {};
    std::string keyName = {};  // looked up in DecryptPasswords
    std::string keyText = {};  // used as given
    bool keyTextGiven = false;
    std::string outputPath = {};  // empty: the output name rule below
    std::string dataFolder = {};  // where Passwords.db is
};

enum DecryptExit { kDecrypted = 0, kNotDecrypted = 1, kBadCommand = 2 };

// Without --output: "ENC_" dropped from the front when it is there, else ".enc" from
// the end, else ".dec" added; in the input's folder. A file already under that
// name is never replaced.
std::string commandOutputName(const std::string& inputPath);

// Deciphers and says in one line on `err` why not; `out` gets the output path.
DecryptExit runDecryptCommand(const DecryptCommand& command, std::ostream& out, std::ostream& err);

}  // namespace ovd::crypto
