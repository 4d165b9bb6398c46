#pragma once
// MailTrace.log in the data folder: the lines of every SMTP and POP3 exchange,
// with the time, passwords already masked by the client. Written from the thread
// that sends; a log grown past a megabyte starts afresh.

#include <mutex>
#include <string>

namespace ovd::mail {

inline constexpr const char* kMailTraceFileName = "MailTrace.log";

class MailTrace {
  public:
    explicit MailTrace(const std::string& dataFolder);
    [[nodiscard]] const std::string& path() const { return path_; }
    void line(const std::string& text);

  private:
    std::string path_;
    std::mutex mutex_;
};

}  // namespace ovd::mail
