// Saving a take again and again as the dictation does while it records: a take
// that only grew has the new audio added to the file the last save wrote, an
// edit anywhere else saves it whole, and a wave file at the take's own rate is
// copied straight from the work files. Every save reads back as the document;
// one made while nothing records leaves the file complete.

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <vector>

#include "engine/virtual_backend.h"
#include "engine/wave_editor.h"
#include "platform/files.h"
#include "platform/system_queries.h"
#include "support/temp_folder.h"
#include "support/virtual_event_loop.h"
#include "test_signal.h"

namespace ovd::engine {
namespace {

using ovd::testing::TempFolder;
using ovd::testing::VirtualEventLoop;
using platform::Milliseconds;
using testing::commandOutput;
using testing::readAll;

constexpr int kRate = 16000;
constexpr const char* kComment = "Dr Brown, letter 7";

// Frames held in memory, read front to back.
class FramesSource : public PcmSource {
  public:
    FramesSource(PcmFormat format, std::vector<std::int16_t> frames)
        : format_(format), frames_(std::move(frames)) {}
    [[nodiscard]] PcmFormat format() const override { return format_; }
    [[nodiscard]] SampleCount frames() const override {
        return static_cast<SampleCount>(frames_.size());
    }
    std::size_t read(std::int16_t* out, std::size_t frameCount) override {
        const std::size_t take = std::min(frameCount, frames_.size() - position_);
        std::copy_n(frames_.begin() + static_cast<std::ptrdiff_t>(position_), take, out);
        position_ += take;
        return take;
    }

  private:
    PcmFormat format_;
    std::vector<std::int16_t> frames_;
    std::size_t position_ = 0;
};

ino_t inodeOf(const std::string& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 ? status.st_ino : 0;
}

// The file as the station's own reader (the sound-file library, which trusts an MP3's Info frame)
// hears it.
std::vector<std::int16_t> heard(const std::string& path) {
    auto reader = AudioFileReader::open(path);
    EXPECT_TRUE(reader) << reader.error();
    return reader ? readAll(**reader) : std::vector<std::int16_t>{};
}

// The same through the codec library's command line, which reads to the end of the file.
std::size_t framesFfmpegHears(const std::string& path) {
    return commandOutput("ffmpeg -v error -i '" + path + "' -f s16le -ac 1 -").size() / 2;
}

class GrowingSaveTest : public ::testing::Test {
  protected:
    GrowingSaveTest() {
        dictation.setTempFileName(folder.path() + "/Temp");
        scratch.setTempFileName(folder.path() + "/Temp");
        mp3.word = FormatWord::MP3;
        mp3.sampleRate = kRate;
        mp3.bitrateKbps = 32;
        wav.sampleRate = kRate;
    }

    void recordFor(WaveEditor& editor, int seconds) {
        editor.setCursorPosition(editor.Length());
        ASSERT_TRUE(editor.Record().ok());
        loop.advance(Milliseconds(seconds * 1000));
        editor.Stop();
    }

    // Saves and waits the way the dictation does: until the file is free.
    void save(const std::string& path) {
        const auto saved = dictation.SaveAs(path);
        ASSERT_TRUE(saved.ok());
        EXPECT_FALSE(platform::FileAvailable(path)) << "locked from the moment SaveAs returns";
        while (dictation.saving() || !platform::FileAvailable(path)) {
            loop.runPending();
            ::usleep(1000);
        }
        loop.runPending();
        EXPECT_TRUE(saved->get()) << saved->get().error();
        EXPECT_FALSE(platform::fileExists(path + ".partial"));
    }

    std::vector<std::int16_t> document() const {
        std::vector<std::int16_t> frames(static_cast<std::size_t>(dictation.Length()));
        frames.resize(dictation.readFrames(0, frames.data(), frames.size()));
        return frames;
    }

    // What one whole encoding of the document writes, for comparison.
    std::string encodedWhole(const TargetFormat& target, const std::string& name) {
        FramesSource source({kRate, 1}, document());
        const std::string path = folder.file(name);
        EXPECT_TRUE(encodeFile(source, path, target, kComment).ok());
        return path;
    }

