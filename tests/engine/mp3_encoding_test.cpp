// How an MP3 spends its bits: constant, variable or average rate, joint or plain
// stereo, read back from the file's own frame headers and its Xing or Info frame,
// for a whole save and for a take saved again and again while it grows.

#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "engine/codecs.h"
#include "engine/virtual_backend.h"
#include "engine/wave_editor.h"
#include "mp3_frames.h"
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

using testing::layoutOf;

// Errors the codec library's command line finds decoding the whole file.
std::string decodingErrors(const std::string& path) {
    return commandOutput("ffmpeg -v error -i '" + path + "' -f null - 2>&1");
}

// A few seconds of real speech at 16 kHz in stereo, which spends bits unevenly
// as speech does.
std::string speechFile(const TempFolder& folder) {
    const std::string spoken = folder.file("spoken.wav");
    const std::string path = folder.file("speech.wav");
    const std::string command =
        "espeak-ng -w '" + spoken +
        "' 'Dear Doctor Brown, thank you for seeing this patient, who came to us on Monday "
        "with a cough of three weeks. Yours sincerely.' && sox '" +
        spoken + "' -r 16000 -c 2 '" + path + "'";
    EXPECT_EQ(std::system(command.c_str()), 0);
    return path;
}

struct EncodingCase {
    const char* name;
    Mp3Encoding encoding;
    int channels;
    const char* tag;
    bool ratesDiffer;
    std::set<int> modes;
};

TEST(Mp3EncodingTest, TheFramesAreWrittenAsTheEncodingSays) {
    TempFolder folder;
    const std::string speech = speechFile(folder);
    Mp3Encoding constantPlain;
    constantPlain.jointStereo = false;
    Mp3Encoding variable;
    variable.rate = Mp3Encoding::Rate::Variable;
    variable.variableQuality = 2;
    Mp3Encoding average;
    average.rate = Mp3Encoding::Rate::Average;
    average.averageKbps = 48;
    const std::vector<EncodingCase> cases = {
        {"constant joint", Mp3Encoding{}, 2, "Info", false, {1}},
        {"constant plain", constantPlain, 2, "Info", false, {0}},
        {"variable", variable, 2, "Xing", true, {1}},
        {"average", average, 1, "Xing", true, {3}},
    };
    for (const EncodingCase& c : cases) {
        SCOPED_TRACE(c.name);
        TargetFormat target;
        target.word = FormatWord::MP3;
        target.sampleRate = 16000;
        target.channels = c.channels;
        target.bitrateKbps = 64;
        target.mp3 = c.encoding;
        auto source = AudioFileReader::open(speech);
        ASSERT_TRUE(source) << source.error();
        const std::string path = folder.file(std::string(c.name) + ".mp3");
        ASSERT_TRUE(encodeFile(**source, path, target, "").ok());

        const auto layout = layoutOf(path);
        ASSERT_TRUE(layout);
        EXPECT_EQ(layout->tag, c.tag);
        EXPECT_EQ(layout->taggedFrames, layout->kbps.size());
        EXPECT_EQ(layout->modes, c.modes);
        EXPECT_EQ(layout->sampleRate, 16000);
        const std::set<int> rates(layout->kbps.begin(), layout->kbps.end());
        if (c.ratesDiffer) {
            EXPECT_GT(rates.size(), 2u) << "the bit rate follows the speech";
        } else {
            EXPECT_EQ(rates, std::set<int>{64});
        }
        EXPECT_NE(
            commandOutput("ffprobe -v error -show_entries stream=codec_name,channels,"
                          "sample_rate -of default=nw=1 '" +
                          path + "'")
                .find("codec_name=mp3\nsample_rate=16000\nchannels=" + std::to_string(c.channels)),
            std::string::npos);
        EXPECT_EQ(decodingErrors(path), "");
    }
}

