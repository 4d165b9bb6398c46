#pragma once
// What a walk can do to a station: every way the author drives a dictation
// (bar, icons, menus, the right-click menu, the edit keys, the desk unit's switch
// and buttons, pedal edges), each with how often the walk picks it, the control
// that shows it greyed, and whether it is one of the author's own edits.

#include <string>
#include <string_view>
#include <vector>

#include "walk/walk_plan.h"
#include "walk/walk_station.h"

namespace ovd::walk {

// The control of the main window behind a command; None for menus and devices.
enum class Control {
    None,
    Prev,
    Next,
    Play,
    Pause,
    Back,
    Step,
    Stop,
    Record,
    Command1,
    Command2,
    cmdOVR,
    cmdEOL,
    ButtonEx1,
    ButtonEx2,
};

struct WalkCommand {
    std::string_view name;
    int weight;  // how often the walk picks it, against the others
    Control control;
    // Something the author does to the audio or the file in hand: records,
    // inserts, pastes, undoes, opens, closes, ends the letter.
    bool authorEdit;
    // Cut and copy: with no selection they must change nothing.
    bool needsSelection;
    // Opens a file that is already on disk, to listen to.
    bool opensFile;
    // The numbers a and b the walk draws for it, from 0 to these.
    int aRange;
    int bRange;
    void (*run)(WalkStation& station, const Step& step);
};

const std::vector<WalkCommand>& walkCommands();
const WalkCommand* findWalkCommand(std::string_view name);

// Enabled state of a control as the view shows it.
bool controlEnabled(WalkStation& station, Control control);

// A greyed control can't be clicked, but the hands-free devices reach the same
// action by another route that must honour the grey state: the desk unit's
// switch for Record, Play, Stop and Back, its hand-set words for Step, Next,
// Insert and Overwrite, the end of letter pedal for cmdEOL. Runs that route, and
// names it; controls without one give an empty name and do nothing.
const char* runGreyedRoute(WalkStation& station, Control control);

// A pedal step resolves to its keyword; a switch or button step to its word.
bool stepIsAuthorEdit(WalkStation& station, const Step& step);

}  // namespace ovd::walk
