// The desktop loop, for real: ticks, waits inside ticks, descriptors and calls from
// other threads. Times are asserted loosely: a busy machine may tick less often,
// but never more often, and a wait never ends before its time.

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include "ui/qt_event_loop.h"
#include "ui_test_helpers.h"

namespace ovd::ui {
namespace {

using platform::FdEvent;
using platform::Milliseconds;
using testing::runUntil;
using Steady = std::chrono::steady_clock;

long long msSince(Steady::time_point start) {
    return std::chrono::duration_cast<Milliseconds>(Steady::now() - start).count();
}

class Pipe {
public:
    Pipe() { EXPECT_EQ(::pipe(fds_), 0); }
    ~Pipe() {
        ::close(fds_[0]);
        ::close(fds_[1]);
    }
    [[nodiscard]] int readEnd() const { return fds_[0]; }
    [[nodiscard]] int writeEnd() const { return fds_[1]; }
    void write(const std::string& text) const {
        EXPECT_EQ(::write(fds_[1], text.data(), text.size()), static_cast<ssize_t>(text.size()));
    }
    [[nodiscard]] std::string read() const {
        char buffer[256];
        const ssize_t got = ::read(fds_[0], buffer, sizeof buffer);
        return got > 0 ? std::string(buffer, static_cast<std::size_t>(got)) : std::string();
    }

private:
    int fds_[2] = {-1, -1};
};

TEST(QtEventLoopTest, TimersTickAtRoughlyTheirIntervalsAndNotAfterTheyStop) {
    QtEventLoop loop;
    std::vector<char> ticks;
    int idleTicks = 0;
    const auto fast = loop.startRepeating(Milliseconds(25), [&] { ticks.push_back('f'); });
    const auto slow = loop.startRepeating(Milliseconds(100), [&] { ticks.push_back('s'); });
    const auto zero = loop.startRepeating(Milliseconds(0), [&] { ++idleTicks; });

    const auto start = Steady::now();
    loop.wait(Milliseconds(450));
    const long long elapsed = msSince(start);

    const auto fastTicks = std::count(ticks.begin(), ticks.end(), 'f');
    const auto slowTicks = std::count(ticks.begin(), ticks.end(), 's');
    EXPECT_GE(elapsed, 440);
    ASSERT_FALSE(ticks.empty());
    EXPECT_EQ(ticks.front(), 'f');
    EXPECT_GE(fastTicks, 3);
    EXPECT_LE(fastTicks, elapsed / 25 + 1);
    EXPECT_GE(slowTicks, 1);
    EXPECT_LE(slowTicks, elapsed / 100 + 1);
    // Interval 0 must not spin the loop.
    EXPECT_LE(idleTicks, elapsed + 1);

    loop.stopRepeating(fast);
    loop.stopRepeating(slow);
    loop.stopRepeating(zero);
    loop.stopRepeating(zero);  // a second stop is harmless
    ticks.clear();
    loop.wait(Milliseconds(150));
    EXPECT_TRUE(ticks.empty());
    EXPECT_EQ(loop.activeTimers(), 0u);
}

TEST(QtEventLoopTest, AWaitInsideATickLetsOtherTimersRunAndLastsItsTime) {
    QtEventLoop loop;
    bool waiting = false;
    int pedalTicksDuringWait = 0;
    long long waited = 0;
    const auto pedal = loop.startRepeating(Milliseconds(20), [&] {
        if (waiting) ++pedalTicksDuringWait;
    });
    platform::EventLoop::Handle saver = 0;
    saver = loop.startRepeating(Milliseconds(30), [&] {
        loop.stopRepeating(saver);
        waiting = true;
        const auto start = Steady::now();
        loop.wait(Milliseconds(300));
        waited = msSince(start);
        waiting = false;
    });

    ASSERT_TRUE(runUntil([&] { return waited > 0; }));
    EXPECT_GE(waited, 290);
    EXPECT_GE(pedalTicksDuringWait, 3);
    loop.stopRepeating(pedal);
}

TEST(QtEventLoopTest, NestedWaitsEachLastTheirOwnTimeAndReturnInStackOrder) {
    struct Case {
        int outerMs;
        int innerMs;
    };
    // An inner wait that outlasts the outer one, and one that ends well inside it.
    for (const Case c : {Case{100, 400}, Case{400, 60}}) {
        SCOPED_TRACE(std::to_string(c.outerMs) + " around " + std::to_string(c.innerMs));
        QtEventLoop loop;
        const auto start = Steady::now();
        long long innerStart = -1;
        long long innerEnd = -1;
        platform::EventLoop::Handle once = 0;
        once = loop.startRepeating(Milliseconds(20), [&] {
            loop.stopRepeating(once);
            innerStart = msSince(start);
            loop.wait(Milliseconds(c.innerMs));
            innerEnd = msSince(start);
        });

        loop.wait(Milliseconds(c.outerMs));
        const long long outerEnd = msSince(start);

        ASSERT_GE(innerEnd, 0);
        EXPECT_GE(innerEnd - innerStart, c.innerMs - 10);
        EXPECT_GE(outerEnd, c.outerMs - 10);
        EXPECT_GE(outerEnd, innerEnd);
    }
}

TEST(QtEventLoopTest, ATickMayStopItselfOrATimerDueInTheSamePass) {
    QtEventLoop loop;
    int selfStopped = 0;
    platform::EventLoop::Handle self = 0;
    self = loop.startRepeating(Milliseconds(10), [&] {
        ++selfStopped;
        loop.stopRepeating(self);
        // The stopped timer's tick is still on the stack while other events run.
        loop.wait(Milliseconds(50));
        ++selfStopped;
    });

    int pairTicks = 0;
    platform::EventLoop::Handle first = 0;
    platform::EventLoop::Handle second = 0;
    const auto stopBoth = [&] {
        ++pairTicks;
        loop.stopRepeating(first);
        loop.stopRepeating(second);
    };
    first = loop.startRepeating(Milliseconds(15), stopBoth);
    second = loop.startRepeating(Milliseconds(15), stopBoth);

    loop.wait(Milliseconds(250));
    EXPECT_EQ(selfStopped, 2);
    EXPECT_EQ(pairTicks, 1);
    EXPECT_EQ(loop.activeTimers(), 0u);
}

TEST(QtEventLoopTest, DescriptorWatchesFireWhenReadyAndNeverAfterUnwatching) {
    QtEventLoop loop;
    Pipe pipe;
    std::string received;
    const auto reader =
        loop.watchFd(pipe.readEnd(), FdEvent::Readable, [&] { received += pipe.read(); });
    loop.wait(Milliseconds(50));
    EXPECT_TRUE(received.empty());
    pipe.write("EOL");
    EXPECT_TRUE(runUntil([&] { return received == "EOL"; })) << received;
    loop.unwatchFd(reader);

    // Unwatched from its own callback with the data left unread: it must not fire on.
    int unreadCalls = 0;
    platform::EventLoop::Handle lazy = 0;
    lazy = loop.watchFd(pipe.readEnd(), FdEvent::Readable, [&] {
        ++unreadCalls;
        loop.unwatchFd(lazy);
    });
    int writableCalls = 0;
    platform::EventLoop::Handle writer = 0;
    writer = loop.watchFd(pipe.writeEnd(), FdEvent::Writable, [&] {
        ++writableCalls;
        loop.unwatchFd(writer);
    });
    pipe.write("INSERT");
    loop.wait(Milliseconds(150));
    EXPECT_EQ(unreadCalls, 1);
    EXPECT_EQ(writableCalls, 1);
    EXPECT_EQ(loop.activeWatches(), 0u);
}

TEST(QtEventLoopTest, CallsPostedFromOtherThreadsRunOnTheLoopThreadInTheirOrder) {
    QtEventLoop loop;
    const auto loopThread = std::this_thread::get_id();
    constexpr int kSenders = 4;
    constexpr int kEach = 50;
    std::vector<std::vector<int>> arrived(kSenders);
    int offThread = 0;

    bool ranAtOnce = true;
    loop.postFromAnyThread([&] { ranAtOnce = false; });
    EXPECT_TRUE(ranAtOnce);  // queued, not called on the spot

    std::vector<std::thread> senders;
    for (int s = 0; s < kSenders; ++s) {
        senders.emplace_back([&, s] {
            for (int i = 0; i < kEach; ++i) {
                loop.postFromAnyThread([&, s, i] {
                    if (std::this_thread::get_id() != loopThread) ++offThread;
                    arrived[static_cast<std::size_t>(s)].push_back(i);
                });
            }
        });
    }
    for (auto& sender : senders) sender.join();

    EXPECT_TRUE(runUntil([&] {
        return std::all_of(arrived.begin(), arrived.end(),
                           [](const auto& calls) { return calls.size() == kEach; });
    }));
    EXPECT_FALSE(ranAtOnce);
    EXPECT_EQ(offThread, 0);
    for (const auto& calls : arrived) EXPECT_TRUE(std::is_sorted(calls.begin(), calls.end()));
}

TEST(QtEventLoopTest, NothingOfADestroyedLoopRunsAfterIt) {
    int calls = 0;
    Pipe pipe;
    pipe.write("CLOSE");
    {
        QtEventLoop doomed;
        doomed.startRepeating(Milliseconds(5), [&] { ++calls; });
        doomed.watchFd(pipe.readEnd(), FdEvent::Readable, [&] { ++calls; });
        doomed.postFromAnyThread([&] { ++calls; });
    }
    QtEventLoop survivor;
    survivor.wait(Milliseconds(100));
    EXPECT_EQ(calls, 0);
}

}  // namespace
}  // namespace ovd::ui
