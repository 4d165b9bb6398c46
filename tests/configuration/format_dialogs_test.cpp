// The format option windows: the MP3 options as a command line the command-line
// encoder really makes that file with, what they write back into the file-save
// boxes, and what is kept in the data folder.

#include "configuration/format_dialogs.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "platform/files.h"
#include "support/temp_folder.h"

namespace ovd::configuration {
namespace {

// The first MPEG audio frame header of an MP3 file, after any ID3 tag.
struct FrameHeader {
    int sampleRate = 0;
    int bitRateKbps = 0;
    int mode = -1;          // 0 stereo, 1 joint stereo, 2 dual, 3 mono
    bool variable = false;  // a "Xing" frame rather than "Info" opens the stream
};

constexpr std::array<std::array<int, 3>, 4> kRates = {
    {{11025, 12000, 8000}, {0, 0, 0}, {22050, 24000, 16000}, {44100, 48000, 32000}}};
constexpr std::array<int, 16> kMpeg1Kbps = {0,   32,  40,  48,  56,  64,  80,  96,
                                            112, 128, 160, 192, 224, 256, 320, 0};
constexpr std::array<int, 16> kMpeg2Kbps = {0,  8,  16, 24,  32,  40,  48,  56,
                                            64, 80, 96, 112, 128, 144, 160, 0};

std::optional<FrameHeader> firstFrame(const std::string& bytes) {
    std::size_t at = 0;
    if (bytes.rfind("ID3", 0) == 0 && bytes.size() > 10) {
        at = 10 + ((std::size_t(bytes[6] & 0x7f) << 21) | (std::size_t(bytes[7] & 0x7f) << 14) |
                   (std::size_t(bytes[8] & 0x7f) << 7) | std::size_t(bytes[9] & 0x7f));
    }
    for (; at + 4 < bytes.size(); ++at) {
        const auto b = [&](std::size_t i) { return static_cast<std::uint8_t>(bytes[at + i]); };
        if (b(0) != 0xFF || (b(1) & 0xE0) != 0xE0) continue;
        const int version = (b(1) >> 3) & 3;  // 3 MPEG 1, 2 MPEG 2, 0 MPEG 2.5
        const int rateIndex = (b(2) >> 2) & 3;
        if (rateIndex == 3) continue;
        FrameHeader header;
        header.sampleRate =
            kRates[static_cast<std::size_t>(version)][static_cast<std::size_t>(rateIndex)];
        const auto& kbps = version == 3 ? kMpeg1Kbps : kMpeg2Kbps;
        header.bitRateKbps = kbps[static_cast<std::size_t>(b(2) >> 4)];
        header.mode = b(3) >> 6;
        header.variable = bytes.find("Xing", at) < at + 64;
        return header;
    }
    return std::nullopt;
}

class Mp3OptionsTest : public ::testing::Test {
  protected:
    // A second of stereo tone, encoded with the window's command line.
    std::optional<FrameHeader> encode(const Mp3Settings& settings) {
        const std::string wav = folder.file("in.wav");
        const std::string mp3 = folder.file("out.mp3");
        const std::string tone = "sox -n -r 44100 -c 2 -b 16 '" + wav + "' synth 1 sine 440";
        if (std::system(tone.c_str()) != 0) return std::nullopt;
        const std::string line =
            lameCommandLine(settings, "'" + wav + "'", "'" + mp3 + "'") + " --silent";
        if (std::system(line.c_str()) != 0) {
            ADD_FAILURE() << line;
            return std::nullopt;
        }
        const auto bytes = platform::readWholeFile(mp3);
        if (!bytes) return std::nullopt;
        return firstFrame(std::string(*bytes));
    }

