#include "engine/audio_format.h"

#include <array>
#include <utility>

namespace ovd::engine {

namespace {
constexpr std::array<std::pair<FormatWord, std::string_view>, 8> kWords = {{
    {FormatWord::WAV, "WAV"},
    {FormatWord::MP3, "MP3"},
    {FormatWord::MP2, "MP2"},
    {FormatWord::WMA, "WMA"},
    {FormatWord::VOX, "VOX"},
    {FormatWord::RAW, "RAW"},
    {FormatWord::DSP, "DSP"},
    {FormatWord::OGG, "OGG"},
}};
}  // namespace

std::optional<FormatWord> parseFormatWord(std::string_view word) {
    for (const auto& [format, text] : kWords) {
        if (text == word) return format;
    }
    return std::nullopt;
}

std::string formatWordText(FormatWord word) {
    for (const auto& [format, text] : kWords) {
        if (format == word) return std::string(text);
    }
    return {};
}

std::string formatExtension(FormatWord word) {
    return word == FormatWord::DSP ? "WAV" : formatWordText(word);
}

SampleCount MilliSecondsToSamples(double milliseconds, int samplesPerSecond) {
    return static_cast<SampleCount>(milliseconds / 1000.0 * samplesPerSecond);
}

double SamplesToMilliSeconds(SampleCount samples, int samplesPerSecond) {
    if (samplesPerSecond <= 0) return 0.0;
    return static_cast<double>(samples) / samplesPerSecond * 1000.0;
}

}  // namespace ovd::engine
