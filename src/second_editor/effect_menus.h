#pragma once
// The Operation and Filters menus: each entry runs one effect of the engine with
// parameters the engine keeps fixed, so a menu entry is only a name and an effect.

#include <array>

#include "engine/effects.h"

namespace ovd::second_editor {

struct EffectMenuEntry {
    const char* control;  // the menu entry's control name
    engine::Effect effect;
};

inline constexpr std::array<EffectMenuEntry, 13> kOperationMenu{{
    {"mnuAmplify1", engine::Effect::AmplifyUp},
    {"mnuAmplify2", engine::Effect::AmplifyDown},
    {"mnuFade1", engine::Effect::FadeIn},
    {"mnuFade2", engine::Effect::FadeOut},
    {"mnuStretch1", engine::Effect::StretchLonger},
    {"mnuStretch2", engine::Effect::StretchShorter},
    {"mnuDelay", engine::Effect::Delay},
    {"mnuDelSilence", engine::Effect::DeleteSilence},
    {"mnuInsSilence", engine::Effect::InsertSilence},
    {"mnuFlanger", engine::Effect::Flanger},
    {"mnuVibrato", engine::Effect::Vibrato},
    {"mnuInvert", engine::Effect::Invert},
    {"mnuNormalize", engine::Effect::Normalize},
}};

inline constexpr std::array<EffectMenuEntry, 5> kFiltersMenu{{
    {"mnuBandPass", engine::Effect::BandPass},
    {"mnuHighPass", engine::Effect::HighPass},
    {"mnuLowPass", engine::Effect::LowPass},
    {"mnuHighShelf", engine::Effect::HighShelf},
    {"mnuLowShelf", engine::Effect::LowShelf},
}};

}  // namespace ovd::second_editor
