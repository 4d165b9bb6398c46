#include "settings/encoder_options.h"

#include "platform/files.h"
#include "settings/ini_store.h"

namespace ovd::settings {

namespace {

IniStore encoderOptions(const std::string& dataFolder) {
    return IniStore(platform::joinPath(dataFolder, kEncoderOptionsFile));
}

// A stored index below count, or the fallback.
int storedIndex(const IniStore& store, const char* section, const char* key, int fallback,
                int count) {
    const std::string text = store.ReadKey(section, key);
    if (text.empty() || text.size() > 4 ||
        text.find_first_not_of("0123456789") != std::string::npos)
        return fallback;
    const int value = std::stoi(text);
    return value < count ? value : fallback;
}

}  // namespace

RawLayout loadRawLayout(const std::string& dataFolder) {
    const IniStore store = encoderOptions(dataFolder);
    RawLayout layout;
    layout.compression = storedIndex(store, "RAW", "Compression", layout.compression, 3);
    layout.channels = storedIndex(store, "RAW", "Channels", 1, 3) == 2 ? 2 : 1;
    layout.frequencyIndex = storedIndex(store, "RAW", "Frequency", layout.frequencyIndex,
                                        static_cast<int>(kLayoutFrequencies.size()));
    return layout;
}

platform::Result<void> storeRawLayout(const std::string& dataFolder, const RawLayout& layout) {
    const IniStore store = encoderOptions(dataFolder);
    auto written = store.WriteKey("RAW", "Compression", std::to_string(layout.compression));
    if (written) written = store.WriteKey("RAW", "Channels", std::to_string(layout.channels));
    if (written)
        written = store.WriteKey("RAW", "Frequency", std::to_string(layout.frequencyIndex));
    return written;
}

int loadVoxFrequencyIndex(const std::string& dataFolder) {
    return storedIndex(encoderOptions(dataFolder), "VOX", "Frequency", 1,
                       static_cast<int>(kLayoutFrequencies.size()));
}

platform::Result<void> storeVoxFrequencyIndex(const std::string& dataFolder, int frequencyIndex) {
    return encoderOptions(dataFolder).WriteKey("VOX", "Frequency", std::to_string(frequencyIndex));
}

}  // namespace ovd::settings
