#pragma once
// Files with the dates a test gives them, for the cleans that go by date.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <string>
#include <vector>

#include "housekeeping/folder_clean.h"
#include "platform/files.h"
#include "support/virtual_event_loop.h"

namespace ovd::housekeeping::testing {

using ovd::testing::localTime;

// Makes the file (and its folder) and sets its times to the moment.
inline void datedFile(const std::string& path, platform::WallClock::time_point moment) {
    ASSERT_TRUE(platform::createFolder(platform::folderOf(path)));
    ASSERT_TRUE(platform::writeWholeFile(path, "RIFF audio of " + path));
    const auto seconds = platform::WallClock::to_time_t(moment);
    const struct timespec times[2] = {{seconds, 0}, {seconds, 0}};
    ASSERT_EQ(::utimensat(AT_FDCWD, path.c_str(), times, 0), 0) << path;
}

// Noon of the day that many days before the date, local time.
inline platform::WallClock::time_point daysBefore(int year, int month, int day, int days,
                                                  int hour = 12) {
    return localTime(year, month, day - days, hour, 0, 0);
}

// The log lines a clean wrote.
struct LogLines {
    std::vector<std::string> lines;
    [[nodiscard]] LogLine sink() {
        return [this](const std::string& line) { lines.push_back(line); };
    }
    [[nodiscard]] bool shows(const std::string& part) const {
        for (const std::string& line : lines) {
            if (line.find(part) != std::string::npos) return true;
        }
        return false;
    }
};

}  // namespace ovd::housekeeping::testing
