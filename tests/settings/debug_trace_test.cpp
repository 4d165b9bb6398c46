// The support trace and the dump of the globals.

#include "settings/debug_trace.h"

#include <gtest/gtest.h>

#include "platform/timer.h"
#include "support/scripted_prompts.h"
#include "support/virtual_event_loop.h"

namespace ovd::settings {
namespace {

using testing::VirtualEventLoop;

TEST(GlobalsDumpTest, GroupsComeFirstAndGlobalsRunAlphabeticallyWithABlankAfterEachLetter) {
    GlobalsSnapshot snapshot;
    snapshot.arrays = {{"LastThreeNCTTmps(1)", "b.tmp"}, {"LastThreeNCTTmps(0)", "a.tmp"}};
    snapshot.timers = {{"timSave.Enabled", "False"}, {"timCurPos.Enabled", "True"}};
    snapshot.globals = {{"flgPlay", "0"},
                        {"AutoSend1", "True"},
                        {"Filename", "x.mp3"},
                        {"autoThing", "1"},
                        {"Port", "1"}};

    const std::vector<std::string> expected = {"Arrays",
                                               "LastThreeNCTTmps(0) = a.tmp",
                                               "LastThreeNCTTmps(1) = b.tmp",
                                               "",
                                               "Timmers",
                                               "timCurPos.Enabled = True",
                                               "timSave.Enabled = False",
                                               "",
                                               "AutoSend1 = True",
                                               "autoThing = 1",
                                               "",
                                               "Filename = x.mp3",
                                               "flgPlay = 0",
                                               "",
                                               "Port = 1",
                                               ""};
    EXPECT_EQ(formatGlobalsDump(snapshot), expected);
}

TEST(GlobalsDumpTest, CoversEverySettingAndEachTimersState) {
    VirtualEventLoop loop;
    platform::Timer timRecord(loop, "timRecord", 250);
    timRecord.setEnabled(true);
    SettingsRecord record;
    record.CurrentSpeaker = "Dr Lee";
    GlobalsSnapshot snapshot{{}, timerStates({&timRecord}), settingsGlobals(record)};

    const auto lines = formatGlobalsDump(snapshot);
    EXPECT_NE(std::find(lines.begin(), lines.end(), "timRecord.Enabled = True"), lines.end());
    EXPECT_NE(std::find(lines.begin(), lines.end(), "CurrentSpeaker = Dr Lee"), lines.end());
    EXPECT_NE(std::find(lines.begin(), lines.end(), "PromptBarCode = False"), lines.end());
    EXPECT_EQ(snapshot.globals.size(), 113u);
}

TEST(DebugTraceTest, LinesAreTimeStampedAndTheWindowShowsOnlyWhileSwitchedOn) {
    VirtualEventLoop loop(testing::localTime(2026, 3, 2, 14, 5, 9));
    DebugTrace trace(loop, 3);
    int shown = 0;
    trace.onShow = [&] { ++shown; };

    trace.DebugPrint("quiet");
    EXPECT_EQ(shown, 0);
    testing::ScriptedPrompts prompts;
    trace.openForSupport(prompts, {});
    EXPECT_EQ(prompts.texts(), std::vector<std::string>{"Button clicked!"});
    EXPECT_TRUE(trace.DebugOn);
    EXPECT_GT(shown, 0);
    EXPECT_EQ(trace.lines().size(), 3u) << "only the most recent lines are kept";
    EXPECT_EQ(trace.lines().back(), "[14:05:09] ");
}

}  // namespace
}  // namespace ovd::settings
