// Dictation devices of other makers: the shipped table, each of its rows replayed
// from a recorded report sequence, broken rows, and the devices read through FIFOs
// standing in for /dev/hidrawN: wrong report lengths, two devices at once, and
// devices that come and go while the station runs.

#include "devices/other_maker_devices.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <vector>

#include "settings/ini_store.h"
#include "support/temp_folder.h"
#include "support/virtual_event_loop.h"

namespace ovd::devices {
namespace {

using Bytes = std::vector<std::uint8_t>;
using Texts = std::vector<std::string>;

const std::string kShippedTable = std::string(OVD_TEST_ASSETS) + "/devices/dictation_devices.conf";

// Reports as the devices send them, pressing and letting go of each control in
// turn, with what the station must make of them.
struct Recording {
    std::vector<Bytes> reports;
    Texts changes;
};

const std::map<std::string, Recording>& recordings() {
    const Bytes keysUp = {0, 0, 0, 0, 0, 0, 0, 0};
    const Recording threeKeys = {
        {{0, 0, 0x68, 0, 0, 0, 0, 0},
         keysUp,
         {0x02, 0, 0x69, 0, 0, 0, 0, 0},
         keysUp,
         {0, 0, 0, 0x6A, 0, 0, 0, 0},
         keysUp},
        {"LEFT down", "LEFT up", "MIDDLE down", "MIDDLE up", "RIGHT down", "RIGHT up"}};
    const Recording speechMike = {
        {{0x20, 0x00}, {0x00, 0x40}, {0x00, 0x00}, {0x01, 0x00}, {0x06, 0x00}, {0x00, 0x00}},
        {"Record down", "Record up", "EOL down", "EOL up", "STEPBACK down", "STEPBACK up",
         "LISTEN down", "STEPFOWARD down", "LISTEN up", "STEPFOWARD up"}};
    static const std::map<std::string, Recording> all = {
        {"VEC/Infinity USB foot pedal",
         {{{0x01, 0}, {0x03, 0}, {0x02, 0}, {0x00, 0}, {0x04, 0}, {0x00, 0}},
          {"LEFT down", "MIDDLE down", "LEFT up", "MIDDLE up", "RIGHT down", "RIGHT up"}}},
        {"Philips foot control ACC2310/ACC2320",
         {{{0x01}, {0x00}, {0x02}, {0x00}, {0x04}, {0x08}, {0x00}},
          {"LEFT down", "LEFT up", "MIDDLE down", "MIDDLE up", "RIGHT down", "RIGHT up"}}},
        {"Philips foot control ACC2330",
         {{{0x01}, {0x00}, {0x0A}, {0x00}, {0x04}, {0x00}},
          {"LEFT down", "LEFT up", "MIDDLE down", "EOL down", "MIDDLE up", "EOL up", "RIGHT down",
           "RIGHT up"}}},
        {"Olympus foot switch RS27H/RS28H/RS31H", threeKeys},
        {"PCsensor foot switch", threeKeys},
        {"PCsensor foot switch FS3", threeKeys},
        {"iKKEGOL foot switch", threeKeys},
        {"iKKEGOL triple foot switch", threeKeys},
        {"iKKEGOL foot switch, later model", threeKeys},
        {"Kinesis Savant Elite", threeKeys},
        {"Philips SpeechMike", speechMike},
        {"Philips SpeechOne", speechMike},
        {"Nuance PowerMic",
         {{{0x01, 0x04, 0x00},
           {0x01, 0x00, 0x00},
           {0x01, 0x40, 0x00},
           {0x01, 0x10, 0x00},
           {0x01, 0x20, 0x00},
           {0x01, 0x00, 0x00}},
          {"Record down", "Record up", "LISTEN down", "STEPBACK down", "LISTEN up", "STEPBACK up",
           "STEPFOWARD down", "STEPFOWARD up"}}},
        {"Nuance PowerMic IV",
         {{{0x20, 0x00}, {0x00, 0x00}, {0x02, 0x40}, {0x00, 0x00}, {0x10, 0x00}, {0x00, 0x00}},
          {"Record down", "Record up", "LISTEN down", "STEPBACK down", "LISTEN up", "STEPBACK up",
           "STEPFOWARD down", "STEPFOWARD up"}}},
    };
    return all;
}

Texts replay(const HidDeviceRow& row, const std::vector<Bytes>& reports) {
    HidControlDecoder decoder(row);
    Texts seen;
    for (const Bytes& report : reports) {
        for (const auto& change : decoder.decode(report))
            seen.push_back(row.controls[change.control].target + (change.down ? " down" : " up"));
    }
    return seen;
}

TEST(DictationDeviceTable, EveryShippedRowLoadsAndReplaysItsRecording) {
    const HidDeviceTable table = readHidDeviceTable(kShippedTable);
    EXPECT_TRUE(table.problems.empty()) << table.problems.front();
    ASSERT_EQ(table.rows.size(), recordings().size())
        << "every shipped row has a recording here, and every recording a row";
    for (const HidDeviceRow& row : table.rows) {
        const auto recording = recordings().find(row.name);
        ASSERT_NE(recording, recordings().end()) << row.name;
        EXPECT_EQ(replay(row, recording->second.reports), recording->second.changes) << row.name;
    }
    // Rows are found by vendor, product and function; a SpeechMike's other function is not.
    EXPECT_NE(table.find(0x0911, 0x0FA0, 1, 4), nullptr);
    EXPECT_EQ(table.find(0x0911, 0x0FA0, 0xFFA0, 1), nullptr);
    EXPECT_NE(table.find(0x07B4, 0x1234, 1, 6), nullptr) << "every Olympus product";
}

TEST(DictationDeviceTable, TheUdevRuleLetsTheUserReadEveryShippedDevice) {
    std::ifstream in(std::string(OVD_TEST_ASSETS) + "/udev/70-orvane-voice-desk-pedals.rules");
    std::vector<std::string> rules;
    for (std::string line; std::getline(in, line);) {
        if (line.find("SUBSYSTEM==\"hidraw\"") != std::string::npos) rules.push_back(line);
    }
    const auto hex = [](std::uint32_t value) {
        char text[5];
        std::snprintf(text, sizeof text, "%04x", value);
        return std::string(text);
    };
    for (const HidDeviceRow& row : readHidDeviceTable(kShippedTable).rows) {
        bool covered = false;
        for (const std::string& rule : rules) {
            const bool vendor =
                rule.find("{idVendor}==\"" + hex(row.vendor) + "\"") != std::string::npos;
            const bool anyProduct = rule.find("idProduct") == std::string::npos;
            const bool product = row.product && rule.find("{idProduct}==\"" + hex(*row.product) +
                                                          "\"") != std::string::npos;
            covered = covered || (vendor && (anyProduct || product));
        }
        EXPECT_TRUE(covered) << row.name;
    }
}

TEST(DictationDeviceTable, ABrokenRowIsNamedAndTheOthersStillWork) {
    const HidDeviceTable table = parseHidDeviceTable(
        "# comment\n"
        "Good pedal | 1234:0001 | * | 1 | LEFT=0.0 RIGHT=0.1\r\n"
        "Too few fields | 1234:0002 | 1 | LEFT=0.0\n"
        "Bad vendor | zz:0003 | * | 1 | LEFT=0.0\n"
        "Beyond the report | 1234:0004 | * | 1 | LEFT=1.0\n"
        "Unknown word | 1234:0005 | * | 1 | FASTER=0.0\n"
        "Bad bit | 1234:0006 | * | 1 | LEFT=0.8\n"
        "Word too short | 1234:0007 | * | 1 | LEFT=0.3+16\n"
        "Keys on a short report | 1234:0008 | * | 2 | LEFT=key:68\n"
        "\n"
        "Button | 1234:0009 | 0001:0004 | 2 | Record=0.15+16\n");
    ASSERT_EQ(table.rows.size(), 2U);
    EXPECT_EQ(table.rows[0].name, "Good pedal");
    EXPECT_EQ(table.rows[1].line, 11);
    ASSERT_EQ(table.problems.size(), 7U);
    EXPECT_EQ(table.problems[0].rfind("line 3: ", 0), 0U) << table.problems[0];
    EXPECT_NE(table.problems[3].find("FASTER"), std::string::npos) << table.problems[3];
    EXPECT_EQ(replay(table.rows[1], {{0x00, 0x80}, {0x00, 0x00}}),
              (Texts{"Record down", "Record up"}));
    EXPECT_FALSE(readHidDeviceTable("/nonexistent/table.conf").problems.empty());
}

// What reaches the station: pedal edges and command words, and the log.
class Station : public PedalEventSink {
  public:
    Texts heard;
    void PedalEventUSB(const std::string& pedal, const std::string& direction) override {
        heard.push_back(pedal + " " + direction);
    }
    void PedalEventSER(const std::string&, const std::string&) override {
        heard.emplace_back("serial edge");
    }
    void PedalEventGAME(const std::string&, const std::string&) override {
        heard.emplace_back("game edge");
    }
};

const Bytes kGamepad = {0x05, 0x01, 0x09, 0x04, 0xA1, 0x01, 0xC0};
const Bytes kKeyboard = {0x05, 0x01, 0x09, 0x06, 0xA1, 0x01, 0xC0};
const Bytes kConsumer = {0x05, 0x0C, 0x09, 0x03, 0xA1, 0x01, 0xC0};

class OtherMakerDevicesTest : public ::testing::Test {
  protected:
    testing::TempFolder folder;
    testing::VirtualEventLoop loop;
    settings::SettingsRecord settings;
    dictation::DictationState state;
    PedalHits hits;
    Station station;
    Texts log;
    HidrawRoots roots{folder.file("sys"), folder.file("dev")};
    std::map<int, int> writers;
    std::unique_ptr<OtherMakerDevices> devices;

