#include "configuration/format_dialogs.h"

#include <algorithm>

#include "configuration/number_text.h"
#include "platform/files.h"
#include "settings/ini_store.h"

namespace ovd::configuration {

namespace {

constexpr const char* kEncoderFile = "EncoderOptions.ini";

settings::IniStore encoderOptions(const std::string& dataFolder) {
    return settings::IniStore(platform::joinPath(dataFolder, kEncoderFile));
}

int storedIndex(const settings::IniStore& store, const char* section, const char* key,
                int fallback, int count) {
    const auto value = wholeNumber(store.ReadKey(section, key));
    if (!value || *value >= count) return fallback;
    return static_cast<int>(*value);
}

}  // namespace

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

RawLayout loadRawLayout(const std::string& dataFolder) {
    const settings::IniStore store = encoderOptions(dataFolder);
    RawLayout layout;
    layout.compression = storedIndex(store, "RAW", "Compression", layout.compression, 3);
    layout.channels = storedIndex(store, "RAW", "Channels", 0, 3) == 2 ? 2 : 1;
    layout.frequencyIndex = storedIndex(store, "RAW", "Frequency", layout.frequencyIndex,
                                        static_cast<int>(kDialogFrequencies.size()));
    return layout;
}

bool storeRawLayout(const std::string& dataFolder, const RawLayout& layout) {
    const settings::IniStore store = encoderOptions(dataFolder);
    return store.WriteKey("RAW", "Compression", std::to_string(layout.compression)) &&
           store.WriteKey("RAW", "Channels", std::to_string(layout.channels)) &&
           store.WriteKey("RAW", "Frequency", std::to_string(layout.frequencyIndex));
}

int loadVoxFrequencyIndex(const std::string& dataFolder) {
    return storedIndex(encoderOptions(dataFolder), "VOX", "Frequency", 1,
                       static_cast<int>(kDialogFrequencies.size()));
}

bool storeVoxFrequencyIndex(const std::string& dataFolder, int frequencyIndex) {
    return encoderOptions(dataFolder).WriteKey("VOX", "Frequency", std::to_string(frequencyIndex));
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

}  // namespace ovd::configuration
