#pragma once
// What the format option windows keep in the data folder (EncoderOptions.ini),
// beside the settings record: the layout of headerless RAW files and the rate of
// VOX files. A take in the RAW format is made and saved as the layout says.

#include <array>
#include <string>

#include "platform/result.h"

namespace ovd::settings {

inline constexpr const char* kEncoderOptionsFile = "EncoderOptions.ini";

// The ten rates of the VOX and RAW windows (F1..F10).
inline constexpr std::array<int, 10> kLayoutFrequencies = {6000,  8000,  11025, 12000, 16000,
                                                           22050, 24000, 32000, 44100, 48000};

struct RawLayout {
    int compression = 2;     // 0 mu-law, 1 A-law, 2 16-bit PCM
    int channels = 1;        // 1 or 2
    int frequencyIndex = 1;  // into kLayoutFrequencies: 8000 Hz
    bool operator==(const RawLayout&) const = default;
};

// Defaults for what was never kept, or can't be read.
RawLayout loadRawLayout(const std::string& dataFolder);
// False when the file could not be written.
platform::Result<void> storeRawLayout(const std::string& dataFolder, const RawLayout& layout);
int loadVoxFrequencyIndex(const std::string& dataFolder);
platform::Result<void> storeVoxFrequencyIndex(const std::string& dataFolder, int frequencyIndex);

}  // namespace ovd::settings
