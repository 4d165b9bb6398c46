#pragma once
// Which letter a work file's take belongs to. When a take starts, a small note in
// the folder "Letters" beside the work files names the letter's file; a recovery
// after a crash then gives the take the letter's own name and clears what the
// interrupted save of that letter left behind. The notes sit in a folder of their
// own so that the recovery's walk through the work files never meets them.

#include <optional>
#include <string>

namespace ovd::conversion {

inline constexpr const char* kLetterNotesFolder = "Letters";
// What an interrupted save leaves beside the letter it was writing.
inline constexpr const char* kPartialSuffix = ".partial";

// Notes that the take in workFile belongs to the letter (a full path). Notes of
// work files that are gone are cleared on the way.
void noteLetterOfWorkFile(const std::string& workFile, const std::string& letter);
// The letter noted for the work file, if any.
[[nodiscard]] std::optional<std::string> letterOfWorkFile(const std::string& workFile);
void forgetLetterOfWorkFile(const std::string& workFile);
// Clears the notes whose work file is no longer in tempFolder.
void pruneLetterNotes(const std::string& tempFolder);

}  // namespace ovd::conversion
