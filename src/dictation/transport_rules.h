#pragma once
// The fixed rules every transport routine applies: the normalising step before
// the screen is refreshed, the refusal while a take runs, the state the transport
// bar is left in, and when the end-of-letter button is on.

#include <array>
#include <string>
#include <string_view>

#include "dictation/dictation_state.h"

namespace ovd::dictation {

// The eight buttons of the transport bar, enabled or not.
struct TransportBar {
    bool Prev = false;
    bool Next = false;
    bool Play = false;
    bool Pause = false;
    bool Back = false;
    bool Step = false;
    bool Stop = false;
    bool Record = false;
    bool operator==(const TransportBar&) const = default;
};

// After which command the bar is set.
enum class BarAfter {
    ProgramStart,
    CaseNew,
    CaseRecord,
    CaseStop,
    CaseEnd,  // when not recording
    CaseBeginning,
    CasePlayOrOpen,
    StepAtStart,
    StepAtEnd,
    StepBetween,
};

TransportBar transportBarAfter(BarAfter after);

// The end-of-letter button, given the bar just set: off while a take can be
// stopped, on when a recorded file waits at its end, otherwise as it was.
bool cmdEOLAfter(const TransportBar& bar, bool RecordedOnce, bool cmdEOL);

// Run before the screen is refreshed. The order is the rule: a routine that sets
// WhichBut to anything but "Record" or "Stop" leaves a running take as it is.
void normalise(DictationState& state);

// "Recording in Progress. Please hit the stop button to stop current recording. -"
// + tag + "-".
std::string refusalText(std::string_view tag);

// Every tag a refusal can carry; the numbered ones mark another path of a routine.
inline constexpr std::array<std::string_view, 25> kRefusalTags = {
    "CaseBeginning",   "CaseCopy",      "CaseCut",    "CaseInsertAppend", "CaseInsSilence",
    "CaseNew",         "CaseNew-2",     "CaseOpen",   "CasePaste",        "CasePlay",
    "CasePlayLooped",  "CasePlayToEnd", "CaseRecord", "CaseRedo",         "CaseStepBackward",
    "CaseStepForward", "CaseUndo",      "Command1",   "Command1-2",       "Command1-3",
    "Command2",        "Command3",      "cmdOVR",     "TurnOffTimers",    "timLastThreeSecondsCon"};

}  // namespace ovd::dictation