    void SetUp() override {
        std::filesystem::create_directories(roots.dev);
        std::filesystem::create_directories(std::filesystem::path(roots.sysfs) / "class/hidraw");
    }
    void TearDown() override {
        devices.reset();
        for (const auto& [number, fd] : writers) ::close(fd);
    }

    void start(bool enabled = true) {
        ASSERT_TRUE(settings::IniStore(folder.file(kDictationDevicesIni))
                        .WriteKey(kDictationDevicesSection, kDictationDevicesEnabledKey,
                                  enabled ? "1" : "0"));
        devices = std::make_unique<OtherMakerDevices>(loop, folder.path(), kShippedTable, settings,
                                                      state, hits, station, roots);
        devices->note = [this](const std::string& text) { log.push_back(text); };
        devices->command = [this](const std::string& word) { station.heard.push_back(word); };
        devices->start();
    }

    // The device's sysfs entry, then its node: the order udev keeps.
    void plug(int number, const std::string& hidId, const Bytes& descriptor) {
        const std::filesystem::path entry = std::filesystem::path(roots.sysfs) / "class/hidraw" /
                                            ("hidraw" + std::to_string(number)) / "device";
        std::filesystem::create_directories(entry);
        std::ofstream(entry / "uevent") << "HID_ID=" << hidId << "\n";
        std::ofstream(entry / "report_descriptor", std::ios::binary)
            .write(reinterpret_cast<const char*>(descriptor.data()),
                   static_cast<std::streamsize>(descriptor.size()));
        const std::string node = roots.dev + "/hidraw" + std::to_string(number);
        ASSERT_EQ(::mkfifo(node.c_str(), 0600), 0);
        const int fd = ::open(node.c_str(), O_RDWR | O_NONBLOCK);
        ASSERT_GE(fd, 0);
        writers[number] = fd;
        loop.runPending();
    }

