#pragma once
// From a settings group (format word, frequency, channels, bit rate) to what the
// editor records in and saves as. The station keeps two groups, Normal and Other
// Conditions; either goes through the same steps.

#include <array>
#include <string>
#include <string_view>

#include "engine/audio_backend.h"
#include "engine/audio_format.h"

namespace ovd::engine {

// The four settings of one choice, as the record holds them.
struct FormatGroup {
    std::string FormatType;
    std::string Frequency;
    std::string Channel;
    std::string FileBit;
};

// What the RAW options set: companding, channels and rate of headerless files.
struct RawSettings {
    RawEncoding encoding = RawEncoding::Pcm16;
    int channels = 1;
    int sampleRate = 8000;
};

struct FormatChoice {
    FormatGroup normalised;         // Frequency as a rate of the list, Channel as a digit
    int Bitrate = 0;                // FileBit when it is one of the list, else 0
    std::string CurrentFormatType;  // the word in force, "DSP" read as "WAV"
    bool TrueSpeech = false;
    PcmFormat recording;  // what New() is given for a take in this choice
    TargetFormat target;  // what SaveAs writes
};

// An MP3 takes its rate, channels and bit rate from the group and the rest of
// its encoding from mp3.
FormatChoice FigureOutFileFormats(const FormatGroup& group, const RawSettings& raw = {},
                                  const Mp3Encoding& mp3 = {});

// The lists the format boxes offer, in their order.
inline constexpr std::array<std::string_view, 7> kFormatNames = {"DSP", "MP2", "MP3", "RAW",
                                                                 "VOX", "WAV", "WMA"};
inline constexpr std::array<int, 12> kSampleRates = {6000,  8000,  11025, 12000, 16000, 22050,
                                                     24000, 32000, 44100, 48000, 88200, 96000};
inline constexpr std::array<int, 18> kBitRates = {8,  16,  24,  32,  40,  48,  56,  64,  80,
                                                  96, 112, 128, 160, 192, 224, 256, 320, 350};

// The file dialog filter of a format word ("Wav Files (*.wav)|*.wav").
std::string fileFilterFor(std::string_view formatWord);

// A rate of the list for a stored frequency: the number itself, a legacy name such
// as "FQ_16_KHZ", or the list's nearest rate; 0 when nothing can be made of it.
int normaliseFrequency(std::string_view stored);

}  // namespace ovd::engine
