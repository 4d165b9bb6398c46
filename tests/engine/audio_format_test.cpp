// Format words and the sample/millisecond helpers the positions shown rest on.

#include "engine/audio_format.h"

#include <gtest/gtest.h>

namespace ovd::engine {
namespace {

TEST(AudioFormatTest, FormatWordsReadAsTheSettingsHoldThemAndDspIsSavedAsWav) {
    for (const char* word : {"WAV", "MP3", "MP2", "WMA", "VOX", "RAW", "DSP"}) {
        const auto parsed = parseFormatWord(word);
        ASSERT_TRUE(parsed.has_value()) << word;
        EXPECT_EQ(formatWordText(*parsed), word);
    }
    EXPECT_FALSE(parseFormatWord("wav").has_value()) << "format words are compared as they stand";
    EXPECT_EQ(formatExtension(FormatWord::DSP), "WAV");
    EXPECT_EQ(formatExtension(FormatWord::MP3), "MP3");
}

TEST(AudioFormatTest, MillisecondsTruncateToSamplesAndBack) {
    EXPECT_EQ(MilliSecondsToSamples(1000, 16000), 16000);
    EXPECT_EQ(MilliSecondsToSamples(0.99, 11025), 10);  // 10.91 truncated
    EXPECT_DOUBLE_EQ(SamplesToMilliSeconds(8000, 16000), 500.0);
    EXPECT_DOUBLE_EQ(SamplesToMilliSeconds(100, 0), 0.0) << "no division by an empty format";
}

}  // namespace
}  // namespace ovd::engine