    TempFolder folder;
    VirtualEventLoop loop;
    VirtualBackend backend{loop, {}};
    std::shared_ptr<Clipboard> clipboard = std::make_shared<Clipboard>();
    WaveEditor dictation{loop, backend, clipboard, "AudioEditor1"};
    WaveEditor scratch{loop, backend, clipboard, "AudioEditor21"};
    TargetFormat mp3;
    TargetFormat wav;
};

TEST_F(GrowingSaveTest, AGrownTakeIsAddedToTheSavedMp3AndCompletedAtTheClose) {
    const std::string path = folder.file("Letter 1.mp3");
    ASSERT_TRUE(dictation.New(kRate, 1).ok());
    dictation.setComment(kComment);
    dictation.chooseFormat(mp3);
    ASSERT_TRUE(dictation.Record().ok());
    loop.advance(Milliseconds(30000));
    save(path);  // the take goes on
    const auto firstSave = heard(path);
    const ino_t firstFile = inodeOf(path);
    EXPECT_NEAR(static_cast<double>(firstSave.size()), 30.0 * kRate, 0.01 * 30 * kRate);

    loop.advance(Milliseconds(20000));
    save(path);
    EXPECT_EQ(inodeOf(path), firstFile) << "added to the file, not written anew";
    const auto secondSave = heard(path);
    EXPECT_NEAR(static_cast<double>(secondSave.size()), 50.0 * kRate, 0.01 * 50 * kRate);
    EXPECT_NEAR(static_cast<double>(framesFfmpegHears(path)), 50.0 * kRate, 0.01 * 50 * kRate);
    ASSERT_GE(secondSave.size(), firstSave.size());
    EXPECT_TRUE(std::equal(firstSave.begin(), firstSave.end(), secondSave.begin()))
        << "the audio of the first save is still the start of the file";
    EXPECT_NE(commandOutput("ffprobe -v error -show_entries format_tags=comment '" + path + "'")
                  .find(kComment),
              std::string::npos);

    dictation.Stop();
    const std::string whole = encodedWhole(mp3, "whole.mp3");
    dictation.Close();
    EXPECT_EQ(heard(path), heard(whole)) << "completed, the file is what one whole encoding writes";
}

TEST_F(GrowingSaveTest, AnEditInTheMiddleSavesTheWholeTakeAndTheNextGrowthIsAddedAgain) {
    const std::string path = folder.file("Letter 2.mp3");
    ASSERT_TRUE(dictation.New(kRate, 1).ok());
    dictation.chooseFormat(mp3);
    recordFor(dictation, 40);
    save(path);
    const ino_t firstFile = inodeOf(path);

    dictation.setSelectionStart(10 * kRate);
    dictation.setSelectionEnd(20 * kRate);
    dictation.setSelectionActive(true);
    ASSERT_TRUE(dictation.Cut().ok());
    dictation.setCursorPosition(dictation.Length());
    ASSERT_TRUE(dictation.Record().ok());
    loop.advance(Milliseconds(10000));
    save(path);
    const ino_t wholeAgain = inodeOf(path);
    EXPECT_NE(wholeAgain, firstFile) << "saved whole, beside the old file and moved over it";
    EXPECT_NEAR(static_cast<double>(heard(path).size()), 40.0 * kRate, 0.01 * 40 * kRate);

    loop.advance(Milliseconds(10000));
    save(path);
    EXPECT_EQ(inodeOf(path), wholeAgain);
    EXPECT_NEAR(static_cast<double>(heard(path).size()), 50.0 * kRate, 0.01 * 50 * kRate);
    dictation.Stop();

    // Saved elsewhere, the take goes whole into the new file and the old one is
    // completed; closed, both are the whole take.
    const std::string copy = folder.file("Letter 2 copy.mp3");
    save(copy);
    dictation.Close();
    EXPECT_EQ(heard(path), heard(copy));
}

TEST_F(GrowingSaveTest, AWaveFileAtTheTakesRateIsCopiedFromTheWorkFilesAsTheOtherWriterWritesIt) {
    const std::string path = folder.file("Letter 3.wav");
    ASSERT_TRUE(scratch.New(kRate, 1).ok());
    recordFor(scratch, 1);
    scratch.setSelectionStart(0);
    scratch.setSelectionEnd(scratch.Length());
    scratch.setSelectionActive(true);
    ASSERT_TRUE(scratch.Copy().ok());
    ASSERT_TRUE(dictation.New(kRate, 1).ok());
    dictation.setComment(kComment);
    dictation.chooseFormat(wav);
    recordFor(dictation, 3);
    dictation.setCursorPosition(kRate);
    ASSERT_TRUE(dictation.Paste().ok());  // pieces of two work files

    dictation.setCursorPosition(dictation.Length());
    ASSERT_TRUE(dictation.Record().ok());
    loop.advance(Milliseconds(1000));
    save(path);  // the take goes on
    EXPECT_EQ(heard(path), document());
    EXPECT_EQ(platform::readWholeFile(path).valueOr(""),
              platform::readWholeFile(encodedWhole(wav, "whole.wav")).valueOr(""));
    EXPECT_NE(commandOutput("ffprobe -v error -show_entries format_tags=comment '" + path + "'")
                  .find(std::string("comment=") + kComment),
              std::string::npos);

    loop.advance(Milliseconds(2000));
    const ino_t firstFile = inodeOf(path);
    save(path);
    EXPECT_EQ(inodeOf(path), firstFile);
    EXPECT_EQ(heard(path), document());
    EXPECT_EQ(platform::readWholeFile(path).valueOr(""),
              platform::readWholeFile(encodedWhole(wav, "whole2.wav")).valueOr(""));
    dictation.Stop();
}

TEST(PiecesAddedTest, OnlyGrowthAtTheEndCounts) {
    TempFolder folder;
    const std::shared_ptr<const WorkFile> a = *WorkFile::create(folder.file("a.tmp"), {kRate, 1});
    const std::shared_ptr<const WorkFile> b = *WorkFile::create(folder.file("b.tmp"), {kRate, 1});
    const PieceList saved = {{a, 0, 100}, {b, 0, 50}, {a, 100, 10}};
    struct Case {
        const char* label;
        PieceList now;
        std::optional<PieceList> added;
    };
    const Case cases[] = {
        {"unchanged", saved, PieceList{}},
        {"the last piece grew", {{a, 0, 100}, {b, 0, 50}, {a, 100, 30}}, PieceList{{a, 110, 20}}},
        {"a piece was added",
         {{a, 0, 100}, {b, 0, 50}, {a, 100, 10}, {b, 50, 5}},
         PieceList{{b, 50, 5}}},
        {"the last piece shrank", {{a, 0, 100}, {b, 0, 50}, {a, 100, 5}}, std::nullopt},
        {"a middle piece grew", {{a, 0, 100}, {b, 0, 60}, {a, 100, 10}}, std::nullopt},
        {"cut in the middle", {{a, 0, 40}, {a, 60, 40}, {b, 0, 50}, {a, 100, 10}}, std::nullopt},
        {"another file at the end", {{a, 0, 100}, {b, 0, 50}, {b, 100, 10}}, std::nullopt},
    };
    const auto same = [](const PieceList& x, const PieceList& y) {
        return std::equal(x.begin(), x.end(), y.begin(), y.end(),
                          [](const Piece& p, const Piece& q) {
                              return p.file == q.file && p.start == q.start && p.length == q.length;
                          });
    };
    for (const Case& c : cases) {
        const auto added = piecesAddedTo(saved, c.now);
        ASSERT_EQ(added.has_value(), c.added.has_value()) << c.label;
        if (added) {
            EXPECT_TRUE(same(*added, *c.added)) << c.label;
        }
    }
}

}  // namespace
}  // namespace ovd::engine
