// The real station program, headless on the virtual sound backend, driven by a
// serial foot pedal on a pty: the author's feet do the whole take.

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <string>
#include <thread>

#include "platform/files.h"
#include "settings/config_file.h"
#include "support/pseudo_terminal.h"
#include "support/temp_folder.h"

namespace ovd {
namespace {

using namespace std::chrono_literals;

class PedalStationTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_FALSE(pty.slavePath().empty()) << "no pty available";
        platform::writeWholeFile(folder.file("DigitalRecorder.cfg"),
                                 platform::readWholeFile(OVD_TEST_ASSETS "/DigitalRecorder.cfg").value());
        settings::ConfigFile config(folder.path());
        config.ReadConfig();
        config.record.UserSelectSerial = true;
        config.record.Port = 1;
        config.record.FormatType = "WAV";
        config.WriteConfig();
        platform::writeWholeFile(folder.file("SerialPorts.ini"),
                                 "[Ports]\r\nCOM1=" + pty.slavePath() + "\r\n");
    }

    void TearDown() override {
        if (child > 0) {
            ::kill(child, SIGKILL);
            ::waitpid(child, nullptr, 0);
        }
    }

    void startStation() {
        child = ::fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            ::unsetenv("DISPLAY");
            ::unsetenv("WAYLAND_DISPLAY");
            const std::string data = folder.path();
            ::execl(OVD_STATION_PROGRAM, "orvane-voice-desk", "--headless", "--data-folder",
                    data.c_str(), "--audio", "virtual", static_cast<char*>(nullptr));
            ::_exit(127);
        }
    }

    std::string eventLog() const {
        // The day's log, written through every half second.
        for (const auto& entry : std::filesystem::directory_iterator(folder.file("Event Logs"))) {
            return platform::readWholeFile(entry.path().string()).value_or("");
        }
        return "";
    }

    // True once the log holds the text; the station writes it within a second.
    bool logShows(const std::string& text, std::size_t from = 0) const {
        for (int i = 0; i < 100; ++i) {
            const std::string log = std::filesystem::exists(folder.file("Event Logs")) ? eventLog() : "";
            if (log.find(text, from) != std::string::npos) return true;
            std::this_thread::sleep_for(100ms);
        }
        return false;
    }

    testing::TempFolder folder;
    testing::PseudoTerminal pty;
    pid_t child = -1;
};

TEST_F(PedalStationTest, TheMiddlePedalRecordsAndTheLeftOneListensBack) {
    startStation();
    ASSERT_TRUE(logShows("Procedure - CASE NEW")) << eventLog();

    pty.send(0x85);  // the middle pedal, assigned "RECSTOP"
    ASSERT_TRUE(logShows("File Record: ")) << eventLog();
    std::this_thread::sleep_for(2500ms);
    pty.send(0x87);  // released
    ASSERT_TRUE(logShows("File Stop: ")) << eventLog();

    const std::size_t afterStop = eventLog().size();
    pty.send(0x81);  // the left pedal, "STEPLIST", held
    std::this_thread::sleep_for(600ms);
    pty.send(0x87);
    EXPECT_TRUE(logShows("File Play: ", afterStop)) << eventLog().substr(afterStop);

    ::kill(child, SIGTERM);
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    child = -1;
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
}

}  // namespace
}  // namespace ovd
