#pragma once
// The MP3 encoder's options window as data, and the encoder settings it keeps in
// the data folder (EncoderOptions.ini) from one run to the next. The settings are
// shown as the command line of the command-line encoder that makes the same file.

#include <array>
#include <string>
#include <string_view>

#include "settings/encoder_options.h"

namespace ovd::configuration {

// The options themselves are kept by the settings, where the format in force
// is worked out from them too.
using settings::ChannelMode;
using settings::kAltPresetNames;
using settings::kAthControlNames;
using settings::kChannelModeNames;
using settings::kEmphasisNames;
using settings::kMp3Frequencies;
using settings::kMp3FrequencyNames;
using settings::kMp3SliderBitRates;
using settings::kPresetNames;
using settings::kVbrMethodNames;
using settings::loadMp3Settings;
using settings::Mp3Settings;
using settings::storeMp3Settings;
using settings::VbrMethod;

// "Current bitrate: 32 kbit"
std::string bitRateCaption(int bitRateIndex);
// The slider position of a rate of the format boxes; the nearest lower rate where
// the slider lacks it (40 and 80 can't be set on the slider).
int sliderIndexOfBitRate(int kbit);
int frequencyIndexOf(int hz);

// txtCommLine: the command-line encoder's arguments that make the same file from
// "in.wav" into "out.mp3", the program name first.
std::string lameCommandLine(const Mp3Settings& settings, std::string_view in = "in.wav",
                            std::string_view out = "out.mp3");

// The values the window writes back into a format group of the file-save
// settings: frequency, bit rate and channel count, as the boxes hold them.
struct FormatBoxValues {
    std::string frequency;
    std::string bitRate;
    std::string channels;
};
FormatBoxValues formatBoxValues(const Mp3Settings& settings);

}  // namespace ovd::configuration
