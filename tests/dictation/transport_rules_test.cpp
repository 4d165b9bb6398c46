// The bar, the end-of-letter button, the normalising step and the refusal text.

#include "dictation/transport_rules.h"

#include <gtest/gtest.h>

namespace ovd::dictation {
namespace {

TEST(TransportRulesTest, TheEndOfLetterButtonFollowsTheBarInItsOrder) {
    struct Case {
        BarAfter after;
        bool recordedOnce;
        bool before;
        bool expected;
    };
    const std::vector<Case> cases = {
        {BarAfter::CaseRecord, true, true, false},  // Stop on, Record off: off
        {BarAfter::CaseEnd, true, false, true},     // Stop off, Record on, recorded: on
        {BarAfter::CaseEnd, false, true, true},     // ... not recorded: kept as it was
        {BarAfter::CaseEnd, false, false, false},
        {BarAfter::CaseStop, true, true, false},  // both off: off
        {BarAfter::CasePlayOrOpen, true, true, false},
        {BarAfter::StepBetween, true, false, true},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(cmdEOLAfter(transportBarAfter(c.after), c.recordedOnce, c.before), c.expected)
            << static_cast<int>(c.after);
    }
    EXPECT_EQ(transportBarAfter(BarAfter::ProgramStart), TransportBar{});
    const TransportBar afterNew = transportBarAfter(BarAfter::CaseNew);
    EXPECT_TRUE(afterNew.Record);
    EXPECT_FALSE(afterNew.Play || afterNew.Stop || afterNew.Pause);
}

TEST(TransportRulesTest, NormalisingLeavesARunningTakeAloneUnlessRecordOrStop) {
    DictationState state;
    state.WhichBut = "Record";
    normalise(state);
    EXPECT_TRUE(state.Recordingstatus);

    state.WhichBut = "Play";  // any other word: the take runs on
    normalise(state);
    EXPECT_TRUE(state.Recordingstatus);
    EXPECT_FALSE(state.RecordingstatusPaused);

    state.WhichBut = "Stop";
    normalise(state);
    EXPECT_FALSE(state.Recordingstatus);
    EXPECT_TRUE(state.RecordingstatusPaused);

    DictationState idle;
    idle.WhichBut = "Stop";
    normalise(idle);
    EXPECT_FALSE(idle.RecordingstatusPaused) << "a Stop with no take arms nothing";
}

TEST(TransportRulesTest, TheRefusalNamesTheRoutineBetweenDashes) {
    EXPECT_EQ(
        refusalText("CaseNew-2"),
        "Recording in Progress. Please hit the stop button to stop current recording. -CaseNew-2-");
    EXPECT_EQ(kRefusalTags.size(), 25u);
}

}  // namespace
}  // namespace ovd::dictation
