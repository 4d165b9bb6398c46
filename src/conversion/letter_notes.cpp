#include "conversion/letter_notes.h"

#include <cstdio>
#include <filesystem>

#include "platform/files.h"

namespace ovd::conversion {

namespace {
std::string noteOf(const std::string& workFile) {
    return platform::joinPath(platform::joinPath(platform::folderOf(workFile), kLetterNotesFolder),
                              platform::withoutFolder(workFile));
}
}  // namespace

void noteLetterOfWorkFile(const std::string& workFile, const std::string& letter) {
    std::error_code error;
    // Without a document the editor names only its folder: there is no take to note.
    if (letter.empty() || !std::filesystem::is_regular_file(workFile, error)) return;
    pruneLetterNotes(platform::folderOf(workFile));
    const std::string folder = platform::joinPath(platform::folderOf(workFile), kLetterNotesFolder);
    // Without the note the take is still recovered, under its work file's name.
    if (!platform::createFolder(folder)) return;
    (void)platform::replaceFile(noteOf(workFile), letter);
}

std::optional<std::string> letterOfWorkFile(const std::string& workFile) {
    const auto letter = platform::readWholeFile(noteOf(workFile));
    // A note cut short by a crash names nothing.
    if (!letter || letter->empty() || letter->front() != '/') return std::nullopt;
    return *letter;
}

void forgetLetterOfWorkFile(const std::string& workFile) { std::remove(noteOf(workFile).c_str()); }

void pruneLetterNotes(const std::string& tempFolder) {
    const std::string folder = platform::joinPath(tempFolder, kLetterNotesFolder);
    for (const std::string& name : platform::filesInFolder(folder)) {
        if (!platform::fileExists(platform::joinPath(tempFolder, name))) {
            std::remove(platform::joinPath(folder, name).c_str());
        }
    }
}

}  // namespace ovd::conversion
