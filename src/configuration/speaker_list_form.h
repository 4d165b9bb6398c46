#pragma once
// The speaker list window as data: the speakers of Passwords.db with their status,
// the name being typed, and the two ticks that put the speaker's name and the date
// into file names. It sits beside the other settings windows because, like them, it
// edits settings in force and the main window follows. The list is read from the
// table each time it is shown: nothing is cached.

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/prompts.h"
#include "settings/config_file.h"
#include "settings/event_log.h"
#include "settings/passwords_tables.h"

namespace ovd::configuration {

inline constexpr const char* kSpeakerBlankOnAdd = "Speaker/Dictator cannot be blank.";
inline constexpr const char* kSpeakerBlankOnChange = "Speaker/Dictator cannot be blank!";
inline constexpr const char* kSpeakerTryAgain = "Please try again!";
inline constexpr const char* kSpeakerAlreadyListed =
    "This Speaker/Dictator is already in the list.";
inline constexpr const char* kSpeakerNoneChosen = "Please click on Status to be deleted..";
inline constexpr const char* kSpeakerCloseLetterFirst =
    "It appears that you have already started recording on a file and it needs to be saved "
    "and closed. Would you like to do this?";
inline constexpr const char* kSpeakerUnsavedName =
    "The Speaker/Dictator you typed has not been added to the list. Leave anyway?";
inline constexpr const char* kSpeakerListTitle = "Speaker/Dictator List";

// One row of ListView1: the name and its status as the list shows it.
struct SpeakerRow {
    std::string name;
    std::string status;  // "True" or "False"
};

struct SpeakerListControls {
    std::vector<SpeakerRow> rows;  // ListView1
    std::optional<std::size_t> selected;
    std::string newSpeaker;      // txtNewSpeaker
    bool active = true;          // chkActive
    bool addNameToFile = false;  // chkEnableAddToFileName
    bool addDateToName = false;  // chkYYYYMMDD
};

// What the window reaches in the main window.
struct SpeakerListHooks {
    // The letter in hand holds a take that is not saved yet.
    std::function<bool()> unsavedTake;
    // The main window saves and closes the letter in hand.
    std::function<void()> saveAndCloseLetter;
    // The main window's speaker box is filled again from the table, and its frame
    // shown or hidden as AddNameToFile now says.
    std::function<void()> refreshSpeakerBox;
    // The window showing the model closes.
    std::function<void()> close;
};

class SpeakerListForm {
  public:
    SpeakerListForm(settings::ConfigFile& config, settings::SpeakersTable& speakers,
                    settings::EventLog& log, platform::Prompts& prompts, SpeakerListHooks hooks);

    // Fills the list from the table and the ticks from the settings in force.
    void load();
    [[nodiscard]] const SpeakerListControls& controls() const { return controls_; }

    // ---- What the window's controls call ----
    void setNewSpeaker(const std::string& text);  // txtNewSpeaker_Change
    void setActive(bool on);                      // chkActive_Click
    void selectRow(std::size_t row);              // ListView1_ItemClick
    // Each is true when the table changed.
    bool add();                      // CommandAddStatus_Click
    bool change();                   // cmdEdit_Click
    bool deleteRow();                // CommandDeleteStatus_Click
    void setAddNameToFile(bool on);  // chkEnableAddToFileName_Click
    void setAddDateToName(bool on);  // chkYYYYMMDD_Click
    // CancelButton_Click: true when the window closes.
    bool cancel();

  private:
    void reload();
    // Another row than `except` holds the name in any case.
    [[nodiscard]] bool listed(const std::string& name, std::optional<std::size_t> except) const;
    // The question before a tick changes file naming under a letter already begun;
    // false when the author keeps the letter open, and the tick stays as it was.
    bool letterClosedForNaming();
    void storeNamingTick(bool settings::SettingsRecord::*tick, bool on,
                         bool SpeakerListControls::*box);
    void tableFailed(const std::string& what);

    settings::ConfigFile& config_;
    settings::SpeakersTable& speakers_;
    settings::EventLog& log_;
    platform::Prompts& prompts_;
    SpeakerListHooks hooks_;
    SpeakerListControls controls_;
};

}  // namespace ovd::configuration
