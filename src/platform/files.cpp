#include "platform/files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>

namespace ovd::platform {

namespace fs = std::filesystem;

namespace {
// 0 when every byte went out, else the system's error number.
int writeEveryByte(int fd, const void* data, std::size_t bytes) {
    const auto* at = static_cast<const char*>(data);
    while (bytes > 0) {
        const ssize_t n = ::write(fd, at, bytes);
        if (n < 0 && errno == EINTR) continue;
        if (n < 0) return errno;
        if (n == 0) return EIO;
        at += n;
        bytes -= static_cast<std::size_t>(n);
    }
    return 0;
}
}  // namespace

Result<void> writeAll(int fd, const void* data, std::size_t bytes) {
    const int error = writeEveryByte(fd, data, bytes);
    if (error != 0) return failure(std::system_category().message(error));
    return Result<void>::success();
}

std::string joinPath(const std::string& folder, const std::string& name) {
    if (folder.empty() || folder.back() == '/') return folder + name;
    return folder + "/" + name;
}

std::string withoutFolder(const std::string& path) {
    const auto slash = path.find_last_of('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

std::string folderOf(const std::string& path) {
    const auto slash = path.find_last_of('/');
    return slash == std::string::npos ? std::string() : path.substr(0, slash);
}

std::string baseNameOf(const std::string& path) {
    const std::string name = withoutFolder(path);
    const auto dot = name.find_last_of('.');
    return dot == std::string::npos ? name : name.substr(0, dot);
}

bool fileExists(const std::string& path) {
    std::error_code ec;
    return fs::is_regular_file(path, ec);
}

bool folderExists(const std::string& path) {
    std::error_code ec;
    return fs::is_directory(path, ec);
}

Result<void> createFolder(const std::string& path) {
    std::error_code ec;
    fs::create_directories(path, ec);
    if (folderExists(path)) return Result<void>::success();
    return failure("Can't create the folder " + path + ": " +
                   (ec ? ec.message() : std::string("a file of that name is in the way")));
}

std::vector<std::string> filesInFolder(const std::string& folder) {
    std::vector<std::string> names;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(folder, error)) {
        if (entry.is_regular_file(error)) names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

Result<void> copyFileOver(const std::string& from, const std::string& to) {
    std::error_code error;
    std::filesystem::copy_file(from, to, std::filesystem::copy_options::overwrite_existing, error);
    if (error) return failure(error.message());
    return Result<void>::success();
}

Result<std::uintmax_t> fileSize(const std::string& path) {
    std::error_code ec;
    const auto size = fs::file_size(path, ec);
    if (ec) return failure("Can't read the size of " + path + ": " + ec.message());
    return size;
}

Result<std::string> readWholeFile(const std::string& path) {
    const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) return systemFailure("Can't open " + path, errno);
    std::string text;
    char buffer[65536];
    for (;;) {
        const ssize_t n = ::read(fd, buffer, sizeof buffer);
        if (n < 0 && errno == EINTR) continue;
        if (n < 0) {
            const int error = errno;
            ::close(fd);
            return systemFailure("Can't read " + path, error);
        }
        if (n == 0) break;
        text.append(buffer, static_cast<std::size_t>(n));
    }
    ::close(fd);
    return text;
}

namespace {
Result<void> writeWithMode(const std::string& path, const std::string& text, mode_t mode,
                           bool forceMode) {
    const int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, mode);
    if (fd < 0) return systemFailure("Can't create " + path, errno);
    if (forceMode) ::fchmod(fd, mode);
    int error = writeEveryByte(fd, text.data(), text.size());
    if (::close(fd) != 0 && error == 0) error = errno;
    if (error != 0) return systemFailure("Can't write " + path, error);
    return Result<void>::success();
}
}  // namespace

Result<void> writeWholeFile(const std::string& path, const std::string& text) {
    return writeWithMode(path, text, 0666, false);
}

Result<void> writePrivateFile(const std::string& path, const std::string& text) {
    return writeWithMode(path, text, 0600, true);
}

Result<void> replaceFile(const std::string& path, const std::string& text, bool ownerOnly) {
    const std::string fresh = path + "." + std::to_string(::getpid()) + ".new";
    auto written = writeWithMode(fresh, text, ownerOnly ? 0600 : 0666, ownerOnly);
    if (written && std::rename(fresh.c_str(), path.c_str()) != 0) {
        written = systemFailure("Can't put the new " + path + " in place", errno);
    }
    if (!written) std::remove(fresh.c_str());
    return written;
}

std::string defaultDataFolder() {
    const char* xdg = std::getenv("XDG_DATA_HOME");
    if (xdg != nullptr && *xdg == '/') return joinPath(xdg, "orvane-voice-desk");
    const char* home = std::getenv("HOME");
    const std::string base = (home != nullptr && *home != '\0') ? home : "/tmp";
    return joinPath(base, ".local/share/orvane-voice-desk");
}

std::string programShareFolder() {
    std::error_code ec;
    const fs::path exe = fs::read_symlink("/proc/self/exe", ec);
    if (ec) return {};
    const fs::path installed = exe.parent_path().parent_path() / "share" / "orvane-voice-desk";
    if (fs::is_directory(installed, ec)) return installed.string();
#ifdef OVD_SOURCE_ASSETS
    // Run from the build tree: the shipped files are still in the sources.
    return OVD_SOURCE_ASSETS;
#else
    return installed.string();
#endif
}

}  // namespace ovd::platform
