#include "mail/mail_trace.h"

#include <fcntl.h>
#include <unistd.h>

#include <ctime>

#include "platform/files.h"

namespace ovd::mail {

namespace {

constexpr std::uintmax_t kKeptBytes = 1024 * 1024;

}  // namespace

MailTrace::MailTrace(const std::string& dataFolder)
    : path_(platform::joinPath(dataFolder, kMailTraceFileName)) {
    const auto size = platform::fileSize(path_);
    // An old trace that can't be emptied only grows; the letters still go.
    if (size && *size > kKeptBytes && ::truncate(path_.c_str(), 0) != 0) return;
}

void MailTrace::line(const std::string& text) {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    ::localtime_r(&now, &local);
    char stamp[32];
    std::strftime(stamp, sizeof stamp, "%Y-%m-%d %H:%M:%S ", &local);
    const std::string entry = stamp + text + "\r\n";
    const std::lock_guard lock(mutex_);
    // Owner only: the log names the accounts the station sends from.
    const int fd = ::open(path_.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
    if (fd < 0) return;
    // A trace that can't be written must not stop the letter going out.
    if (!platform::writeAll(fd, entry.data(), entry.size())) {
        ::close(fd);
        return;
    }
    ::close(fd);
}

}  // namespace ovd::mail
