#include "conversion/format_in_force.h"

namespace ovd::conversion {

engine::FormatGroup chosenFormatGroup(const settings::SettingsRecord& record) {
    if (record.RecordingFormats == "OPT3") {
        return {record.FormatType2, record.Frequency2, record.Channel2, record.FileBit2};
    }
    return {record.FormatType, record.Frequency, record.Channel, record.FileBit};
}

}  // namespace ovd::conversion
