#include "configuration/ogg_options.h"

#include <algorithm>

namespace ovd::configuration {

namespace {

int clampedRateIndex(int index) {
    return std::clamp(index, 0, static_cast<int>(kOggBitRates.size()) - 1);
}

std::string rateLabel(const char* caption, int index) {
    return std::string(caption) +
           std::to_string(kOggBitRates[static_cast<std::size_t>(clampedRateIndex(index))]) +
           " kbit";
}

}  // namespace

OggOptionsDialog::OggOptionsDialog(std::string dataFolder)
    : settings(settings::loadOggSettings(dataFolder)), dataFolder_(std::move(dataFolder)) {}

std::string OggOptionsDialog::nominalLabel() const {
    return rateLabel("Current nominal bitrate: ", settings.bitRateIndex);
}
std::string OggOptionsDialog::minLabel() const {
    return rateLabel("Current min bitrate: ", settings.minBitRateIndex);
}
std::string OggOptionsDialog::maxLabel() const {
    return rateLabel("Current max bitrate: ", settings.maxBitRateIndex);
}

void OggOptionsDialog::setMinBitRateIndex(int index) {
    settings.minBitRateIndex = clampedRateIndex(index);
    settings.maxBitRateIndex = std::max(settings.maxBitRateIndex, settings.minBitRateIndex);
}

void OggOptionsDialog::setMaxBitRateIndex(int index) {
    settings.maxBitRateIndex = clampedRateIndex(index);
    settings.minBitRateIndex = std::min(settings.minBitRateIndex, settings.maxBitRateIndex);
}

platform::Result<void> OggOptionsDialog::apply() {
    return settings::storeOggSettings(dataFolder_, settings);
}

engine::TargetFormat OggOptionsDialog::target() const { return oggTargetOf(settings); }

engine::TargetFormat oggTargetOf(const OggSettings& s) {
    engine::TargetFormat target;
    target.word = engine::FormatWord::OGG;
    target.sampleRate = settings::kMp3Frequencies[static_cast<std::size_t>(
        std::clamp(s.frequencyIndex, 0, static_cast<int>(settings::kMp3Frequencies.size()) - 1))];
    target.channels = s.stereo ? 2 : 1;
    const auto kbit = [](int index) {
        return kOggBitRates[static_cast<std::size_t>(clampedRateIndex(index))];
    };
    target.ogg.byQuality = s.qualityEnabled;
    target.ogg.quality = std::clamp(s.quality, 0, 10);
    target.ogg.nominalKbps = kbit(s.bitRateIndex);
    target.ogg.variable = s.vbrEnabled;
    target.ogg.minKbps = kbit(s.minBitRateIndex);
    target.ogg.maxKbps = kbit(s.maxBitRateIndex);
    target.bitrateKbps = s.qualityEnabled ? 0 : target.ogg.nominalKbps;
    return target;
}

}  // namespace ovd::configuration
