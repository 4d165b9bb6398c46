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

}  // namespace ovd::conversion
