// The USB pedal on a fake system: sysfs files in a temporary folder and a FIFO
// standing in for /dev/hidrawN, read on the virtual loop under both drivers; no
// device, a pulled device, the step-back repeat and the two menu entries.

#include "devices/usb_pedals.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "support/scripted_prompts.h"
#include "support/temp_folder.h"
#include "support/virtual_event_loop.h"

namespace ovd::devices {
namespace {

using platform::Milliseconds;

// Consumer page, usage 3; three pedal bits padded to a byte, and a spare byte:
// two input bytes, no report numbers.
const std::vector<std::uint8_t> kPedalDescriptor = {
    0x05, 0x0C, 0x09, 0x03, 0xA1, 0x01, 0x15, 0x00, 0x25, 0x01, 0x75, 0x01, 0x95, 0x03, 0x81,
    0x02, 0x75, 0x05, 0x95, 0x01, 0x81, 0x03, 0x75, 0x08, 0x95, 0x01, 0x81, 0x03, 0xC0};
// A keyboard-like function of the same maker: generic desktop page, with report numbers.
const std::vector<std::uint8_t> kOtherDescriptor = {0x05, 0x01, 0x09, 0x06, 0xA1, 0x01, 0x85,
                                                    0x02, 0x75, 0x08, 0x95, 0x04, 0x81, 0x00,
                                                    0x85, 0x03, 0x95, 0x09, 0x81, 0x00, 0xC0};

class EdgeLog : public PedalEventSink {
  public:
    std::vector<std::string> edges;
    void PedalEventUSB(const std::string& pedal, const std::string& direction) override {
        edges.push_back(pedal + " " + direction);
    }
    void PedalEventSER(const std::string&, const std::string&) override {}
    void PedalEventGAME(const std::string&, const std::string&) override {}
};

class UsbPedalsTest : public ::testing::Test {
  protected:
    testing::TempFolder folder;
    testing::VirtualEventLoop loop;
    testing::ScriptedPrompts prompts;
    settings::ConfigFile config{folder.path()};
    EdgeLog sink;
    PedalHits hits;
    dictation::DictationState state;
    HidrawRoots roots{folder.file("sys"), folder.file("dev")};
    platform::Timer stepBackTimer{loop, "timUSBStepBACK"};
    int writer = -1;

    void TearDown() override {
        if (writer >= 0) ::close(writer);
    }

    void addDevice(int number, const std::string& hidId,
                   const std::vector<std::uint8_t>& descriptor) {
        const std::filesystem::path device = std::filesystem::path(roots.sysfs) / "class/hidraw" /
                                             ("hidraw" + std::to_string(number)) / "device";
        std::filesystem::create_directories(device);
        std::ofstream(device / "uevent")
            << "DRIVER=hid-generic\nHID_ID=" << hidId << "\nHID_NAME=Foot Pedal\n";
        std::ofstream(device / "report_descriptor", std::ios::binary)
            .write(reinterpret_cast<const char*>(descriptor.data()),
                   static_cast<std::streamsize>(descriptor.size()));
        std::filesystem::create_directories(roots.dev);
        const std::string node = roots.dev + "/hidraw" + std::to_string(number);
        ASSERT_EQ(::mkfifo(node.c_str(), 0600), 0);
    }

    // The pedal of the maker as hidraw3, behind a mouse of another maker.
    void plugPedal() {
        addDevice(0, "0003:0000046D:0000C077", kPedalDescriptor);
        addDevice(3, "0003:000005F3:000000FF", kPedalDescriptor);
        writer = ::open((roots.dev + "/hidraw3").c_str(), O_RDWR | O_NONBLOCK);
        ASSERT_GE(writer, 0);
    }

