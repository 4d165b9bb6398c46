// Game port pedals: button values through the button table into serial pedal
// edges, the joystick's event records folded into the button mask, and the
// reader on a FIFO standing in for /dev/input/jsN on the virtual loop.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "devices/game_pedals.h"
#include "settings/ini_store.h"
#include "support/temp_folder.h"
#include "support/virtual_event_loop.h"

namespace ovd::devices {
namespace {

using platform::Milliseconds;
using Edges = std::vector<std::string>;

class SerialEdgeLog : public PedalEventSink {
  public:
    Edges edges;
    void PedalEventSER(const std::string& pedal, const std::string& direction) override {
        edges.push_back(pedal + " " + direction);
    }
    void PedalEventUSB(const std::string&, const std::string&) override {
        edges.emplace_back("USB edge");
    }
    void PedalEventGAME(const std::string&, const std::string&) override {
        edges.emplace_back("GAME edge");
    }
};

// One js_event: time, value, type, number.
std::vector<std::uint8_t> jsEvent(std::uint8_t number, bool pressed, std::uint8_t type = 0x01) {
    std::vector<std::uint8_t> record(8, 0);
    record[0] = 0x10;
    record[4] = pressed ? 1 : 0;
    record[6] = type;
    record[7] = number;
    return record;
}

struct Sequence {
    const char* name;
    GamePortOptions options;
    std::vector<std::uint32_t> values;
    Edges expected;
};

TEST(GamePortDecoder, ButtonValuesBecomeSerialEdgesByTheTable) {
    const GamePortOptions dvi{.DVIPedal = true};
    const GamePortOptions alt{.AltPedalLayout = true};
    const GamePortOptions swap{.PedalSwap = true};
    const std::vector<Sequence> sequences = {
        {"each pedal pressed and let go",
         {},
         {2, 0, 4, 0, 1, 0},
         {"LEFT DOWN", "LEFT UP", "MIDDLE DOWN", "MIDDLE UP", "RIGHT DOWN", "RIGHT UP"}},
        {"1 to 3 with no 0 between: middle pressed, right never released",
         {},
         {1, 3, 0},
         {"RIGHT DOWN", "MIDDLE DOWN", "MIDDLE UP"}},
        {"8 is no pedal and leaves the last press code", {}, {1, 8, 0}, {"RIGHT DOWN", "RIGHT UP"}},
        {"a value outside the table does nothing", {}, {5, 16, 0}, {}},
        {"the same value twice is one press", {}, {2, 2, 0, 0}, {"LEFT DOWN", "LEFT UP"}},
        {"a release with nothing pressed before", {}, {0, 0}, {}},
        {"the DVI column", dvi, {3, 0, 8}, {"RIGHT DOWN", "RIGHT UP"}},
        {"the alternative column",
         alt,
         {4, 0, 8, 0},
         {"RIGHT DOWN", "RIGHT UP", "MIDDLE DOWN", "MIDDLE UP"}},
        {"left and right swapped", swap, {2, 0, 4}, {"RIGHT DOWN", "RIGHT UP", "MIDDLE DOWN"}},
    };
    for (const Sequence& s : sequences) {
        settings::SettingsRecord record;
        dictation::DictationState state;
        SerialEdgeLog sink;
        GamePortDecoder decoder(record, state, sink, s.options);
        for (const std::uint32_t value : s.values) EXPECT_TRUE(decoder.tick(value)) << s.name;
        EXPECT_EQ(sink.edges, s.expected) << s.name;
    }
}

TEST(GamePortDecoder, APressDuringAnInsertWaitsAndIsTakenWhenTheInsertEnds) {
    settings::SettingsRecord record;
    dictation::DictationState state;
    SerialEdgeLog sink;
    GamePortDecoder decoder(record, state, sink);
    bool busy = true;
    decoder.PedalsBusy = [&busy] { return busy; };
    EXPECT_FALSE(decoder.tick(2)) << "pedals busy: nothing is read";
    busy = false;
    state.DoingInsertUpdate = true;
    EXPECT_FALSE(decoder.tick(2));
    EXPECT_EQ(decoder.lastButtonValue(), 0U) << "the value is left for the next tick";
    EXPECT_TRUE(sink.edges.empty());
    state.DoingInsertUpdate = false;
    state.OverWriteFile = true;
    EXPECT_TRUE(decoder.tick(0)) << "a release is never held back";
    EXPECT_FALSE(decoder.tick(1));
    record.OneTapRecPause = true;
    EXPECT_TRUE(decoder.tick(1)) << "with one-tap recording the press goes through";
    EXPECT_EQ(sink.edges, Edges{"RIGHT DOWN"});
    EXPECT_EQ(decoder.lastGameCode(), 1U);
}

TEST(JoystickEventStream, RecordsCutAnywhereFoldIntoTheButtonMask) {
    std::vector<std::uint8_t> bytes;
    const auto add = [&bytes](const std::vector<std::uint8_t>& record) {
        bytes.insert(bytes.end(), record.begin(), record.end());
    };
    add(jsEvent(0, false, 0x81));  // the state at open: nothing pressed
    add(jsEvent(3, false, 0x82));  // an axis
    add(jsEvent(1, true));
    add(jsEvent(0, true));
    add(jsEvent(40, true));  // beyond the mask
    add(jsEvent(1, false));
    add(jsEvent(0, false));
    for (std::size_t cut = 1; cut <= bytes.size(); cut += 3) {
        JoystickEventStream stream;
        std::vector<std::uint32_t> masks;
        const auto seen = [&masks](std::uint32_t mask) { masks.push_back(mask); };
        stream.feed(std::span(bytes).first(cut), seen);
        stream.feed(std::span(bytes).subspan(cut), seen);
        EXPECT_EQ(masks, (std::vector<std::uint32_t>{2, 3, 1, 0})) << "cut at " << cut;
        EXPECT_EQ(stream.ignoredRecords(), 1U);
    }
}

class GamePedalsTest : public ::testing::Test {
  protected:
    testing::TempFolder folder;
    testing::VirtualEventLoop loop;
    settings::ConfigFile config{folder.path()};
    SerialEdgeLog sink;
    dictation::DictationState state;
    PedalMenuChecks menu;
    std::vector<std::string> notes;
    std::string inputFolder = folder.file("input");
    int writer = -1;