TEST(Mp3EncodingTest, AnAverageRateKeepsNearItsMean) {
    TempFolder folder;
    auto source = AudioFileReader::open(speechFile(folder));
    ASSERT_TRUE(source) << source.error();
    TargetFormat target;
    target.word = FormatWord::MP3;
    target.sampleRate = 22050;
    target.bitrateKbps = 128;  // the group's constant rate counts for nothing here
    target.mp3.rate = Mp3Encoding::Rate::Average;
    target.mp3.averageKbps = 40;
    const std::string path = folder.file("average.mp3");
    ASSERT_TRUE(encodeFile(**source, path, target, "").ok());
    const auto layout = layoutOf(path);
    ASSERT_TRUE(layout && !layout->kbps.empty());
    double sum = 0;
    for (const int kbps : layout->kbps) sum += kbps;
    EXPECT_NEAR(sum / static_cast<double>(layout->kbps.size()), 40.0, 12.0);
}

// A take saved while it records has its new frames added to the file at each
// save: under a variable rate the Xing frame must follow, so a file left as a
// save wrote it (the station gone between two saves) reads whole.
TEST(Mp3EncodingTest, AVariableRateTakeCutBetweenTwoSavesStillReadsWhole) {
    TempFolder folder;
    VirtualEventLoop loop;
    VirtualBackend backend{loop, {440.0, 0.25, speechFile(folder)}};
    WaveEditor dictation{loop, backend, std::make_shared<Clipboard>(), "AudioEditor1"};
    dictation.setTempFileName(folder.path() + "/Temp");
    TargetFormat target;
    target.word = FormatWord::MP3;
    target.sampleRate = 16000;
    target.channels = 2;
    target.bitrateKbps = 32;
    target.mp3.rate = Mp3Encoding::Rate::Variable;
    target.mp3.jointStereo = false;
    const std::string path = folder.file("Letter 1.mp3");
    ASSERT_TRUE(dictation.New(16000, 2).ok());
    dictation.chooseFormat(target);
    const auto recording = dictation.Record();
    ASSERT_TRUE(recording.ok()) << recording.error();

    const auto save = [&] {
        const auto saved = testing::saveAndWait(dictation, loop, path);
        EXPECT_TRUE(saved) << saved.error();
    };
    std::size_t framesBefore = 0;
    for (const int seconds : {12, 9}) {
        loop.advance(Milliseconds(seconds * 1000));
        save();
        const std::string cut = folder.file("cut.mp3");
        ASSERT_TRUE(platform::writeWholeFile(cut, *platform::readWholeFile(path)).ok());
        const auto layout = layoutOf(cut);
        ASSERT_TRUE(layout);
        EXPECT_EQ(layout->tag, "Xing");
        EXPECT_EQ(layout->taggedFrames, layout->kbps.size()) << "the tag counts every frame";
        EXPECT_EQ(layout->bytesAfterLastFrame, 0u) << "only whole frames";
        EXPECT_GT(layout->kbps.size(), framesBefore);
        framesBefore = layout->kbps.size();
        EXPECT_EQ(layout->modes, std::set<int>{0});
        EXPECT_EQ(decodingErrors(cut), "");
        const auto heard = AudioFileReader::open(cut);
        ASSERT_TRUE(heard) << heard.error();
        // The encoder keeps its last few frames until the take goes on.
        const auto length = static_cast<double>(dictation.Length());
        EXPECT_NEAR(static_cast<double>(testing::readAll(**heard).size() / 2), length, 0.3 * 16000);
    }
    dictation.Stop();
    dictation.Close();
    const auto closed = layoutOf(path);
    ASSERT_TRUE(closed);
    EXPECT_EQ(closed->taggedFrames, closed->kbps.size());
    EXPECT_GT(std::set<int>(closed->kbps.begin(), closed->kbps.end()).size(), 2u);
    EXPECT_EQ(decodingErrors(path), "");
}

}  // namespace
}  // namespace ovd::engine
