#include "autosend/staged_files.h"

#include <sys/stat.h>

#include <algorithm>
#include <filesystem>

namespace ovd::autosend {

namespace fs = std::filesystem;

bool SettleTracker::settled(const std::string& path, const FileLook& look,
                            SteadyClock::time_point now) {
    auto found = seen_.find(path);
    if (found == seen_.end() || !(found->second.look == look)) {
        seen_[path] = Seen{look, now};
        return false;
    }
    return now - found->second.since >= settleTime_;
}

void SettleTracker::keepOnly(const std::set<std::string>& present) {
    std::erase_if(seen_, [&present](const auto& entry) { return !present.contains(entry.first); });
}

bool lookAt(const std::string& path, FileLook& look) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) return false;
    look.size = static_cast<std::uint64_t>(status.st_size);
    look.modifiedNs =
        static_cast<std::int64_t>(status.st_mtim.tv_sec) * 1'000'000'000 + status.st_mtim.tv_nsec;
    return true;
}

namespace {

std::vector<std::string> entriesOf(const std::string& folder, bool folders) {
    std::vector<std::string> names;
    std::error_code error;
    for (const auto& entry : fs::directory_iterator(folder, error)) {
        const std::string name = entry.path().filename().string();
        if (name.empty() || name.front() == '.') continue;
        std::error_code kindError;
        const bool isFolder = entry.is_directory(kindError) && !entry.is_symlink(kindError);
        const bool isFile = entry.is_regular_file(kindError);
        if (folders ? isFolder : isFile) names.push_back(name);
    }
    std::sort(names.begin(), names.end());
    return names;
}

}  // namespace

std::vector<std::string> stagedFilesIn(const std::string& folder) {
    return entriesOf(folder, false);
}

std::vector<std::string> subFoldersOf(const std::string& folder) { return entriesOf(folder, true); }

}  // namespace ovd::autosend
