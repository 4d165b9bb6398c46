// The serial pedals on a real tty: a pty stands for the COM port and the test
// plays the pedal by writing to its master side.

#include "devices/serial_pedals.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/file.h>
#include <termios.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "support/pseudo_terminal.h"
#include "support/scripted_prompts.h"
#include "support/temp_folder.h"
#include "support/virtual_event_loop.h"

namespace ovd::devices {
namespace {

using platform::Answer;
using platform::Milliseconds;
using testing::PseudoTerminal;

struct EdgeLog : PedalEventSink {
    std::vector<std::string> edges;
    void PedalEventSER(const std::string& pedal, const std::string& direction) override {
        edges.push_back(pedal + " " + direction);
    }
    void PedalEventUSB(const std::string&, const std::string&) override {}
    void PedalEventGAME(const std::string&, const std::string&) override {}
};

struct FakeHost : SerialPedalsHost {
    bool usb = false, game = false;
    int othersUnchecked = 0, configShown = 0, label17Cleared = 0, endings = 0;
    std::vector<std::string> problems, opened;
    bool USBPedals() const override { return usb; }
    bool GamePortPedals() const override { return game; }
    bool pedalInputSilenced() const override { return false; }
    void uncheckOtherFootPedalMenus() override { ++othersUnchecked; }
    void showConfigSERFootPedals() override { ++configShown; }
    void clearDeskUnitNotice() override { ++label17Cleared; }
    void endProgram() override { ++endings; }
    void tellSerialPortProblem(const std::string& text) override { problems.push_back(text); }
    void tellSerialPortOpened(const std::string& text) override { opened.push_back(text); }
};

struct Station {
    testing::TempFolder folder;
    testing::VirtualEventLoop loop;
    testing::ScriptedPrompts prompts;
    settings::ConfigFile config{folder.path()};
    dictation::DictationState dictation;
    PedalHits hits;
    EdgeLog sink;
    FakeHost host;
    platform::Timer timSERStepBACK{loop, "timSERStepBACK"};
    SerialPedals pedals{config, prompts, loop, sink, hits, dictation, timSERStepBACK, host};

