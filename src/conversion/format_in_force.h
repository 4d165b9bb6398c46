#pragma once
// Which of the two format groups of the settings is in force: the take is made,
// saved and recovered in it.

#include <string>

#include "engine/format_selection.h"
#include "settings/settings_record.h"

namespace ovd::conversion {

// The format settings of the radio button chosen: Other Conditions for "OPT3",
// Normal Conditions otherwise.
engine::FormatGroup chosenFormatGroup(const settings::SettingsRecord& record);

// How a take in the RAW format is laid out: as the RAW options window last kept
// it in the data folder.
engine::RawSettings rawLayoutInForce(const std::string& dataFolder);

}  // namespace ovd::conversion
