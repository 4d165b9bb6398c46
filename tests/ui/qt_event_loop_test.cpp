// The desktop loop, for real: ticks, waits inside ticks, descriptors and calls from
// other threads. Times are asserted loosely: a busy machine may tick less often,
// but never more often, and a wait never ends before its time.

#include "ui/qt_event_loop.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <thread>
#include <vector>

#include "ui_test_helpers.h"

namespace ovd::ui {
namespace {

using platform::FdEvent;
using platform::Milliseconds;
using testing::runUntil;
using Handle = platform::EventLoop::Handle;
using Steady = std::chrono::steady_clock;

long long msSince(Steady::time_point start) {
    return std::chrono::duration_cast<Milliseconds>(Steady::now() - start).count();
}

// Each test gets a loop and a pipe to watch: [0] reads what [1] writes.
class QtEventLoopTest : public ::testing::Test {
  protected:
    QtEventLoopTest() { EXPECT_EQ(::pipe(pipe_), 0); }
    ~QtEventLoopTest() override {
        ::close(pipe_[0]);
        ::close(pipe_[1]);
    }
    QtEventLoop loop_;
    int pipe_[2] = {-1, -1};
};

TEST_F(QtEventLoopTest, TimersTickNoMoreOftenThanTheirIntervalsAndStopEvenFromTheirOwnTick) {
    int fast = 0;
    int slow = 0;
    int idle = 0;
    const Handle timers[] = {loop_.startRepeating(Milliseconds(25), [&] { ++fast; }),
                             loop_.startRepeating(Milliseconds(100), [&] { ++slow; }),
                             loop_.startRepeating(Milliseconds(0), [&] { ++idle; })};
    // Stops itself, then waits past the end of the outer wait with its tick still on the
    // stack: the other timers run meanwhile, and the outer wait returns only after it.
    const auto start = Steady::now();
    int selfTicks = 0;
    int fastDuringWait = -1;
    long long innerEnd = -1;
    Handle self = 0;
    self = loop_.startRepeating(Milliseconds(10), [&] {
        ++selfTicks;
        loop_.stopRepeating(self);
        const int fastBefore = fast;
        loop_.wait(Milliseconds(400));
        fastDuringWait = fast - fastBefore;
        innerEnd = msSince(start);
    });
    loop_.wait(Milliseconds(200));
    const long long elapsed = msSince(start);
    EXPECT_EQ(selfTicks, 1);
    EXPECT_GE(innerEnd, 400);
    EXPECT_GE(elapsed, innerEnd);
    EXPECT_GE(fastDuringWait, 3);
    EXPECT_LE(fast, elapsed / 25 + 1);
    EXPECT_GE(slow, 1);
    EXPECT_LE(slow, elapsed / 100 + 1);
    EXPECT_LE(idle, elapsed + 1);  // an interval of 0 must not spin the loop

    for (const Handle timer : timers) loop_.stopRepeating(timer);
    loop_.stopRepeating(timers[0]);  // a second stop is harmless
    fast = slow = idle = 0;
    loop_.wait(Milliseconds(150));
    EXPECT_EQ(fast + slow + idle, 0);
    EXPECT_EQ(loop_.activeTimers(), 0u);
}

TEST_F(QtEventLoopTest, DescriptorWatchesFireWhenReadyAndNeverAfterUnwatching) {
    int readable = 0;
    int writable = 0;
    Handle reader = 0;
    Handle writer = 0;
    // Each is unwatched from its own callback, the data left unread: neither may fire on.
    reader = loop_.watchFd(pipe_[0], FdEvent::Readable, [&] {
        ++readable;
        loop_.unwatchFd(reader);
    });
    writer = loop_.watchFd(pipe_[1], FdEvent::Writable, [&] {
        ++writable;
        loop_.unwatchFd(writer);
    });
    loop_.wait(Milliseconds(50));
    EXPECT_EQ(readable, 0);
    EXPECT_EQ(::write(pipe_[1], "EOL", 3), 3);
    EXPECT_TRUE(runUntil([&] { return readable > 0; }));
    loop_.wait(Milliseconds(100));
    EXPECT_EQ(readable, 1);
    EXPECT_EQ(writable, 1);
    EXPECT_EQ(loop_.activeWatches(), 0u);
}

TEST_F(QtEventLoopTest, CallsPostedFromOtherThreadsRunOnTheLoopThreadInTheirOrder) {
    const auto loopThread = std::this_thread::get_id();
    bool ranAtOnce = true;
    loop_.postFromAnyThread([&] { ranAtOnce = false; });
    EXPECT_TRUE(ranAtOnce);  // queued, not called on the spot

    std::vector<std::vector<int>> arrived(4);  // each sender's calls, in the order they ran
    std::vector<std::thread> senders;
    for (auto& calls : arrived) {
        senders.emplace_back([&] {
            for (int i = 0; i < 50; ++i) {
                loop_.postFromAnyThread([&, i] {
                    EXPECT_EQ(std::this_thread::get_id(), loopThread);
                    calls.push_back(i);
                });
            }
        });
    }
    for (auto& sender : senders) sender.join();
    EXPECT_TRUE(runUntil([&] {
        return std::all_of(arrived.begin(), arrived.end(),
                           [](const auto& calls) { return calls.size() == 50; });
    }));
    EXPECT_FALSE(ranAtOnce);
    for (const auto& calls : arrived) EXPECT_TRUE(std::is_sorted(calls.begin(), calls.end()));
}

TEST_F(QtEventLoopTest, NothingOfADestroyedLoopRunsAfterIt) {
    int calls = 0;
    EXPECT_EQ(::write(pipe_[1], "EOL", 3), 3);
    {
        QtEventLoop doomed;
        doomed.startRepeating(Milliseconds(5), [&] { ++calls; });
        doomed.watchFd(pipe_[0], FdEvent::Readable, [&] { ++calls; });
        doomed.postFromAnyThread([&] { ++calls; });
    }
    loop_.wait(Milliseconds(100));
    EXPECT_EQ(calls, 0);
}

}  // namespace
}  // namespace ovd::ui
