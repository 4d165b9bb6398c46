#pragma once
// The text forms a message takes on the wire: base64, quoted-printable, encoded
// words for headers, encoded parameters for file names, and the body converted
// into the character set the author chose.

#include <cstddef>
#include <string>
#include <string_view>

#include "platform/result.h"

namespace ovd::mail {

// Lines of at most 76 characters, each ended by CR LF (the last one too).
std::string base64Lines(std::string_view bytes);
// The same without line breaks.
std::string base64(std::string_view bytes);

// Quoted-printable with soft line breaks, lines ended by CR LF; line ends of the
// text (LF or CR LF) become CR LF.
std::string quotedPrintable(std::string_view text);

// Line ends of the text as CR LF, for a 7-bit body.
std::string withCrLf(std::string_view text);

// True when every byte is below 128 and no line is longer than 998 characters: a
// body that may go as 7-bit text.
bool fitsSevenBit(std::string_view text);

bool isAscii(std::string_view text);

// A header's free text: as it is when ASCII, else one or more encoded words
// (UTF-8, base64) of at most 75 characters each, never splitting a character.
std::string encodedWords(std::string_view utf8);

// A display name before an address: an atom, a quoted string, or encoded words.
std::string displayName(std::string_view utf8);

// A file-name parameter of a MIME header: name="a.wav" when plain ASCII, else
// name*=UTF-8''%.. (percent-encoded UTF-8).
std::string nameParameter(std::string_view parameter, std::string_view utf8);

// The UTF-8 text in the named character set; a character it has no place for
// becomes "?", so a message is never refused for one letter.
platform::Result<std::string> convertFromUtf8(std::string_view utf8, const std::string& charset);

}  // namespace ovd::mail
