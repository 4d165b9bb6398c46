// The letter in hand as the speaker list and the details panel reach it: whether a
// take waits to be saved, closing it, and the details the author gives the letter.

#include "dictation/dictation.h"
#include "platform/files.h"

namespace ovd::dictation {

bool Dictation::hasUnsavedTake() const {
    // A new letter counts as changed from the moment it is named; only audio in it
    // makes a take worth asking about.
    return state_.flgfileOpen1 && !state_.Filename.empty() &&
           (state_.Recordingstatus || (state_.FileChanged && AudioEditor1.Length() > 0));
}

void Dictation::saveAndCloseLetter() {
    if (state_.Recordingstatus) CaseStop();
    closeFile();
}

bool Dictation::setLetterDetails(const engine::LetterDetails& details) {
    if (!state_.flgfileOpen1 || state_.Filename.empty()) return false;
    const engine::LetterDetails tidy = engine::tidyDetails(details);
    if (tidy == AudioEditor1.details()) return true;
    AudioEditor1.setDetails(tidy);
    // Edited by the author: the letter needs its save like any other change.
    state_.FileChanged = true;
    trace("Letter details changed: " + platform::withoutFolder(state_.Filename));
    changed();
    return true;
}

}  // namespace ovd::dictation
