// Every recording format written from a 16 kHz mono take and read back: the
// length, rate and pitch survive, and an outside tool sees the container and
// codec the format word promises, with the station's comment where it fits.

#include "engine/codecs.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "platform/system_queries.h"
#include "support/temp_folder.h"
#include "test_signal.h"

namespace ovd::engine {
namespace {

using testing::commandOutput;
using testing::readAll;
using testing::toneHertz;
using testing::ToneSource;

constexpr PcmFormat kTake{16000, 1};
constexpr double kSeconds = 3.0;
constexpr const char* kComment = "OVDESK";

TargetFormat format(FormatWord word, int rate, int channels, int kbps = 0, int bits = 16,
                    RawEncoding raw = RawEncoding::Pcm16) {
    TargetFormat target;
    target.word = word;
    target.sampleRate = rate;
    target.channels = channels;
    target.bitrateKbps = kbps;
    target.bitsPerSample = bits;
    target.raw = raw;
    target.TrueSpeech = word == FormatWord::DSP;
    return target;
}

std::string ffprobe(const std::string& path, const std::string& entries) {
    return commandOutput("ffprobe -v error -show_entries " + entries + " -of default=nw=1 '" +
                         path + "'");
}

// A figure of sox's "stat" report; -1 when the line is missing.
double soxFigure(const std::string& report, const std::string& label) {
    const auto at = report.find(label);
    return at == std::string::npos ? -1.0 : std::stod(report.substr(at + label.size()));
}

struct FormatCase {
    const char* label;
    TargetFormat target;
    const char* fileName;
    const char* readAs;  // the reader's formatName()
    int rate;            // the rate the file ends up at
    int channels;
    // What ffprobe reports for files with a header; empty for headerless ones.
    const char* probed;
    const char* bitRate;  // "bit_rate=..." as ffprobe shows it, where it is fixed
    bool hasComment;
    // How sox is told the layout of a headerless file, to decode it on its own.
    const char* soxLayout;
};

const FormatCase kFormats[] = {
    {"WAV 8-bit", format(FormatWord::WAV, 16000, 1, 0, 8), "a.wav", "WAV", 16000, 1,
     "codec_name=pcm_u8\nformat_name=wav", "", true, ""},
    {"WAV 16-bit", format(FormatWord::WAV, 16000, 1), "b.wav", "WAV", 16000, 1,
     "codec_name=pcm_s16le\nformat_name=wav", "", true, ""},
    {"WAV 24-bit", format(FormatWord::WAV, 16000, 1, 0, 24), "c.wav", "WAV", 16000, 1,
     "codec_name=pcm_s24le\nformat_name=wav", "", true, ""},
    {"WAV 32-bit", format(FormatWord::WAV, 16000, 1, 0, 32), "d.wav", "WAV", 16000, 1,
     "codec_name=pcm_s32le\nformat_name=wav", "", true, ""},
    {"WAV of an odd width is 16-bit", format(FormatWord::WAV, 16000, 1, 0, 12), "e.wav", "WAV",
     16000, 1, "codec_name=pcm_s16le\nformat_name=wav", "", true, ""},
    {"WAV resampled to 44.1 kHz stereo", format(FormatWord::WAV, 44100, 2), "f.wav", "WAV", 44100,
     2, "codec_name=pcm_s16le\nformat_name=wav", "", true, ""},
    {"MP3 32 kbit at 16 kHz", format(FormatWord::MP3, 16000, 1, 32), "g.mp3", "MP3", 16000, 1,
     "codec_name=mp3\nformat_name=mp3", "bit_rate=32000", true, ""},
    {"MP3 stereo 128 kbit at 44.1 kHz", format(FormatWord::MP3, 44100, 2, 128), "h.mp3", "MP3",
     44100, 2, "codec_name=mp3\nformat_name=mp3", "bit_rate=128000", true, ""},
    {"MP3 at a rate MPEG lacks takes the nearest", format(FormatWord::MP3, 6000, 1, 16), "i.mp3",
     "MP3", 8000, 1, "codec_name=mp3\nformat_name=mp3", "bit_rate=16000", true, ""},
    {"MP2 32 kbit at 16 kHz", format(FormatWord::MP2, 16000, 1, 32), "j.mp2", "MP2", 16000, 1,
     "codec_name=mp2\nformat_name=mp3", "bit_rate=32000", false, ""},
    {"MP2 stereo 40 kbit snaps to the layer's 48", format(FormatWord::MP2, 44100, 2, 40), "k.mp2",
     "MP2", 44100, 2, "codec_name=mp2\nformat_name=mp3", "bit_rate=48000", false, ""},
    {"WMA 32 kbit at 16 kHz", format(FormatWord::WMA, 16000, 1, 32), "l.wma", "WMA", 16000, 1,
     "codec_name=wmav2\nformat_name=asf", "bit_rate=32000", true, ""},
    {"WMA under 24 kbit is raised to it", format(FormatWord::WMA, 22050, 2, 8), "m.wma", "WMA",
     22050, 2, "codec_name=wmav2\nformat_name=asf", "bit_rate=24000", true, ""},
    {"DSP is GSM in a WAV file at 8 kHz", format(FormatWord::DSP, 44100, 2), "n.wav", "DSP", 8000,
     1, "codec_name=gsm_ms\nformat_name=wav", "", true, ""},
    {"VOX at 8 kHz", format(FormatWord::VOX, 8000, 2), "o.vox", "VOX", 8000, 1, "", "", false,
     "-t vox -r 8000 -c 1"},
    {"RAW 16-bit PCM", format(FormatWord::RAW, 16000, 1), "p.raw", "RAW", 16000, 1, "", "", false,
     "-t raw -e signed -b 16 -L -r 16000 -c 1"},
    {"RAW mu-law", format(FormatWord::RAW, 16000, 1, 0, 16, RawEncoding::MuLaw), "q.raw", "RAW",
     16000, 1, "", "", false, "-t raw -e mu-law -b 8 -r 16000 -c 1"},
    {"RAW A-law", format(FormatWord::RAW, 11025, 1, 0, 16, RawEncoding::ALaw), "r.raw", "RAW",
     11025, 1, "", "", false, "-t raw -e a-law -b 8 -r 11025 -c 1"},
};

TEST(CodecsTest, EveryFormatKeepsLengthAndPitchAndIsWhatItsWordSays) {
    ovd::testing::TempFolder folder;
    for (const FormatCase& c : kFormats) {
        SCOPED_TRACE(c.label);
        const std::string path = folder.file(c.fileName);
        ToneSource take(kTake, kSeconds);
        const platform::Result<void> written = encodeFile(take, path, c.target, kComment);
        ASSERT_TRUE(written.ok()) << written.error();

        auto opened = AudioFileReader::open(path, &c.target);
        ASSERT_TRUE(opened) << opened.error();
        auto& reader = *opened;
        EXPECT_EQ(reader->formatName(), c.readAs);
        EXPECT_EQ(reader->format(), (PcmFormat{c.rate, c.channels}));
        const auto samples = readAll(*reader);
        const double decodedSeconds = static_cast<double>(samples.size()) / c.channels / c.rate;
        EXPECT_NEAR(decodedSeconds, kSeconds, kSeconds * 0.01);
        EXPECT_NEAR(static_cast<double>(reader->frames()) / c.rate, kSeconds, kSeconds * 0.01);
        EXPECT_NEAR(static_cast<double>(fileLengthMilliseconds(path, &c.target)), kSeconds * 1000,
                    kSeconds * 10);
        EXPECT_NEAR(toneHertz(samples, c.channels, c.rate), 440.0, 4.4);

        if (*c.probed) {
            const std::string probe = ffprobe(path, "stream=codec_name:format=format_name");
            EXPECT_EQ(probe, std::string(c.probed) + "\n");
            EXPECT_NE(ffprobe(path, "stream=sample_rate,channels")
                          .find("sample_rate=" + std::to_string(c.rate) +
                                "\nchannels=" + std::to_string(c.channels)),
                      std::string::npos);
            const std::string tags = ffprobe(path, "format_tags=comment");
            EXPECT_EQ(tags.find(std::string("comment=") + kComment) != std::string::npos,
                      c.hasComment)
                << tags;
        } else {
            // sox decodes the headerless file by itself and hears the same tone.
            const std::string stat =
                commandOutput(std::string("sox ") + c.soxLayout + " '" + path + "' -n stat 2>&1");
            EXPECT_NEAR(soxFigure(stat, "Length (seconds):"), kSeconds, kSeconds * 0.01) << stat;
            EXPECT_NEAR(soxFigure(stat, "Rough   frequency:"), 440.0, 22.0) << stat;
        }
        if (*c.bitRate) {
            EXPECT_NE(ffprobe(path, "stream=bit_rate").find(c.bitRate), std::string::npos);
        }
    }
}

TEST(CodecsTest, AGivenUpOrFailedWriteLeavesNoFile) {
    ovd::testing::TempFolder folder;
    for (const FormatWord word : {FormatWord::WAV, FormatWord::MP3, FormatWord::WMA}) {
        SCOPED_TRACE(formatWordText(word));
        const std::string path = folder.file("given-up." + formatExtension(word));
        ToneSource take(kTake, 10.0);
        int calls = 0;
        const platform::Result<void> result =
            encodeFile(take, path, format(word, 16000, 1, 32), kComment, [&](double) {
                return ++calls < 2;  // the user gives up after the first block
            });
        EXPECT_FALSE(result.ok());
        EXPECT_FALSE(std::filesystem::exists(path));
    }
    ToneSource take(kTake, 1.0);
    const platform::Result<void> nowhere = encodeFile(take, folder.file("no-such-folder/x.wav"),
                                                      format(FormatWord::WAV, 16000, 1), "");
    EXPECT_FALSE(nowhere.ok());
    EXPECT_NE(nowhere.error().find("no-such-folder/x.wav"), std::string::npos) << nowhere.error();
}

TEST(CodecsTest, TheTargetIsNeverFreeWhileItIsWritten) {
    ovd::testing::TempFolder folder;
    for (const FormatWord word : {FormatWord::WAV, FormatWord::MP2}) {
        SCOPED_TRACE(formatWordText(word));
        const std::string path = folder.file("locked." + formatExtension(word));
        ToneSource take(kTake, 10.0);
        int progressCalls = 0;
        double last = 0.0;
        const platform::Result<void> result =
            encodeFile(take, path, format(word, 16000, 1, 32), "", [&](double fraction) {
                ++progressCalls;
                EXPECT_FALSE(platform::FileAvailable(path)) << "at " << fraction;
                EXPECT_GE(fraction, last);
                last = fraction;
                return true;
            });
        ASSERT_TRUE(result.ok()) << result.error();
        EXPECT_GT(progressCalls, 2) << "a ten-second take is written in several blocks";
        EXPECT_DOUBLE_EQ(last, 1.0);
        EXPECT_TRUE(platform::FileAvailable(path));
    }
}

TEST(CodecsTest, FilesThatCantBeReadSayWhy) {
    ovd::testing::TempFolder folder;
    const auto missing = AudioFileReader::open(folder.file("missing.wav"));
    EXPECT_FALSE(missing);
    EXPECT_NE(missing.error().find("missing.wav"), std::string::npos);
    EXPECT_EQ(fileLengthMilliseconds(folder.file("missing.wav")), -1);

    const std::string notAudio = folder.file("notes.wav");
    ASSERT_EQ(std::system(("echo 'not a recording' > '" + notAudio + "'").c_str()), 0);
    const auto notRead = AudioFileReader::open(notAudio);
    EXPECT_FALSE(notRead);
    EXPECT_FALSE(notRead.error().empty());

    // A headerless file can only be read with its layout.
    const std::string raw = folder.file("take.raw");
    ToneSource take(kTake, 1.0);
    ASSERT_TRUE(encodeFile(take, raw, format(FormatWord::RAW, 16000, 1), "").ok());
    const auto noLayout = AudioFileReader::open(raw);
    EXPECT_FALSE(noLayout);
    EXPECT_NE(noLayout.error().find("RAW"), std::string::npos) << noLayout.error();
}

}  // namespace
}  // namespace ovd::engine
