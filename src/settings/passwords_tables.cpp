#include "settings/passwords_tables.h"

#include <algorithm>
#include <limits>

#include "platform/text.h"

namespace ovd::settings {

namespace {

// Lists sort as a person reads them; the row order breaks ties so that two rows
// differing only in case keep a stable place.
constexpr const char* kAllSpeakers =
    R"(SELECT * FROM "DICTATORS" ORDER BY "Dictator" COLLATE NOCASE, rowid)";
constexpr const char* kAddSpeaker =
    R"(INSERT INTO "DICTATORS" ("Dictator", "Active", "LastSeqNo") VALUES (?1, ?2, 0))";
constexpr const char* kSaveSpeakerNumber =
    R"(UPDATE "DICTATORS" SET "LastSeqNo" = ?1 WHERE "Dictator" = ?2 COLLATE NOCASE)";
constexpr const char* kChangeSpeaker =
    R"(UPDATE "DICTATORS" SET "Dictator" = ?1, "Active" = ?2 WHERE rowid = )"
    R"((SELECT rowid FROM "DICTATORS" WHERE "Dictator" = ?3 ORDER BY rowid LIMIT 1))";
constexpr const char* kDeleteSpeaker =
    R"(DELETE FROM "DICTATORS" WHERE rowid = )"
    R"((SELECT rowid FROM "DICTATORS" WHERE "Dictator" = ?1 ORDER BY rowid LIMIT 1))";

constexpr const char* kAllPasswords =
    R"(SELECT * FROM "DecryptPasswords" ORDER BY "Name" COLLATE NOCASE, rowid)";
constexpr const char* kOnePassword =
    R"(SELECT * FROM "DecryptPasswords" WHERE "Name" = ?1 COLLATE NOCASE ORDER BY rowid LIMIT 1)";
constexpr const char* kAddPassword =
    R"(INSERT INTO "DecryptPasswords" ("Name", "Decrypt Password") VALUES (?1, ?2))";
constexpr const char* kDeletePassword =
    R"(DELETE FROM "DecryptPasswords" WHERE rowid = (SELECT rowid FROM "DecryptPasswords" )"
    R"(WHERE "Name" = ?1 COLLATE NOCASE ORDER BY rowid LIMIT 1))";

constexpr const char* kDecryptPasswordColumn = "Decrypt Password";

std::int32_t toSeqNo(std::int64_t stored) {
    return static_cast<std::int32_t>(
        std::clamp<std::int64_t>(stored, std::numeric_limits<std::int32_t>::min(),
                                 std::numeric_limits<std::int32_t>::max()));
}

// The speakers' own yes/no column holds a number, the way the table was made.
DbValue activeValue(bool active) { return DbValue(active ? 1 : 0); }

std::vector<Speaker> speakersOf(const Recordset& rows) {
    std::vector<Speaker> speakers;
    for (std::size_t row = 0; row < rows.rowCount(); ++row) {
        speakers.push_back({rows.field(row, "Dictator").text(),
                            isTrueValue(rows.field(row, "Active")),
                            toSeqNo(rows.field(row, "LastSeqNo").integer())});
    }
    return speakers;
}

DecryptPassword passwordOf(const Recordset& rows, std::size_t row) {
    return {rows.field(row, "Name").text(), rows.field(row, kDecryptPasswordColumn).text()};
}

}  // namespace

SpeakersTable::SpeakersTable(const std::string& dataFolder)
    : session_(dataFolder, StationDatabase::Passwords) {}

SpeakerChoice SpeakersTable::loadSpeakers(const std::string& currentSpeaker) {
    SpeakerChoice choice;
    for (const Speaker& speaker : allSpeakers()) {
        if (!speaker.Active) continue;
        choice.names.push_back(speaker.Dictator);
        choice.seqNos.push_back(speaker.LastSeqNo);
    }
    const std::string wanted = platform::toUpper(currentSpeaker);
    for (std::size_t i = 0; i < choice.names.size(); ++i) {
        if (platform::toUpper(choice.names[i]) == wanted) {
            choice.CurrentSpeaker = currentSpeaker;
            choice.DictatorSeqNo = choice.seqNos[i];
            break;
        }
    }
    return choice;
}

bool SpeakersTable::saveSpeakerNumber(const std::string& currentSpeaker, std::int32_t seqNo) {
    // An update of rows that would have to exist: no file means no speaker, and nothing
    // is made.
    return session_.changeRows(kSaveSpeakerNumber, {DbValue(std::int64_t{seqNo}), currentSpeaker});
}

std::vector<Speaker> SpeakersTable::allSpeakers() {
    return speakersOf(session_.select(kAllSpeakers));
}

bool SpeakersTable::addSpeaker(const std::string& name, bool active) {
    return session_.addRow(kAddSpeaker, {name, activeValue(active)});
}

bool SpeakersTable::changeSpeaker(const std::string& oldName, const std::string& newName,
                                  bool active) {
    return session_.changeRows(kChangeSpeaker, {newName, activeValue(active), oldName});
}

bool SpeakersTable::deleteSpeaker(const std::string& name) {
    return session_.changeRows(kDeleteSpeaker, {name});
}

DecryptPasswordsTable::DecryptPasswordsTable(const std::string& dataFolder)
    : session_(dataFolder, StationDatabase::Passwords) {}

std::vector<DecryptPassword> DecryptPasswordsTable::passwords() {
    const Recordset rows = session_.select(kAllPasswords);
    std::vector<DecryptPassword> passwords;
    for (std::size_t row = 0; row < rows.rowCount(); ++row) {
        passwords.push_back(passwordOf(rows, row));
    }
    return passwords;
}

std::optional<DecryptPassword> DecryptPasswordsTable::findPassword(const std::string& name) {
    const Recordset rows = session_.select(kOnePassword, {name});
    if (rows.rowCount() == 0) return std::nullopt;
    return passwordOf(rows, 0);
}

bool DecryptPasswordsTable::addPassword(const std::string& name, const std::string& password) {
    return session_.addRow(kAddPassword, {name, password});
}

bool DecryptPasswordsTable::deletePassword(const std::string& name) {
    return session_.changeRows(kDeletePassword, {name});
}

}  // namespace ovd::settings
