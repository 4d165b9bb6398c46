// The pedal's reset at the opening of its port: the station's other timers go on
// while the lines settle, and what the pedal sends as it powers up is no press.

#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

#include "devices/serial_pedals.h"
#include "support/pseudo_terminal.h"
#include "support/scripted_prompts.h"
#include "support/temp_folder.h"
#include "support/virtual_event_loop.h"

namespace ovd::devices {
namespace {

using platform::Milliseconds;

struct Edges : PedalEventSink {
    std::vector<std::string> seen;
    void PedalEventSER(const std::string& pedal, const std::string& direction) override {
        seen.push_back(pedal + " " + direction);
    }
    void PedalEventUSB(const std::string&, const std::string&) override {}
    void PedalEventGAME(const std::string&, const std::string&) override {}
};

struct QuietHost : SerialPedalsHost {
    bool USBPedals() const override { return false; }
    bool GamePortPedals() const override { return false; }
    bool pedalInputSilenced() const override { return false; }
    void uncheckOtherFootPedalMenus() override {}
    void showConfigSERFootPedals() override {}
    void clearDeskUnitNotice() override {}
    void endProgram() override {}
};

TEST(SerialPedalResetTest, TheLoopRunsDuringTheResetAndPowerUpBytesAreNoPress) {
    testing::PseudoTerminal pty;
    testing::TempFolder folder;
    testing::VirtualEventLoop loop;
    testing::ScriptedPrompts prompts;
    settings::ConfigFile config{folder.path()};
    config.record.HandsFreeEdition = true;
    config.record.Port = 1;
    std::ofstream(folder.file(kSerialPortsFileName))
        << "[Ports]\r\nCOM1=" << pty.slavePath() << "\r\n";
    dictation::DictationState dictation;
    PedalHits hits;
    Edges edges;
    QuietHost host;
    platform::Timer timSERStepBACK{loop, "timSERStepBACK"};
    SerialPedals pedals{config, prompts, loop, edges, hits, dictation, timSERStepBACK, host};

    // Another timer of the station, and the pedal chattering as it gets power.
    int ticks = 0;
    platform::Timer other(loop, "timCurPos", 2);
    other.setOnTick([&] {
        ++ticks;
        if (ticks == 2) pty.send(0x81);
    });
    other.setEnabled(true);

    pedals.OpenSerialPedals();
    other.setEnabled(false);
    ASSERT_TRUE(pedals.PortOpen());
    EXPECT_GE(ticks, 5) << "the reset held the loop up";
    loop.advance(Milliseconds(20));
    EXPECT_TRUE(edges.seen.empty()) << "a byte sent while powering up is no press";

    pty.send(0x85);
    loop.advance(Milliseconds(20));
    EXPECT_EQ(edges.seen, std::vector<std::string>{"MIDDLE DOWN"});
}

}  // namespace
}  // namespace ovd::devices
