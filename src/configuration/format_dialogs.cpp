#include "configuration/format_dialogs.h"

#include <algorithm>

namespace ovd::configuration {

Mp3OptionsDialog::Mp3OptionsDialog(std::string dataFolder, WorkingOnDefault working,
                                   WriteBack writeBack)
    : settings(loadMp3Settings(dataFolder)),
      dataFolder_(std::move(dataFolder)),
      working_(working),
      writeBack_(std::move(writeBack)) {}

bool Mp3OptionsDialog::apply() {
    const bool kept = storeMp3Settings(dataFolder_, settings);
    if (working_ != WorkingOnDefault::None && writeBack_) {
        writeBack_(working_ == WorkingOnDefault::Other, formatBoxValues(settings));
    }
    return kept;
}

ConvertChoice convertChoiceFor(int samplesPerSecond, int channels) {
    ConvertChoice choice;
    const auto found =
        std::find(kDialogFrequencies.begin(), kDialogFrequencies.end(), samplesPerSecond);
    if (found != kDialogFrequencies.end()) {
        choice.frequencyIndex = static_cast<int>(found - kDialogFrequencies.begin());
    }
    choice.channels = channels >= 2 ? 2 : 1;
    return choice;
}

std::optional<int> convertRate(const ConvertChoice& choice) {
    if (!choice.frequencyIndex) return std::nullopt;
    return kDialogFrequencies[static_cast<std::size_t>(*choice.frequencyIndex)];
}

ConvertDialog::ConvertDialog(int samplesPerSecond, int channels, Convert convert)
    : choice(convertChoiceFor(samplesPerSecond, channels)), convert_(std::move(convert)) {}

bool ConvertDialog::ok() {
    const std::optional<int> rate = convertRate(choice);
    if (!rate) return false;
    if (convert_) convert_(*rate, choice.channels);
    return true;
}

}  // namespace ovd::configuration
