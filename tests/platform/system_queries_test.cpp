// What the station asks of the machine, against the real machine.

#include "platform/system_queries.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <unistd.h>

#include "platform/files.h"
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
    const std::string self = readWholeFile("/proc/self/comm").valueOr("");
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

TEST(FolderBytesTest, CountsFilesInEveryFolderBelowButNotThroughLinks) {
    testing::TempFolder folder;
    EXPECT_EQ(folderBytes(folder.file("Recordings")), 0u) << "missing";

    ASSERT_TRUE(createFolder(folder.file("Recordings/Temp/Part")));
    ASSERT_TRUE(writeWholeFile(folder.file("Recordings/Letter 1.wav"), std::string(1000, 'a')));
    ASSERT_TRUE(writeWholeFile(folder.file("Recordings/Temp/chunk"), std::string(200, 'b')));
    ASSERT_TRUE(writeWholeFile(folder.file("Recordings/Temp/Part/tail"), std::string(30, 'c')));
    ASSERT_TRUE(writeWholeFile(folder.file("Elsewhere.wav"), std::string(5000, 'd')));
    // Links to a file and to a folder outside would double the count if followed.
    const std::string outside = folder.file("Elsewhere.wav");
    ASSERT_EQ(::symlink(outside.c_str(), folder.file("Recordings/link.wav").c_str()), 0);
    ASSERT_EQ(::symlink(folder.path().c_str(), folder.file("Recordings/Temp/up").c_str()), 0);

    EXPECT_EQ(folderBytes(folder.file("Recordings")), 1230u);
    EXPECT_EQ(folderBytes(folder.file("Recordings/Temp/")), 230u);
}

}  // namespace
}  // namespace ovd::platform
