#pragma once
// The two tables of Passwords.db: the speakers (`DICTATORS`), each with the last number
// used in their file names, and the named passwords for manual decryption.
//
// Names are compared as a person reads them, without regard to case, and lists come in
// that order too: "bob" stands between "Anne" and "Carl".

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "settings/databases.h"

namespace ovd::settings {

// One row of `DICTATORS`.
struct Speaker {
    std::string Dictator;
    bool Active = false;
    std::int32_t LastSeqNo = 0;  // a null in the table reads as 0
};

// What the main window's speaker box is filled with.
struct SpeakerChoice {
    // The active speakers in list order, and the `LastSeqNo` of each.
    std::vector<std::string> names;
    std::vector<std::int32_t> seqNos;
    // The speaker asked for, as given, when one of the names is that speaker in any case;
    // otherwise empty, and file names go on without a speaker.
    std::string CurrentSpeaker;
    // That speaker's `LastSeqNo`; 0 without a speaker.
    std::int32_t DictatorSeqNo = 0;
};

// The speakers, as the main window and the speaker list dialog use them.
class SpeakersTable {
  public:
    explicit SpeakersTable(const std::string& dataFolder);

    // The active speakers, ordered, and the current speaker resolved against them. A
    // speaker no longer listed (removed or made inactive) comes back cleared.
    [[nodiscard]] SpeakerChoice loadSpeakers(const std::string& currentSpeaker);

    // Writes the number just used to the speaker's row. The name is matched without
    // regard to case, like every look-up of a speaker, and every row that matches takes
    // the number: rows that differ only in case are one speaker to the selection, so
    // they must not hand out the same number twice. False when no row matched.
    bool saveSpeakerNumber(const std::string& currentSpeaker, std::int32_t seqNo);

    // Every row, inactive ones included, ordered: the speaker list dialog's view.
    [[nodiscard]] std::vector<Speaker> allSpeakers();
    // A new speaker starts at number 0. The dialog refuses a name already listed in any
    // case before it gets here. Makes the file when there is none.
    bool addSpeaker(const std::string& name, bool active);
    // The dialog names the row by its own spelling, picked from the list, so these match
    // exactly: of two rows differing only in case, the one picked is the one changed.
    bool changeSpeaker(const std::string& oldName, const std::string& newName, bool active);
    bool deleteSpeaker(const std::string& name);

  private:
    DatabaseSession session_;
};

// One row of `DecryptPasswords`.
struct DecryptPassword {
    std::string Name;
    std::string Password;  // the "Decrypt Password" column
};

class DecryptPasswordsTable {
  public:
    explicit DecryptPasswordsTable(const std::string& dataFolder);

    // Ordered by name.
    [[nodiscard]] std::vector<DecryptPassword> passwords();
    // The first row of that name, in any case.
    [[nodiscard]] std::optional<DecryptPassword> findPassword(const std::string& name);
    // Makes the file when there is none.
    bool addPassword(const std::string& name, const std::string& password);
    // Deletes the row findPassword() gives; false when there is none.
    bool deletePassword(const std::string& name);

  private:
    DatabaseSession session_;
};

}  // namespace ovd::settings
