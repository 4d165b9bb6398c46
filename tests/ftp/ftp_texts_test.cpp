#include "ftp/ftp_texts.h"

#include <gtest/gtest.h>

namespace ovd::ftp {
namespace {

TEST(FtpTexts, TheBarShowsTheWholePartOfThePercentage) {
    struct Case {
        std::uint64_t done;
        std::uint64_t total;
        int percent;
    };
    const Case cases[] = {{0, 0, 0},  {0, 255, 0}, {254, 255, 99},  {255, 255, 100},
                          {1, 3, 33}, {2, 3, 66},  {300, 255, 100}, {1ULL << 40, 1ULL << 41, 50}};
    for (const auto& [done, total, percent] : cases) {
        EXPECT_EQ(percentDone(done, total), percent) << done << " of " << total;
    }
}

}  // namespace
}  // namespace ovd::ftp
