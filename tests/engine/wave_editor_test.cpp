// The wave editor on the virtual backend and clock: takes, edits, the shared
// clipboard and playing, as the dictation drives them.

#include "engine/wave_editor.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstring>
#include <vector>

#include "engine/virtual_backend.h"
#include "platform/files.h"
#include "platform/system_queries.h"
#include "support/temp_folder.h"
#include "support/virtual_event_loop.h"

namespace ovd::engine {
namespace {

using platform::Milliseconds;
using testing::TempFolder;
using testing::VirtualEventLoop;

constexpr int kRate = 16000;

class WaveEditorTest : public ::testing::Test {
  protected:
    WaveEditorTest() {
        dictation.setTempFileName(folder.path() + "/Temp");
        scratch.setTempFileName(folder.path() + "/Temp");
    }

    // Records for the given time into the editor, from where its cursor stands.
    void recordFor(WaveEditor& editor, int milliseconds) {
        ASSERT_TRUE(editor.Record().ok());
        EXPECT_EQ(editor.State(), 2);
        loop.advance(Milliseconds(milliseconds));
        editor.Stop();
        EXPECT_EQ(editor.State(), 0);
    }

    std::vector<std::int16_t> frames(const WaveEditor& editor, SampleCount from,
                                     SampleCount count) {
        std::vector<std::int16_t> out(static_cast<std::size_t>(count));
        out.resize(editor.readFrames(from, out.data(), out.size()));
        return out;
    }

