#pragma once
// Opening the settings windows of the Configuration menu, each modal over the main
// window: the file-save settings (scrolling or tabbed, as the main window says),
// the MP3 encoder options, the end-of-letter options with the hot key.

namespace ovd::devices {
class HotKeyOptionsForm;
}

namespace ovd::ui {

class StationWindow;
struct StationWindowParts;

// Returns when the window closes; the main window's status line is then redrawn.
void showFileSaves(StationWindow& window, StationWindowParts& parts);
void showMp3Options(StationWindow& window, StationWindowParts& parts);
void showEndOfLetterOptions(StationWindow& window, StationWindowParts& parts,
                            devices::HotKeyOptionsForm& hotKeys);

}  // namespace ovd::ui
