// What the station asks of the machine, against the real machine.

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include "platform/files.h"
#include "platform/system_queries.h"
#include "support/temp_folder.h"

namespace ovd::platform {
namespace {

TEST(FileAvailableTest, OnlyAnExistingFileNobodyHoldsIsFree) {
    testing::TempFolder folder;
    const std::string path = folder.file("Letter 1.mp3");
    EXPECT_FALSE(FileAvailable(path)) << "missing";

    ASSERT_TRUE(writeWholeFile(path, "ID3"));
    EXPECT_TRUE(FileAvailable(path));

    const int writer = ::open(path.c_str(), O_RDWR);
    ASSERT_GE(writer, 0);
    ASSERT_EQ(::flock(writer, LOCK_EX), 0);  // as the encoder holds a file it writes
    EXPECT_FALSE(FileAvailable(path));
    ::close(writer);
    EXPECT_TRUE(FileAvailable(path));
}

TEST(ProcessRunningTest, FindsThisProcessByNameWithOrWithoutExe) {
    const std::string self = readWholeFile("/proc/self/comm").value_or("");
    ASSERT_FALSE(self.empty());
    const std::string name = self.substr(0, self.find('\n'));
    EXPECT_TRUE(ProcessRunning(name));
    EXPECT_TRUE(ProcessRunning(name + ".EXE"));
    EXPECT_FALSE(ProcessRunning("no-such-program-here"));
}

TEST(FreeDiskBytesTest, AFolderNotYetMadeIsJudgedByItsParent) {
    testing::TempFolder folder;
    const auto here = freeDiskBytes(folder.path());
    const auto below = freeDiskBytes(folder.path() + "/Recordings/Temp");
    ASSERT_TRUE(here.has_value());
    ASSERT_TRUE(below.has_value());
    EXPECT_GT(*here, 0u);
    EXPECT_NEAR(static_cast<double>(*below), static_cast<double>(*here), 64.0 * 1024 * 1024);
}

}  // namespace
}  // namespace ovd::platform
