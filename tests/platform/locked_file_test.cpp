// The one exclusive lock of the station: one holder at a time, kept across a
// move, and free again the moment the holder lets go.

#include "platform/locked_file.h"

#include <fcntl.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "platform/files.h"
#include "platform/system_queries.h"
#include "support/temp_folder.h"

namespace ovd {
namespace {

using platform::LockedFile;

TEST(LockedFileTest, AFileHeldOnceCantBeTakenAgainUntilItsHolderLetsGo) {
    testing::TempFolder folder;
    const std::string path = folder.file("take.wav");

    auto first = LockedFile::open(path, O_RDWR | O_CREAT);
    ASSERT_TRUE(first) << first.error();
    EXPECT_TRUE(first->held());
    const auto second = LockedFile::open(path, O_RDWR);
    ASSERT_FALSE(second);
    EXPECT_NE(second.error().find(path), std::string::npos) << second.error();
    EXPECT_FALSE(platform::FileAvailable(path));

    // Handed on, the lock goes with it; the emptied holder lets go of nothing.
    LockedFile kept = std::move(*first);
    EXPECT_FALSE(first->held());
    first->release();
    EXPECT_FALSE(LockedFile::open(path, O_RDWR)) << "still held after the move";

    kept.release();
    EXPECT_FALSE(kept.held());
    EXPECT_TRUE(platform::FileAvailable(path));
    {
        const auto again = LockedFile::open(path, O_RDWR);
        EXPECT_TRUE(again) << again.error();
    }
    EXPECT_TRUE(platform::FileAvailable(path)) << "free again once the holder is gone";
}

TEST(LockedFileTest, ARefusedLockClosesTheDescriptorItWasGiven) {
    testing::TempFolder folder;
    const std::string path = folder.file("port");
    auto holder = LockedFile::open(path, O_RDWR | O_CREAT);
    ASSERT_TRUE(holder);

    const int fd = ::open(path.c_str(), O_RDWR | O_CLOEXEC);
    ASSERT_GE(fd, 0);
    const auto refused = LockedFile::lock(fd);
    EXPECT_FALSE(refused);
    EXPECT_FALSE(refused.error().empty());
    EXPECT_EQ(::fcntl(fd, F_GETFD), -1) << "the descriptor is not left open";

    const auto missing = LockedFile::open(folder.file("none"), O_RDWR);
    ASSERT_FALSE(missing);
    EXPECT_NE(missing.error().find("No such file"), std::string::npos) << missing.error();
}

}  // namespace
}  // namespace ovd
