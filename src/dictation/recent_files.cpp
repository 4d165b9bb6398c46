#include "dictation/recent_files.h"

#include <algorithm>
#include <utility>

#include "platform/files.h"
#include "platform/text.h"

namespace ovd::dictation {

RecentFiles::RecentFiles(std::string dataFolder)
    : filePath_(platform::joinPath(dataFolder, kRecentFilesName)) {}

std::vector<std::string> RecentFiles::storedEntries() const {
    // A list never written, or one we can't read, is simply empty.
    const auto text = platform::readWholeFile(filePath_);
    if (!text) return {};
    std::vector<std::string> entries = platform::splitLines(*text);
    std::erase_if(entries, [](const std::string& line) { return line.empty(); });
    return entries;
}

void RecentFiles::store(const std::vector<std::string>& entries) const {
    std::string text;
    for (const std::string& entry : entries) text += entry + "\r\n";
    // A list that can't be written keeps its old lines; nothing depends on it but the menu.
    (void)platform::replaceFile(filePath_, text);
}

void RecentFiles::AddToMRUX(const std::string& path) {
    const std::vector<std::string> old = storedEntries();
    // Kept on purpose: a file already listed stays where it is rather than moving up.
    if (std::find(old.begin(), old.end(), path) != old.end()) return;

    std::vector<std::string> fresh;
    if (platform::fileExists(path)) fresh.push_back(path);
    for (const std::string& entry : old) {
        if (fresh.size() == kMaxRecentFiles) break;
        if (platform::fileExists(entry)) fresh.push_back(entry);
    }
    store(fresh);
}

std::vector<std::string> RecentFiles::DisplayMRU() const {
    std::vector<std::string> shown;
    for (std::string& entry : storedEntries()) {
        // The menu has room for what the list ever holds, even from a file edited by hand.
        if (shown.size() == kMaxRecentFiles) break;
        if (platform::fileExists(entry)) shown.push_back(std::move(entry));
    }
    return shown;
}

void RecentFiles::clearRecentFiles() { store({}); }

}  // namespace ovd::dictation
