// The day's event log on the virtual clock: write-through, the day's file, and two runs.

#include "settings/event_log.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "platform/files.h"
#include "support/temp_folder.h"
#include "support/virtual_event_loop.h"

namespace ovd::settings {
namespace {

using platform::Milliseconds;
using testing::localTime;
using testing::TempFolder;
using testing::VirtualEventLoop;

std::string contentOf(const std::string& path) {
    return platform::readWholeFile(path).valueOr("<none>");
}

class EventLogTest : public ::testing::Test {
  protected:
    std::string logFile(const std::string& day) const {
        return folder.path() + "/Event Logs/" + day + " Event.Log";
    }
    TempFolder folder;
    SettingsRecord settings;
    VirtualEventLoop loop{localTime(2026, 3, 2, 9, 0, 0)};
};

TEST_F(EventLogTest, ALineReachesTheDaysFileWithinHalfASecond) {
    EventLog log(loop, folder.path(), settings);
    log.start();
    log.trace("File Record: Letter 1.mp3");
    loop.advance(Milliseconds(499));
    EXPECT_EQ(contentOf(logFile("20260302")), "<none>");

    loop.advance(Milliseconds(1));
    EXPECT_EQ(contentOf(logFile("20260302")), "2026-03-02 09:00:00 File Record: Letter 1.mp3\r\n");
    EXPECT_EQ(log.EventLogPath(), logFile("20260302"));

    loop.advance(Milliseconds(200));
    log.AddEventLine(" -56");
    loop.advance(Milliseconds(300));
    EXPECT_EQ(contentOf(logFile("20260302")),
              "2026-03-02 09:00:00 File Record: Letter 1.mp3\r\n -56\r\n");
}

TEST_F(EventLogTest, WithNoLoggingTracesAreDroppedButTheFileIsStillWrittenEachTick) {
    settings.NoLogging = true;
    EventLog log(loop, folder.path(), settings);
    log.start();
    log.trace("File Play: a.wav");
    loop.advance(Milliseconds(500));
    EXPECT_EQ(contentOf(logFile("20260302")), "") << "no file today: the first tick creates it";

    std::filesystem::remove(logFile("20260302"));
    log.AddEventLine("written by hand");
    loop.advance(Milliseconds(500));
    EXPECT_EQ(contentOf(logFile("20260302")), "written by hand\r\n");
}

TEST_F(EventLogTest, ASecondRunTheSameDayKeepsTheFirstRunsLinesAheadOfItsOwn) {
    {
        EventLog first(loop, folder.path(), settings);
        first.start();
        first.AddEventLine("first run");
        first.timlog.setEnabled(false);
        first.SaveEventLog();  // what the exit does
    }
    ASSERT_TRUE(platform::writeWholeFile(logFile("20260302"),
                                         contentOf(logFile("20260302")) + "edited by hand\n"));
    EventLog second(loop, folder.path(), settings);
    second.AddEventLine("second run, before the log was loaded");
    second.start();
    second.AddEventLine("second run");
    loop.advance(Milliseconds(500));

    EXPECT_EQ(
        contentOf(logFile("20260302")),
        "first run\r\nedited by hand\r\nsecond run, before the log was loaded\r\nsecond run\r\n");
}

TEST_F(EventLogTest, AfterMidnightTheWholeTextGoesToTheNewDaysFile) {
    VirtualEventLoop lateLoop(localTime(2026, 3, 2, 23, 59, 59));
    EventLog log(lateLoop, folder.path(), settings);
    log.start();
    log.AddEventLine("before midnight");
    lateLoop.advance(Milliseconds(500));
    lateLoop.advance(Milliseconds(500));  // now 00:00:00 of the next day
    log.AddEventLine("after midnight");
    lateLoop.advance(Milliseconds(500));

    EXPECT_EQ(contentOf(logFile("20260302")), "before midnight\r\n");
    EXPECT_EQ(contentOf(logFile("20260303")), "before midnight\r\nafter midnight\r\n");
}

TEST_F(EventLogTest, AFileChangedBehindTheLogsBackIsWrittenWholeAgain) {
    EventLog log(loop, folder.path(), settings);
    log.start();
    log.AddEventLine("one");
    loop.advance(Milliseconds(500));
    ASSERT_TRUE(platform::writeWholeFile(logFile("20260302"), "x"));
    log.AddEventLine("two");
    loop.advance(Milliseconds(500));
    EXPECT_EQ(contentOf(logFile("20260302")), "one\r\ntwo\r\n");
}

TEST_F(EventLogTest, TheStationAndItsCompanionKeepEachOthersLinesInTheDaysFile) {
    EventLog station(loop, folder.path(), settings);
    station.start();
    station.AddEventLine("station one");
    loop.advance(Milliseconds(500));
    EventLog companion(loop, folder.path(), settings);
    companion.start();
    companion.AddEventLine("companion one");
    loop.advance(Milliseconds(500));
    station.AddEventLine("station two");
    companion.AddEventLine("companion two");
    loop.advance(Milliseconds(500));
    EXPECT_EQ(contentOf(logFile("20260302")),
              "station one\r\ncompanion one\r\nstation two\r\ncompanion two\r\n");
}

}  // namespace
}  // namespace ovd::settings
