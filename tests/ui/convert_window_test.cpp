// frmConvert from the main window's Edit menu: it opens on the letter's own rate
// and channels, converts the letter to the ones chosen, the letter is saved in
// them from then on, and what could be undone before is gone.

#include "ui/convert_window.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <QRadioButton>
#include <algorithm>

#include "engine/test_signal.h"
#include "platform/system_queries.h"
#include "station_window_fixture.h"
#include "ui_test_helpers.h"

namespace ovd::ui {
namespace {

using testing::answering;

class ConvertWindowTest : public testing::StationWindowTest {
  protected:
    // Converts through the window, choosing the rate and channel buttons named.
    bool convertThroughTheWindow(const char* rate, const char* channels) {
        return answering<ConvertWindow>(
            [=](ConvertWindow& dialog) {
                EXPECT_TRUE(dialog.findChild<QRadioButton*>("opFq4")->isChecked()) << "16000 Hz";
                EXPECT_TRUE(dialog.findChild<QRadioButton*>("opCh0")->isChecked()) << "mono";
                dialog.findChild<QRadioButton*>(rate)->click();
                dialog.findChild<QRadioButton*>(channels)->click();
                dialog.findChild<QPushButton*>("cmdOK")->click();
            },
            [this] { child<QAction>("mnuConvert")->trigger(); });
    }
};

TEST_F(ConvertWindowTest, ALetterConvertedTo8kHzStereoIsSavedSoWithAFreshUndo) {
    window().Form_Load();
    dictate(3000);
    ASSERT_EQ(editor1.SamplesPerSecond(), 16000);
    ASSERT_EQ(editor1.Channels(), 1);

    ASSERT_TRUE(convertThroughTheWindow("opFq1", "opCh1"));
    EXPECT_EQ(editor1.SamplesPerSecond(), 8000);
    EXPECT_EQ(editor1.Channels(), 2);
    EXPECT_NEAR(static_cast<double>(editor1.Length()), 3.0 * 8000, 100.0);
    EXPECT_FALSE(editor1.Undo().ok()) << "the undo history starts afresh";
    EXPECT_TRUE(state().FileChanged);

    d().saveNow();
    const std::string path = state().Filename;
    for (int waited = 0; waited < 10000 && (editor1.saving() || !platform::FileAvailable(path));
         ++waited) {
        loop.runPending();
        ::usleep(1000);
    }
    loop.runPending();
    EXPECT_EQ(engine::testing::commandOutput(
                  "ffprobe -v error -show_entries stream=sample_rate,channels -of csv=p=0 '" +
                  path + "'"),
              "8000,2\n");
}

TEST_F(ConvertWindowTest, ATakeUnderWayIsNotConverted) {
    window().Form_Load();
    d().newLetter();
    d().recordTake();
    run(1000);
    ASSERT_TRUE(convertThroughTheWindow("opFq1", "opCh1"));
    EXPECT_TRUE(state().Recordingstatus) << "the take goes on";
    EXPECT_EQ(editor1.SamplesPerSecond(), 16000);
    const auto texts = prompts.texts();
    EXPECT_NE(std::find(texts.begin(), texts.end(),
                        "Recording in Progress. Please hit the stop button to stop current "
                        "recording. -CaseConvertSampleType-"),
              texts.end());
    d().stop();
}

}  // namespace
}  // namespace ovd::ui
