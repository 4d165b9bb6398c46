#include "configuration/end_of_letter_options.h"

namespace ovd::configuration {

EndOfLetterOptions::EndOfLetterOptions(settings::ConfigFile& config) : config_(config) {}

void EndOfLetterOptions::load() {
    exitAtEndOfLetter_ = config_.record.ExitAtEOL;
    applyEnabled_ = false;
}

void EndOfLetterOptions::setExitAtEndOfLetter(bool on) {
    exitAtEndOfLetter_ = on;
    applyEnabled_ = true;
}

void EndOfLetterOptions::ok() {
    config_.record.ExitAtEOL = exitAtEndOfLetter_;
    // A settings file that can't be written is told by the station's own watch on it.
    if (!config_.WriteConfig()) return;
    applyEnabled_ = false;
}

}  // namespace ovd::configuration