    void press(std::uint8_t bits) {
        const std::uint8_t report[2] = {bits, 0};
        ASSERT_EQ(::write(writer, report, sizeof report), 2);
        loop.advance(Milliseconds(kPedalPollMs));
    }
};

TEST_F(UsbPedalsTest, DescriptorsTellTheFunctionAndTheReportLength) {
    const HidDescriptorFacts pedal = readHidDescriptor(kPedalDescriptor);
    EXPECT_EQ(pedal.usagePage, 12U);
    EXPECT_EQ(pedal.usage, 3U);
    EXPECT_FALSE(pedal.reportIds);
    EXPECT_EQ(pedal.inputBytes, 2);
    const HidDescriptorFacts other = readHidDescriptor(kOtherDescriptor);
    EXPECT_EQ(other.usagePage, 1U);
    EXPECT_TRUE(other.reportIds);
    EXPECT_EQ(other.inputBytes, 4) << "the first report only";
    const std::vector<std::uint8_t> cut(kPedalDescriptor.begin(), kPedalDescriptor.begin() + 3);
    EXPECT_EQ(readHidDescriptor(cut).usagePage, 0U) << "no collection, no function";
}

TEST_F(UsbPedalsTest, BothDriversReadThePedalOnTheLoop) {
    for (const bool use30Vec : {false, true}) {
        SCOPED_TRACE(use30Vec ? "single-report driver" : "stream driver");
        TearDown();
        std::filesystem::remove_all(folder.file("sys"));
        std::filesystem::remove_all(folder.file("dev"));
        sink.edges.clear();
        hits = {};  // the right pedal is still held from the other driver's round
        plugPedal();
        config.record.UserSelectUSB = true;
        config.record.Use30VEC = use30Vec;
        UsbPedals pedals(config, prompts, loop, sink, hits, state, stepBackTimer, roots);
        pedals.start();
        ASSERT_TRUE(pedals.decoder.USBPedals);
        EXPECT_FALSE(pedals.NoUSBPedalConnected);
        EXPECT_TRUE(pedals.menu.usbChecked);
        EXPECT_EQ(pedals.TmrHIDReadNew.Enabled(), use30Vec);
        EXPECT_EQ(pedals.TmrHIDRead.Enabled(), !use30Vec);

        press(0x02);
        press(0x00);
        press(0x04);
        EXPECT_EQ(sink.edges, (std::vector<std::string>{"MIDDLE DOWN", "MIDDLE UP", "RIGHT DOWN"}));
        if (use30Vec) {
            EXPECT_EQ(pedals.PIEHandle, 3);
            EXPECT_EQ(pedals.decoder.view.buttonsText, "Buttons: 04 ");
        } else {
            EXPECT_EQ(pedals.decoder.HIDReportSize, 3) << "report number, then two bytes";
        }
        pedals.CloseUSBPedals();
        EXPECT_FALSE(pedals.reader.isOpen());
        EXPECT_TRUE(prompts.transcript().empty());
    }
}

TEST_F(UsbPedalsTest, APulledPedalStopsTheSingleReportDriverSilently) {
    plugPedal();
    config.record.Use30VEC = true;
    UsbPedals pedals(config, prompts, loop, sink, hits, state, stepBackTimer, roots);
    pedals.OpenUSBPedals();
    press(0x01);
    ::close(writer);
    writer = -1;
    loop.advance(Milliseconds(kPedalPollMs));
    EXPECT_FALSE(pedals.TmrHIDReadNew.Enabled());
    EXPECT_TRUE(pedals.decoder.USBPedals) << "the flag stays; the pedal is dead until switched on";
    EXPECT_EQ(sink.edges, std::vector<std::string>{"LEFT DOWN"});
    EXPECT_TRUE(prompts.transcript().empty());
}

TEST_F(UsbPedalsTest, NoPedalOrAnotherFunctionFirst) {
    struct Case {
        const char* name;
        bool use30Vec;
        bool plugOther;
        bool noPedalConnected;
        bool usbPedals;
    };
    const std::vector<Case> cases = {
        {"stream driver, nothing there", false, false, true, false},
        {"single-report driver, nothing there", true, false, true, false},
        {"stream driver, the pedal behind another function", false, true, false, true},
        // The single-report driver looks at the first device only and, finding the
        // wrong kind, leaves things as they were.
        {"single-report driver, another function first", true, true, false, false},
    };
    for (const Case& c : cases) {
        std::filesystem::remove_all(folder.file("sys"));
        std::filesystem::remove_all(folder.file("dev"));
        if (c.plugOther) {
            addDevice(1, "0003:000005F3:00000025", kOtherDescriptor);
            addDevice(2, "0003:000005F3:000000FF", kPedalDescriptor);
        }
        config.record.Use30VEC = c.use30Vec;
        UsbPedals pedals(config, prompts, loop, sink, hits, state, stepBackTimer, roots);
        pedals.OpenUSBPedals();
        EXPECT_EQ(pedals.NoUSBPedalConnected, c.noPedalConnected) << c.name;
        EXPECT_EQ(pedals.decoder.USBPedals, c.usbPedals) << c.name;
        EXPECT_EQ(pedals.TmrHIDRead.Enabled() || pedals.TmrHIDReadNew.Enabled(), c.usbPedals)
            << c.name;
        EXPECT_TRUE(prompts.transcript().empty()) << c.name << ": no message";
    }
}

TEST_F(UsbPedalsTest, AHeldPedalStepsBackUntilReleasedEvenTheRightOne) {
    plugPedal();
    UsbPedals pedals(config, prompts, loop, sink, hits, state, stepBackTimer, roots);
    // The dispatcher's repeat, as far as the reader is concerned: ticks while held.
    int steps = 0;
    stepBackTimer.setOnTick([&] { ++steps; });
    pedals.OpenUSBPedals();
    for (const std::uint8_t bits : {std::uint8_t{0x01}, std::uint8_t{0x04}}) {
        steps = 0;
        press(bits);
        EXPECT_TRUE(pedals.decoder.pedalHeld());
        stepBackTimer.setInterval(kStepBackMs);
        stepBackTimer.setEnabled(true);
        loop.advance(Milliseconds(99));
        EXPECT_EQ(steps, 0) << "nothing moves before the first interval";
        loop.advance(Milliseconds(201));
        EXPECT_EQ(steps, 3);
        press(0x00);
        EXPECT_FALSE(stepBackTimer.Enabled()) << "a release ends the repeat at once";
        loop.advance(Milliseconds(500));
        EXPECT_EQ(steps, 3) << "bits " << int{bits};
    }
    EXPECT_EQ(pedals.decoder.MSLastUSB, 3) << "a released right pedal still reads as held";
}

TEST_F(UsbPedalsTest, BusyPedalsAreNotRead) {
    plugPedal();
    UsbPedals pedals(config, prompts, loop, sink, hits, state, stepBackTimer, roots);
    bool busy = true;
    pedals.PedalsBusy = [&] { return busy; };
    pedals.OpenUSBPedals();
    press(0x01);
    EXPECT_TRUE(sink.edges.empty());
    busy = false;
    loop.advance(Milliseconds(kPedalPollMs));
    EXPECT_EQ(sink.edges, std::vector<std::string>{"LEFT DOWN"}) << "read once no longer busy";
}

TEST_F(UsbPedalsTest, TheUsbPedalMenuSwitchesThePedalAndWritesTheSettings) {
    plugPedal();
    UsbPedals pedals(config, prompts, loop, sink, hits, state, stepBackTimer, roots);
    int dialogs = 0;
    bool serialUnchecked = false;
    pedals.showConfigDialog = [&] { ++dialogs; };
    pedals.uncheckSerialMenu = [&] { serialUnchecked = true; };
    pedals.start();

    pedals.toggleUsbPedals();
    EXPECT_TRUE(pedals.menu.usbChecked);
    EXPECT_TRUE(serialUnchecked);
    EXPECT_TRUE(config.record.UserSelectUSB);
    EXPECT_EQ(dialogs, 1);
    EXPECT_TRUE(pedals.reader.isOpen());
    EXPECT_EQ(config.writeCount(), 1);

    pedals.toggleUsbPedals();
    EXPECT_FALSE(pedals.menu.usbChecked);
    EXPECT_FALSE(config.record.UserSelectUSB);
    EXPECT_FALSE(pedals.reader.isOpen());
    EXPECT_EQ(config.writeCount(), 2);

    pedals.HIDHandle = 99;  // a handle the driver never gave
    pedals.CloseUSBPedals();
    EXPECT_EQ(prompts.texts(),
              std::vector<std::string>{"Can't close the Orvane Voice Desk USB Foot Pedal"});
}

TEST_F(UsbPedalsTest, TheDriverMenuAsksAndEndsTheProgram) {
    UsbPedals pedals(config, prompts, loop, sink, hits, state, stepBackTimer, roots);
    int ends = 0;
    pedals.endProgram = [&] { ++ends; };

    state.flgfileOpen1 = true;
    pedals.toggleVec30Pedal();
    state.flgfileOpen1 = false;
    prompts.answerNext(platform::Answer::No);
    pedals.toggleVec30Pedal();
    EXPECT_FALSE(config.record.Use30VEC);
    EXPECT_EQ(config.writeCount(), 0);

    prompts.answerNext(platform::Answer::Yes);
    pedals.toggleVec30Pedal();
    EXPECT_TRUE(config.record.Use30VEC);
    EXPECT_TRUE(pedals.menu.vec30Checked);
    EXPECT_EQ(config.writeCount(), 1);
    EXPECT_EQ(ends, 1);
    EXPECT_EQ(prompts.texts(), (std::vector<std::string>{
                                   "Please close file and try again.",
                                   "Changing this option requires the program to close. Do you "
                                   "want to continue?",
                                   "Ok no change.",
                                   "Changing this option requires the program to close. Do you "
                                   "want to continue?"}));
}

}  // namespace
}  // namespace ovd::devices
