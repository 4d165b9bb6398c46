#include "engine/format_selection.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <utility>

namespace ovd::engine {

namespace {

constexpr std::array<std::pair<std::string_view, int>, 12> kLegacyRates = {{
    {"FQ_96_KHZ", 96000},
    {"FQ_88_KHZ", 88200},
    {"FQ_48_KHZ", 48000},
    {"FQ_44_KHZ", 44100},
    {"FQ_32_KHZ", 32000},
    {"FQ_24_KHZ", 24000},
    {"FQ_22_KHZ", 22050},
    {"FQ_16_KHZ", 16000},
    {"FQ_12_KHZ", 12000},
    {"FQ_11_KHZ", 11025},
    {"FQ_8_KHZ", 8000},
    {"FQ_6_KHZ", 6000},
}};

// A take with no rate of its own in the settings is recorded at this rate.
constexpr int kDefaultRate = 16000;
// The speech codec of "DSP" takes its own rate; the take is made at this one.
constexpr int kSpeechCodecTakeRate = 44100;

int parseInt(std::string_view text) {
    int value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    return error == std::errc() && end == text.data() + text.size() ? value : 0;
}

}  // namespace

int normaliseFrequency(std::string_view stored) {
    for (const auto& [name, rate] : kLegacyRates) {
        if (stored == name) return rate;
    }
    const int asked = parseInt(stored);
    if (asked <= 0) return 0;
    return *std::min_element(kSampleRates.begin(), kSampleRates.end(), [asked](int a, int b) {
        return std::abs(a - asked) < std::abs(b - asked);
    });
}

std::string fileFilterFor(std::string_view formatWord) {
    if (formatWord == "DSP" || formatWord == "WAV") return "Wav Files (*.wav)|*.wav";
    if (formatWord == "MP2") return "MP2 Files (*.mp2)|*.mp2";
    if (formatWord == "MP3") return "MP3 Files (*.mp3)|*.mp3";
    if (formatWord == "RAW") return "RAW Files (*.raw) |*.raw";
    if (formatWord == "VOX") return "VOX Files (*.vox)|*.vox";
    if (formatWord == "WMA") return "WMA Files (*.WMA)|*.wma";
    return {};
}

FormatChoice FigureOutFileFormats(const FormatGroup& group, const RawSettings& raw,
                                  const Mp3Encoding& mp3) {
    FormatChoice choice;
    choice.normalised = group;
    const int bits = parseInt(group.FileBit);
    choice.Bitrate =
        std::find(kBitRates.begin(), kBitRates.end(), bits) != kBitRates.end() ? bits : 0;
    const int rate = normaliseFrequency(group.Frequency);
    choice.normalised.Frequency = rate > 0 ? std::to_string(rate) : "";
    if (group.Channel == "MONO") choice.normalised.Channel = "1";
    if (group.Channel == "STEREO") choice.normalised.Channel = "2";
    const int channels = choice.normalised.Channel == "2" ? 2 : 1;
    const int takeRate = rate > 0 ? rate : kDefaultRate;

    TargetFormat& target = choice.target;
    target.sampleRate = takeRate;
    target.channels = channels;
    choice.recording = {takeRate, channels};
    choice.CurrentFormatType = group.FormatType;

    auto word = parseFormatWord(group.FormatType).value_or(FormatWord::RAW);
    // Ogg is saved from the editor only: as a recording format it is a word the
    // lists don't have, and goes the way of every other such word.
    if (word == FormatWord::OGG) word = FormatWord::RAW;
    target.word = word;
    switch (word) {
        case FormatWord::DSP:
            // Rate, channels and bit rate are the codec's own.
            choice.TrueSpeech = true;
            choice.CurrentFormatType = "WAV";
            target.TrueSpeech = true;
            target.channels = 1;
            choice.recording = {kSpeechCodecTakeRate, 1};
            break;
        case FormatWord::WMA:
        case FormatWord::MP2:
            target.bitrateKbps = choice.Bitrate;
            break;
        case FormatWord::MP3:
            // The encoder takes the stored bit rate as it stands, listed or not.
            target.bitrateKbps = bits;
            target.mp3 = mp3;
            break;
        case FormatWord::VOX:
            target.channels = 1;
            choice.recording.channels = 1;
            break;
        case FormatWord::WAV:
            target.bitsPerSample = bits == 8 || bits == 24 || bits == 32 ? bits : 16;
            break;
        case FormatWord::OGG:
        case FormatWord::RAW:
            // Anything not a known word is saved raw, as the RAW options say.
            target.word = FormatWord::RAW;
            target.raw = raw.encoding;
            target.channels = raw.channels;
            target.sampleRate = raw.sampleRate;
            choice.recording = {raw.sampleRate, raw.channels};
            break;
    }
    return choice;
}

}  // namespace ovd::engine
