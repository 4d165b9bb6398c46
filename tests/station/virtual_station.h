#pragma once
// A whole station on the virtual clock: the real composition root over the virtual
// sound backend, on a data folder of the test's own with the shipped settings, a
// serial pedal on a pty, and scripted prompts. Its start-up, its end and the
// hand-off from a second start run here in virtual time.

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "engine/virtual_backend.h"
#include "platform/files.h"
#include "settings/config_file.h"
#include "settings/event_log.h"
#include "station/station.h"
#include "support/pseudo_terminal.h"
#include "support/scripted_prompts.h"
#include "support/temp_folder.h"
#include "support/virtual_event_loop.h"

namespace ovd::station::testing {

// Serial pedal bytes: press of each pedal, and the release of all.
inline constexpr std::uint8_t kMiddlePedal = 0x85;  // "RECSTOP"
inline constexpr std::uint8_t kRightPedal = 0x84;   // "EOLSTOP"
inline constexpr std::uint8_t kPedalsUp = 0x87;

// A save runs on its own thread; virtual time moves on only once it is done, so a
// save takes no virtual time however fast the machine encodes.
class SaveAwareLoop : public ::ovd::testing::VirtualEventLoop {
  public:
    using VirtualEventLoop::VirtualEventLoop;
    void wait(platform::Milliseconds duration) override {
        if (beforeTimeMoves) beforeTimeMoves();
        VirtualEventLoop::wait(duration);
    }
    std::function<void()> beforeTimeMoves;
};

class VirtualStation {
  public:
    VirtualStation() {
        EXPECT_TRUE(platform::writeWholeFile(
            folder.file("DigitalRecorder.cfg"),
            platform::readWholeFile(OVD_TEST_ASSETS "/DigitalRecorder.cfg").value()));
        config.ReadConfig();
        settings::SettingsRecord& r = config.record;
        r.CaptureFilePath = recordings;
        r.UserSelectSerial = true;
        r.Port = 1;
        r.FormatType = "WAV";
        r.RecoveryModule = true;
        config.WriteConfig();
        EXPECT_TRUE(platform::writeWholeFile(folder.file("SerialPorts.ini"),
                                             "[Ports]\r\nCOM1=" + pty.slavePath() + "\r\n"));
        loop.beforeTimeMoves = [this] { letSavesFinish(); };
    }
    ~VirtualStation() {
        if (station) station->Form_Unload();
    }
    VirtualStation(const VirtualStation&) = delete;
    VirtualStation& operator=(const VirtualStation&) = delete;

    // The station as the program makes it, for a file named on the command line or none.
    Station& make(const std::string& commandFileName = "") {
        station = std::make_unique<Station>(StationParts{
            loop, config, log, prompts, backend, folder.path(), OVD_TEST_ASSETS "/prompts",
            OVD_TEST_ASSETS, folder.file("bin"), commandFileName, 0});
        station->onExit = [this] { ++exitsAsked; };
        station->onLoadDone = [this] { ++loadsDone; };
        return *station;
    }

    void advance(int milliseconds) {
        letSavesFinish();
        loop.advance(platform::Milliseconds(milliseconds));
    }
    // Holds a pedal down for the virtual time, then lets go.
    void press(std::uint8_t pedal, int milliseconds) {
        pty.send(pedal);
        advance(milliseconds);
        pty.send(kPedalsUp);
        advance(200);
    }
    void letSavesFinish() {
        if (!station) return;
        for (int i = 0; i < 20000 &&
                        (station->recordingEditor().saving() || station->scratchEditor().saving());
             ++i) {
            std::this_thread::sleep_for(std::chrono::microseconds(100));
        }
    }

    [[nodiscard]] bool logShows(const std::string& text, std::size_t from = 0) const {
        return log.text().find(text, from) != std::string::npos;
    }
    // The first step of the list missing from the log in that order, or "" when all are there.
    [[nodiscard]] std::string firstMissingInOrder(const std::vector<std::string>& steps,
                                                  std::size_t from = 0) const {
        for (const std::string& step : steps) {
            const std::size_t found = log.text().find(step, from);
            if (found == std::string::npos) return step;
            from = found + step.size();
        }
        return "";
    }
    [[nodiscard]] std::vector<std::string> workFiles() const {
        std::vector<std::string> found;
        for (const std::string& name : platform::filesInFolder(recordings + "/Temp")) {
            if (name.size() > 4 && name.substr(name.size() - 4) == ".tmp") found.push_back(name);
        }
        return found;
    }
    // The settings as the file on disk holds them.
    [[nodiscard]] settings::SettingsRecord storedSettings() const {
        settings::ConfigFile stored(folder.path());
        stored.ReadConfig();
        return stored.record;
    }

    ::ovd::testing::TempFolder folder;
    std::string recordings = folder.file("Rec");
    ::ovd::testing::PseudoTerminal pty;
    SaveAwareLoop loop{::ovd::testing::localTime(2026, 11, 24, 9, 0, 0)};
    settings::ConfigFile config{folder.path()};
    settings::EventLog log{loop, folder.path(), config.record};
    ::ovd::testing::ScriptedPrompts prompts;
    engine::VirtualBackend backend{loop, {}};
    std::unique_ptr<Station> station;
    int exitsAsked = 0;
    int loadsDone = 0;
};

}  // namespace ovd::station::testing
