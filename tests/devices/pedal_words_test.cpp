// The words a pedal edge is made of, as the dispatcher compares them.

#include <gtest/gtest.h>

#include <string>

#include "devices/pedal_events.h"

namespace ovd::devices {
namespace {

TEST(PedalWordsTest, EdgesUseTheUpperCaseWordsTheDispatcherCompares) {
    EXPECT_EQ(std::string(kLeft) + kMiddle + kRight, "LEFTMIDDLERIGHT");
    EXPECT_EQ(std::string(kDown) + kUp, "DOWNUP");
    EXPECT_FALSE(PedalHits{}.HandSetHitNotHit);
}

}  // namespace
}  // namespace ovd::devices
