#include "configuration/speaker_list_form.h"

#include <utility>

#include "platform/text.h"
#include "settings/databases.h"

namespace ovd::configuration {

namespace {

bool blank(const std::string& text) { return platform::trim(text).empty(); }

}  // namespace

SpeakerListForm::SpeakerListForm(settings::ConfigFile& config, settings::SpeakersTable& speakers,
                                 settings::EventLog& log, platform::Prompts& prompts,
                                 SpeakerListHooks hooks)
    : config_(config),
      speakers_(speakers),
      log_(log),
      prompts_(prompts),
      hooks_(std::move(hooks)) {}

void SpeakerListForm::load() {
    controls_.addNameToFile = config_.record.AddNameToFile;
    controls_.addDateToName = config_.record.AddDateToName;
    reload();
}

void SpeakerListForm::reload() {
    controls_.rows.clear();
    controls_.selected.reset();
    // A table that can't be read shows as an empty list; the speakers table says nothing
    // more, and the window has nothing more to say either.
    for (const settings::Speaker& speaker : speakers_.allSpeakers()) {
        controls_.rows.push_back({speaker.Dictator, settings::booleanText(speaker.Active)});
    }
}

void SpeakerListForm::setNewSpeaker(const std::string& text) { controls_.newSpeaker = text; }

void SpeakerListForm::setActive(bool on) { controls_.active = on; }

void SpeakerListForm::selectRow(std::size_t row) {
    if (row >= controls_.rows.size()) return;
    controls_.selected = row;
    controls_.newSpeaker = controls_.rows[row].name;
    controls_.active = controls_.rows[row].status == settings::kTrueText;
}

bool SpeakerListForm::listed(const std::string& name, std::optional<std::size_t> except) const {
    for (std::size_t i = 0; i < controls_.rows.size(); ++i) {
        if (except && *except == i) continue;
        if (platform::equalsIgnoreCase(controls_.rows[i].name, name)) return true;
    }
    return false;
}

bool SpeakerListForm::add() {
    const std::string name = platform::trim(controls_.newSpeaker);
    if (name.empty()) {
        prompts_.showMessage(kSpeakerBlankOnAdd, kSpeakerTryAgain);
        return false;
    }
    if (listed(name, std::nullopt)) {
        prompts_.showMessage(kSpeakerAlreadyListed, kSpeakerListTitle);
        return false;
    }
    if (!speakers_.addSpeaker(name, controls_.active)) {
        tableFailed("add " + name);
        return false;
    }
    controls_.newSpeaker.clear();
    reload();
    if (hooks_.refreshSpeakerBox) hooks_.refreshSpeakerBox();
    return true;
}

bool SpeakerListForm::change() {
    const std::string name = platform::trim(controls_.newSpeaker);
    if (blank(name)) {
        prompts_.showMessage(kSpeakerBlankOnChange, kSpeakerTryAgain);
        return false;
    }
    // The row changed is the one picked from the list; with none picked there is no old
    // name to change.
    if (!controls_.selected) return false;
    const std::string oldName = controls_.rows[*controls_.selected].name;
    // Two rows of one name in any case would be one speaker to the selection, and both
    // would take every number that speaker uses: a rename may not make such a pair.
    if (listed(name, controls_.selected)) {
        prompts_.showMessage(kSpeakerAlreadyListed, kSpeakerListTitle);
        return false;
    }
    if (!speakers_.changeSpeaker(oldName, name, controls_.active)) {
        tableFailed("change " + oldName);
        return false;
    }
    settings::SettingsRecord& record = config_.record;
    if (record.AddNameToFile && platform::equalsIgnoreCase(record.CurrentSpeaker, oldName)) {
        record.CurrentSpeaker = name;
        config_.WriteConfig();
    }
    controls_.newSpeaker.clear();
    reload();
    if (hooks_.refreshSpeakerBox) hooks_.refreshSpeakerBox();
    return true;
}

bool SpeakerListForm::deleteRow() {
    if (!controls_.selected) {
        prompts_.showMessage(kSpeakerNoneChosen, kSpeakerTryAgain);
        return false;
    }
    const std::string name = controls_.rows[*controls_.selected].name;
    if (!speakers_.deleteSpeaker(name)) {
        tableFailed("delete " + name);
        return false;
    }
    controls_.newSpeaker.clear();
    reload();
    // The box loads again: a deleted current speaker is cleared there, and file names
    // go on without a name.
    if (hooks_.refreshSpeakerBox) hooks_.refreshSpeakerBox();
    return true;
}

bool SpeakerListForm::letterClosedForNaming() {
    if (!hooks_.unsavedTake || !hooks_.unsavedTake()) return true;
    if (!prompts_.askYesNo(kSpeakerCloseLetterFirst, settings::kProductTitle,
                           platform::Answer::Yes)) {
        return false;
    }
    if (hooks_.saveAndCloseLetter) hooks_.saveAndCloseLetter();
    // The letter must really be closed before its naming changes under it: a take the
    // close could not save stays, and so does the tick.
    return !hooks_.unsavedTake();
}

void SpeakerListForm::storeNamingTick(bool settings::SettingsRecord::*tick, bool on,
                                      bool SpeakerListControls::*box) {
    if (config_.record.*tick == on) {
        controls_.*box = on;
        return;
    }
    if (!letterClosedForNaming()) {
        controls_.*box = config_.record.*tick;
        return;
    }
    config_.record.*tick = on;
    controls_.*box = on;
    config_.WriteConfig();
    if (hooks_.refreshSpeakerBox) hooks_.refreshSpeakerBox();
}

void SpeakerListForm::setAddNameToFile(bool on) {
    storeNamingTick(&settings::SettingsRecord::AddNameToFile, on,
                    &SpeakerListControls::addNameToFile);
}

void SpeakerListForm::setAddDateToName(bool on) {
    storeNamingTick(&settings::SettingsRecord::AddDateToName, on,
                    &SpeakerListControls::addDateToName);
}

bool SpeakerListForm::cancel() {
    const bool typed =
        !blank(controls_.newSpeaker) &&
        !(controls_.selected && controls_.rows[*controls_.selected].name == controls_.newSpeaker);
    if (typed && !prompts_.askYesNo(kSpeakerUnsavedName, kSpeakerListTitle, platform::Answer::No)) {
        return false;
    }
    if (hooks_.close) hooks_.close();
    return true;
}

void SpeakerListForm::tableFailed(const std::string& what) {
    log_.trace("Speaker list: could not " + what + " in the speakers table");
    reload();
}

}  // namespace ovd::configuration
