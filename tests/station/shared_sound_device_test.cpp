// The microphone between the letter and the second editor: the letter's take
// always gets it and keeps it, whatever the second editor does meanwhile.

#include "station/shared_sound_device.h"

#include <gtest/gtest.h>

#include "engine/virtual_backend.h"
#include "engine/wave_editor.h"
#include "support/temp_folder.h"
#include "support/virtual_event_loop.h"

namespace ovd::station {
namespace {

using platform::Milliseconds;
using Holder = SharedSoundDevice::Holder;

class SharedSoundDeviceTest : public ::testing::Test {
  protected:
    SharedSoundDeviceTest() {
        letter.setTempFileName(folder.file("Temp"));
        second.setTempFileName(folder.file("Second"));
        EXPECT_TRUE(letter.New(16000, 1).ok());
        EXPECT_TRUE(second.New(16000, 1).ok());
        share.stopSecondEditor = [this] {
            ++stopsAsked;
            second.Stop();
        };
    }

    ::ovd::testing::TempFolder folder;
    ::ovd::testing::VirtualEventLoop loop;
    engine::VirtualBackend backend{loop, {}};
    SharedSoundDevice share{backend};
    std::shared_ptr<engine::Clipboard> clipboard = std::make_shared<engine::Clipboard>();
    engine::WaveEditor letter{loop, share.mainWindow(), clipboard, "AudioEditor1"};
    engine::WaveEditor second{loop, share.secondEditor(), clipboard, "SecondEditor"};
    int stopsAsked = 0;
};

TEST_F(SharedSoundDeviceTest, ALetterTakeStopsTheSecondEditorAndKeepsTheMicrophone) {
    ASSERT_TRUE(second.Record().ok());
    loop.advance(Milliseconds(500));
    const engine::SampleCount secondHad = second.Length();
    EXPECT_GT(secondHad, 0);

    ASSERT_TRUE(letter.Record().ok());
    EXPECT_EQ(stopsAsked, 1);
    EXPECT_EQ(second.State(), 0);
    EXPECT_EQ(share.captureHolder(), Holder::MainWindow);

    // Meanwhile the second editor neither records, plays, nor stops the take.
    EXPECT_FALSE(second.Record().ok());
    second.setCursorPosition(0);
    EXPECT_FALSE(second.Play().ok());
    second.Stop();
    loop.advance(Milliseconds(1000));
    EXPECT_NEAR(static_cast<double>(letter.Length()), 16000.0, 800.0);
    EXPECT_EQ(second.Length(), secondHad);

    letter.Stop();
    EXPECT_EQ(share.captureHolder(), Holder::Nobody);
    ASSERT_TRUE(second.Record().ok());
    EXPECT_EQ(share.captureHolder(), Holder::SecondEditor);
    // The letter's editor stopping again touches nothing of the second editor's take.
    letter.Stop();
    loop.advance(Milliseconds(500));
    EXPECT_GT(second.Length(), secondHad);
}

TEST_F(SharedSoundDeviceTest, ALostMicrophoneIsToldToTheEditorThatHeldIt) {
    int letterTold = 0;
    int secondTold = 0;
    share.mainWindow().onCaptureDeviceLost = [&](const std::string&) { ++letterTold; };
    share.secondEditor().onCaptureDeviceLost = [&](const std::string&) { ++secondTold; };
    ASSERT_TRUE(second.Record().ok());
    backend.onCaptureDeviceLost("USB microphone");
    EXPECT_EQ(secondTold, 1);
    EXPECT_EQ(letterTold, 0);
    EXPECT_EQ(share.captureHolder(), Holder::Nobody);
    second.Stop();

    ASSERT_TRUE(letter.Record().ok());
    backend.onCaptureDeviceLost("USB microphone");
    EXPECT_EQ(letterTold, 1);
    EXPECT_EQ(secondTold, 1);
}

}  // namespace
}  // namespace ovd::station