    Station() { config.record.HandsFreeEdition = true; }
    void namePorts(const std::string& lines) const {
        std::ofstream(folder.file(kSerialPortsFileName)) << "[Ports]\r\n" << lines;
    }
    [[nodiscard]] int checkedPortItem() const {
        int checked = -1;
        for (int i = 0; i < SerialPedals::kPortCount; ++i) {
            if (pedals.comPortChecked(i)) checked = checked < 0 ? i : 99;
        }
        return checked;
    }
};

TEST(SerialPortsIniTest, PortNumbersNameDevices) {
    testing::TempFolder folder;
    std::ofstream(folder.file(kSerialPortsFileName)) << "[ports]\r\ncom2=/dev/ttyUSB0\r\nCOM3=\r\n";
    const std::vector<std::pair<int, std::string>> cases = {{1, "/dev/ttyS0"}, {2, "/dev/ttyUSB0"},
                                                            {3, "/dev/ttyS2"}, {8, "/dev/ttyS7"},
                                                            {0, ""},           {9, ""}};
    for (const auto& [port, path] : cases) {
        EXPECT_EQ(serialDevicePath(folder.path(), port), path) << port;
    }
    testing::TempFolder empty;
    EXPECT_EQ(serialDevicePath(empty.path(), 4), "/dev/ttyS3");
}

TEST(SerialPedalsTest, PedalOnAPtyGivesEdgesOnTheLoop) {
    PseudoTerminal pty;
    ASSERT_FALSE(pty.slavePath().empty());
    Station station;
    station.namePorts("COM3=" + pty.slavePath() + "\r\n");
    station.config.record.Port = 3;
    station.pedals.OpenSerialPedals();
    ASSERT_TRUE(station.pedals.PortOpen());
    EXPECT_FALSE(station.pedals.PortINUse());
    EXPECT_EQ(station.checkedPortItem(), 2);
    EXPECT_EQ(station.host.label17Cleared, 1);

    pty.send(0x81);
    station.loop.advance(Milliseconds(20));
    EXPECT_EQ(station.sink.edges, std::vector<std::string>{"LEFT DOWN"});
    EXPECT_TRUE(station.hits.LEFTSERPEDALHit);

    station.timSERStepBACK.setEnabled(true);
    pty.send(0x87);
    station.loop.advance(Milliseconds(20));
    EXPECT_EQ(station.sink.edges, (std::vector<std::string>{"LEFT DOWN", "LEFT UP"}));
    EXPECT_FALSE(station.timSERStepBACK.Enabled());

    station.pedals.CloseSerialPedals();
    EXPECT_FALSE(station.pedals.PortOpen());
    pty.send(0x84);
    station.loop.advance(Milliseconds(20));
    EXPECT_EQ(station.sink.edges.size(), 2U);
}

TEST(SerialPedalsTest, BytesLeftByTheGuardWaitForTheNextArrival) {
    PseudoTerminal pty;
    Station station;
    station.namePorts("COM1=" + pty.slavePath() + "\r\n");
    station.config.record.Port = 1;
    station.pedals.OpenSerialPedals();
    station.dictation.DoingInsertUpdate = true;
    pty.send(0x84);
    pty.send(0x81);
    station.loop.advance(Milliseconds(20));
    EXPECT_TRUE(station.sink.edges.empty());
    EXPECT_EQ(station.pedals.port().waiting(), 1U);

    station.dictation.DoingInsertUpdate = false;
    station.loop.advance(Milliseconds(20));
    EXPECT_TRUE(station.sink.edges.empty());
    pty.send(0x87);
    station.loop.advance(Milliseconds(20));
    EXPECT_EQ(station.sink.edges, (std::vector<std::string>{"LEFT DOWN", "LEFT UP"}));
}

TEST(SerialPedalsTest, MissingDeviceInThePortMenuRestoresTheOldPort) {
    Station station;
    station.namePorts("COM2=" + station.folder.file("no-such-tty") + "\r\n");
    station.config.record.Port = 1;
    station.prompts.answerNext(Answer::Cancel);
    station.pedals.chooseComPort(1);

    const auto& shown = station.prompts.transcript();
    ASSERT_EQ(shown.size(), 2U);
    EXPECT_EQ(shown[0].title, "Orvane Voice Desk Settngs");
    EXPECT_EQ(shown[0].text,
              "You have made a port change. The Orvane Voice Desk program will now exit, so "
              "that the COM port change can take effect");
    EXPECT_EQ(shown[0].buttons, platform::Buttons::OkCancel);
    EXPECT_EQ(shown[1].title, "COM Port Error");
    EXPECT_EQ(shown[1].text, kComPortNotAvailableMessage);
    EXPECT_EQ(station.checkedPortItem(), 0);
    EXPECT_FALSE(station.pedals.PortOpen());
    EXPECT_EQ(station.host.endings, 0);
    ASSERT_TRUE(station.pedals.lastPortError().has_value());
    EXPECT_NE(station.pedals.lastPortError()->text.find("no-such-tty"), std::string::npos);
}

TEST(SerialPedalsTest, PortChangeAcceptedEndsTheProgramWithTheEditionsWords) {
    for (const bool handsFree : {true, false}) {
        Station station;
        station.config.record.HandsFreeEdition = handsFree;
        station.config.record.Port = 1;
        station.prompts.answerNext(Answer::Ok);
        const int writesBefore = station.config.writeCount();
        station.pedals.chooseComPort(4);
        ASSERT_EQ(station.prompts.transcript().size(), 1U);
        const auto& asked = station.prompts.transcript()[0];
        EXPECT_EQ(asked.title, handsFree ? "Orvane Voice Desk Settngs"
                                         : "Orvane Station Recorder COM Port Settings");
        EXPECT_NE(asked.text.find(handsFree ? "The Orvane Voice Desk program"
                                            : "The Orvane Station Recorder program"),
                  std::string::npos);
        EXPECT_EQ(station.config.record.Port, 5);
        EXPECT_EQ(station.host.endings, 1);
        EXPECT_EQ(station.config.writeCount(), writesBefore + 1);
        EXPECT_FALSE(station.pedals.PortOpen());
    }
}

TEST(SerialPedalsTest, SamePortAsksNothingAndReopens) {
    PseudoTerminal pty;
    Station station;
    station.namePorts("COM2=" + pty.slavePath() + "\r\n");
    station.config.record.Port = 2;
    station.pedals.chooseComPort(1);
    EXPECT_TRUE(station.prompts.transcript().empty());
    EXPECT_TRUE(station.pedals.PortOpen());
    EXPECT_EQ(station.host.label17Cleared, 1);
    EXPECT_GE(station.config.writeCount(), 1);
}

TEST(SerialPedalsTest, PortHeldByAnotherStationIsInUse) {
    PseudoTerminal pty;
    Station first;
    first.namePorts("COM1=" + pty.slavePath() + "\r\n");
    first.config.record.Port = 1;
    first.pedals.OpenSerialPedals();
    ASSERT_TRUE(first.pedals.PortOpen());

    Station second;
    second.namePorts("COM1=" + pty.slavePath() + "\r\n");
    second.config.record.Port = 1;
    second.pedals.chooseComPort(0);
    ASSERT_EQ(second.prompts.texts(), std::vector<std::string>{kComPortInUseMessage});
    EXPECT_EQ(second.prompts.transcript()[0].title, "Orvane Voice Desk");
    EXPECT_EQ(second.config.writeCount(), 1);

    // At start the refusal asks nothing, and the foot pedal menu can reopen the port.
    second.pedals.OpenSerialPedals();
    EXPECT_TRUE(second.pedals.PortINUse());
    EXPECT_EQ(second.prompts.transcript().size(), 1U);
    first.pedals.CloseSerialPedals();
    second.pedals.setSerialPedalsChecked(true);
    second.pedals.toggleSerialPedals();
    EXPECT_FALSE(second.pedals.PortINUse());
    EXPECT_TRUE(second.pedals.PortOpen());
    EXPECT_FALSE(second.pedals.serialPedalsChecked());
}

TEST(SerialPedalsTest, OtherPedalKindsNeedNoComPort) {
    struct Case {
        bool usb, game;
        const char* text;
    };
    for (const Case c : {Case{true, false, kUsbPedalsNeedNoComPort},
                         Case{true, true, kGamePortPedalsNeedNoComPort},
                         Case{false, true, kGamePortPedalsNeedNoComPort}}) {
        Station station;
        station.host.usb = c.usb;
        station.host.game = c.game;
        station.config.record.Port = 1;
        station.pedals.chooseComPort(3);
        EXPECT_EQ(station.prompts.texts(), std::vector<std::string>{c.text});
        EXPECT_EQ(station.config.record.Port, 1);
        EXPECT_EQ(station.config.writeCount(), 0);
    }
}

TEST(SerialPedalsTest, FootPedalMenuSwitchesSerialPedalsOnAndOff) {
    PseudoTerminal pty;
    Station station;
    station.namePorts("COM1=" + pty.slavePath() + "\r\n");
    station.config.record.Port = 1;

    station.pedals.toggleSerialPedals();
    EXPECT_TRUE(station.pedals.serialPedalsChecked());
    EXPECT_TRUE(station.config.record.UserSelectSerial);
    EXPECT_EQ(station.host.othersUnchecked, 1);
    EXPECT_EQ(station.host.configShown, 1);
    EXPECT_TRUE(station.pedals.PortOpen());
    EXPECT_EQ(station.config.writeCount(), 1);

    station.pedals.toggleSerialPedals();
    EXPECT_FALSE(station.pedals.serialPedalsChecked());
    EXPECT_FALSE(station.config.record.UserSelectSerial);
    EXPECT_FALSE(station.pedals.PortOpen());
    EXPECT_EQ(station.config.writeCount(), 2);
}

// Bytes of a line that picks up noise: anything but the pedal's four codes.
std::vector<std::uint8_t> lineNoise(std::size_t count, unsigned seed) {
    std::mt19937 random(seed);
    std::vector<std::uint8_t> noise;
    while (noise.size() < count) {
        const auto byte = static_cast<std::uint8_t>(random() & 0xFF);
        if (byte != 0x81 && byte != 0x84 && byte != 0x85 && byte != 0x87) noise.push_back(byte);
    }
    return noise;
}

TEST(SerialPedalsTest, APressAfterAnyAmountOfNoiseActsAtOnce) {
    PseudoTerminal pty;
    Station station;
    station.namePorts("COM1=" + pty.slavePath() + "\r\n");
    station.config.record.Port = 1;
    station.pedals.OpenSerialPedals();
    ASSERT_TRUE(station.pedals.PortOpen());

    const std::vector<std::uint8_t> noise = lineNoise(10000, 7);
    for (std::size_t at = 0; at < noise.size(); at += 500) {
        pty.send(std::vector<std::uint8_t>(noise.begin() + static_cast<std::ptrdiff_t>(at),
                                           noise.begin() + static_cast<std::ptrdiff_t>(at + 500)));
        station.loop.advance(Milliseconds(10));
    }
    EXPECT_TRUE(station.sink.edges.empty());

    pty.send(0x85);
    station.loop.advance(Milliseconds(20));
    EXPECT_EQ(station.sink.edges, std::vector<std::string>{"MIDDLE DOWN"});
    pty.send(0x87);
    station.loop.advance(Milliseconds(20));
    EXPECT_EQ(station.sink.edges, (std::vector<std::string>{"MIDDLE DOWN", "MIDDLE UP"}));
    EXPECT_EQ(station.pedals.port().waiting(), 0U);
}

// A device that is not there at start, one another program holds, and one that
// goes away while open: each is told once, and the pedal works as soon as the
// port can be had, without the author touching a menu.
TEST(SerialPedalsTest, APortThatCantBeOpenedIsToldOnceAndTriedAgainUntilThePedalWorks) {
    Station station;
    const std::string link = station.folder.file("pedal");
    station.namePorts("COM1=" + link + "\r\n");
    station.config.record.Port = 1;
    station.pedals.OpenSerialPedals();
    EXPECT_FALSE(station.pedals.PortOpen());
    EXPECT_TRUE(station.pedals.PortINUse());
    ASSERT_EQ(station.host.problems.size(), 1U);
    EXPECT_NE(station.host.problems[0].find("COM1"), std::string::npos);
    EXPECT_NE(station.host.problems[0].find(link), std::string::npos);
    EXPECT_NE(station.host.problems[0].find("No such file"), std::string::npos);
    EXPECT_TRUE(station.prompts.transcript().empty()) << "no box stops the start";

    // Held by another program: still refused, and nothing more is said.
    auto first = std::make_unique<PseudoTerminal>();
    std::filesystem::create_symlink(first->slavePath(), link);
    const int holder = ::open(first->slavePath().c_str(), O_RDWR | O_NOCTTY);
    ASSERT_GE(holder, 0);
    ASSERT_EQ(::flock(holder, LOCK_EX | LOCK_NB), 0);
    station.loop.advance(Milliseconds(4 * kSerialPortRetryMs));
    EXPECT_FALSE(station.pedals.PortOpen());
    EXPECT_EQ(station.host.problems.size(), 1U);

    // Let go: the next try opens the port and the pedal is heard.
    ::close(holder);
    station.loop.advance(Milliseconds(kSerialPortRetryMs + 100));
    ASSERT_TRUE(station.pedals.PortOpen());
    EXPECT_FALSE(station.pedals.PortINUse());
    EXPECT_FALSE(station.pedals.retrying());
    EXPECT_EQ(station.host.opened.size(), 1U);
    first->send(0x85);
    station.loop.advance(Milliseconds(20));
    EXPECT_EQ(station.sink.edges, std::vector<std::string>{"MIDDLE DOWN"});
    first->send(0x87);
    station.loop.advance(Milliseconds(20));

    // The device goes away under the open port, then another takes its name.
    first.reset();
    station.loop.advance(Milliseconds(20));
    EXPECT_FALSE(station.pedals.PortOpen());
    ASSERT_EQ(station.host.problems.size(), 2U);
    EXPECT_NE(station.host.problems[1].find("went away"), std::string::npos);
    PseudoTerminal second;
    std::filesystem::remove(link);
    std::filesystem::create_symlink(second.slavePath(), link);
    station.loop.advance(Milliseconds(kSerialPortRetryMs + 100));
    ASSERT_TRUE(station.pedals.PortOpen());
    second.send(0x81);
    station.loop.advance(Milliseconds(20));
    EXPECT_EQ(station.sink.edges,
              (std::vector<std::string>{"MIDDLE DOWN", "MIDDLE UP", "LEFT DOWN"}));

    // Switched off while it is tried again: the trying stops.
    station.pedals.CloseSerialPedals();
    EXPECT_FALSE(station.pedals.retrying());
}

}  // namespace
}  // namespace ovd::devices
