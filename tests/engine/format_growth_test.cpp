// Every format grows as the take does: each periodic save adds the new audio to
// the file the last one wrote, the file reads back whole (through the command
// line tools, not only our own reader) after every step, a crash between the
// audio and the counts that take it in leaves the last save's file, and the file
// completed at the close is the one a single whole encoding writes.

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "engine/codec_backends.h"
#include "engine/virtual_backend.h"
#include "engine/wave_editor.h"
#include "platform/files.h"
#include "platform/system_queries.h"
#include "save_and_wait.h"
#include "support/temp_folder.h"
#include "support/virtual_event_loop.h"
#include "test_signal.h"

namespace ovd::engine {
namespace {

using ovd::testing::TempFolder;
using ovd::testing::VirtualEventLoop;
using platform::Milliseconds;
using testing::commandOutput;

constexpr int kRate = 16000;
constexpr const char* kComment = "Dr Brown, letter 7";

struct Growth {
    const char* name;
    TargetFormat target;
    // How the tools are told the layout of a file with no header; empty when it has one.
    const char* layout;
    // What the encoder may still hold back after a sync, in frames.
    SampleCount heldBack;
    bool hasCounts;  // a header that says how much audio follows
    std::size_t lastFrameBytes = 0;
};

void PrintTo(const Growth& growth, std::ostream* out) { *out << growth.name; }

TargetFormat format(FormatWord word, int bits = 16, RawEncoding raw = RawEncoding::Pcm16) {
    TargetFormat target;
    target.word = word;
    target.sampleRate = kRate;
    target.bitsPerSample = bits;
    target.raw = raw;
    target.bitrateKbps = word == FormatWord::WMA ? 32 : 0;
    return target;
}

// One uncompressed, mono rendering of a file at its own rate, as the codec library's
// command line decodes it (sox for VOX, which the codec library has no reader for).
std::string decoded(const std::string& path, const Growth& growth) {
    if (growth.target.word == FormatWord::VOX)
        return commandOutput("sox -t vox -r 16000 -c 1 '" + path + "' -t s16 - 2>/dev/null");
    return commandOutput("ffmpeg -v error " + std::string(growth.layout) + " -i '" + path +
                         "' -f s16le -ac 1 - 2>/dev/null");
}

std::size_t framesIn(const std::string& pcm) { return pcm.size() / sizeof(std::int16_t); }

ino_t inodeOf(const std::string& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 ? status.st_ino : 0;
}

class FormatGrowthTest : public ::testing::TestWithParam<Growth> {
  protected:
    FormatGrowthTest() { dictation.setTempFileName(folder.path() + "/Temp"); }

    void save(const std::string& path) {
        const auto saved = testing::saveAndWait(dictation, loop, path);
        EXPECT_TRUE(saved) << saved.error();
    }

    std::string contents(const std::string& path) {
        auto bytes = platform::readWholeFile(path);
        EXPECT_TRUE(bytes) << path;
        return bytes ? *bytes : std::string();
    }

    std::string encodedWhole(const std::string& name) {
        std::vector<std::int16_t> frames(static_cast<std::size_t>(dictation.Length()));
        frames.resize(dictation.readFrames(0, frames.data(), frames.size()));
        const std::string path = folder.file(name);
        struct Frames : PcmSource {
            std::vector<std::int16_t> all;
            std::size_t at = 0;
            [[nodiscard]] PcmFormat format() const override { return {kRate, 1}; }
            [[nodiscard]] SampleCount frames() const override {
                return static_cast<SampleCount>(all.size());
            }
            std::size_t read(std::int16_t* out, std::size_t count) override {
                const std::size_t take = std::min(count, all.size() - at);
                std::copy_n(all.begin() + static_cast<std::ptrdiff_t>(at), take, out);
                at += take;
                return take;
            }
        } source;
        source.all = std::move(frames);
        EXPECT_TRUE(encodeFile(source, path, GetParam().target, kComment).ok());
        return path;
    }

