// The start-up checks of delivery on the real program: e-mail on with no mail set up,
// the question answered No from an answers file, e-mail off for the run and the
// station going on to dictate.

#include <gtest/gtest.h>

#include "platform/files.h"
#include "station_process.h"

namespace ovd {
namespace {

TEST(DeliveryChecksStationTest, EmailOffForTheRunAfterNo) {
    testing::StationProcess station;
    station.changeSettings([](settings::SettingsRecord& record) {
        record.AutoEmail = true;
        record.AutoFTP = false;
    });
    const std::string answers = station.folder.file("answers.txt");
    ASSERT_TRUE(platform::writeWholeFile(answers, "You have activated Email, but Email => No\n"));
    station.start({"--answers", answers});
    ASSERT_TRUE(station.logShows("Procedure - CASE NEW")) << station.eventLog();
    const std::string log = station.eventLog();
    EXPECT_NE(log.find("You have activated Email, but Email has not been setup."),
              std::string::npos)
        << log;
    EXPECT_NE(log.find("Email is not setup.The Email option will now be deactivated."),
              std::string::npos);
    EXPECT_NE(log.find("Loading: automatic sending off"), std::string::npos)
        << "no companion started for a delivery that can't happen";
    const testing::ProcessEnd end = station.terminate();
    EXPECT_TRUE(end.exited && end.status == 0);
}

}  // namespace
}  // namespace ovd
