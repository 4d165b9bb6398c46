// "Play Last Three Seconds Continue Recording" in the middle of a take: the take
// ends as every take does, the last words play, and the take goes on at the end.
// At every tick the screen tells the truth about the engine.

#include <optional>

#include "dictation_fixture.h"

namespace ovd::dictation::testing {
namespace {

constexpr int kRecording = static_cast<int>(engine::EditorState::Recording);

class LastThreeSecondsTest : public DictationTest {
  protected:
    // Watches the screen against the engine every 25 ms of the loop.
    void watchEveryTick() {
        watcher = loop.startRepeating(Milliseconds(25), [this] { check(); });
    }
    void TearDown() override {
        if (watcher) loop.stopRepeating(*watcher);
    }

    void check() {
        ++ticks;
        const bool engineRecords = editor1.State() == kRecording;
        const bool onAir = view().lblOnAirVisible && view().lblOnAir == "ON AIR";
        const bool lampsLit = view().onAirLamp1 || view().onAirLamp2;
        if (engineRecords && !resumedAt) resumedAt = loop.now();
        if (!engineRecords && resumedAt && !stoppedAt) stoppedAt = loop.now();
        if (state().Recordingstatus != engineRecords || (onAir && !engineRecords) ||
            (lampsLit && !engineRecords) || (engineRecords && !view().transportBar.Stop)) {
            ++disagreements;
            if (firstDisagreement.empty()) {
                firstDisagreement =
                    "engine " + std::to_string(editor1.State()) + ", Recordingstatus " +
                    std::to_string(state().Recordingstatus) + ", ON AIR " + std::to_string(onAir) +
                    ", lamps " + std::to_string(lampsLit) + ", Stop " +
                    std::to_string(view().transportBar.Stop) + ", caption " + view().caption;
            }
        }
    }

    std::optional<platform::EventLoop::Handle> watcher;
    int ticks = 0;
    int disagreements = 0;
    std::string firstDisagreement;
    std::optional<platform::WallClock::time_point> resumedAt;
    std::optional<platform::WallClock::time_point> stoppedAt;
};

TEST_F(LastThreeSecondsTest, TheTakeEndsThePlaybackShowsAndTheTakeGoesOnWithNothingLost) {
    config.record.Last3SecsAR = true;
    d().newLetter();
    const std::string letter = state().Filename;
    d().recordTake();
    run(5000);
    const engine::SampleCount firstTake = editor1.Length();

    watchEveryTick();
    d().lastThreeSecondsContinueFromMenu();
    EXPECT_EQ(editor1.State(), static_cast<int>(engine::EditorState::Playing));
    EXPECT_TRUE(view().transportBar.Stop) << "the playback can be stopped";
    // The last words play, then the take goes on by itself.
    run(6000);
    ASSERT_TRUE(resumedAt.has_value()) << "recording continues after the last three seconds";
    EXPECT_TRUE(state().Recordingstatus);
    run(3000);

    d().stop();
    EXPECT_EQ(editor1.State(), static_cast<int>(engine::EditorState::Stopped)) << "Stop works";
    EXPECT_FALSE(state().Recordingstatus);
    run(500);
    EXPECT_GT(ticks, 300);
    EXPECT_EQ(disagreements, 0) << firstDisagreement;

    // Everything spoken while the station showed a take is in the file.
    ASSERT_TRUE(stoppedAt.has_value());
    const auto resumedMs =
        std::chrono::duration_cast<std::chrono::milliseconds>(*stoppedAt - *resumedAt).count();
    const engine::SampleCount expected = firstTake + resumedMs * kRate / 1000;
    EXPECT_NEAR(static_cast<double>(editor1.Length()), static_cast<double>(expected), kRate / 10.0);
    d().closeFile();
    const auto bytes = platform::fileSize(letter).valueOr(0);
    EXPECT_NEAR(static_cast<double>(bytes - 44) / 2, static_cast<double>(expected), kRate / 10.0);
}

TEST_F(LastThreeSecondsTest, StopDuringThePlaybackEndsItAndNoTakeStartsBehindTheAuthorsBack) {
    config.record.Last3SecsAR = true;
    d().newLetter();
    d().recordTake();
    run(5000);

    watchEveryTick();
    d().lastThreeSecondsContinueFromMenu();
    run(500);
    d().stop();  // during playback: pauses
    EXPECT_NE(view().caption.find("File is Paused"), std::string::npos) << view().caption;
    d().stop();  // paused: stops
    run(8000);
    EXPECT_FALSE(resumedAt.has_value()) << "the author stopped: nothing records";
    EXPECT_EQ(editor1.State(), static_cast<int>(engine::EditorState::Stopped));
    EXPECT_FALSE(timer("timLastThreeSecondsCon").Enabled());
    EXPECT_EQ(disagreements, 0) << firstDisagreement;
}

}  // namespace
}  // namespace ovd::dictation::testing
