// A settings group becomes the take's format and the saved format.

#include "engine/format_selection.h"

#include <gtest/gtest.h>

namespace ovd::engine {
namespace {

TEST(FormatSelectionTest, EachFormatWordGivesItsTargetAndTake) {
    struct Case {
        FormatGroup group;
        FormatWord word;
        int rate, channels, kbps, bits;
        PcmFormat take;
    };
    const std::vector<Case> cases = {
        {{"MP3", "16000", "MONO", "8"}, FormatWord::MP3, 16000, 1, 8, 16, {16000, 1}},
        {{"MP3", "32000", "STEREO", "40"}, FormatWord::MP3, 32000, 2, 40, 16, {32000, 2}},
        {{"MP2", "FQ_22_KHZ", "1", "33"}, FormatWord::MP2, 22050, 1, 0, 16, {22050, 1}},
        {{"WMA", "44100", "2", "128"}, FormatWord::WMA, 44100, 2, 128, 16, {44100, 2}},
        {{"WAV", "8000", "1", "24"}, FormatWord::WAV, 8000, 1, 0, 24, {8000, 1}},
        {{"WAV", "8000", "1", "12"}, FormatWord::WAV, 8000, 1, 0, 16, {8000, 1}},
        {{"VOX", "6000", "STEREO", ""}, FormatWord::VOX, 6000, 1, 0, 16, {6000, 1}},
        {{"DSP", "96000", "2", "320"}, FormatWord::DSP, 96000, 1, 0, 16, {44100, 1}},
    };
    for (const Case& c : cases) {
        const FormatChoice choice = FigureOutFileFormats(c.group);
        SCOPED_TRACE(c.group.FormatType + " " + c.group.Frequency + " " + c.group.FileBit);
        EXPECT_EQ(choice.target.word, c.word);
        EXPECT_EQ(choice.target.sampleRate, c.rate);
        EXPECT_EQ(choice.target.channels, c.channels);
        EXPECT_EQ(choice.target.bitrateKbps, c.kbps);
        EXPECT_EQ(choice.target.bitsPerSample, c.bits);
        EXPECT_EQ(choice.recording, c.take);
    }
}

TEST(FormatSelectionTest, NormalisingKeepsListedValuesAndDspReadsAsWav) {
    const FormatChoice dsp = FigureOutFileFormats({"DSP", "", "MONO", "40"});
    EXPECT_TRUE(dsp.TrueSpeech);
    EXPECT_TRUE(dsp.target.TrueSpeech);
    EXPECT_EQ(dsp.CurrentFormatType, "WAV");
    EXPECT_EQ(dsp.Bitrate, 40);
    EXPECT_EQ(dsp.normalised.Channel, "1");
    EXPECT_EQ(dsp.normalised.Frequency, "");

    EXPECT_EQ(FigureOutFileFormats({"MP3", "15999", "", ""}).normalised.Frequency, "16000");
    EXPECT_EQ(FigureOutFileFormats({"MP3", "fast", "", ""}).normalised.Frequency, "");
    EXPECT_EQ(FigureOutFileFormats({"MP3", "", "", "81"}).Bitrate, 0);

    const FormatChoice unknown =
        FigureOutFileFormats({"OGG", "16000", "1", "64"}, {RawEncoding::ALaw, 2, 8000});
    EXPECT_EQ(unknown.target.word, FormatWord::RAW) << "an unknown word falls through to raw";
    EXPECT_EQ(unknown.target.raw, RawEncoding::ALaw);
    EXPECT_EQ(unknown.recording, (PcmFormat{8000, 2}));
    EXPECT_EQ(fileFilterFor("WMA"), "WMA Files (*.WMA)|*.wma");
}

}  // namespace
}  // namespace ovd::engine
