// Mixing audio in from a file or the clipboard, the desktop's clipboard as wave
// bytes both ways, saving the selection, and the spectral view's data.

#include <gtest/gtest.h>

#include <cmath>

#include "effects_fixture.h"

namespace ovd::engine {
namespace {

using testing::EffectsFixture;
using testing::rms;
using testing::slice;
using testing::toneSamples;
using testing::waveBytes;

class MixClipboardTest : public EffectsFixture {
  protected:
    std::string writeFile(const std::string& name, const PcmFormat& format,
                          const std::vector<std::int16_t>& samples) {
        const std::string path = folder.file(name);
        EXPECT_TRUE(platform::writeWholeFile(path, waveBytes(format, samples)).ok());
        return path;
    }
};

TEST_F(MixClipboardTest, AFileOfAnotherRateAndChannelCountIsMixedInAtTheCursor) {
    loadTone(16000, 2.0, 1000.0, 8000.0);
    const auto original = all();
    const std::string stereo =
        writeFile("stereo.wav", {44100, 2}, toneSamples({44100, 2}, 1.0, 440.0, 8000.0));

    editor.setCursorPosition(8000);
    ASSERT_TRUE(editor.MixFile(stereo).ok());
    const auto mixed = all();
    ASSERT_EQ(mixed.size(), 32000u) << "a file that ends inside the document keeps its length";
    EXPECT_EQ(slice(mixed, 0, 8000), slice(original, 0, 8000));
    EXPECT_EQ(slice(mixed, 24000, 8000), slice(original, 24000, 8000));
    // Two tones of equal level together: the level rises by the square root of two.
    EXPECT_NEAR(rms(slice(mixed, 10000, 12000)) / rms(slice(original, 10000, 12000)),
                std::sqrt(2.0), 0.03);

    // Past the end of the document the file lengthens it.
    editor.setCursorPosition(24000);
    ASSERT_TRUE(editor.MixFile(stereo).ok());
    EXPECT_EQ(editor.Length(), 24000 + 16000);

    ASSERT_TRUE(editor.Undo().ok());
    ASSERT_TRUE(editor.Undo().ok());
    EXPECT_EQ(all(), original);
    EXPECT_FALSE(editor.MixFile(folder.file("missing.wav")).ok());
    EXPECT_EQ(all(), original);
}

TEST_F(MixClipboardTest, ClipboardAudioTravelsAsWaveBytesAndMixesIn) {
    loadTone(16000, 1.0, 440.0, 8000.0);
    const auto original = all();
    editor.setSelectionStart(4000);
    editor.setSelectionEnd(12000);
    editor.setSelectionActive(true);
    ASSERT_TRUE(editor.Copy().ok());
    const std::string bytes = editor.ClipboardAsWav();
    ASSERT_EQ(bytes.substr(0, 4), "RIFF");

    clipboard->pieces.clear();
    EXPECT_EQ(editor.ClipboardAsWav(), "");
    ASSERT_TRUE(editor.setClipboardFromWav(bytes).ok());
    editor.setSelectionActive(false);
    editor.setCursorPosition(16000);
    ASSERT_TRUE(editor.Paste().ok());
    EXPECT_EQ(slice(all(), 16000, 8000), slice(original, 4000, 8000));

    // Mixed onto itself, the copy doubles the level where it lands.
    editor.setCursorPosition(4000);
    ASSERT_TRUE(editor.MixClipboard().ok());
    const auto doubled = slice(all(), 4000, 8000);
    for (std::size_t i = 0; i < doubled.size(); i += 97)
        EXPECT_EQ(doubled[i], 2 * original[4000 + i]);
}

// Other programs put 24-bit or float audio at CD rate on the desktop's clipboard.
TEST_F(MixClipboardTest, WaveBytesOfOtherSampleTypesArePastedAtTheDocumentsRate) {
    for (const std::string type : {"-b 24 -e signed-integer", "-b 32 -e floating-point",
                                   "-b 8 -e unsigned-integer", "-b 32 -e signed-integer"}) {
        SCOPED_TRACE(type);
        const std::string path = folder.file("desktop.wav");
        const std::string command =
            "sox -n -r 44100 -c 2 " + type + " '" + path + "' synth 0.5 sine 440 vol 0.5";
        ASSERT_EQ(std::system(command.c_str()), 0);
        ASSERT_TRUE(editor.New(16000, 1).ok());
        ASSERT_TRUE(editor.setClipboardFromWav(platform::readWholeFile(path).valueOr("")).ok());
        ASSERT_TRUE(editor.Paste().ok());
        EXPECT_NEAR(static_cast<double>(editor.Length()), 8000.0, 16.0);
        const auto pasted = all();
        EXPECT_NEAR(testing::toneHertz(pasted, 1, 16000), 440.0, 4.0);
        EXPECT_NEAR(rms(pasted), 32767 * 0.5 / std::sqrt(2.0), 400.0);
    }
}

TEST_F(MixClipboardTest, ClipboardBytesThatAreNotAudioAreRefused) {
    loadTone(16000, 1.0, 440.0, 8000.0);
    editor.setSelectionStart(0);
    editor.setSelectionEnd(800);
    editor.setSelectionActive(true);
    ASSERT_TRUE(editor.Copy().ok());
    const std::string kept = editor.ClipboardAsWav();

    std::string sixChannels = waveBytes({16000, 1}, std::vector<std::int16_t>(600, 0));
    sixChannels[22] = 6;
    std::string adpcm = waveBytes({16000, 1}, std::vector<std::int16_t>(600, 0));
    adpcm[20] = 2;
    const std::string noData = waveBytes({16000, 1}, {}).substr(0, 36);
    const std::string notAudio[] = {"",
                                    "Dear Sir, please find enclosed",
                                    std::string("\x89PNG\r\n\x1a\n", 8) + std::string(64, 'x'),
                                    "RIFF\x10\0\0\0AVI LIST",
                                    sixChannels,
                                    adpcm,
                                    noData};
    for (const std::string& bytes : notAudio) {
        const auto taken = editor.setClipboardFromWav(bytes);
        EXPECT_FALSE(taken.ok());
        EXPECT_FALSE(taken.ok() ? true : taken.error().empty());
        EXPECT_EQ(editor.ClipboardAsWav(), kept) << "the clipboard stays as it was";
    }
}

TEST_F(MixClipboardTest, TheSelectionIsSavedAloneInTheChosenFormat) {
    loadTone(16000, 2.0, 440.0, 8000.0);
    EXPECT_FALSE(editor.SaveSelectionAs(folder.file("none.wav")).ok()) << "nothing selected";
    editor.setSelectionStart(8000);
    editor.setSelectionEnd(24000);
    editor.setSelectionActive(true);
    TargetFormat mp3;
    mp3.word = FormatWord::MP3;
    editor.chooseFormat(mp3);
    const std::string path = folder.file("part.mp3");
    auto saved = editor.SaveSelectionAs(path);
    ASSERT_TRUE(saved.ok());
    ASSERT_TRUE(saved->get().ok());
    editor.finishSaving();
    EXPECT_NEAR(static_cast<double>(fileLengthMilliseconds(path)), 1000.0, 60.0);
    EXPECT_EQ(editor.Length(), 32000) << "the document stays whole";
}

TEST_F(MixClipboardTest, TheSpectrumShowsATonesFrequencyAtItsLevel) {
    // Half a minute of silence, then a 1 kHz tone at half scale.
    std::vector<std::int16_t> samples(30 * 16000, 0);
    const auto tone = toneSamples({16000, 1}, 30.0, 1000.0, 16384.0);
    samples.insert(samples.end(), tone.begin(), tone.end());
    load(16000, samples);
    const int bins = 256;
    const auto columns = editor.Spectrum(0, editor.Length(), 20000, bins);
    ASSERT_EQ(columns.size(), 20000u);
    const auto& toneColumn = columns.back();
    ASSERT_EQ(toneColumn.size(), static_cast<std::size_t>(bins));
    const auto loudest = std::max_element(toneColumn.begin(), toneColumn.end());
    const double hertz = static_cast<double>(loudest - toneColumn.begin()) * 8000.0 / bins;
    EXPECT_NEAR(hertz, 1000.0, 8000.0 / bins);
    EXPECT_NEAR(*loudest, -6.0, 1.5);
    EXPECT_LT(toneColumn[bins / 2], -60.0F) << "4 kHz is far from the tone";
    for (const float value : columns.front()) EXPECT_EQ(value, kSpectrumFloorDb);
    EXPECT_TRUE(editor.Spectrum(100, 100, 10, bins).empty());
}

}  // namespace
}  // namespace ovd::engine