    TempFolder folder;
    VirtualEventLoop loop;
    VirtualBackend backend{loop, {}};
    WaveEditor dictation{loop, backend, std::make_shared<Clipboard>(), "AudioEditor1"};
};

TEST_P(FormatGrowthTest, EachSaveAddsToTheFileWhichReadsWholeAndEndsAsOneWholeEncoding) {
    const Growth& growth = GetParam();
    const std::string path = folder.file(std::string("Letter.") + growth.name);
    ASSERT_TRUE(dictation.New(kRate, 1).ok());
    dictation.setComment(kComment);
    dictation.chooseFormat(growth.target);
    ASSERT_TRUE(dictation.Record().ok());

    const int rate = encodedPcmFormat(growth.target, {kRate, 1}).sampleRate;
    std::string before;  // the file as the last save left it
    std::string heardBefore;
    ino_t file = 0;
    // Steps of uneven length, so that part units of the formats are held over.
    for (const int ms : {2510, 3000, 1770}) {
        loop.advance(Milliseconds(ms));
        save(path);
        const std::string now = contents(path);
        const std::string heard = decoded(path, growth);
        const auto length = static_cast<std::size_t>(dictation.Length() * rate / kRate);
        EXPECT_LE(framesIn(heard), length) << "after " << ms << " ms more";
        EXPECT_GE(framesIn(heard) + static_cast<std::size_t>(growth.heldBack), length)
            << "the file reads whole up to what the encoder holds back";
        if (file != 0) {
            EXPECT_EQ(inodeOf(path), file) << "added to, not written anew";
            // A WMA decoder ends a file with the last frame on its own; followed by
            // more, that frame sounds as the codec meant it.
            const std::size_t settled =
                heardBefore.size() - std::min(heardBefore.size(), growth.lastFrameBytes);
            EXPECT_EQ(heard.compare(0, settled, heardBefore, 0, settled), 0)
                << "the audio of the last save is still the start of the file";
            if (growth.hasCounts) {
                // Cut off by a crash after the audio went in and before its counts.
                const std::string crashed =
                    before + now.substr(std::min(before.size(), now.size()));
                const std::string crashPath = folder.file(std::string("crashed.") + growth.name);
                ASSERT_TRUE(platform::writeWholeFile(crashPath, crashed));
                EXPECT_TRUE(decoded(crashPath, growth) == heardBefore)
                    << "a crash mid-save leaves the last save's file";
            }
        }
        file = inodeOf(path);
        before = now;
        heardBefore = heard;
    }

    // The document as the last save wrote it: what the take gains at its stop is for the next save.
    const std::string whole = encodedWhole(std::string("whole.") + growth.name);
    dictation.Stop();
    dictation.Close();  // what the encoder still held goes in
    const std::string completed = decoded(path, growth);
    EXPECT_EQ(framesIn(completed), framesIn(decoded(whole, growth)));
    // A WMA file is held to its audio: its header is the codec library's to lay out.
    if (growth.target.word == FormatWord::WMA)
        EXPECT_TRUE(completed == decoded(whole, growth)) << "the same audio as one whole encoding";
    else
        EXPECT_TRUE(contents(path) == contents(whole)) << "byte for byte one whole encoding";
}

INSTANTIATE_TEST_SUITE_P(
    EveryFormat, FormatGrowthTest,
    ::testing::Values(
        Growth{"wav8", format(FormatWord::WAV, 8), "", 0, true},
        Growth{"wav24", format(FormatWord::WAV, 24), "", 0, true},
        Growth{"wav32", format(FormatWord::WAV, 32), "", 0, true},
        Growth{"raw", format(FormatWord::RAW), "-f s16le -ar 16000 -ac 1", 0, false},
        Growth{"ulaw", format(FormatWord::RAW, 16, RawEncoding::MuLaw), "-f mulaw -ar 16000 -ac 1",
               0, false},
        Growth{"vox", format(FormatWord::VOX), "", 1, false},
        // A GSM block waiting to be whole, and what the rate converter holds.
        Growth{"dsp", format(FormatWord::DSP), "", 2 * 320, true},
        // A packet of 3200 bytes holds 0.8 s at 32 kbit/s, and the encoder two frames more.
        Growth{"wma", format(FormatWord::WMA), "", kRate * 8 / 10 + 2 * 2048 + 1024, true,
               2048 * sizeof(std::int16_t)}),
    [](const ::testing::TestParamInfo<Growth>& param) { return std::string(param.param.name); });

}  // namespace
}  // namespace ovd::engine
