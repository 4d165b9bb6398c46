#pragma once
// The three faces of the main window. "Regular" shows everything; "Thin" keeps
// what an author needs while dictating (the lamps, the file, the waveform, the
// position, the times and the bar); "SuperThin" is one strip to park at the edge
// of the screen: lamps, times, level and bar. The face is kept in ScreenSize.

#include <optional>
#include <string>

namespace ovd::ui {

enum class Face { Regular, Thin, SuperThin };

// The parts of the window a face can hide.
struct FaceParts {
    bool toolIcons = true;
    bool statusLine = true;  // Label40, the file label, the mode
    bool waveform = true;
    bool positionSlider = true;
    bool editButtons = true;  // Command1, Command2, cmdOVR, Command3, the step
    bool formatBox = true;
    bool speakerBox = true;
    bool deviceBox = true;
    bool deskUnit = true;
    bool statusBar = true;
};

// The face a stored ScreenSize names; anything else reads as "Regular", the face
// a new station starts with.
Face faceFromSetting(const std::string& ScreenSize);
const char* faceSetting(Face face);
FaceParts partsOf(Face face);

}  // namespace ovd::ui
