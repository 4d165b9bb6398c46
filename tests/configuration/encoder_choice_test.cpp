// What the MP3 and Ogg option windows keep is how the station then encodes: the
// file's own headers say variable or constant rate, joint or plain stereo, and
// the Vorbis identification header the rates the Ogg window chose.

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <set>
#include <string>

#include "configuration/format_dialogs.h"
#include "configuration/ogg_options.h"
#include "conversion/format_in_force.h"
#include "engine/codecs.h"
#include "engine/format_selection.h"
#include "engine/mp3_frames.h"
#include "engine/test_signal.h"
#include "platform/files.h"
#include "support/temp_folder.h"

namespace ovd::configuration {
namespace {

using engine::testing::commandOutput;

// Ten seconds of speech at 44.1 kHz stereo, varied enough for a variable rate to vary.
std::string speech(const ::ovd::testing::TempFolder& folder) {
    const std::string spoken = folder.file("spoken.wav");
    const std::string path = folder.file("speech.wav");
    const std::string command =
        "espeak-ng -w '" + spoken +
        "' 'Please find enclosed the report of the scan taken on Friday, and the letter for "
        "the patient.' && sox '" +
        spoken + "' -r 44100 -c 2 '" + path + "'";
    EXPECT_EQ(std::system(command.c_str()), 0);
    return path;
}

// Saves from into to, and gives the path written.
std::string saved(const std::string& from, const std::string& to,
                  const engine::TargetFormat& target) {
    auto source = engine::AudioFileReader::open(from);
    EXPECT_TRUE(source) << source.error();
    if (!source) return {};
    const auto written = engine::encodeFile(**source, to, target, "");
    EXPECT_TRUE(written) << written.error();
    return to;
}

std::string bytesOf(const std::string& path) {
    const auto bytes = platform::readWholeFile(path);
    return bytes ? std::string(*bytes) : std::string();
}

TEST(EncoderChoiceTest, TheMp3WindowsRateAndStereoModeAreHowALetterIsEncoded) {
    ::ovd::testing::TempFolder folder;
    const std::string input = speech(folder);
    struct Case {
        const char* what;
        VbrMethod vbr;
        ChannelMode mode;
        const char* tag;
        int headerMode;  // 0 stereo, 1 joint stereo
    };
    const Case cases[] = {
        {"constant, joint stereo", VbrMethod::None, ChannelMode::JointStereo, "Info", 1},
        {"variable, plain stereo", VbrMethod::Mtrh, ChannelMode::Stereo, "Xing", 0},
        {"average, joint stereo", VbrMethod::Abr, ChannelMode::ForcedJointStereo, "Xing", 1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        Mp3OptionsDialog dialog(folder.path(), WorkingOnDefault::None, {});
        dialog.settings.vbr = c.vbr;
        dialog.settings.mode = c.mode;
        dialog.settings.abrBitRate = 96;
        ASSERT_TRUE(dialog.ok());
        const auto choice = engine::FigureOutFileFormats(
            {"MP3", "44100", "STEREO", "128"}, conversion::rawLayoutInForce(folder.path()),
            conversion::mp3EncodingInForce(folder.path()));
        const auto layout =
            engine::testing::layoutOf(saved(input, folder.file("letter.mp3"), choice.target));
        ASSERT_TRUE(layout);
        EXPECT_EQ(layout->tag, c.tag);
        EXPECT_EQ(layout->modes, std::set<int>{c.headerMode});
        const std::set<int> rates(layout->kbps.begin(), layout->kbps.end());
        EXPECT_EQ(rates.size() > 1, c.vbr != VbrMethod::None);
    }
}

// The Vorbis identification header: channels, rate, and the maximum, nominal and
// minimum bit rates (0 or -1 where the encoder keeps to none).
struct VorbisHeader {
    int channels = 0;
    std::uint32_t rate = 0;
    std::int32_t maximum = 0, nominal = 0, minimum = 0;
};

std::int32_t littleEndian(const std::string& bytes, std::size_t at) {
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < 4; ++i)
        value |= std::uint32_t{static_cast<std::uint8_t>(bytes[at + i])} << (8 * i);
    return static_cast<std::int32_t>(value);
}

std::optional<VorbisHeader> vorbisHeaderOf(const std::string& bytes) {
    const std::size_t at = bytes.find("\x01vorbis");
    if (at == std::string::npos || at + 28 > bytes.size()) return std::nullopt;
    VorbisHeader header;
    header.channels = static_cast<std::uint8_t>(bytes[at + 11]);
    header.rate = static_cast<std::uint32_t>(littleEndian(bytes, at + 12));
    header.maximum = littleEndian(bytes, at + 16);
    header.nominal = littleEndian(bytes, at + 20);
    header.minimum = littleEndian(bytes, at + 24);
    return header;
}

TEST(OggOptionsTest, TheWindowsChoiceIsWhatTheOggFileSays) {
    ::ovd::testing::TempFolder folder;
    const std::string input = speech(folder);
    OggOptionsDialog dialog(folder.path());
    EXPECT_TRUE(dialog.qualitySliderEnabled());
    EXPECT_FALSE(dialog.bitRateSlidersEnabled());

    // A nominal rate with bounds.
    dialog.settings.qualityEnabled = false;
    dialog.settings.vbrEnabled = true;
    dialog.settings.bitRateIndex = 6;  // 128
    dialog.setMaxBitRateIndex(8);      // 192
    dialog.setMinBitRateIndex(4);      // 96
    EXPECT_TRUE(dialog.boundSlidersEnabled());
    EXPECT_EQ(dialog.nominalLabel(), "Current nominal bitrate: 128 kbit");
    EXPECT_EQ(dialog.minLabel(), "Current min bitrate: 96 kbit");
    EXPECT_EQ(dialog.maxLabel(), "Current max bitrate: 192 kbit");
    ASSERT_TRUE(dialog.apply());
    const OggOptionsDialog reopened(folder.path());
    EXPECT_EQ(reopened.settings, dialog.settings) << "the encoder's values are shown at load";
    const std::string path = folder.file("letter.ogg");
    const auto bounded = vorbisHeaderOf(bytesOf(saved(input, path, reopened.target())));
    ASSERT_TRUE(bounded);
    EXPECT_EQ(bounded->channels, 2);
    EXPECT_EQ(bounded->rate, 44100u);
    EXPECT_EQ(bounded->nominal, 128000);
    EXPECT_EQ(bounded->minimum, 96000);
    EXPECT_EQ(bounded->maximum, 192000);
    EXPECT_NE(commandOutput("ffprobe -v error -show_entries stream=codec_name,sample_rate,channels "
                            "-of default=nw=1 '" +
                            path + "'"),
              "");
    EXPECT_EQ(commandOutput("ffprobe -v error -show_entries stream=codec_name -of csv=p=0 '" +
                            path + "'"),
              "vorbis\n");

    // A quality, mono at 16 kHz: no bounds, the rate the quality gives.
    dialog.settings.qualityEnabled = true;
    dialog.settings.quality = 6;
    dialog.settings.stereo = false;
    dialog.settings.frequencyIndex = frequencyIndexOf(16000);
    EXPECT_FALSE(dialog.boundSlidersEnabled());
    const auto byQuality = vorbisHeaderOf(bytesOf(saved(input, path, dialog.target())));
    ASSERT_TRUE(byQuality);
    EXPECT_EQ(byQuality->channels, 1);
    EXPECT_EQ(byQuality->rate, 16000u);
    EXPECT_LE(byQuality->maximum, 0);
    EXPECT_LE(byQuality->minimum, 0);
    EXPECT_GT(byQuality->nominal, 0);

    // Bounds that would cross take each other along.
    dialog.setMinBitRateIndex(10);
    EXPECT_EQ(dialog.settings.maxBitRateIndex, 10);
    dialog.setMaxBitRateIndex(2);
    EXPECT_EQ(dialog.settings.minBitRateIndex, 2);
}

}  // namespace
}  // namespace ovd::configuration
