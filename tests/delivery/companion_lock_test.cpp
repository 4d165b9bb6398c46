// One companion per data folder: the lock keeps a second one out, and a look at
// the lock never takes it.

#include "delivery/companion_lock.h"

#include <gtest/gtest.h>

#include <optional>

#include "support/temp_folder.h"

namespace ovd::delivery {
namespace {

TEST(CompanionLockTest, ASecondCompanionOnTheFolderIsRefusedUntilTheFirstEnds) {
    testing::TempFolder folder;
    testing::TempFolder other;
    std::optional<CompanionLock> first;
    {
        auto taken = CompanionLock::take(folder.path());
        ASSERT_TRUE(taken) << taken.error();
        first.emplace(std::move(*taken));
    }
    const auto second = CompanionLock::take(folder.path());
    ASSERT_FALSE(second);
    EXPECT_NE(second.error().find("already runs"), std::string::npos) << second.error();
    EXPECT_TRUE(CompanionLock::take(other.path())) << "another data folder has its own";

    // The lock is held, but by a process that is not a companion: nobody to stop.
    EXPECT_FALSE(runningCompanion(folder.path()));
    EXPECT_TRUE(stopCompanion(folder.path(), 100));

    first.reset();
    EXPECT_TRUE(CompanionLock::take(folder.path()));
}

}  // namespace
}  // namespace ovd::delivery
