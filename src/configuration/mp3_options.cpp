#include "configuration/mp3_options.h"

#include <algorithm>

#include "configuration/number_text.h"

namespace ovd::configuration {

namespace {

template <typename Array>
int clampIndex(long long index, const Array& list) {
    return static_cast<int>(
        std::clamp<long long>(index, 0, static_cast<long long>(list.size()) - 1));
}

// lame's own words for the presets of the window.
const char* presetArgument(int preset) {
    switch (preset) {
        case 1:
            return "--r3mix";
        case 2:
            return "--preset studio";
        case 3:
            return "--preset hifi";
        case 4:
            return "--preset tape";
        case 5:
            return "--preset radio";
        case 6:
            return "--preset voice";
        case 7:
            return "--preset phone";
        default:
            return nullptr;
    }
}

const char* altPresetArgument(int altPreset) {
    switch (altPreset) {
        case 1:
            return "--preset fast standard";
        case 2:
            return "--preset standard";
        case 3:
            return "--preset fast extreme";
        case 4:
            return "--preset extreme";
        case 5:
            return "--preset insane";
        default:
            return nullptr;
    }
}

const char* modeArgument(ChannelMode mode) {
    switch (mode) {
        case ChannelMode::Mono:
            return "-m m";
        case ChannelMode::Stereo:
            return "-m s";
        case ChannelMode::JointStereo:
            return "-m j";
        case ChannelMode::ForcedJointStereo:
            return "-m f";
        case ChannelMode::DualChannels:
            return "-m d";
    }
    return "-m m";
}

// "16000" -> "16", "11025" -> "11.025": lame takes the rate in kHz.
std::string kiloHertz(int hz) {
    std::string text = std::to_string(hz / 1000);
    if (const int rest = hz % 1000; rest != 0) {
        std::string fraction = std::to_string(rest);
        fraction.insert(0, 3 - fraction.size(), '0');
        while (!fraction.empty() && fraction.back() == '0') fraction.pop_back();
        text += "." + fraction;
    }
    return text;
}

}  // namespace

std::string bitRateCaption(int bitRateIndex) {
    return "Current bitrate: " +
           std::to_string(kMp3SliderBitRates[static_cast<std::size_t>(
               clampIndex(bitRateIndex, kMp3SliderBitRates))]) +
           " kbit";
}

int sliderIndexOfBitRate(int kbit) {
    int index = 0;
    for (std::size_t i = 0; i < kMp3SliderBitRates.size(); ++i) {
        if (kMp3SliderBitRates[i] <= kbit) index = static_cast<int>(i);
    }
    return index;
}

int frequencyIndexOf(int hz) {
    for (std::size_t i = 0; i < kMp3Frequencies.size(); ++i) {
        if (kMp3Frequencies[i] == hz) return static_cast<int>(i);
    }
    return 3;
}

std::string lameCommandLine(const Mp3Settings& s, std::string_view in, std::string_view out) {
    std::string line = "lame";
    const auto add = [&line](const std::string& argument) { line += " " + argument; };
    const int hz = kMp3Frequencies[static_cast<std::size_t>(s.frequencyIndex)];
    const int kbit = kMp3SliderBitRates[static_cast<std::size_t>(s.bitRateIndex)];
    // A preset decides the bit rates itself; the options after it refine it.
    if (const char* preset = presetArgument(s.preset)) {
        add(preset);
    } else if (const char* alt = altPresetArgument(s.altPreset)) {
        add(alt);
    } else {
        switch (s.vbr) {
            case VbrMethod::None:
                add("-b " + std::to_string(kbit));
                break;
            case VbrMethod::Default:
            case VbrMethod::Mtrh:
                add(std::string(s.vbr == VbrMethod::Mtrh ? "--vbr-new" : "--vbr-old") + " -V " +
                    std::to_string(s.vbrQuality) + " -b " + std::to_string(kbit) + " -B " +
                    std::to_string(
                        kMp3SliderBitRates[static_cast<std::size_t>(s.vbrMaxBitRateIndex)]));
                break;
            case VbrMethod::Abr:
                add("--abr " + std::to_string(s.abrBitRate));
                break;
        }
        if (s.vbr != VbrMethod::None) {
            if (!s.writeVbrHeader) add("-t");
            if (s.strictlyEnforceMinBitRate) add("-F");
        }
    }
    add(modeArgument(s.mode));
    add("--resample " + kiloHertz(hz));
    add("-q " + std::to_string(s.quality));
    if (s.athControl == 1) add("--athonly");
    if (s.athControl == 2) add("--noath");
    if (s.athControl == 3) add("--athshort");
    if (s.emphasis == 1) add("-e 5");
    if (s.emphasis == 2) add("-e c");
    if (s.strictIso) add("--strictly-enforce-ISO");
    if (!s.shortBlocks) add("--noshort");
    if (s.blockType) add("--allshort");
    if (!s.bitReservoir) add("--nores");
    if (s.errorProtection) add("-p");
    if (s.highPass) {
        add("--highpass " + kiloHertz(s.highPassFrequency));
        if (s.highPassWidth > 0) add("--highpass-width " + kiloHertz(s.highPassWidth));
    }
    if (s.lowPass) {
        add("--lowpass " + kiloHertz(s.lowPassFrequency));
        if (s.lowPassWidth > 0) add("--lowpass-width " + kiloHertz(s.lowPassWidth));
    }
    add(std::string(in));
    add(std::string(out));
    return line;
}

FormatBoxValues formatBoxValues(const Mp3Settings& s) {
    return {std::to_string(kMp3Frequencies[static_cast<std::size_t>(s.frequencyIndex)]),
            std::to_string(kMp3SliderBitRates[static_cast<std::size_t>(s.bitRateIndex)]),
            s.mode == ChannelMode::Mono ? "MONO" : "STEREO"};
}

}  // namespace ovd::configuration
