#include "platform/result.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <memory>
#include <string>

namespace ovd::platform {
namespace {

Result<std::string> nameOf(int id) {
    if (id < 0) return failure("no letter " + std::to_string(id));
    return "AB" + std::to_string(id);
}

Result<std::unique_ptr<int>> ownedNumber(bool give) {
    if (!give) return systemFailure("Can't open /nowhere", ENOENT);
    return std::make_unique<int>(7);
}

Result<void> passOn(int id) {
    auto name = nameOf(id);
    if (!name) return name.failed();
    return Result<void>::success();
}

TEST(ResultTest, AValueOrAReasonAndNeverBoth) {
    auto good = nameOf(7);
    ASSERT_TRUE(good.ok());
    EXPECT_EQ(*good, "AB7");
    EXPECT_EQ(good.error(), "");

    // A string value and a string reason must not be mistaken for each other.
    auto bad = nameOf(-1);
    ASSERT_FALSE(bad);
    EXPECT_EQ(bad.error(), "no letter -1");
    EXPECT_EQ(bad.valueOr("none"), "none");
}

TEST(ResultTest, MoveOnlyValuesAndSystemTextsTravel) {
    auto number = ownedNumber(true);
    ASSERT_TRUE(number);
    std::unique_ptr<int> taken = std::move(number).value();
    EXPECT_EQ(*taken, 7);

    auto missing = ownedNumber(false);
    ASSERT_FALSE(missing);
    EXPECT_EQ(missing.error(), "Can't open /nowhere: No such file or directory");
}

TEST(ResultTest, AFailureIsHandedOnUnchanged) {
    EXPECT_TRUE(passOn(3).ok());
    auto failed = passOn(-2);
    EXPECT_FALSE(failed.ok());
    EXPECT_EQ(failed.error(), "no letter -2");
}

}  // namespace
}  // namespace ovd::platform
