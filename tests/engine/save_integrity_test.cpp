// What a save must never do to the author's audio: rewrite a file only opened to
// listen, leave the end of a take in the encoder, leave a half or empty file
// under the letter's name, or lose a take the disk stopped taking. And an edit
// with nothing selected leaves the document as it was.

#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <optional>
#include <vector>

#include "engine/virtual_backend.h"
#include "engine/wave_editor.h"
#include "platform/files.h"
#include "support/temp_folder.h"
#include "support/virtual_event_loop.h"
#include "test_signal.h"

namespace ovd::engine {
namespace {

using ovd::testing::TempFolder;
using ovd::testing::VirtualEventLoop;
using platform::Milliseconds;
using testing::readAll;
using testing::ToneSource;

constexpr int kRate = 16000;

std::int64_t changedNs(const std::string& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0) return -1;
    return static_cast<std::int64_t>(status.st_mtim.tv_sec) * 1'000'000'000 +
           status.st_mtim.tv_nsec;
}

// Frames the station's own reader hears in a file.
SampleCount framesHeard(const std::string& path) {
    auto opened = AudioFileReader::open(path);
    EXPECT_TRUE(opened) << opened.error();
    if (!opened) return -1;
    auto& reader = *opened;
    return static_cast<SampleCount>(readAll(*reader).size()) / reader->format().channels;
}

class SaveIntegrityTest : public ::testing::Test {
  protected:
    SaveIntegrityTest() {
        editor.setTempFileName(folder.path() + "/Temp");
        other.setTempFileName(folder.path() + "/Temp");
    }

    static TargetFormat format(FormatWord word, int kbps) {
        TargetFormat target;
        target.word = word;
        target.sampleRate = kRate;
        target.channels = 1;
        target.bitrateKbps = kbps;
        return target;
    }

    void recordFor(WaveEditor& into, int milliseconds) {
        into.setCursorPosition(into.Length());
        ASSERT_TRUE(into.Record().ok());
        loop.advance(Milliseconds(milliseconds));
        into.Stop();
    }

    // Saves and waits as the dictation does: until the save has let go of the file.
    void save(WaveEditor& from, const std::string& path) {
        const auto saved = from.SaveAs(path);
        ASSERT_TRUE(saved.ok());
        while (from.saving()) {
            loop.runPending();
            ::usleep(1000);
        }
        loop.runPending();
        EXPECT_TRUE(saved->get()) << saved->get().error();
        EXPECT_FALSE(platform::fileExists(path + ".partial"));
    }

    void selectAll(WaveEditor& in) {
        in.setSelectionStart(0);
        in.setSelectionEnd(in.Length());
        in.setSelectionActive(true);
    }

