#pragma once
// A data folder with the shipped settings, the station's housekeeping over it on
// the virtual clock (Monday 2 March 2026, 09:00), and scripted prompts.

#include <gtest/gtest.h>

#include "dated_files.h"
#include "housekeeping/housekeeping.h"
#include "settings/config_file.h"
#include "settings/event_log.h"
#include "support/scripted_prompts.h"
#include "support/temp_folder.h"
#include "support/virtual_event_loop.h"

namespace ovd::housekeeping::testing {

class HousekeepingTest : public ::testing::Test {
  protected:
    HousekeepingTest() {
        EXPECT_TRUE(platform::writeWholeFile(
            data.file("DigitalRecorder.cfg"),
            platform::readWholeFile(OVD_TEST_ASSETS "/DigitalRecorder.cfg").value()));
        config.ReadConfig();
        config.record.CaptureFilePath = recordings;
        EXPECT_TRUE(platform::createFolder(recordings));
        config.WriteConfig();
    }

    // The settings as the file on disk holds them.
    [[nodiscard]] settings::SettingsRecord stored() const {
        settings::ConfigFile again(data.path());
        again.ReadConfig();
        return again.record;
    }
    [[nodiscard]] bool logged(const std::string& text) const {
        return log.text().find(text) != std::string::npos;
    }
    void schedule(int day, int hour, int minute, const char* half) {
        config.record.DeleteDay = static_cast<std::int16_t>(day);
        config.record.DeleteHour = static_cast<std::int16_t>(hour);
        config.record.DeleteMinute = static_cast<std::int16_t>(minute);
        config.record.DeleteAMPM = half;
    }

    ovd::testing::TempFolder data;
    std::string recordings = data.file("Recordings");
    ovd::testing::VirtualEventLoop loop{localTime(2026, 3, 2, 9, 0, 0)};
    settings::ConfigFile config{data.path()};
    settings::EventLog log{loop, data.path(), config.record};
    ovd::testing::ScriptedPrompts prompts;
    KeptPaths inHand;
    Housekeeping house{{loop, config, log, data.path(), [this] { return inHand; }}};
};

}  // namespace ovd::housekeeping::testing
