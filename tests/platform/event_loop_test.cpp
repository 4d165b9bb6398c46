// The virtual loop and the form-shaped timer: what the dictation's timing rests on.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/timer.h"
#include "platform/waiting.h"
#include "support/virtual_event_loop.h"

namespace ovd {
namespace {

using platform::Milliseconds;
using platform::Timer;
using testing::VirtualEventLoop;

TEST(VirtualLoopTest, TimersFireInTimeOrderWithTiesInStartOrder) {
    VirtualEventLoop loop;
    std::vector<std::string> fired;
    Timer fast(loop, "timCurPos", 25);
    Timer slow(loop, "timLight", 500);
    Timer same(loop, "timlog", 500);
    fast.setOnTick([&] { fired.push_back("fast"); });
    slow.setOnTick([&] { fired.push_back("slow"); });
    same.setOnTick([&] { fired.push_back("same"); });
    slow.setEnabled(true);
    same.setEnabled(true);
    fast.setEnabled(true);

    loop.advance(Milliseconds(500));

    ASSERT_EQ(fired.size(), 22u);
    // At 500 ms all three are due: they run in the order they were started.
    EXPECT_EQ(fired[19], "slow");
    EXPECT_EQ(fired[20], "same");
    EXPECT_EQ(fired[21], "fast");
    EXPECT_EQ(fast.ticks(), 20);
}

TEST(VirtualLoopTest, IntervalZeroOrDisabledNeverTicksAndANewIntervalRestartsTheCount) {
    VirtualEventLoop loop;
    Timer timer(loop, "timSave", 0);
    timer.setEnabled(true);
    loop.advance(Milliseconds(10'000));
    EXPECT_EQ(timer.ticks(), 0);

    timer.setInterval(1000);
    loop.advance(Milliseconds(900));
    timer.setInterval(1000);  // restarts: the next tick is a full second from here
    loop.advance(Milliseconds(900));
    EXPECT_EQ(timer.ticks(), 0);
    loop.advance(Milliseconds(100));
    EXPECT_EQ(timer.ticks(), 1);

    timer.setEnabled(false);
    loop.advance(Milliseconds(5000));
    EXPECT_EQ(timer.ticks(), 1);
}

TEST(VirtualLoopTest, AWaitInsideATickLetsOtherTimersRunButNotTheSameTickAgain) {
    VirtualEventLoop loop;
    Timer pedal(loop, "timSERStepBACK", 100);
    Timer waiter(loop, "timSave", 1000);
    int pedalTicks = 0;
    int waiterEntries = 0;
    int deepest = 0;
    pedal.setOnTick([&] {
        ++pedalTicks;
        deepest = std::max(deepest, loop.nestingDepth());
    });
    waiter.setOnTick([&] {
        ++waiterEntries;
        loop.waitSeconds(2.5);  // longer than its own interval
    });
    pedal.setEnabled(true);
    waiter.setEnabled(true);

    loop.advance(Milliseconds(1000));

    EXPECT_EQ(waiterEntries, 1);
    EXPECT_EQ(pedalTicks, 35);  // 10 before the wait, 25 inside it
    EXPECT_EQ(deepest, 2);
}

TEST(VirtualLoopTest, NestedWaitsEachEndAtTheirOwnTimeOrLaterAndTheClockNeverGoesBack) {
    VirtualEventLoop loop;
    const auto start = loop.now();
    Timer outerTimer(loop, "outer", 100);
    std::vector<long long> innerEnds;
    outerTimer.setOnTick([&] {
        outerTimer.setEnabled(false);
        loop.waitSeconds(3);  // a wait entered during the test's own wait
        innerEnds.push_back(std::chrono::duration_cast<Milliseconds>(loop.now() - start).count());
    });
    outerTimer.setEnabled(true);

    loop.waitSeconds(1);  // the outer wait is overtaken by the inner one

    ASSERT_EQ(innerEnds.size(), 1u);
    EXPECT_EQ(innerEnds[0], 3100);
    EXPECT_EQ(std::chrono::duration_cast<Milliseconds>(loop.now() - start).count(), 3100);
}

TEST(VirtualLoopTest, ATickMayStopAndStartOtherTimersAndPostedCallsRunOnTheLoop) {
    VirtualEventLoop loop;
    Timer first(loop, "first", 100);
    Timer second(loop, "second", 100);
    first.setOnTick([&] { second.setEnabled(false); });
    second.setOnTick([&] { FAIL() << "stopped in the same step, must not fire"; });
    first.setEnabled(true);
    second.setEnabled(true);
    loop.advance(Milliseconds(100));

    bool posted = false;
    loop.postFromAnyThread([&] { posted = true; });
    EXPECT_FALSE(posted);
    loop.runPending();
    EXPECT_TRUE(posted);
}

TEST(WaitingPatternTest, LeavesItsLineAndWaitsTheTime) {
    VirtualEventLoop loop;
    std::vector<std::string> lines;
    const auto start = loop.now();
    platform::pauseWithTrace(
        loop, [&](const std::string& line) { lines.push_back(line); }, 2, " -62 On Load");
    EXPECT_EQ(lines, std::vector<std::string>{" Pausing = 2 -62 On Load"});
    EXPECT_EQ(loop.now() - start, Milliseconds(2000));
}

}  // namespace
}  // namespace ovd
