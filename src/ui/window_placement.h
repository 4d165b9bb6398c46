#pragma once
// Where the station's other windows open and how they stay in sight: over the
// main window rather than in a corner of the screen, and above it when it is
// kept on top of everything.

class QWidget;

namespace ovd::ui {

// Before a dialog or tool window of the station first shows: when the station
// window stays on top (or there is none to stand over, as for a box another
// station's window could hide), the dialog stays on top as well.
void keepAboveStation(QWidget& dialog, const QWidget* station);

// Centres a window over the station's window, kept within the screen the station
// is on. Without a visible station window nothing moves.
void placeOverStation(QWidget& window, const QWidget* station);

}  // namespace ovd::ui