    ::ovd::testing::TempFolder folder;
};

TEST_F(Mp3OptionsTest, TheCommandLineMakesTheFileTheWindowDescribes) {
    struct Case {
        const char* what;
        Mp3Settings settings;
        int sampleRate, bitRate, mode;
        bool variable;
    };
    Mp3Settings mono32;
    mono32.frequencyIndex = frequencyIndexOf(16000);
    mono32.bitRateIndex = sliderIndexOfBitRate(32);
    mono32.mode = ChannelMode::Mono;
    Mp3Settings joint;
    joint.frequencyIndex = frequencyIndexOf(44100);
    joint.bitRateIndex = sliderIndexOfBitRate(128);
    joint.mode = ChannelMode::ForcedJointStereo;
    Mp3Settings stereo = joint;
    stereo.mode = ChannelMode::Stereo;
    Mp3Settings vbr = joint;
    vbr.vbr = VbrMethod::Mtrh;
    vbr.bitRateIndex = sliderIndexOfBitRate(32);
    const Case cases[] = {
        {"32 kbit mono", mono32, 16000, 32, 3, false},
        {"joint stereo", joint, 44100, 128, 1, false},
        {"stereo", stereo, 44100, 128, 0, false},
        {"variable", vbr, 44100, -1, 1, true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        const auto frame = encode(c.settings);
        ASSERT_TRUE(frame);
        EXPECT_EQ(frame->sampleRate, c.sampleRate);
        if (c.bitRate > 0) {
            EXPECT_EQ(frame->bitRateKbps, c.bitRate);
        }
        EXPECT_EQ(frame->mode, c.mode);
        EXPECT_EQ(frame->variable, c.variable);
    }
}

TEST(Mp3Options, TheSliderHasNoFortyOrEighty) {
    EXPECT_EQ(kMp3SliderBitRates[static_cast<std::size_t>(sliderIndexOfBitRate(40))], 32);
    EXPECT_EQ(kMp3SliderBitRates[static_cast<std::size_t>(sliderIndexOfBitRate(80))], 64);
    EXPECT_EQ(bitRateCaption(sliderIndexOfBitRate(48)), "Current bitrate: 48 kbit");
}

TEST(Mp3Options, ApplyKeepsTheSettingsAndFillsTheBoxesOfTheGroupWorkedOn) {
    ::ovd::testing::TempFolder folder;
    ASSERT_TRUE(storeRawLayout(folder.path(), RawLayout{0, 2, 4}));
    struct Written {
        bool other = false;
        FormatBoxValues values;
        int times = 0;
    } written;
    const WriteBack writeBack = [&written](bool other, const FormatBoxValues& values) {
        written = {other, values, written.times + 1};
    };

    Mp3OptionsDialog standalone(folder.path(), WorkingOnDefault::None, writeBack);
    standalone.settings.vbr = VbrMethod::Abr;
    EXPECT_TRUE(standalone.vbrGroupEnabled());
    EXPECT_TRUE(standalone.apply());
    EXPECT_EQ(written.times, 0);

    Mp3OptionsDialog dialog(folder.path(), WorkingOnDefault::Other, writeBack);
    EXPECT_EQ(dialog.settings.vbr, VbrMethod::Abr);  // kept from the first window
    dialog.settings.vbr = VbrMethod::None;
    EXPECT_FALSE(dialog.vbrGroupEnabled());
    dialog.settings.frequencyIndex = frequencyIndexOf(22050);
    dialog.settings.bitRateIndex = sliderIndexOfBitRate(56);
    dialog.settings.mode = ChannelMode::JointStereo;
    EXPECT_TRUE(dialog.ok());
    EXPECT_EQ(written.times, 1);
    EXPECT_TRUE(written.other);
    EXPECT_EQ(written.values.frequency, "22050");
    EXPECT_EQ(written.values.bitRate, "56");
    EXPECT_EQ(written.values.channels, "STEREO");

    EXPECT_EQ(loadMp3Settings(folder.path()), dialog.settings);
    EXPECT_EQ(loadRawLayout(folder.path()), (RawLayout{0, 2, 4}));
}

TEST(ConvertChoice, OpensOnTheFilesValuesAndARateOffTheListChoosesNone) {
    EXPECT_EQ(convertRate(convertChoiceFor(22050, 2)), 22050);
    EXPECT_EQ(convertChoiceFor(22050, 2).channels, 2);
    EXPECT_FALSE(convertChoiceFor(96000, 1).frequencyIndex);
    EXPECT_FALSE(convertRate(convertChoiceFor(96000, 1)));
}

}  // namespace
}  // namespace ovd::configuration
