#include "settings/encoder_options.h"

#include <algorithm>
#include <charconv>
#include <optional>

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

constexpr const char* kMp3Section = "MP3";

template <typename Array>
int clampIndex(long long index, const Array& list) {
    return static_cast<int>(
        std::clamp<long long>(index, 0, static_cast<long long>(list.size()) - 1));
}

std::string onOff(bool on) { return on ? "1" : "0"; }

// A whole number as the file holds it; none for anything else.
std::optional<long long> storedNumber(const std::string& text) {
    long long value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return value;
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

Mp3Settings loadMp3Settings(const std::string& dataFolder) {
    const IniStore store(platform::joinPath(dataFolder, kEncoderOptionsFile));
    Mp3Settings s;
    const auto number = [&store](const char* key, int fallback) {
        return static_cast<int>(storedNumber(store.ReadKey(kMp3Section, key)).value_or(fallback));
    };
    const auto flag = [&store](const char* key, bool fallback) {
        const std::string text = store.ReadKey(kMp3Section, key);
        return text.empty() ? fallback : text == "1";
    };
    s.frequencyIndex = clampIndex(number("Frequency", s.frequencyIndex), kMp3Frequencies);
    s.mode = static_cast<ChannelMode>(
        clampIndex(number("ChannelMode", static_cast<int>(s.mode)), kChannelModeNames));
    s.bitRateIndex = clampIndex(number("BitRate", s.bitRateIndex), kMp3SliderBitRates);
    s.quality = std::clamp(number("Quality", s.quality), 0, 9);
    s.preset = clampIndex(number("Preset", s.preset), kPresetNames);
    s.altPreset = clampIndex(number("AltPreset", s.altPreset), kAltPresetNames);
    s.vbr = static_cast<VbrMethod>(
        clampIndex(number("VbrMethod", static_cast<int>(s.vbr)), kVbrMethodNames));
    s.vbrQuality = std::clamp(number("VbrQuality", s.vbrQuality), 0, 9);
    s.vbrMaxBitRateIndex =
        clampIndex(number("VbrMaxBitRate", s.vbrMaxBitRateIndex), kMp3SliderBitRates);
    s.abrBitRate = std::clamp(number("AbrBitRate", s.abrBitRate), 8, 320);
    s.writeVbrHeader = flag("WriteVbrHeader", s.writeVbrHeader);
    s.strictlyEnforceMinBitRate = flag("StrictMinBitRate", s.strictlyEnforceMinBitRate);
    s.athControl = clampIndex(number("AthControl", s.athControl), kAthControlNames);
    s.emphasis = clampIndex(number("Emphasis", s.emphasis), kEmphasisNames);
    s.strictIso = flag("StrictIso", s.strictIso);
    s.shortBlocks = flag("ShortBlocks", s.shortBlocks);
    s.bitReservoir = flag("BitReservoir", s.bitReservoir);
    s.blockType = flag("BlockType", s.blockType);
    s.errorProtection = flag("ErrorProtection", s.errorProtection);
    s.highPass = flag("HighPass", s.highPass);
    s.highPassFrequency = number("HighPassFrequency", s.highPassFrequency);
    s.highPassWidth = number("HighPassWidth", s.highPassWidth);
    s.lowPass = flag("LowPass", s.lowPass);
    s.lowPassFrequency = number("LowPassFrequency", s.lowPassFrequency);
    s.lowPassWidth = number("LowPassWidth", s.lowPassWidth);
    return s;
}

bool storeMp3Settings(const std::string& dataFolder, const Mp3Settings& s) {
    const std::string path = platform::joinPath(dataFolder, kEncoderOptionsFile);
    // The VOX and RAW layouts share the file and stay as they are.
    std::string before;
    if (auto text = platform::readWholeFile(path)) before = std::string(*text);
    IniDocument document = IniDocument::parse(before);
    const auto put = [&document](const char* key, const std::string& value) {
        document.setValue(kMp3Section, key, value);
    };
    put("Frequency", std::to_string(s.frequencyIndex));
    put("ChannelMode", std::to_string(static_cast<int>(s.mode)));
    put("BitRate", std::to_string(s.bitRateIndex));
    put("Quality", std::to_string(s.quality));
    put("Preset", std::to_string(s.preset));
    put("AltPreset", std::to_string(s.altPreset));
    put("VbrMethod", std::to_string(static_cast<int>(s.vbr)));
    put("VbrQuality", std::to_string(s.vbrQuality));
    put("VbrMaxBitRate", std::to_string(s.vbrMaxBitRateIndex));
    put("AbrBitRate", std::to_string(s.abrBitRate));
    put("WriteVbrHeader", onOff(s.writeVbrHeader));
    put("StrictMinBitRate", onOff(s.strictlyEnforceMinBitRate));
    put("AthControl", std::to_string(s.athControl));
    put("Emphasis", std::to_string(s.emphasis));
    put("StrictIso", onOff(s.strictIso));
    put("ShortBlocks", onOff(s.shortBlocks));
    put("BitReservoir", onOff(s.bitReservoir));
    put("BlockType", onOff(s.blockType));
    put("ErrorProtection", onOff(s.errorProtection));
    put("HighPass", onOff(s.highPass));
    put("HighPassFrequency", std::to_string(s.highPassFrequency));
    put("HighPassWidth", std::to_string(s.highPassWidth));
    put("LowPass", onOff(s.lowPass));
    put("LowPassFrequency", std::to_string(s.lowPassFrequency));
    put("LowPassWidth", std::to_string(s.lowPassWidth));
    // Written beside and renamed, so a crash never leaves half of the options.
    return static_cast<bool>(platform::replaceFile(path, document.serialise()));
}

OggSettings loadOggSettings(const std::string& dataFolder) {
    const IniStore store = encoderOptions(dataFolder);
    OggSettings s;
    const auto index = [&store](const char* key, int fallback, int count) {
        return storedIndex(store, "OGG", key, fallback, count);
    };
    const auto flag = [&store](const char* key, bool fallback) {
        const std::string text = store.ReadKey("OGG", key);
        return text.empty() ? fallback : text == "1";
    };
    const int rates = static_cast<int>(kOggBitRates.size());
    s.frequencyIndex =
        index("Frequency", s.frequencyIndex, static_cast<int>(kMp3Frequencies.size()));
    s.stereo = flag("Stereo", s.stereo);
    s.qualityEnabled = flag("QualityEnabled", s.qualityEnabled);
    s.quality = index("Quality", s.quality, 11);
    s.vbrEnabled = flag("VbrEnabled", s.vbrEnabled);
    s.bitRateIndex = index("BitRate", s.bitRateIndex, rates);
    s.minBitRateIndex = index("MinBitRate", s.minBitRateIndex, rates);
    s.maxBitRateIndex = index("MaxBitRate", s.maxBitRateIndex, rates);
    return s;
}

platform::Result<void> storeOggSettings(const std::string& dataFolder, const OggSettings& s) {
    const std::string path = platform::joinPath(dataFolder, kEncoderOptionsFile);
    // The other formats' options share the file and stay as they are.
    std::string before;
    if (auto text = platform::readWholeFile(path)) before = std::string(*text);
    IniDocument document = IniDocument::parse(before);
    const auto put = [&document](const char* key, const std::string& value) {
        document.setValue("OGG", key, value);
    };
    put("Frequency", std::to_string(s.frequencyIndex));
    put("Stereo", onOff(s.stereo));
    put("QualityEnabled", onOff(s.qualityEnabled));
    put("Quality", std::to_string(s.quality));
    put("VbrEnabled", onOff(s.vbrEnabled));
    put("BitRate", std::to_string(s.bitRateIndex));
    put("MinBitRate", std::to_string(s.minBitRateIndex));
    put("MaxBitRate", std::to_string(s.maxBitRateIndex));
    return platform::replaceFile(path, document.serialise());
}

}  // namespace ovd::settings
