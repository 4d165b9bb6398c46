#pragma once
// The recording formats a dictation can be saved in, and the choice of one of
// them with its parameters: what the engine's file format selector holds.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace ovd::engine {

// The format words of the settings, in the order the lists show them.
enum class FormatWord { WAV, MP3, MP2, WMA, VOX, RAW, DSP };

// RAW files: 16-bit PCM by default, or one of the two telephone companding laws.
enum class RawEncoding { Pcm16, MuLaw, ALaw };

struct TargetFormat {
    FormatWord word = FormatWord::WAV;
    int sampleRate = 16000;
    int channels = 1;
    int bitrateKbps = 0;     // MP3, MP2 and WMA; 0 lets the codec choose
    int bitsPerSample = 16;  // WAV: 8, 16, 24 or 32
    RawEncoding raw = RawEncoding::Pcm16;
    // Set for "DSP": saved as a speech codec inside a ".WAV" file.
    bool TrueSpeech = false;

    bool operator==(const TargetFormat&) const = default;
};

// "WAV" -> FormatWord::WAV and so on, case-sensitive as the settings hold them.
std::optional<FormatWord> parseFormatWord(std::string_view word);
std::string formatWordText(FormatWord word);

// The file name extension a format is saved under (without the dot), in capitals:
// "DSP" is saved as "WAV".
std::string formatExtension(FormatWord word);

using SampleCount = std::int64_t;

// milliseconds / 1000 * rate, truncated.
SampleCount MilliSecondsToSamples(double milliseconds, int samplesPerSecond);
// samples / rate * 1000.
double SamplesToMilliSeconds(SampleCount samples, int samplesPerSecond);

}  // namespace ovd::engine
