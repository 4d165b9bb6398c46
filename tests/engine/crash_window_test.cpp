// A station killed at any moment of a take leaves a work file holding all of it
// but at most the last quarter of a second: the work file is written often
// enough while recording, and what was written survives the process.

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstring>
#include <random>

#include "engine/virtual_backend.h"
#include "engine/wave_editor.h"
#include "engine/work_file.h"
#include "platform/files.h"
#include "support/temp_folder.h"
#include "support/virtual_event_loop.h"

namespace ovd::engine {
namespace {

using ovd::testing::TempFolder;
using ovd::testing::VirtualEventLoop;
using platform::Milliseconds;

constexpr int kRate = 16000;
constexpr SampleCount kQuarterSecond = kRate / 4;

// Records in a child on a virtual clock kept in step with the real one, telling
// the parent the take's length at every step; killed after `killAfterUs`.
// Returns the frames the child last told of and the frames its work file's header counts.
void killARecorder(const std::string& folder, useconds_t killAfterUs, SampleCount& recorded,
                   SampleCount& inHeader, std::size_t& fileBytes) {
    int progress[2];
    ASSERT_EQ(::pipe(progress), 0);
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        ::close(progress[0]);
        VirtualEventLoop loop;
        VirtualBackend backend{loop, {}};
        WaveEditor editor{loop, backend, std::make_shared<Clipboard>(), "crash"};
        editor.setTempFileName(folder);
        if (!editor.New(kRate, 1).ok() || !editor.Record().ok()) ::_exit(1);
        const std::string path = editor.TempFileName();
        (void)::write(progress[1], path.c_str(), path.size() + 1);
        for (;;) {
            loop.advance(Milliseconds(10));
            const SampleCount length = editor.Length();
            (void)::write(progress[1], &length, sizeof length);
            ::usleep(10'000);
        }
    }
    ::close(progress[1]);
    char pathBuffer[512] = {};
    std::size_t used = 0;
    while (used < sizeof pathBuffer && ::read(progress[0], pathBuffer + used, 1) == 1 &&
           pathBuffer[used] != '\0')
        ++used;
    const std::string workFile(pathBuffer, used);
    ::usleep(killAfterUs);
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
    SampleCount reading = 0;
    recorded = 0;
    while (::read(progress[0], &reading, sizeof reading) == static_cast<ssize_t>(sizeof reading))
        recorded = reading;
    ::close(progress[0]);

    const auto onDisk = platform::readWholeFile(workFile);
    ASSERT_TRUE(onDisk) << workFile;
    std::uint32_t dataBytes = 0;
    ASSERT_GE((*onDisk).size(), WorkFile::kHeaderBytes);
    std::memcpy(&dataBytes, (*onDisk).data() + 40, 4);
    inHeader = dataBytes / 2;
    fileBytes = (*onDisk).size();
}

TEST(CrashWindowTest, AKilledRecorderLeavesAllButTheLastQuarterSecond) {
    std::mt19937 random(std::random_device{}());
    std::uniform_int_distribution<useconds_t> moment(600'000, 1'600'000);
    // Several moments, so that the kill falls at different places between two writes.
    for (int round = 0; round < 5; ++round) {
        TempFolder folder;
        const useconds_t killAfter = moment(random);
        SampleCount recorded = 0;
        SampleCount inHeader = 0;
        std::size_t fileBytes = 0;
        killARecorder(folder.path(), killAfter, recorded, inHeader, fileBytes);
        if (HasFatalFailure()) return;
        SCOPED_TRACE("killed after " + std::to_string(killAfter / 1000) + " ms");
        EXPECT_GT(recorded, kQuarterSecond) << "the child recorded";
        EXPECT_GE(inHeader, recorded - kQuarterSecond);
        EXPECT_LE(WorkFile::kHeaderBytes + static_cast<std::size_t>(inHeader) * 2, fileBytes)
            << "the header counts no more than the file holds";
    }
}

}  // namespace
}  // namespace ovd::engine