    TempFolder folder;
    VirtualEventLoop loop;
    VirtualBackend backend{loop, {}};
    std::shared_ptr<Clipboard> clipboard = std::make_shared<Clipboard>();
    WaveEditor dictation{loop, backend, clipboard, "AudioEditor1"};
    WaveEditor scratch{loop, backend, clipboard, "AudioEditor21"};
};

TEST_F(WaveEditorTest, ATakeGrowsWithTheClockAndLeavesAReadableWorkFile) {
    dictation.Close();  // harmless with nothing loaded
    ASSERT_TRUE(dictation.New(kRate, 1).ok());
    EXPECT_EQ(dictation.FormatName(), "");
    const std::string workFile = dictation.TempFileName();
    EXPECT_EQ(workFile.rfind(folder.path() + "/Temp/", 0), 0u);

    recordFor(dictation, 2000);

    EXPECT_EQ(dictation.Length(), 2 * kRate);
    EXPECT_EQ(dictation.CursorPosition(), 2 * kRate);
    EXPECT_EQ(dictation.FormatName(), "PCM");
    const auto onDisk = platform::readWholeFile(workFile).valueOr("");
    ASSERT_EQ(onDisk.size(), WorkFile::kHeaderBytes + 2u * kRate * 2u);
    std::uint32_t dataBytes = 0;
    std::memcpy(&dataBytes, onDisk.data() + 40, 4);
    EXPECT_EQ(dataBytes, 2u * kRate * 2u);
    EXPECT_EQ(onDisk.substr(0, 4), "RIFF");

    dictation.Close();
    EXPECT_FALSE(platform::fileExists(workFile)) << "a closed document's work file goes";

    std::string leftBehind;
    {
        WaveEditor unclosed{loop, backend, clipboard, "unclosed"};
        unclosed.setTempFileName(folder.path() + "/Temp");
        ASSERT_TRUE(unclosed.New(kRate, 1).ok());
        recordFor(unclosed, 500);
        leftBehind = unclosed.TempFileName();
    }
    EXPECT_EQ(platform::fileSize(leftBehind).valueOr(0), WorkFile::kHeaderBytes + kRate)
        << "an editor that goes without a Close leaves its take for the recovery";
}

TEST_F(WaveEditorTest, RecordingInsertsAtTheCursorAndReplacesASelection) {
    ASSERT_TRUE(dictation.New(kRate, 1).ok());
    recordFor(dictation, 1000);
    dictation.setCursorPosition(kRate / 2);
    recordFor(dictation, 500);
    EXPECT_EQ(dictation.Length(), kRate + kRate / 2);
    EXPECT_EQ(dictation.CursorPosition(), kRate);

    dictation.setSelectionStart(0);
    dictation.setSelectionEnd(kRate);
    dictation.setSelectionActive(true);
    recordFor(dictation, 250);
    EXPECT_EQ(dictation.Length(), kRate / 2 + kRate / 4);
    EXPECT_FALSE(dictation.SelectionActive());
}

TEST_F(WaveEditorTest, CutUndoRedoAndPasteKeepTheAudioInItsPlace) {
    ASSERT_TRUE(dictation.New(kRate, 1).ok());
    recordFor(dictation, 3000);
    const auto whole = frames(dictation, 0, 3 * kRate);
    dictation.setSelectionStart(kRate);
    dictation.setSelectionEnd(2 * kRate);
    dictation.setSelectionActive(true);

    ASSERT_TRUE(dictation.Cut().ok());
    EXPECT_EQ(dictation.Length(), 2 * kRate);
    EXPECT_EQ(frames(dictation, kRate, kRate),
              std::vector<std::int16_t>(whole.begin() + 2 * kRate, whole.end()));
    ASSERT_TRUE(dictation.Undo().ok());
    EXPECT_EQ(frames(dictation, 0, 3 * kRate), whole);
    ASSERT_TRUE(dictation.Redo().ok());
    EXPECT_EQ(dictation.Length(), 2 * kRate);
    EXPECT_FALSE(dictation.Redo().ok()) << "nothing left to redo";

    dictation.setCursorPosition(kRate);
    ASSERT_TRUE(dictation.Paste().ok());
    EXPECT_EQ(frames(dictation, 0, 3 * kRate), whole) << "pasted back where it was cut from";
    EXPECT_EQ(dictation.CursorPosition(), 2 * kRate);
}

TEST_F(WaveEditorTest, TheTwoEditorsShareOneClipboardEvenAfterTheSourceIsClosed) {
    ASSERT_TRUE(scratch.New(kRate, 1).ok());
    recordFor(scratch, 800);
    const auto take = frames(scratch, 0, scratch.Length());
    scratch.setSelectionStart(0);
    scratch.setSelectionEnd(scratch.Length());
    scratch.setSelectionActive(true);
    ASSERT_TRUE(scratch.Copy().ok());
    scratch.Close();

    ASSERT_TRUE(dictation.New(kRate, 1).ok());
    recordFor(dictation, 1000);
    dictation.setCursorPosition(kRate / 2);
    ASSERT_TRUE(dictation.Paste().ok());

    EXPECT_EQ(dictation.Length(), kRate + static_cast<SampleCount>(take.size()));
    EXPECT_EQ(frames(dictation, kRate / 2, static_cast<SampleCount>(take.size())), take);

    // An overwrite: the scratch take replaces the selected stretch, same length in, same out.
    const SampleCount before = dictation.Length();
    dictation.setSelectionStart(0);
    dictation.setSelectionEnd(static_cast<SampleCount>(take.size()));
    dictation.setSelectionActive(true);
    ASSERT_TRUE(dictation.Paste().ok());
    EXPECT_EQ(dictation.Length(), before);
    EXPECT_EQ(frames(dictation, 0, static_cast<SampleCount>(take.size())), take);

    WaveEditor stereo{loop, backend, clipboard, "other"};
    stereo.setTempFileName(folder.path());
    ASSERT_TRUE(stereo.New(2 * kRate, 2).ok());
    ASSERT_TRUE(stereo.Paste().ok()) << "audio of another format is converted on the way in";
    EXPECT_EQ(stereo.Length(), 2 * static_cast<SampleCount>(take.size()));
    EXPECT_EQ(stereo.Channels(), 2);
}

TEST_F(WaveEditorTest, ConvertingTheSampleTypeKeepsTheTimeAndTheCursorsPlace) {
    ASSERT_TRUE(dictation.New(kRate, 1).ok());
    recordFor(dictation, 2000);
    dictation.setCursorPosition(kRate);
    const std::string oldWorkFile = dictation.TempFileName();

    ASSERT_TRUE(dictation.ConvertSampleType(8000, 2).ok());

    EXPECT_EQ(dictation.SamplesPerSecond(), 8000);
    EXPECT_EQ(dictation.Channels(), 2);
    EXPECT_EQ(dictation.Length(), 2 * 8000);
    EXPECT_EQ(dictation.CursorPosition(), 8000);
    EXPECT_EQ(dictation.FormatName(), "PCM");
    EXPECT_NE(dictation.TempFileName(), oldWorkFile);
    EXPECT_FALSE(platform::fileExists(oldWorkFile));
}

TEST_F(WaveEditorTest, PlayingFollowsTheClockPausesAndStopsAtTheEnd) {
    ASSERT_TRUE(dictation.New(kRate, 1).ok());
    recordFor(dictation, 1000);
    dictation.setCursorPosition(0);

    ASSERT_TRUE(dictation.Play(kPlayToEnd).ok());
    loop.advance(Milliseconds(500));
    EXPECT_EQ(dictation.State(), 1);
    EXPECT_NEAR(static_cast<double>(dictation.CursorPosition()), kRate / 2.0, kRate * 0.03);

    dictation.Pause();
    EXPECT_EQ(dictation.State(), 5);
    const SampleCount pausedAt = dictation.CursorPosition();
    loop.advance(Milliseconds(2000));
    EXPECT_EQ(dictation.CursorPosition(), pausedAt);

    dictation.Continue();
    loop.advance(Milliseconds(700));
    EXPECT_EQ(dictation.State(), 0);
    EXPECT_EQ(dictation.CursorPosition(), kRate);
    EXPECT_EQ(backend.playedSamples(), frames(dictation, 0, kRate)) << "every frame heard once";
}

TEST_F(WaveEditorTest, LoopedPlayGoesRoundUntilStopped) {
    ASSERT_TRUE(dictation.New(kRate, 1).ok());
    recordFor(dictation, 500);
    dictation.setCursorPosition(0);
    ASSERT_TRUE(dictation.Play(kPlayLooped).ok());
    loop.advance(Milliseconds(1800));
    EXPECT_EQ(dictation.State(), 1);
    EXPECT_GT(backend.playedSamples().size(), static_cast<std::size_t>(3 * kRate / 2));
    dictation.Stop();
    dictation.Stop();  // harmless when stopped
    EXPECT_EQ(dictation.State(), 0);
}

TEST_F(WaveEditorTest, SavingHoldsTheFileUntilItIsCompleteAndTheSavedFileOpensAgain) {
    ASSERT_TRUE(dictation.New(kRate, 1).ok());
    recordFor(dictation, 2000);
    const std::string path = folder.file("Letter 1.mp3");
    ASSERT_TRUE(platform::writeWholeFile(path, "an older save"));
    TargetFormat mp3;
    mp3.word = FormatWord::MP3;
    mp3.sampleRate = kRate;
    mp3.bitrateKbps = 32;
    dictation.chooseFormat(mp3);
    std::vector<BlockOperationEvent::Phase> phases;
    dictation.onBlockOperation = [&](const BlockOperationEvent& event) {
        phases.push_back(event.phase);
    };

    const auto saved = dictation.SaveAs(path);
    ASSERT_TRUE(saved.ok());
    EXPECT_FALSE(platform::FileAvailable(path)) << "locked before SaveAs returns";
    while (dictation.saving() || platform::FileAvailable(path) == false) {
        loop.runPending();
        ::usleep(2000);
    }
    loop.runPending();

    EXPECT_TRUE(saved->get()) << saved->get().error();
    ASSERT_FALSE(phases.empty());
    EXPECT_EQ(phases.front(), BlockOperationEvent::Phase::Start);
    EXPECT_EQ(phases.back(), BlockOperationEvent::Phase::End);
    dictation.Close();  // what the encoder still held goes in at the close
    ASSERT_TRUE(scratch.Open(path).ok());
    EXPECT_EQ(scratch.FormatName(), "MP3");
    EXPECT_NEAR(static_cast<double>(scratch.Length()), 2.0 * kRate, 0.01 * 2 * kRate);
    EXPECT_FALSE(platform::fileExists(path + ".partial"));
}

// A station killed in the middle of a take leaves a work file holding all but the
// last second of it.
TEST(WorkFileCrashTest, AKilledRecorderLeavesAllButTheLastSecond) {
    TempFolder folder;
    int progress[2];
    ASSERT_EQ(::pipe(progress), 0);
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        ::close(progress[0]);
        VirtualEventLoop loop;
        VirtualBackend backend{loop, {}};
        WaveEditor editor{loop, backend, std::make_shared<Clipboard>(), "crash"};
        editor.setTempFileName(folder.path());
        if (!editor.New(kRate, 1).ok() || !editor.Record().ok()) ::_exit(1);
        const std::string path = editor.TempFileName();
        (void)::write(progress[1], path.c_str(), path.size() + 1);
        for (;;) {  // the virtual clock kept in step with the real one
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
    ::usleep(2'500'000);
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
    SampleCount recorded = 0;
    SampleCount reading = 0;
    while (::read(progress[0], &reading, sizeof reading) == static_cast<ssize_t>(sizeof reading))
        recorded = reading;
    ::close(progress[0]);

    const auto onDisk = platform::readWholeFile(workFile);
    ASSERT_TRUE(onDisk.ok()) << workFile;
    std::uint32_t dataBytes = 0;
    std::memcpy(&dataBytes, onDisk->data() + 40, 4);
    const SampleCount inHeader = dataBytes / 2;
    EXPECT_GT(recorded, kRate) << "the child recorded for more than a second";
    EXPECT_GE(inHeader, recorded - kRate);
    EXPECT_LE(WorkFile::kHeaderBytes + dataBytes, onDisk->size());
}

}  // namespace
}  // namespace ovd::engine
