#include "mail/speller.h"

namespace ovd::mail {

namespace {

// Letters of any script: ASCII letters and every byte of a UTF-8 sequence.
bool letter(char c) {
    const auto u = static_cast<unsigned char>(c);
    return (u >= 'a' && u <= 'z') || (u >= 'A' && u <= 'Z') || u >= 0x80;
}

bool digit(char c) { return c >= '0' && c <= '9'; }

}  // namespace

std::vector<Misspelling> misspellings(std::string_view text, Speller& speller) {
    std::vector<Misspelling> found;
    std::size_t at = 0;
    while (at < text.size()) {
        if (!letter(text[at]) && !digit(text[at])) {
            ++at;
            continue;
        }
        std::size_t end = at;
        bool hasDigit = false;
        while (end < text.size()) {
            const char c = text[end];
            const bool joiner = (c == '\'' || c == '-') && end + 1 < text.size() &&
                                letter(text[end + 1]) && end > at;
            if (!letter(c) && !digit(c) && !joiner) break;
            hasDigit = hasDigit || digit(c);
            ++end;
        }
        const std::string word(text.substr(at, end - at));
        if (!hasDigit && !speller.correct(word)) found.push_back({at, word});
        at = end;
    }
    return found;
}

}  // namespace ovd::mail
