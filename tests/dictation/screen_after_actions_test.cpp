// What the screen says once an action is over: the file label, the status line,
// the caption, the mode and the times must describe the file as it now is, and
// a control that cannot act must be greyed.

#include "dictation_fixture.h"

namespace ovd::dictation::testing {
namespace {

class ScreenAfterActionsTest : public DictationTest {
  protected:
    [[nodiscard]] std::string fileLabel() const {
        return platform::withoutFolder(dictation->state().Filename);
    }
    [[nodiscard]] bool captionSays(const std::string& text) const {
        return dictation->view().caption.find(text) != std::string::npos;
    }
};

TEST_F(ScreenAfterActionsTest, AStopThatSavesKeepsTheFileNamedAndTheTakeNoLongerShows) {
    config.record.FileSaveAtStop = true;
    config.WriteConfig();
    rebuild();
    dictate(2000);
    ASSERT_TRUE(platform::fileExists(state().Filename)) << "the Stop saved the file";
    ASSERT_TRUE(timer("timCurPos").Enabled());
    run(100);  // the position timer looks at the file after the Stop

    EXPECT_EQ(view().lblReady, fileLabel()) << "a loaded file is named, not offered to be created";
    EXPECT_EQ(view().statusPanel1, state().Filename);
    EXPECT_NE(view().statusLine, "Recording") << "nothing records any more";
    EXPECT_FALSE(view().statusLineWarning);
    EXPECT_TRUE(captionSays("File is in Recording Mode but is Stopped"));
}

TEST_F(ScreenAfterActionsTest, PlaybackThatRanToTheEndNoLongerSaysPlaying) {
    dictate(2000);
    d().goToBeginning();
    d().play();
    ASSERT_TRUE(captionSays("File is Playing"));
    run(3000);

    EXPECT_FALSE(state().flgPlay);
    EXPECT_EQ(editor1.State(), 0);
    EXPECT_FALSE(captionSays("Playing")) << view().caption;
    EXPECT_TRUE(captionSays("Stopped")) << view().caption;
    // A step from the end does not start the playback again.
    d().stepBack();
    EXPECT_FALSE(state().flgPlay);
    EXPECT_EQ(editor1.State(), 0);
}

TEST_F(ScreenAfterActionsTest, PlaybackTheEngineBrokeOffNoLongerSaysPlaying) {
    dictate(4000);
    d().goToBeginning();
    d().play();
    run(1000);
    editor1.Stop();  // the engine ends the playback by itself, half way
    run(100);

    EXPECT_FALSE(state().flgPlay);
    EXPECT_FALSE(captionSays("Playing")) << view().caption;
    EXPECT_FALSE(view().transportBar.Stop) << "there is nothing to stop";
    EXPECT_TRUE(view().transportBar.Play) << "it can be played again";
}

TEST_F(ScreenAfterActionsTest, TheModeAndTheTimesFollowTheEndOfAnInsertOrAnOverwrite) {
    dictate(6000);
    run(60000);  // a minute later, so that the time of the first take is long gone
    for (const bool overwrite : {false, true}) {
        SCOPED_TRACE(overwrite ? "overwrite" : "insert");
        editor1.setCursorPosition(editor1.Length() / 3);
        d().timCurPos_Timer();
        if (overwrite) {
            d().overwriteAtCursor();
            EXPECT_EQ(view().lblMode, "Overwrite Mode");
        } else {
            d().insertAtCursor();
            EXPECT_EQ(view().lblMode, "Insert Mode");
        }
        run(1000);
        d().stop();
        run(100);

        EXPECT_FALSE(state().Recordingstatus);
        EXPECT_EQ(view().lblMode, "") << "the take is over";
        const std::int32_t seconds = static_cast<std::int32_t>(editor1.Length() / kRate);
        EXPECT_EQ(state().iTotalSecFile, seconds);
        EXPECT_EQ(view().timeRemaining, clockText(seconds - state().iCurSecond));
        EXPECT_LE(state().iCurSecond, seconds);
        EXPECT_NE(view().statusLine, "Recording");
    }
}

TEST_F(ScreenAfterActionsTest, AnOpenedFileCanBeMovedInOnceItHasLoaded) {
    const std::string path = writeRampWave(folder.file("Letter.wav"), 5);
    d().openRecentFile(path);
    ASSERT_TRUE(state().flgfileOpen1);
    run(100);
    EXPECT_FALSE(view().lblBusyVisible);
    EXPECT_TRUE(view().positionSliderEnabled)
        << "the position slider was held only while the file loaded";
    EXPECT_EQ(view().lblReady, "Letter.wav");
    d().positionSliderPressed();
    d().positionSliderMoved(40);
    d().positionSliderReleased(40);
    run(100);
    EXPECT_EQ(editor1.CursorPosition(), 2 * kRate);
    EXPECT_EQ(view().positionPercent, 40);
    EXPECT_EQ(view().timeElapsed, "00:00:02");
    EXPECT_EQ(view().timeRemaining, "00:00:03");
}

TEST_F(ScreenAfterActionsTest, WithNoFileEveryTransportButtonIsGreyed) {
    const TransportBar none = transportBarAfter(BarAfter::ProgramStart);
    EXPECT_EQ(view().transportBar, none) << "start of program";

    // Closed after a take, closed at the beginning, closed while playing: each
    // leaves the bar as a start of the program does.
    const std::vector<std::pair<const char*, std::function<void()>>> closes = {
        {"after a stop", [] {}},
        {"at the beginning", [this] { d().goToBeginning(); }},
        {"during playback",
         [this] {
             d().goToBeginning();
             d().play();
             run(200);
         }},
    };
    for (const auto& [when, before] : closes) {
        SCOPED_TRACE(when);
        dictate(2000);
        before();
        d().closeFile();
        run(100);
        ASSERT_FALSE(state().flgfileOpen1);
        EXPECT_EQ(view().transportBar, none);
        EXPECT_FALSE(view().addToBeginningEnabled || view().insertEnabled ||
                     view().overwriteEnabled);
        EXPECT_FALSE(view().positionSliderEnabled);
    }
}

}  // namespace
}  // namespace ovd::dictation::testing
