#include "ftp/dir_list.h"

#include <gtest/gtest.h>

#include <ctime>

namespace ovd::ftp {
namespace {

std::chrono::system_clock::time_point utc(int year, int month, int day, int hour, int minute) {
    std::tm parts{};
    parts.tm_year = year - 1900;
    parts.tm_mon = month - 1;
    parts.tm_mday = day;
    parts.tm_hour = hour;
    parts.tm_min = minute;
    return std::chrono::system_clock::from_time_t(::timegm(&parts));
}

const auto kNow = utc(2026, 11, 24, 6, 30);

TEST(DirListing, ReadsEntriesKeepingBlanksInNamesAndSkippingOddLines) {
    const std::string listing =
        "total 16\r\n"
        "drwxr-xr-x    2 103      107          4096 Nov 24 06:05 Letters\r\n"
        "-rw-r--r--    1 103      107       1048576 Nov 24 06:05 dr  smith 01.wav\r\n"
        "-rw-r--r--    1 103      107             0 Mar  3  2024 empty.txt\r\n"
        "lrwxrwxrwx    1 0        0               7 Jan 01 10:00 latest -> 01.wav\r\n"
        "drwxr-xr-x    2 103      107          4096 Nov 24 06:05 .\r\n"
        "this line is not an entry\r\n"
        "-rw-r--r--    1 103      107           12x Nov 24 06:05 bad size\r\n"
        "-rw-r--r--    1 103      107            12 Foo 24 06:05 bad month\r\n"
        "\r\n"
        "-rw-------    1 103      107            10 Dec 31 23:59 .hidden";
    const cDirList items = parseListing(listing, kNow);
    ASSERT_EQ(items.size(), 5U);

    EXPECT_EQ(items[0].name, "Letters");
    EXPECT_TRUE(items[0].directory);
    EXPECT_EQ(attributeMarks(items[0]), " -  -  D  - ");

    EXPECT_EQ(items[1].name, "dr  smith 01.wav");
    EXPECT_EQ(items[1].size, 1048576U);
    EXPECT_EQ(items[1].lastWrite, utc(2026, 11, 24, 6, 5));
    EXPECT_EQ(attributeMarks(items[1]), " A  -  -  - ");

    EXPECT_EQ(items[2].size, 0U);
    EXPECT_EQ(items[2].lastWrite, utc(2024, 3, 3, 0, 0));

    EXPECT_EQ(items[3].name, "latest");

    // December without a year, seen in November: last year's.
    EXPECT_EQ(items[4].lastWrite, utc(2025, 12, 31, 23, 59));
    EXPECT_TRUE(items[4].hidden);
    EXPECT_EQ(attributeMarks(items[4]), " A  -  -  H ");
}

TEST(DirListing, FileSpecTakesEverythingWhenEmptyOrStarDotStar) {
    EXPECT_TRUE(matchesFileSpec("README", ""));
    EXPECT_TRUE(matchesFileSpec("README", "*.*"));
    EXPECT_TRUE(matchesFileSpec("a b.wav", "*.wav"));
    EXPECT_FALSE(matchesFileSpec("a b.wav.enc", "*.wav"));
    EXPECT_FALSE(matchesFileSpec(".a.wav.part", "*.wav*"));
}

}  // namespace
}  // namespace ovd::ftp