    void unplug(int number) {
        std::filesystem::remove_all(std::filesystem::path(roots.sysfs) / "class/hidraw" /
                                    ("hidraw" + std::to_string(number)));
        std::filesystem::remove(roots.dev + "/hidraw" + std::to_string(number));
        ::close(writers[number]);
        writers.erase(number);
        loop.runPending();
    }

    void send(int number, const Bytes& report) {
        ASSERT_EQ(::write(writers.at(number), report.data(), report.size()),
                  static_cast<ssize_t>(report.size()));
        loop.runPending();
    }

    [[nodiscard]] bool logged(const std::string& text) const {
        for (const std::string& line : log) {
            if (line.find(text) != std::string::npos) return true;
        }
        return false;
    }
};

TEST_F(OtherMakerDevicesTest, PedalsAndButtonsReachTheStationAndAWrongLengthIsToldOnce) {
    plug(2, "0003:00000911:00001844", kGamepad);
    plug(5, "0003:00000911:00000FA0", kGamepad);
    start();
    ASSERT_EQ(devices->watch().openCount(), 2U);
    send(2, {0x02});
    EXPECT_TRUE(hits.MIDUSBPEDALHit);
    EXPECT_TRUE(devices->pedalHeld());
    send(2, {0x02, 0x00, 0x00});
    send(2, {0x02, 0x00, 0x00});
    send(2, {0x00});
    send(5, {0x20, 0x00});
    send(5, {0x00, 0x00});
    EXPECT_EQ(station.heard, (Texts{"MIDDLE DOWN", "MIDDLE UP", "Record"}))
        << "a button's release gives no word";
    EXPECT_FALSE(hits.MIDUSBPEDALHit);
    EXPECT_TRUE(logged("a report of 3 bytes where 1 were expected; ignored"));
    int told = 0;
    for (const std::string& line : log) told += line.find("3 bytes") != std::string::npos;
    EXPECT_EQ(told, 1) << "the same wrong length is told once";
}

TEST_F(OtherMakerDevicesTest, OnePedalCountsAtATimeAcrossDevices) {
    plug(1, "0003:00000911:00001844", kGamepad);
    plug(3, "0003:00000C45:00007403", kKeyboard);
    start();
    send(1, {0x01});
    send(3, {0, 0, 0x6A, 0, 0, 0, 0, 0});
    EXPECT_TRUE(logged(
        "Dictation device PCsensor foot switch: RIGHT pedal ignored, another pedal is held"));
    send(3, {0, 0, 0, 0, 0, 0, 0, 0});
    send(1, {0x00});
    hits.LEFTSERPEDALHit = true;  // the serial pedal is down
    send(3, {0, 0, 0x68, 0, 0, 0, 0, 0});
    hits.LEFTSERPEDALHit = false;
    send(3, {0, 0, 0, 0, 0, 0, 0, 0});
    EXPECT_EQ(station.heard, (Texts{"LEFT DOWN", "LEFT UP"}));

    state.DoingInsertUpdate = true;
    send(1, {0x04});
    send(1, {0x00});
    EXPECT_EQ(station.heard.size(), 2U) << "a press into a running insert is lost whole";
}

TEST_F(OtherMakerDevicesTest, DevicesComeAndGoWithoutARestart) {
    start();
    EXPECT_EQ(devices->watch().openCount(), 0U);
    plug(7, "0003:00000911:0000091A", kGamepad);
    ASSERT_TRUE(devices->watch().isOpen(7)) << "plugged in while the station runs";
    EXPECT_TRUE(logged("Dictation device Philips foot control ACC2330 (hidraw7) is read"));
    send(7, {0x04});
    unplug(7);
    EXPECT_FALSE(devices->watch().isOpen(7));
    EXPECT_TRUE(logged("(hidraw7) went away"));
    EXPECT_EQ(station.heard, (Texts{"RIGHT DOWN", "RIGHT UP"}))
        << "a pedal held when the device went is let go";
    EXPECT_FALSE(devices->pedalHeld());
    plug(7, "0003:00000911:0000091A", kGamepad);
    send(7, {0x01});
    EXPECT_EQ(station.heard.back(), "LEFT DOWN") << "and read again when it comes back";
}

TEST_F(OtherMakerDevicesTest, StaysOffUnlessChosenAndLeavesTheStationsOwnPedalToItsDriver) {
    plug(4, "0003:000005F3:000000FF", kConsumer);
    start(false);
    EXPECT_FALSE(devices->running());
    bool usbInUse = true;
    devices->usbPedalsInUse = [&usbInUse] { return usbInUse; };
    devices->toggle();
    EXPECT_TRUE(devices->enabled());
    EXPECT_FALSE(devices->watch().isOpen(4)) << "the USB pedal driver reads it";
    devices->toggle();
    EXPECT_FALSE(devices->running());
    usbInUse = false;
    devices->toggle();
    EXPECT_TRUE(devices->watch().isOpen(4));
}

}  // namespace
}  // namespace ovd::devices
