#include "conversion/format_in_force.h"

#include "settings/encoder_options.h"

namespace ovd::conversion {

engine::FormatGroup chosenFormatGroup(const settings::SettingsRecord& record) {
    if (record.RecordingFormats == "OPT3") {
        return {record.FormatType2, record.Frequency2, record.Channel2, record.FileBit2};
    }
    return {record.FormatType, record.Frequency, record.Channel, record.FileBit};
}

engine::RawSettings rawLayoutInForce(const std::string& dataFolder) {
    const settings::RawLayout layout = settings::loadRawLayout(dataFolder);
    engine::RawSettings raw;
    raw.encoding = layout.compression == 0   ? engine::RawEncoding::MuLaw
                   : layout.compression == 1 ? engine::RawEncoding::ALaw
                                             : engine::RawEncoding::Pcm16;
    raw.channels = layout.channels;
    raw.sampleRate = settings::kLayoutFrequencies[static_cast<std::size_t>(layout.frequencyIndex)];
    return raw;
}

engine::Mp3Encoding mp3EncodingOf(const settings::Mp3Settings& s) {
    using Rate = engine::Mp3Encoding::Rate;
    engine::Mp3Encoding mp3;
    switch (s.vbr) {
        case settings::VbrMethod::None:
            mp3.rate = Rate::Constant;
            break;
        case settings::VbrMethod::Default:
        case settings::VbrMethod::Mtrh:
            mp3.rate = Rate::Variable;
            break;
        case settings::VbrMethod::Abr:
            mp3.rate = Rate::Average;
            break;
    }
    mp3.variableQuality = s.vbrQuality;
    mp3.averageKbps = s.abrBitRate;
    // A preset chooses how the bits are spent by itself, whatever the rest says.
    const auto average = [&mp3](int kbps) {
        mp3.rate = Rate::Average;
        mp3.averageKbps = kbps;
    };
    const auto variable = [&mp3](int quality) {
        mp3.rate = Rate::Variable;
        mp3.variableQuality = quality;
    };
    switch (s.preset) {
        case 1:  // R3Mix
            variable(3);
            break;
        case 2:  // Studio
            average(256);
            break;
        case 3:  // HiFi
            average(160);
            break;
        case 4:  // Tape
            average(128);
            break;
        case 5:  // Radio
            average(112);
            break;
        case 6:  // Voice
            average(56);
            break;
        case 7:  // Phone
            average(16);
            break;
        default:
            switch (s.altPreset) {
                case 1:  // Fast Standard
                case 2:  // Standard
                    variable(2);
                    break;
                case 3:  // Fast Extreme
                case 4:  // Extreme
                    variable(0);
                    break;
                case 5:  // Insane
                    mp3.rate = Rate::Constant;
                    break;
                default:
                    break;
            }
    }
    // Two channels are coded apart only when the window says plain stereo or dual.
    mp3.jointStereo =
        s.mode != settings::ChannelMode::Stereo && s.mode != settings::ChannelMode::DualChannels;
    mp3.quality = s.quality;
    mp3.bitReservoir = s.bitReservoir;
    mp3.lowPassHz = s.lowPass ? s.lowPassFrequency : 0;
    return mp3;
}

engine::Mp3Encoding mp3EncodingInForce(const std::string& dataFolder) {
    return mp3EncodingOf(settings::loadMp3Settings(dataFolder));
}

}  // namespace ovd::conversion