    void SetUp() override { std::filesystem::create_directories(inputFolder); }
    void TearDown() override {
        if (writer >= 0) ::close(writer);
    }

    // A FIFO standing in for the joystick, named in GamePort.ini.
    std::string plugJoystick(const std::string& name = "pedal-fifo") {
        const std::string node = folder.file(name);
        EXPECT_EQ(::mkfifo(node.c_str(), 0600), 0);
        EXPECT_TRUE(settings::IniStore(folder.file(kGamePortFileName))
                        .WriteKey(kGamePortSection, kGamePortKey, node));
        writer = ::open(node.c_str(), O_RDWR | O_NONBLOCK);
        EXPECT_GE(writer, 0);
        return node;
    }

    void send(std::uint8_t number, bool pressed) {
        const std::vector<std::uint8_t> record = jsEvent(number, pressed);
        ASSERT_EQ(::write(writer, record.data(), record.size()), 8);
        loop.runPending();
    }

    void attach(GamePedals& pedals) {
        pedals.note = [this](const std::string& text) { notes.push_back(text); };
    }
};

TEST_F(GamePedalsTest, TheDeviceIsTheOneNamedOrTheFirstJoystick) {
    EXPECT_EQ(gamePortDevicePath(folder.path(), inputFolder), inputFolder + "/js0");
    for (const char* name : {"js12", "js3", "jsx", "event2"})
        std::ofstream(inputFolder + "/" + name) << "";
    EXPECT_EQ(gamePortDevicePath(folder.path(), inputFolder), inputFolder + "/js3");
    ASSERT_TRUE(settings::IniStore(folder.file(kGamePortFileName))
                    .WriteKey(kGamePortSection, kGamePortKey, "/dev/input/js7"));
    EXPECT_EQ(gamePortDevicePath(folder.path(), inputFolder), "/dev/input/js7");
}

TEST_F(GamePedalsTest, EventsAreTakenAsTheyComeAndTheTimerRunsOnlyWhileAPressWaits) {
    plugJoystick();
    GamePedals pedals(config, loop, sink, state, menu, inputFolder);
    attach(pedals);
    pedals.OpenGamePedals();
    ASSERT_TRUE(pedals.isOpen());
    EXPECT_TRUE(config.record.UserSelectGame);
    send(1, true);
    send(1, false);
    EXPECT_EQ(sink.edges, (Edges{"LEFT DOWN", "LEFT UP"})) << "no tick needed";
    EXPECT_FALSE(pedals.Timer48.Enabled()) << "an idle joystick is not polled";

    state.DoingInsertUpdate = true;
    send(0, true);
    EXPECT_TRUE(pedals.Timer48.Enabled());
    loop.advance(Milliseconds(kGamePollMs * 3));
    EXPECT_EQ(sink.edges.size(), 2U) << "held back while the insert runs";
    state.DoingInsertUpdate = false;
    loop.advance(Milliseconds(kGamePollMs));
    EXPECT_EQ(sink.edges.back(), "RIGHT DOWN") << "taken at the next tick of Timer48";
    EXPECT_FALSE(pedals.Timer48.Enabled());
}

TEST_F(GamePedalsTest, AJoystickThatGoesAwayIsToldAndTheRestGoesOn) {
    plugJoystick();
    GamePedals pedals(config, loop, sink, state, menu, inputFolder);
    attach(pedals);
    pedals.OpenGamePedals();
    send(2, true);
    ::close(writer);
    writer = -1;
    loop.advance(Milliseconds(kGamePollMs));
    EXPECT_FALSE(pedals.isOpen());
    EXPECT_FALSE(pedals.Timer48.Enabled()) << "polling stops for good";
    ASSERT_FALSE(notes.empty());
    EXPECT_NE(notes.back().find("Game port pedals lost: " + folder.file("pedal-fifo")),
              std::string::npos)
        << notes.back();
    EXPECT_EQ(sink.edges, Edges{"MIDDLE DOWN"});
    pedals.CloseGamePedals();  // the exit closes it again without harm

    notes.clear();
    std::filesystem::remove(folder.file("pedal-fifo"));
    GamePedals absent(config, loop, sink, state, menu, inputFolder);
    attach(absent);
    absent.OpenGamePedals();
    EXPECT_FALSE(absent.isOpen());
    ASSERT_EQ(notes.size(), 1U);
    EXPECT_EQ(notes[0].rfind("Game port pedals not available: ", 0), 0U) << notes[0];
}

TEST_F(GamePedalsTest, TheMenuEntrySwitchesThePedalsAndTheOtherKindsOff) {
    plugJoystick();
    menu.usbChecked = true;
    bool serialUnchecked = false;
    int dialogs = 0;
    GamePedals pedals(config, loop, sink, state, menu, inputFolder);
    pedals.uncheckSerialMenu = [&] { serialUnchecked = true; };
    pedals.showConfigDialog = [&] { ++dialogs; };
    pedals.toggleGamePedals();
    EXPECT_TRUE(menu.gameChecked);
    EXPECT_FALSE(menu.usbChecked);
    EXPECT_TRUE(serialUnchecked);
    EXPECT_EQ(dialogs, 1);
    EXPECT_TRUE(pedals.isOpen());
    settings::ConfigFile written(folder.path());
    written.ReadConfig();
    EXPECT_TRUE(written.record.UserSelectGame) << "the choice is written at once";
    pedals.toggleGamePedals();
    EXPECT_FALSE(menu.gameChecked);
    EXPECT_FALSE(config.record.UserSelectGame);
    EXPECT_FALSE(pedals.isOpen());
    EXPECT_EQ(dialogs, 1);
}

}  // namespace
}  // namespace ovd::devices
