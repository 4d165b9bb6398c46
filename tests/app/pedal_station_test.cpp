// The real station program driven by a serial foot pedal on a pty: the author's
// feet do the whole take.

#include <gtest/gtest.h>

#include "station_process.h"

namespace ovd {
namespace {

using namespace std::chrono_literals;
using testing::kLeftPedal;
using testing::kMiddlePedal;

TEST(PedalStationTest, TheMiddlePedalRecordsAndTheLeftOneListensBack) {
    testing::StationProcess station;
    station.start();
    ASSERT_TRUE(station.logShows("Procedure - CASE NEW")) << station.eventLog();

    station.press(kMiddlePedal, 2500ms);
    ASSERT_TRUE(station.logShows("File Record: ")) << station.eventLog();
    ASSERT_TRUE(station.logShows("File Stop: ")) << station.eventLog();

    const std::size_t afterStop = station.eventLog().size();
    station.press(kLeftPedal, 600ms);  // held: steps back, then plays from there
    EXPECT_TRUE(station.logShows("File Play: ", afterStop)) << station.eventLog().substr(afterStop);

    const testing::ProcessEnd end = station.terminate();
    EXPECT_TRUE(end.exited && end.status == 0) << end.status;
}

}  // namespace
}  // namespace ovd
