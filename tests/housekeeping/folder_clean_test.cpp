// The two cleans on real folders, with file dates set by the test: what goes, what
// stays, and that what the station has in hand stays whatever its date.

#include "housekeeping/folder_clean.h"

#include <sys/file.h>
#include <sys/mount.h>

#include <cerrno>
#include <cstring>

#include "dated_files.h"
#include "support/temp_folder.h"

namespace ovd::housekeeping::testing {
namespace {

const Day kToday = localDayOf(localTime(2026, 3, 2, 9, 0, 0));

class FolderCleanTest : public ::testing::Test {
  protected:
    std::string file(const std::string& name) const { return folder.file(name); }
    bool exists(const std::string& name) const { return platform::fileExists(file(name)); }

    ovd::testing::TempFolder folder;
    LogLines log;
    KeptFiles nothingKept{KeptPaths{}};
};

TEST_F(FolderCleanTest, DriveScanDeletesThroughTheTreeUpToAndIncludingTheChosenDay) {
    // Chosen day: ten days before 2 March.
    const Day lastDay = kToday - std::chrono::days(10);
    datedFile(file("eleven.wav"), daysBefore(2026, 3, 2, 11));
    datedFile(file("ten-late-evening.wav"), daysBefore(2026, 3, 2, 10, 23));
    datedFile(file("nine.wav"), daysBefore(2026, 3, 2, 9, 0));
    datedFile(file("a/b/deep-old.mp3"), daysBefore(2026, 3, 2, 40));
    datedFile(file("a/b/deep-new.mp3"), daysBefore(2026, 3, 2, 1));

    const CleanSummary done = ScanAndDelete(folder.path(), lastDay, nothingKept, log.sink());

    EXPECT_FALSE(exists("eleven.wav"));
    EXPECT_FALSE(exists("ten-late-evening.wav")) << "the chosen day itself goes";
    EXPECT_TRUE(exists("nine.wav"));
    EXPECT_FALSE(exists("a/b/deep-old.mp3"));
    EXPECT_TRUE(exists("a/b/deep-new.mp3"));
    EXPECT_EQ(done.deleted, 3);
    EXPECT_TRUE(log.shows("Drive Scan deleted " + file("a/b/deep-old.mp3")));
}

TEST_F(FolderCleanTest, DriveScanDeletesASubFoldersFileByItsOwnPathNotTheTopFolders) {
    datedFile(file("sub/letter.wav"), daysBefore(2026, 3, 2, 30));
    datedFile(file("letter.wav"), daysBefore(2026, 3, 2, 0));

    ScanAndDelete(folder.path(), kToday - std::chrono::days(7), nothingKept, log.sink());

    EXPECT_FALSE(exists("sub/letter.wav"));
    EXPECT_TRUE(exists("letter.wav")) << "this week's letter of the same name is another file";
}

TEST_F(FolderCleanTest, AnEmptyFolderEndsAtOnceAndSaysNothing) {
    const CleanSummary done = ScanAndDelete(folder.path(), kToday, nothingKept, log.sink());
    EXPECT_EQ(done.deleted + done.failed, 0);
    EXPECT_TRUE(log.lines.empty());
}

TEST_F(FolderCleanTest, TheStationsFilesStayWhateverTheirDate) {
    const auto old = daysBefore(2026, 3, 2, 90);
    datedFile(file("open-letter.wav"), old);
    datedFile(file("saving.wav.partial"), old);
    datedFile(file("Temp/take.tmp"), old);
    datedFile(file("Temp/Letters/take.tmp.letter"), old);
    datedFile(file("BACK/AB0007-42.MP3"), old);
    datedFile(file("held.wav"), old);
    datedFile(file("other.wav"), old);
    const KeptFiles kept(KeptPaths{{file("./open-letter.wav")},  // spelt another way
                                   {file("Temp"), file("BACK")}});
    // A program holding a file under its lock (a save under way) keeps it.
    const int holder = ::open(file("held.wav").c_str(), O_RDONLY);
    ASSERT_EQ(::flock(holder, LOCK_EX), 0);

    const CleanSummary done = ScanAndDelete(folder.path(), kToday, kept, log.sink());
    ::close(holder);

    for (const char* name : {"open-letter.wav", "saving.wav.partial", "Temp/take.tmp",
                             "Temp/Letters/take.tmp.letter", "BACK/AB0007-42.MP3", "held.wav"}) {
        EXPECT_TRUE(exists(name)) << name;
    }
    EXPECT_FALSE(exists("other.wav"));
    EXPECT_EQ(done.inUse, 1);
    EXPECT_TRUE(log.shows(file("held.wav") + " is in use and stays"));
}

TEST_F(FolderCleanTest, PurgeKeepsTwiceTheDaysSetAndTheCutOffDayItself) {
    // 30 days set: sixty days are kept.
    datedFile(file("61.wav"), daysBefore(2026, 3, 2, 61));
    datedFile(file("60-early.wav"), daysBefore(2026, 3, 2, 60, 0));
    datedFile(file("31.wav"), daysBefore(2026, 3, 2, 31));
    datedFile(file("Temp/old.tmp"), daysBefore(2026, 3, 2, 200));
    datedFile(file("Clients/old.wav"), daysBefore(2026, 3, 2, 200));

    const CleanSummary done =
        PurgescandirFilesInPath(folder.path(), 30, kToday, nothingKept, log.sink());

    EXPECT_FALSE(exists("61.wav"));
    EXPECT_TRUE(exists("60-early.wav")) << "a file of the cut-off day stays";
    EXPECT_TRUE(exists("31.wav"));
    EXPECT_TRUE(exists("Temp/old.tmp")) << "sub-folders are not the purge's";
    EXPECT_TRUE(exists("Clients/old.wav"));
    EXPECT_EQ(done.deleted, 1);
}

TEST_F(FolderCleanTest, PurgeWithNoAgeSetOrNoFolderDeletesNothing) {
    datedFile(file("old.wav"), daysBefore(2026, 3, 2, 400));
    PurgescandirFilesInPath(folder.path(), 0, kToday, nothingKept, log.sink());
    EXPECT_TRUE(exists("old.wav"));
    EXPECT_TRUE(log.shows("no age set in this run"));

    const CleanSummary gone =
        PurgescandirFilesInPath(file("vanished"), 30, kToday, nothingKept, log.sink());
    EXPECT_EQ(gone.deleted + gone.failed, 0);
    EXPECT_TRUE(log.shows(file("vanished") + " is not there"));
}

TEST_F(FolderCleanTest, AFileTheDiskRefusesToDeleteIsLoggedAndTheRestGoOn) {
    const std::string disk = file("disk");
    ASSERT_TRUE(platform::createFolder(disk));
    if (::mount("tmpfs", disk.c_str(), "tmpfs", 0, "size=1m") != 0)
        GTEST_SKIP() << "a tmpfs can't be mounted here: " << std::strerror(errno);
    datedFile(disk + "/stuck.wav", daysBefore(2026, 3, 2, 90));
    // The disk goes read-only under the clean: nothing on it can be deleted.
    ASSERT_EQ(::mount("tmpfs", disk.c_str(), "tmpfs", MS_REMOUNT | MS_RDONLY, "size=1m"), 0);
    datedFile(file("free.wav"), daysBefore(2026, 3, 2, 90));

    const CleanSummary done = ScanAndDelete(folder.path(), kToday, nothingKept, log.sink());
    const bool stuckStays = platform::fileExists(disk + "/stuck.wav");
    ::umount2(disk.c_str(), MNT_DETACH);

    EXPECT_TRUE(stuckStays);
    EXPECT_FALSE(exists("free.wav"));
    EXPECT_EQ(done.failed, 1);
    EXPECT_TRUE(log.shows("Drive Scan: Can't delete " + disk + "/stuck.wav"));
}

}  // namespace
}  // namespace ovd::housekeeping::testing
