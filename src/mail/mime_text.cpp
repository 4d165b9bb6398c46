#include "mail/mime_text.h"

#include <iconv.h>

#include <cerrno>
#include <cstdint>
#include <vector>

namespace ovd::mail {

namespace {

constexpr std::string_view kBase64Alphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr const char* kHex = "0123456789ABCDEF";
constexpr std::size_t kBase64LineBytes = 57;  // 76 characters of base64
constexpr std::size_t kQpLineLimit = 76;
constexpr std::size_t kMaxEncodedWord = 75;
constexpr std::size_t kSevenBitLineLimit = 998;

void appendBase64(std::string& out, std::string_view bytes) {
    std::size_t i = 0;
    for (; i + 3 <= bytes.size(); i += 3) {
        const std::uint32_t triple = (static_cast<unsigned char>(bytes[i]) << 16) |
                                     (static_cast<unsigned char>(bytes[i + 1]) << 8) |
                                     static_cast<unsigned char>(bytes[i + 2]);
        out += kBase64Alphabet[(triple >> 18) & 63];
        out += kBase64Alphabet[(triple >> 12) & 63];
        out += kBase64Alphabet[(triple >> 6) & 63];
        out += kBase64Alphabet[triple & 63];
    }
    const std::size_t rest = bytes.size() - i;
    if (rest == 0) return;
    std::uint32_t triple = static_cast<unsigned char>(bytes[i]) << 16;
    if (rest == 2) triple |= static_cast<unsigned char>(bytes[i + 1]) << 8;
    out += kBase64Alphabet[(triple >> 18) & 63];
    out += kBase64Alphabet[(triple >> 12) & 63];
    out += rest == 2 ? kBase64Alphabet[(triple >> 6) & 63] : '=';
    out += '=';
}

// Where a UTF-8 character starts: not on a continuation byte.
bool startsCharacter(char byte) { return (static_cast<unsigned char>(byte) & 0xC0) != 0x80; }

bool isAtomText(std::string_view text) {
    if (text.empty()) return false;
    for (const char c : text) {
        const auto u = static_cast<unsigned char>(c);
        if (u < 33 || u > 126) return c == ' ';
        if (std::string_view("()<>[]:;@\\,.\"").find(c) != std::string_view::npos) return false;
    }
    return true;
}

}  // namespace

std::string base64(std::string_view bytes) {
    std::string out;
    out.reserve((bytes.size() + 2) / 3 * 4);
    appendBase64(out, bytes);
    return out;
}

std::string base64Lines(std::string_view bytes) {
    std::string out;
    out.reserve((bytes.size() + 2) / 3 * 4 + bytes.size() / kBase64LineBytes * 2 + 2);
    for (std::size_t at = 0; at < bytes.size(); at += kBase64LineBytes) {
        appendBase64(out, bytes.substr(at, kBase64LineBytes));
        out += "\r\n";
    }
    return out;
}

std::string quotedPrintable(std::string_view text) {
    std::string out;
    std::size_t column = 0;
    const auto put = [&](std::string_view piece) {
        // A soft break keeps every line within the limit, its "=" included.
        if (column + piece.size() > kQpLineLimit - 1) {
            out += "=\r\n";
            column = 0;
        }
        out += piece;
        column += piece.size();
    };
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (c == '\r' && i + 1 < text.size() && text[i + 1] == '\n') continue;
        if (c == '\n') {
            out += "\r\n";
            column = 0;
            continue;
        }
        const auto u = static_cast<unsigned char>(c);
        const bool lineEndFollows =
            i + 1 == text.size() || text[i + 1] == '\n' || text[i + 1] == '\r';
        // A blank at a line's end would be lost on the way, so it is encoded.
        const bool plain =
            (u >= 33 && u <= 126 && c != '=') || ((c == ' ' || c == '\t') && !lineEndFollows);
        // A line starting with a dot is left to SMTP's own escaping; "From " is not touched.
        if (plain) {
            put(std::string_view(&text[i], 1));
        } else {
            const char escaped[3] = {'=', kHex[u >> 4], kHex[u & 15]};
            put(std::string_view(escaped, 3));
        }
    }
    return out;
}

