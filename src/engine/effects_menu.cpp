#include "engine/effects.h"

namespace ovd::engine {

std::string_view effectMenuText(Effect effect) {
    switch (effect) {
        case Effect::AmplifyUp:
            return "Amplify +";
        case Effect::AmplifyDown:
            return "Amplify -";
        case Effect::FadeIn:
            return "Fade +";
        case Effect::FadeOut:
            return "Fade -";
        case Effect::StretchLonger:
            return "Stretch +";
        case Effect::StretchShorter:
            return "Stretch -";
        case Effect::Delay:
            return "Delay";
        case Effect::DeleteSilence:
            return "DeleteSilence";
        case Effect::InsertSilence:
            return "Insert Silence";
        case Effect::Flanger:
            return "Flanger";
        case Effect::Vibrato:
            return "Vibrato";
        case Effect::Invert:
            return "Invert";
        case Effect::Normalize:
            return "Normalize";
        case Effect::BandPass:
            return "Band pass";
        case Effect::HighPass:
            return "High pass";
        case Effect::LowPass:
            return "Low pass";
        case Effect::HighShelf:
            return "High Shelf";
        case Effect::LowShelf:
            return "Low Shelf";
    }
    return "";
}

}  // namespace ovd::engine