    TempFolder folder;
    VirtualEventLoop loop;
    VirtualBackend backend{loop, {}};
    std::shared_ptr<Clipboard> clipboard = std::make_shared<Clipboard>();
    WaveEditor editor{loop, backend, clipboard, "AudioEditor1"};
    WaveEditor other{loop, backend, clipboard, "AudioEditor21"};
};

TEST_F(SaveIntegrityTest, AFileOpenedToListenStaysByteForByteUntilTheAuthorChangesIt) {
    for (const FormatWord word : {FormatWord::MP3, FormatWord::WAV, FormatWord::WMA}) {
        SCOPED_TRACE(formatWordText(word));
        const std::string path = folder.file("Letter." + formatWordText(word));
        ToneSource tone({kRate, 1}, 6.0);
        ASSERT_TRUE(encodeFile(tone, path, format(word, 32), "OVDESK").ok());
        const std::string bytes = platform::readWholeFile(path).valueOr("");
        const std::int64_t written = changedNs(path);

        ASSERT_TRUE(editor.Open(path).ok());
        editor.chooseFormat(format(word, 32));
        ASSERT_TRUE(editor.Play().ok());
        loop.advance(Milliseconds(1500));
        editor.Stop();
        // The close, the stop, the timer and the end of letter each save.
        save(editor, path);
        save(editor, path);
        // Undone, a cut leaves the document as the file holds it.
        selectAll(editor);
        ASSERT_TRUE(editor.Cut().ok());
        ASSERT_TRUE(editor.Undo().ok());
        save(editor, path);
        editor.Close();
        EXPECT_EQ(platform::readWholeFile(path).valueOr(""), bytes);
        EXPECT_EQ(changedNs(path), written) << "not even written with the same bytes";

        // A take added after the open is saved.
        ASSERT_TRUE(editor.Open(path).ok());
        editor.chooseFormat(format(word, 32));
        recordFor(editor, 2000);
        save(editor, path);
        editor.Close();
        EXPECT_NE(platform::readWholeFile(path).valueOr(""), bytes);
        EXPECT_NEAR(static_cast<double>(framesHeard(path)), 8.0 * kRate, 0.05 * kRate);
    }
}

TEST_F(SaveIntegrityTest, ASavedDocumentIsNotWrittenAgainButAReplacedFileIs) {
    const std::string path = folder.file("AB0001.WAV");
    ASSERT_TRUE(editor.New(kRate, 1).ok());
    editor.chooseFormat(format(FormatWord::WAV, 0));
    recordFor(editor, 3000);
    save(editor, path);
    const std::int64_t written = changedNs(path);
    ::usleep(20000);
    save(editor, path);
    EXPECT_EQ(changedNs(path), written);

    // Somebody else put another file under the name: the document is written again.
    EXPECT_TRUE(platform::writeWholeFile(path, "not a letter"));
    save(editor, path);
    EXPECT_NEAR(static_cast<double>(framesHeard(path)), 3.0 * kRate, 0.01 * kRate);
}

TEST_F(SaveIntegrityTest, AnEditWithNothingSelectedChangesNothingAndBringsBackNoOlderAudio) {
    // An earlier letter's audio on the shared clipboard.
    ASSERT_TRUE(other.New(kRate, 1).ok());
    recordFor(other, 11600);
    selectAll(other);
    ASSERT_TRUE(other.Copy().ok());
    other.Close();

    ASSERT_TRUE(editor.New(kRate, 1).ok());
    recordFor(editor, 6000);
    const SampleCount length = editor.Length();
    std::vector<std::int16_t> before(static_cast<std::size_t>(length));
    editor.readFrames(0, before.data(), before.size());
    const auto unchanged = [&](const char* after) {
        std::vector<std::int16_t> now(static_cast<std::size_t>(editor.Length()));
        now.resize(editor.readFrames(0, now.data(), now.size()));
        EXPECT_EQ(now, before) << after;
    };

    // A cursor only, or a selection of nothing.
    for (const bool active : {false, true}) {
        editor.setSelectionActive(active);
        editor.setSelectionStart(length / 2);
        editor.setSelectionEnd(length / 2);
        EXPECT_FALSE(editor.Cut().ok());
        unchanged("cut");
        EXPECT_FALSE(editor.Copy().ok());
        unchanged("copy");
        EXPECT_FALSE(editor.Paste().ok()) << "nothing was copied last";
        unchanged("copy, then paste");
    }

    // A selection is cut, and pasted back where it was.
    editor.setSelectionStart(kRate);
    editor.setSelectionEnd(2 * kRate);
    editor.setSelectionActive(true);
    ASSERT_TRUE(editor.Cut().ok());
    EXPECT_EQ(editor.Length(), length - kRate);
    editor.setCursorPosition(kRate);
    ASSERT_TRUE(editor.Paste().ok());
    unchanged("cut and pasted back");
}

// The encoder's last frames belong to the file on every path: the one-shot save
// of a stopped take, the saves that grow the file while the take goes on, and a
// close that comes after those with no save of its own.
struct EncoderCase {
    FormatWord word;
    int kbps;
    SampleCount frameSamples;  // one encoder frame at 16 kHz
};

class EncoderTailTest : public SaveIntegrityTest,
                        public ::testing::WithParamInterface<EncoderCase> {};

TEST_P(EncoderTailTest, TheSavedFileLastsAsLongAsTheDocument) {
    const EncoderCase& c = GetParam();
    const auto within = [&](const std::string& path, SampleCount expected, const char* path_name) {
        const SampleCount heard = framesHeard(path);
        EXPECT_LE(std::abs(heard - expected), c.frameSamples)
            << path_name << ": " << heard << " frames heard for " << expected;
    };
    // One-shot: a take stopped, then saved.
    const std::string once = folder.file("once." + formatWordText(c.word));
    ASSERT_TRUE(editor.New(kRate, 1).ok());
    editor.chooseFormat(format(c.word, c.kbps));
    recordFor(editor, 6000);
    save(editor, once);
    within(once, editor.Length(), "one-shot, before the close");
    editor.Close();
    within(once, 6 * kRate, "one-shot");

    // Growing: saved twice while the take runs, then once after its Stop.
    const std::string grown = folder.file("grown." + formatWordText(c.word));
    ASSERT_TRUE(editor.New(kRate, 1).ok());
    editor.chooseFormat(format(c.word, c.kbps));
    ASSERT_TRUE(editor.Record().ok());
    loop.advance(Milliseconds(2000));
    save(editor, grown);
    loop.advance(Milliseconds(2000));
    save(editor, grown);
    loop.advance(Milliseconds(2000));
    editor.Stop();
    save(editor, grown);
    within(grown, editor.Length(), "grown and saved at the stop");

    // Growing, then closed with the last save made during the take.
    const std::string closed = folder.file("closed." + formatWordText(c.word));
    ASSERT_TRUE(editor.New(kRate, 1).ok());
    editor.chooseFormat(format(c.word, c.kbps));
    ASSERT_TRUE(editor.Record().ok());
    loop.advance(Milliseconds(3000));
    save(editor, closed);
    loop.advance(Milliseconds(3000));
    save(editor, closed);
    const SampleCount saved = editor.Length();
    editor.Stop();
    editor.Close();
    within(closed, saved, "grown, then closed");

    // Stopped and saved, handed on under another name at the end of the letter, then closed.
    const std::string ended = folder.file("ended." + formatWordText(c.word));
    const std::string handedOn = folder.file("EOL ended." + formatWordText(c.word));
    ASSERT_TRUE(editor.New(kRate, 1).ok());
    editor.chooseFormat(format(c.word, c.kbps));
    ASSERT_TRUE(editor.Record().ok());
    loop.advance(Milliseconds(3000));
    save(editor, ended);
    loop.advance(Milliseconds(3000));
    editor.Stop();
    save(editor, ended);
    ASSERT_EQ(std::rename(ended.c_str(), handedOn.c_str()), 0);
    editor.Close();
    within(handedOn, 6 * kRate, "handed on under another name");
}

INSTANTIATE_TEST_SUITE_P(Formats, EncoderTailTest,
                         ::testing::Values(EncoderCase{FormatWord::MP3, 32, 576},
                                           EncoderCase{FormatWord::MP2, 64, 1152},
                                           EncoderCase{FormatWord::WMA, 32, 2048},
                                           EncoderCase{FormatWord::WAV, 0, 1}),
                         [](const auto& test) { return formatWordText(test.param.word); });

TEST_F(SaveIntegrityTest, TheLettersNameNeverHoldsAnEmptyOrHalfFile) {
    const std::string path = folder.file("AB0007.MP3");
    ASSERT_TRUE(editor.New(kRate, 1).ok());
    editor.chooseFormat(format(FormatWord::MP3, 32));
    recordFor(editor, 30000);
    const auto saved = editor.SaveAs(path);
    ASSERT_TRUE(saved.ok());
    // A new file exists under its name only once it is complete: whatever is
    // seen there while the save runs is the finished file.
    std::optional<std::string> seenWhileSaving;
    while (editor.saving()) {
        if (auto now = platform::readWholeFile(path)) seenWhileSaving = std::move(*now);
        ::usleep(200);
    }
    loop.runPending();
    ASSERT_TRUE(saved->get()) << saved->get().error();
    const auto first = platform::readWholeFile(path);
    ASSERT_TRUE(first.ok());
    if (seenWhileSaving) {
        EXPECT_EQ(*seenWhileSaving, *first) << "written beside, then moved into place";
    }

    // Saved again after an edit: the old file stands whole until the new one replaces it.
    editor.setSelectionStart(0);
    editor.setSelectionEnd(kRate);
    editor.setSelectionActive(true);
    ASSERT_TRUE(editor.Cut().ok());
    ASSERT_TRUE(editor.SaveAs(path).ok());
    while (editor.saving()) {
        const std::string now = platform::readWholeFile(path).valueOr("");
        EXPECT_TRUE(now == *first || framesHeard(path) > 0);
        if (now != *first) break;
        ::usleep(200);
    }
    save(editor, path);
    EXPECT_NEAR(static_cast<double>(framesHeard(path)), 29.0 * kRate, 576);
}

TEST_F(SaveIntegrityTest, ATakeTheDiskStopsTakingIsToldOnceAndKeepsEverySample) {
    const std::string small = folder.file("small");
    EXPECT_TRUE(platform::createFolder(small));
    if (::mount("tmpfs", small.c_str(), "tmpfs", 0, "size=1m") != 0) {
        GTEST_SKIP() << "a small tmpfs can't be mounted here (" << std::strerror(errno) << ")";
    }
    std::vector<std::string> told;
    {
        WaveEditor onSmallDisk{loop, backend, clipboard, "AudioEditor1"};
        onSmallDisk.onTrouble = [&](const std::string& text) { told.push_back(text); };
        onSmallDisk.setTempFileName(small);
        ASSERT_TRUE(onSmallDisk.New(kRate, 1).ok());
        // A megabyte holds about 32 seconds of the take.
        recordFor(onSmallDisk, 45000);
        EXPECT_EQ(onSmallDisk.Length(), 45 * kRate) << "what the disk refused is kept";
        std::vector<std::int16_t> frames(static_cast<std::size_t>(onSmallDisk.Length()));
        EXPECT_EQ(onSmallDisk.readFrames(0, frames.data(), frames.size()), frames.size());
        EXPECT_TRUE(std::any_of(frames.end() - 160, frames.end(), [](std::int16_t v) {
            return v != 0;
        })) << "the end of the take is there, not silence";
        ASSERT_EQ(told.size(), 1u) << "once per take";
        EXPECT_NE(told.front().find(std::strerror(ENOSPC)), std::string::npos) << told.front();
        EXPECT_NE(told.front().find(onSmallDisk.TempFileName()), std::string::npos) << told.front();

        // The work file on the disk stays a whole wave file of what it holds.
        EXPECT_GT(framesHeard(onSmallDisk.TempFileName()), 25 * kRate);

        // The next take tells again.
        recordFor(onSmallDisk, 1000);
        EXPECT_EQ(told.size(), 2u);
        onSmallDisk.Close();
    }
    ::umount2(small.c_str(), MNT_DETACH);
}

}  // namespace
}  // namespace ovd::engine
