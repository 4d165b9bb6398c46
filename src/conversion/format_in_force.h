#pragma once
// Which of the two format groups of the settings is in force: the take is made,
// saved and recovered in it.

#include <string>

#include "engine/format_selection.h"
#include "settings/encoder_options.h"
#include "settings/settings_record.h"

namespace ovd::conversion {

// The format settings of the radio button chosen: Other Conditions for "OPT3",
// Normal Conditions otherwise.
engine::FormatGroup chosenFormatGroup(const settings::SettingsRecord& record);

// How a take in the RAW format is laid out: as the RAW options window last kept
// it in the data folder.
engine::RawSettings rawLayoutInForce(const std::string& dataFolder);

// How an MP3 spends its bits (constant, variable or average rate, joint or plain
// stereo, effort, reservoir, low pass): as the MP3 options window last kept it.
engine::Mp3Encoding mp3EncodingInForce(const std::string& dataFolder);
engine::Mp3Encoding mp3EncodingOf(const settings::Mp3Settings& settings);

}  // namespace ovd::conversion
