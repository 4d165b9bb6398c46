#pragma once
// The day's event log: every transport command, delivery step and failure adds a
// line, and the whole day's text reaches "Event Logs/yyyymmdd Event.Log" in the
// data folder within half a second, so the log of a crashed run is complete up
// to its last half second.

#include <string>

#include "platform/event_loop.h"
#include "platform/timer.h"
#include "settings/settings_record.h"

namespace ovd::settings {

inline constexpr const char* kEventLogFolder = "Event Logs";

class EventLog {
  public:
    EventLog(platform::EventLoop& loop, std::string dataFolder, const SettingsRecord& settings);

    // Appends the text and CR LF to the day's text, whatever NoLogging says.
    void AddEventLine(const std::string& text);
    // The usual way to note an event: nothing when NoLogging is set, otherwise the
    // present date and time, a blank and the text.
    void trace(const std::string& text);

    // Writes the day's text to today's file (yesterday's text too, after midnight).
    void SaveEventLog();
    // Puts today's file, if there is one, ahead of what this run has noted so far.
    void LoadEventLog();
    // Loads the day's log and starts the half-second write-through.
    void start();

    // Writes every half second while enabled; also ticked by hand at exit.
    platform::Timer timlog;

    [[nodiscard]] const std::string& text() const { return text_; }
    [[nodiscard]] const std::string& EventLogPath() const { return eventLogPath_; }
    [[nodiscard]] std::string pathForToday() const;
    // "yyyy-mm-dd hh:mm:ss" of the loop's clock, the stamp every traced line starts with.
    [[nodiscard]] std::string timeStamp() const;

  private:
    platform::EventLoop& loop_;
    std::string dataFolder_;
    const SettingsRecord& settings_;
    std::string text_;
    std::string eventLogPath_;
    // What the file on disk holds of text_, so that a tick after new lines only
    // appends them rather than rewriting the whole day.
    std::size_t savedBytes_ = 0;
    // How long the file was after our last write; longer now means another program
    // (the companion sender) added lines.
    std::size_t diskBytes_ = 0;
};

}  // namespace ovd::settings
