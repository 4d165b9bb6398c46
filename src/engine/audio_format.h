#pragma once
// The recording formats a dictation can be saved in, and the choice of one of
// them with its parameters: what the engine's file format selector holds.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace ovd::engine {

// The format words of the settings, in the order the lists show them; OGG last,
// which the second editor saves in but the recording formats don't offer.
enum class FormatWord { WAV, MP3, MP2, WMA, VOX, RAW, DSP, OGG };

// RAW files: 16-bit PCM by default, or one of the two telephone companding laws.
enum class RawEncoding { Pcm16, MuLaw, ALaw };

// How the MP3 encoder spends its bits, beyond the rate, channels and bit rate of
// the format group: what the MP3 options window keeps.
struct Mp3Encoding {
    enum class Rate { Constant, Variable, Average };
    Rate rate = Rate::Constant;
    int variableQuality = 4;  // Variable: 0 best .. 9 smallest
    int averageKbps = 64;     // Average: the mean the encoder keeps to
    bool jointStereo = true;  // two channels coded as mid and side where it pays
    int quality = -1;         // the encoder's effort, 0 best .. 9 fastest; -1 its own
    bool bitReservoir = true;
    int lowPassHz = 0;  // 0: the encoder's own

    bool operator==(const Mp3Encoding&) const = default;
};

// How an Ogg Vorbis file spends its bits: a quality, or a nominal bit rate that
// the encoder keeps to exactly or, with a variable rate, within the bounds.
struct OggEncoding {
    bool byQuality = true;
    int quality = 3;  // 0 smallest .. 10 best
    int nominalKbps = 128;
    bool variable = false;
    int minKbps = 64;
    int maxKbps = 192;

    bool operator==(const OggEncoding&) const = default;
};

struct TargetFormat {
    FormatWord word = FormatWord::WAV;
    int sampleRate = 16000;
    int channels = 1;
    int bitrateKbps = 0;     // MP3, MP2 and WMA; 0 lets the codec choose
    int bitsPerSample = 16;  // WAV: 8, 16, 24 or 32
    RawEncoding raw = RawEncoding::Pcm16;
    // Set for "DSP": saved as a speech codec inside a ".WAV" file.
    bool TrueSpeech = false;
    Mp3Encoding mp3;  // MP3 only
    OggEncoding ogg;  // OGG only

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
