#pragma once
// frmOgg: the Ogg Vorbis options of the editor's Save As, as data. It opens on
// what the encoder was last given (kept in the data folder) and hands the
// encoder its choice back at apply and OK. A quality and a bit rate exclude
// each other: with the quality on, the bit rate sliders are off.

#include <array>
#include <string>

#include "engine/audio_format.h"
#include "settings/encoder_options.h"

namespace ovd::configuration {

using settings::kOggBitRates;
using settings::OggSettings;

inline constexpr std::array<const char*, 2> kOggChannelModeNames = {"Mono", "Stereo"};

class OggOptionsDialog {
  public:
    explicit OggOptionsDialog(std::string dataFolder);

    OggSettings settings;  // the controls

    [[nodiscard]] bool qualitySliderEnabled() const { return settings.qualityEnabled; }
    [[nodiscard]] bool bitRateSlidersEnabled() const { return !settings.qualityEnabled; }
    // The bounds count only for a variable rate.
    [[nodiscard]] bool boundSlidersEnabled() const {
        return !settings.qualityEnabled && settings.vbrEnabled;
    }
    // "Current nominal bitrate: 128 kbit" and the two bounds.
    [[nodiscard]] std::string nominalLabel() const;
    [[nodiscard]] std::string minLabel() const;
    [[nodiscard]] std::string maxLabel() const;

    // Moving one bound past the other takes the other along, so the bounds never cross.
    void setMinBitRateIndex(int index);
    void setMaxBitRateIndex(int index);

    // cmdApply / cmdOK: the encoder takes the controls, kept for the next time.
    platform::Result<void> apply();
    // What a Save As in Ogg Vorbis writes with the encoder as it stands.
    [[nodiscard]] engine::TargetFormat target() const;

  private:
    std::string dataFolder_;
};

// The Ogg Vorbis target of kept options.
engine::TargetFormat oggTargetOf(const OggSettings& settings);

}  // namespace ovd::configuration
