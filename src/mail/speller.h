#pragma once
// The spelling check of the compose window: a dictionary that knows words and
// offers others, and the words of a text it does not know. The dictionary is
// Hunspell's (hunspell_speller.cpp is the only file that sees it).

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace ovd::mail {

inline constexpr const char* kNoDictionaryMessage =
    "Sorry you do not have 'Word Dictionary' loaded..Spell Check Canceled";

class Speller {
  public:
    virtual ~Speller() = default;
    [[nodiscard]] virtual bool correct(const std::string& word) = 0;
    [[nodiscard]] virtual std::vector<std::string> suggest(const std::string& word) = 0;
};

// The installed dictionary of the language ("en_US"), from the system's hunspell
// folder or `folder` when given; nothing when there is none.
std::unique_ptr<Speller> openDictionary(const std::string& language = "en_US",
                                        const std::string& folder = {});

struct Misspelling {
    std::size_t offset = 0;  // bytes into the text
    std::string word;
};

// The words (letters, inner apostrophes and hyphens) the dictionary doesn't know,
// in order. Words with digits are passed over: file numbers are not words.
std::vector<Misspelling> misspellings(std::string_view text, Speller& speller);

}  // namespace ovd::mail