std::string withCrLf(std::string_view text) {
    std::string out;
    out.reserve(text.size() + text.size() / 40);
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n') continue;
        if (text[i] == '\n') {
            out += "\r\n";
        } else {
            out += text[i];
        }
    }
    return out;
}

bool isAscii(std::string_view text) {
    for (const char c : text) {
        if (static_cast<unsigned char>(c) >= 128) return false;
    }
    return true;
}

bool fitsSevenBit(std::string_view text) {
    std::size_t column = 0;
    for (const char c : text) {
        if (static_cast<unsigned char>(c) >= 128 || c == '\0') return false;
        if (c == '\n') {
            column = 0;
        } else if (++column > kSevenBitLineLimit) {
            return false;
        }
    }
    return true;
}

std::string encodedWords(std::string_view utf8) {
    // A line end inside a file name must not start a header of its own.
    bool plain = isAscii(utf8);
    for (const char c : utf8) plain = plain && (static_cast<unsigned char>(c) >= 32 || c == '\t');
    if (plain) return std::string(utf8);
    constexpr std::string_view kOpen = "=?UTF-8?B?";
    constexpr std::string_view kClose = "?=";
    // 75 characters hold 45 bytes of text once encoded.
    const std::size_t maxBytes = (kMaxEncodedWord - kOpen.size() - kClose.size()) / 4 * 3;
    std::string out;
    std::size_t at = 0;
    while (at < utf8.size()) {
        std::size_t end = std::min(at + maxBytes, utf8.size());
        while (end < utf8.size() && end > at && !startsCharacter(utf8[end])) --end;
        if (!out.empty()) out += "\r\n ";
        out += kOpen;
        out += base64(utf8.substr(at, end - at));
        out += kClose;
        at = end;
    }
    return out;
}

std::string displayName(std::string_view utf8) {
    if (!isAscii(utf8)) return encodedWords(utf8);
    if (isAtomText(utf8)) return std::string(utf8);
    std::string quoted = "\"";
    for (const char c : utf8) {
        if (c == '"' || c == '\\') quoted += '\\';
        quoted += c;
    }
    return quoted + "\"";
}

std::string nameParameter(std::string_view parameter, std::string_view utf8) {
    bool plain = isAscii(utf8);
    for (const char c : utf8) {
        if (c == '"' || c == '\\' || static_cast<unsigned char>(c) < 32) plain = false;
    }
    if (plain) return std::string(parameter) + "=\"" + std::string(utf8) + "\"";
    std::string out = std::string(parameter) + "*=UTF-8''";
    for (const char c : utf8) {
        const auto u = static_cast<unsigned char>(c);
        const bool safe = (u >= '0' && u <= '9') || (u >= 'A' && u <= 'Z') ||
                          (u >= 'a' && u <= 'z') ||
                          std::string_view("!#$&+-.^_`|~").find(c) != std::string_view::npos;
        if (safe) {
            out += c;
        } else {
            out += '%';
            out += kHex[u >> 4];
            out += kHex[u & 15];
        }
    }
    return out;
}

platform::Result<std::string> convertFromUtf8(std::string_view utf8, const std::string& charset) {
    if (charset == "UTF-8" || isAscii(utf8)) return std::string(utf8);
    iconv_t converter = ::iconv_open(charset.c_str(), "UTF-8");
    if (converter == reinterpret_cast<iconv_t>(-1)) {
        return platform::systemFailure("Can't convert text to " + charset, errno);
    }
    std::string out;
    std::vector<char> buffer(4096);
    std::string input(utf8);
    char* in = input.data();
    std::size_t inLeft = input.size();
    while (inLeft > 0) {
        char* outAt = buffer.data();
        std::size_t outLeft = buffer.size();
        const std::size_t done = ::iconv(converter, &in, &inLeft, &outAt, &outLeft);
        out.append(buffer.data(), buffer.size() - outLeft);
        if (done != static_cast<std::size_t>(-1)) continue;
        if (errno == E2BIG) continue;
        // EILSEQ: a character this set lacks; EINVAL: a cut-off character at the end.
        out += '?';
        ++in;
        --inLeft;
        while (inLeft > 0 && !startsCharacter(*in)) {
            ++in;
            --inLeft;
        }
    }
    ::iconv_close(converter);
    return out;
}

}  // namespace ovd::mail
