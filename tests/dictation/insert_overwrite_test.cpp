// Adding audio in the middle of a take: the scratch take goes in where the
// author stood, and the samples say exactly what went where.

#include "dictation_fixture.h"

namespace ovd::dictation::testing {
namespace {

class InsertOverwriteTest : public DictationTest {
  protected:
    // A four-second take, the cursor put back to second one.
    void takeAndStandAtSecondOne() {
        dictate(4000);
        ASSERT_EQ(editor1.Length(), 4 * kRate);
        editor1.setCursorPosition(kRate);
        d().timCurPos_Timer();
        ASSERT_EQ(view().positionPercent, 25);
    }
    // The first value of each stretch tells which take it came from: the ramp
    // starts again at every take.
    void expectStretch(engine::SampleCount at, engine::SampleCount count,
                       engine::SampleCount rampFrom) {
        const auto got = frames(at, count);
        ASSERT_EQ(got.size(), static_cast<std::size_t>(count));
        EXPECT_EQ(got.front(), rampAt(rampFrom)) << "at " << at;
        EXPECT_EQ(got.back(), rampAt(rampFrom + count - 1)) << "at " << at + count - 1;
    }
};

TEST_F(InsertOverwriteTest, AnInsertGoesInAtTheCursorAndKeepsEverythingBehindIt) {
    takeAndStandAtSecondOne();
    d().insertAtCursor();
    EXPECT_TRUE(state().DoingInsertUpdate);
    EXPECT_TRUE(state().Recordingstatus);
    EXPECT_EQ(view().lblMode, "Insert Mode");
    EXPECT_TRUE(view().endInsertVisible);
    EXPECT_EQ(editor21.State(), 2) << "the take goes into the scratch editor";
    run(2000);
    d().stop();

    EXPECT_FALSE(state().DoingInsertUpdate);
    EXPECT_FALSE(state().Recordingstatus);
    EXPECT_FALSE(view().endInsertVisible);
    ASSERT_EQ(editor1.Length(), 6 * kRate);
    expectStretch(0, kRate, 0);
    expectStretch(kRate, 2 * kRate, 0);          // the insert
    expectStretch(3 * kRate, 3 * kRate, kRate);  // the rest of the first take
    EXPECT_TRUE(timer("timCurPos").Enabled());
    EXPECT_TRUE(timer("timSave").Enabled());
}

TEST_F(InsertOverwriteTest, AnOverwriteReplacesAsMuchAsWasSpoken) {
    takeAndStandAtSecondOne();
    d().overwriteAtCursor();
    EXPECT_TRUE(state().OverWriteFile);
    EXPECT_EQ(view().lblMode, "Overwrite Mode");
    EXPECT_FALSE(view().endInsertVisible);
    run(1000);  // the second prompt came after one of these seconds
    d().stop();

    EXPECT_FALSE(state().OverWriteFile);
    ASSERT_EQ(editor1.Length(), 4 * kRate);
    expectStretch(0, kRate, 0);
    expectStretch(kRate, 2 * kRate, 0);
    expectStretch(3 * kRate, kRate, 3 * kRate);
    EXPECT_EQ(editor1.CursorPosition(), editor1.Length()) << "an overwrite ends at the end";
}

TEST_F(InsertOverwriteTest, OverwriteToEndThrowsAwayEverythingBehindItsStart) {
    config.record.OverwriteToEnd = true;
    takeAndStandAtSecondOne();
    d().overwriteAtCursor();
    run(500);
    d().stop();
    ASSERT_EQ(editor1.Length(), kRate + 3 * kRate / 2);
    expectStretch(kRate, 3 * kRate / 2, 0);
}

TEST_F(InsertOverwriteTest, CommentsGoInFrontOfTheFile) {
    takeAndStandAtSecondOne();
    arrangeView().statusLine = kDeskUnitMissing;
    d().addToBeginning();
    EXPECT_EQ(editor1.CursorPosition(), 0);
    run(1000);
    d().endInsert();
    ASSERT_EQ(editor1.Length(), 5 * kRate);
    expectStretch(0, kRate, 0);
    expectStretch(kRate, 4 * kRate, 0);
}

TEST_F(InsertOverwriteTest, AtEitherEndThereIsNothingToInsertInto) {
    dictate(2000);
    for (const engine::SampleCount at : {engine::SampleCount{0}, editor1.Length()}) {
        editor1.setCursorPosition(at);
        d().timCurPos_Timer();
        d().insertAtCursor();
        d().overwriteAtCursor();
        EXPECT_FALSE(state().Recordingstatus);
        EXPECT_FALSE(state().OverWriteFile);
        EXPECT_EQ(editor21.State(), 0);
    }
    EXPECT_EQ(editor1.Length(), 2 * kRate);
}

TEST_F(DictationTest, TheLastThreeSecondsPlayAndWithAutoResumeTheTakeGoesOn) {
    config.record.Last3SecsAR = true;
    dictate(5000);
    const auto played = backend.playedSamples().size();
    d().LastThreeSecondsContinue();
    EXPECT_TRUE(state().flgPlay);
    EXPECT_EQ(editor1.CursorPosition(), 2 * kRate);
    run(3000);
    EXPECT_GE(backend.playedSamples().size() - played, static_cast<std::size_t>(2 * kRate));
    run(2000);
    EXPECT_FALSE(timer("timLastThreeSecondsCon").Enabled());
    EXPECT_TRUE(state().Recordingstatus) << "the take goes on after the last words";
    EXPECT_EQ(editor1.State(), 2);
    EXPECT_TRUE(timer("timSave").Enabled());
    run(1000);
    d().stop();
    EXPECT_GT(editor1.Length(), 5 * kRate);
    EXPECT_TRUE(prompts.texts().empty());
}

TEST_F(DictationTest, StepsMoveByTheStepAmountAndTheButtonSaysWhereTheCursorIs) {
    dictate(5000);
    d().stepBack();
    EXPECT_EQ(editor1.CursorPosition(), 3 * kRate);
    EXPECT_EQ(view().transportBar, transportBarAfter(BarAfter::StepBetween));
    d().stepBack();
    d().stepBack();
    EXPECT_LE(editor1.CursorPosition(), 0);
    d().stepForward();
    EXPECT_EQ(state().SecondSwitchPosition, "STEPFORWARD");
}

}  // namespace
}  // namespace ovd::dictation::testing
