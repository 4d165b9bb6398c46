// The recent-files list: newest first, a listed file stays put, vanished files
// drop out, fifteen at most, and a list never written is empty.

#include "dictation/recent_files.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>

#include "platform/files.h"
#include "support/temp_folder.h"

namespace ovd::dictation {
namespace {

using List = std::vector<std::string>;

class RecentFilesTest : public ::testing::Test {
  protected:
    std::string path(int n) const { return folder.file("Letter " + std::to_string(n) + ".wav"); }
    // The path of a dictation that is on the disk.
    std::string letter(int n) const {
        EXPECT_TRUE(platform::writeWholeFile(path(n), "RIFF"));
        return path(n);
    }

    testing::TempFolder folder;
    RecentFiles recent{folder.path()};
};

TEST_F(RecentFilesTest, NewestFirstAndAListedFileDoesNotMoveUp) {
    EXPECT_EQ(recent.filePath(), folder.file("MRU.dat"));
    EXPECT_EQ(recent.DisplayMRU(), List{}) << "never written";

    recent.AddToMRUX(letter(1));
    recent.AddToMRUX(letter(2));
    recent.AddToMRUX(letter(3));
    recent.AddToMRUX(path(1));
    EXPECT_EQ(recent.DisplayMRU(), (List{path(3), path(2), path(1)}));
    EXPECT_EQ(platform::readWholeFile(recent.filePath()).valueOr(""),
              path(3) + "\r\n" + path(2) + "\r\n" + path(1) + "\r\n");

    recent.clearRecentFiles();
    EXPECT_EQ(platform::readWholeFile(recent.filePath()).valueOr(""), "");
    EXPECT_EQ(recent.DisplayMRU(), List{});
}

TEST_F(RecentFilesTest, VanishedFilesAreHiddenAndDroppedOnTheNextAdd) {
    // Written by hand with bare line ends, as another editor might leave it.
    ASSERT_TRUE(platform::writeWholeFile(recent.filePath(), letter(2) + "\n" + letter(1) + "\n"));
    ASSERT_EQ(std::remove(path(2).c_str()), 0);
    EXPECT_EQ(recent.DisplayMRU(), List{path(1)});

    // A new path whose file is missing is not listed either, but the list is still tidied.
    recent.AddToMRUX(folder.file("never saved.wav"));
    EXPECT_EQ(platform::readWholeFile(recent.filePath()).valueOr(""), path(1) + "\r\n");

    ASSERT_EQ(std::remove(path(1).c_str()), 0);
    recent.AddToMRUX(letter(3));
    EXPECT_EQ(platform::readWholeFile(recent.filePath()).valueOr(""), path(3) + "\r\n");
}

TEST_F(RecentFilesTest, StopsAtFifteenDroppingTheOldest) {
    for (int n = 1; n <= 17; ++n) recent.AddToMRUX(letter(n));
    const std::string text = platform::readWholeFile(recent.filePath()).valueOr("");
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 15);
    const List shown = recent.DisplayMRU();
    ASSERT_EQ(shown.size(), 15u);
    EXPECT_EQ(shown.front(), path(17));
    EXPECT_EQ(shown.back(), path(3));
}

}  // namespace
}  // namespace ovd::dictation
