// Programs the station starts: their end arrives as an event of the loop, the
// loop goes on with its timers meanwhile, and a program that overstays its time
// is told as such and still reaped when it ends.

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <optional>
#include <string>

#include "platform/processes.h"
#include "support/real_time_event_loop.h"

namespace ovd {
namespace {

using platform::ChildProcess;
using platform::Milliseconds;
using testing::RealTimeEventLoop;

TEST(ChildProcessTest, AChildEndsWhileTheLoopRunsItsTimers) {
    RealTimeEventLoop loop;
    int ticks = 0;
    const auto timer = loop.startRepeating(Milliseconds(10), [&] { ++ticks; });
    std::optional<platform::Result<int>> status;

    const auto before = std::chrono::steady_clock::now();
    auto child =
        ChildProcess::start(loop, "/bin/sh", {"-c", "sleep 0.3; exit 3"}, Milliseconds(5000),
                            [&](const platform::Result<int>& end) { status = end; });
    ASSERT_TRUE(child) << child.error();
    EXPECT_LT(std::chrono::steady_clock::now() - before, std::chrono::milliseconds(200))
        << "starting does not wait for the end";

    ASSERT_TRUE(loop.runUntil([&] { return status.has_value(); }, Milliseconds(5000)));
    loop.stopRepeating(timer);
    ASSERT_TRUE(*status) << status->error();
    EXPECT_EQ(status->value(), 3);
    EXPECT_TRUE((*child)->ended());
    EXPECT_GE(ticks, 15) << "the loop was held up while the child ran";
    EXPECT_EQ(::waitpid((*child)->pid(), nullptr, WNOHANG), -1) << "already reaped";
    EXPECT_EQ(errno, ECHILD);
}

TEST(ChildProcessTest, AChildThatOverstaysIsToldAndStillReapedWhenItEnds) {
    RealTimeEventLoop loop;
    int ends = 0;
    std::string reason;
    auto child = ChildProcess::start(loop, "/bin/sleep", {"10"}, Milliseconds(50),
                                     [&](const platform::Result<int>& end) {
                                         ++ends;
                                         reason = end.error();
                                     });
    ASSERT_TRUE(child) << child.error();
    ASSERT_TRUE(loop.runUntil([&] { return ends > 0; }, Milliseconds(2000)));
    EXPECT_EQ(reason, "/bin/sleep did not end within 50 ms");
    EXPECT_FALSE((*child)->ended());

    ASSERT_EQ(::kill((*child)->pid(), SIGKILL), 0);
    EXPECT_TRUE(loop.runUntil([&] { return (*child)->ended(); }, Milliseconds(2000)));
    EXPECT_EQ(ends, 1) << "told once";
}

TEST(ChildProcessTest, AProgramThatCantStartSaysWhy) {
    RealTimeEventLoop loop;
    const auto child = ChildProcess::start(loop, "/no/such/program", {});
    ASSERT_FALSE(child);
    EXPECT_EQ(child.error(), "/no/such/program: No such file or directory");
}

}  // namespace
}  // namespace ovd
