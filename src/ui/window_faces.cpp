#include "ui/window_faces.h"

namespace ovd::ui {

Face faceFromSetting(const std::string& ScreenSize) {
    if (ScreenSize == "Thin") return Face::Thin;
    if (ScreenSize == "SuperThin") return Face::SuperThin;
    return Face::Regular;
}

const char* faceSetting(Face face) {
    switch (face) {
        case Face::Regular:
            return "Regular";
        case Face::Thin:
            return "Thin";
        case Face::SuperThin:
            return "SuperThin";
    }
    return "Regular";
}

FaceParts partsOf(Face face) {
    FaceParts parts;
    switch (face) {
        case Face::Regular:
            break;
        case Face::Thin:
            parts.editButtons = false;
            parts.formatBox = false;
            parts.speakerBox = false;
            parts.deviceBox = false;
            parts.deskUnit = false;
            break;
        case Face::SuperThin:
            parts.toolIcons = false;
            parts.statusLine = false;
            parts.waveform = false;
            parts.positionSlider = false;
            parts.editButtons = false;
            parts.formatBox = false;
            parts.speakerBox = false;
            parts.deviceBox = false;
            parts.deskUnit = false;
            parts.statusBar = false;
            break;
    }
    return parts;
}

}  // namespace ovd::ui
