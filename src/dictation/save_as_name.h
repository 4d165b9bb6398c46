#pragma once
// The name a Save As copy is written under.

#include <string>

namespace ovd::dictation {

// `chosen` with the extension of `source` (the file being copied) unless it
// already ends in it, in any case of letters: "Copy of Smith" for "AB0007.MP3"
// becomes "Copy of Smith.MP3", "Smith.mp3" stays, "Smith.wav" becomes
// "Smith.wav.MP3", since the copy holds MP3 whatever its name says.
std::string withExtensionOf(const std::string& chosen, const std::string& source);

}  // namespace ovd::dictation
