#include "platform/system_queries.h"

#include <fcntl.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <filesystem>

#include "platform/files.h"
#include "platform/locked_file.h"
#include "platform/text.h"

namespace ovd::platform {

namespace fs = std::filesystem;

std::vector<std::string> processNames() {
    std::vector<std::string> names;
    std::error_code ec;
    for (const auto& entry : fs::directory_iterator("/proc", ec)) {
        const std::string pid = entry.path().filename().string();
        if (pid.empty() || pid.find_first_not_of("0123456789") != std::string::npos) continue;
        if (auto comm = readWholeFile(entry.path().string() + "/comm")) {
            names.push_back(trim(*comm));
        }
    }
    return names;
}

bool ProcessRunning(const std::string& name) {
    std::string wanted = name;
    if (wanted.size() > 4 && equalsIgnoreCase(wanted.substr(wanted.size() - 4), ".exe")) {
        wanted.resize(wanted.size() - 4);
    }
    // The kernel keeps at most 15 characters of a process name.
    if (wanted.size() > 15) wanted.resize(15);
    for (const std::string& running : processNames()) {
        if (equalsIgnoreCase(running, wanted)) return true;
    }
    return false;
}

std::optional<std::uint64_t> freeDiskBytes(const std::string& path) {
    std::error_code ec;
    fs::path probe(path);
    // A folder that does not exist yet is judged by the nearest one that does.
    while (!probe.empty() && !fs::exists(probe, ec)) probe = probe.parent_path();
    if (probe.empty()) probe = fs::current_path(ec);
    struct statvfs info {};
    if (::statvfs(probe.c_str(), &info) != 0) return std::nullopt;
    return static_cast<std::uint64_t>(info.f_bavail) * info.f_frsize;
}

std::uint64_t folderBytes(const std::string& folder) {
    // Asked several times a second while recording, so each folder is walked on its
    // own: one that vanishes or can't be read mid-walk costs its own bytes, not the
    // rest of the count.
    std::uint64_t total = 0;
    std::vector<fs::path> pending{fs::path(folder)};
    std::error_code ec;
    while (!pending.empty()) {
        const fs::path current = std::move(pending.back());
        pending.pop_back();
        fs::directory_iterator it(current, fs::directory_options::skip_permission_denied, ec);
        for (; !ec && it != fs::directory_iterator(); it.increment(ec)) {
            // The type from the folder listing itself, without following a link.
            const fs::file_type type = it->symlink_status(ec).type();
            if (ec) {
                ec.clear();
                continue;
            }
            if (type == fs::file_type::directory) {
                pending.push_back(it->path());
            } else if (type == fs::file_type::regular) {
                const std::uintmax_t bytes = it->file_size(ec);
                if (ec) {
                    ec.clear();  // gone since it was listed
                    continue;
                }
                total += bytes;
            }
        }
        ec.clear();
    }
    return total;
}

bool FileAvailable(const std::string& path) {
    // The lock taken for a moment goes again as the file closes at once.
    return LockedFile::open(path, O_RDWR).ok();
}

}  // namespace ovd::platform
