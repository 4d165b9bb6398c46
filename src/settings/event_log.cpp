#include "settings/event_log.h"

#include <ctime>
#include <fstream>

#include "platform/files.h"
#include "platform/text.h"

namespace ovd::settings {

namespace {
constexpr int kWriteThroughMs = 500;

std::tm localParts(platform::WallClock::time_point when) {
    const std::time_t seconds = platform::WallClock::to_time_t(when);
    std::tm parts{};
    localtime_r(&seconds, &parts);
    return parts;
}

std::string formatTime(platform::WallClock::time_point when, const char* format) {
    const std::tm parts = localParts(when);
    char buffer[64];
    const std::size_t length = std::strftime(buffer, sizeof buffer, format, &parts);
    return std::string(buffer, length);
}
}  // namespace

EventLog::EventLog(platform::EventLoop& loop, std::string dataFolder,
                   const SettingsRecord& settings)
    : timlog(loop, "timlog", kWriteThroughMs),
      loop_(loop),
      dataFolder_(std::move(dataFolder)),
      settings_(settings) {
    timlog.setOnTick([this] { SaveEventLog(); });
}

void EventLog::AddEventLine(const std::string& text) {
    text_ += text;
    text_ += "\r\n";
}

void EventLog::trace(const std::string& text) {
    if (settings_.NoLogging) return;
    AddEventLine(timeStamp() + " " + text);
}

std::string EventLog::timeStamp() const { return formatTime(loop_.now(), "%Y-%m-%d %H:%M:%S"); }

std::string EventLog::pathForToday() const {
    return platform::joinPath(platform::joinPath(dataFolder_, kEventLogFolder),
                              formatTime(loop_.now(), "%Y%m%d") + " Event.Log");
}

void EventLog::SaveEventLog() {
    const std::string folder = platform::joinPath(dataFolder_, kEventLogFolder);
    // A folder that can't be made shows as a failed write below.
    if (!platform::folderExists(folder)) (void)platform::createFolder(folder);
    const std::string path = pathForToday();
    const bool sameFile = path == eventLogPath_;
    eventLogPath_ = path;
    // When the file still holds exactly what was last written, adding the new lines
    // gives the same file as writing it whole, at a fraction of the cost late in a day.
    // The companion sender adds its lines to the same day's file: a file that only
    // grew since our last write has had lines added, and gets ours added after them
    // rather than being written over. A file that shrank was changed behind our back.
    const auto onDisk = platform::fileSize(path);
    if (sameFile && onDisk && *onDisk >= diskBytes_ && text_.size() >= savedBytes_) {
        if (text_.size() == savedBytes_) return;
        std::ofstream out(path, std::ios::binary | std::ios::app);
        out.write(text_.data() + savedBytes_,
                  static_cast<std::streamsize>(text_.size() - savedBytes_));
        if (out.flush()) {
            diskBytes_ = *onDisk + (text_.size() - savedBytes_);
            savedBytes_ = text_.size();
        }
        return;
    }
    // Errors are let be: the text stays in memory and goes out with the next tick.
    if (platform::writeWholeFile(path, text_)) {
        savedBytes_ = text_.size();
        diskBytes_ = text_.size();
    } else {
        savedBytes_ = 0;
        diskBytes_ = 0;
        eventLogPath_.clear();
    }
}

void EventLog::LoadEventLog() {
    const std::string folder = platform::joinPath(dataFolder_, kEventLogFolder);
    if (!platform::folderExists(folder)) return;
    const std::string path = pathForToday();
    const auto content = platform::readWholeFile(path);
    if (!content) return;
    std::string earlier;
    for (const std::string& line : platform::splitLines(*content)) {
        earlier += line;
        earlier += "\r\n";
    }
    text_ = earlier + text_;
    // What was read is on disk already, line ends and all: the next write adds to
    // it, so lines another program adds meanwhile are not written over. A file whose
    // line ends differ is written whole once, with CR LF throughout.
    if (earlier == *content) {
        eventLogPath_ = path;
        savedBytes_ = earlier.size();
        diskBytes_ = earlier.size();
    }
}

void EventLog::start() {
    LoadEventLog();
    timlog.setEnabled(true);
}

}  // namespace ovd::settings
