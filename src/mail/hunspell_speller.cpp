#include <hunspell/hunspell.hxx>

#include "mail/speller.h"
#include "platform/files.h"

namespace ovd::mail {

namespace {

constexpr const char* kSystemDictionaries = "/usr/share/hunspell";

class HunspellSpeller : public Speller {
  public:
    HunspellSpeller(const std::string& affix, const std::string& dictionary)
        : hunspell_(affix.c_str(), dictionary.c_str()) {}
    bool correct(const std::string& word) override { return hunspell_.spell(word); }
    std::vector<std::string> suggest(const std::string& word) override {
        return hunspell_.suggest(word);
    }

  private:
    Hunspell hunspell_;
};

}  // namespace

std::unique_ptr<Speller> openDictionary(const std::string& language, const std::string& folder) {
    const std::string base =
        platform::joinPath(folder.empty() ? kSystemDictionaries : folder, language);
    if (!platform::fileExists(base + ".aff") || !platform::fileExists(base + ".dic")) {
        return nullptr;
    }
    return std::make_unique<HunspellSpeller>(base + ".aff", base + ".dic");
}

}  // namespace ovd::mail
