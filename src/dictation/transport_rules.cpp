#include "dictation/transport_rules.h"

namespace ovd::dictation {

TransportBar transportBarAfter(BarAfter after) {
    //                      Prev   Next   Play   Pause  Back   Step   Stop   Record
    switch (after) {
        case BarAfter::ProgramStart:
            return {false, false, false, false, false, false, false, false};
        case BarAfter::CaseNew:
            return {false, false, false, false, false, false, false, true};
        case BarAfter::CaseRecord:
            return {false, false, false, true, false, false, true, false};
        case BarAfter::CaseStop:
            return {false, true, true, false, false, true, false, false};
        case BarAfter::CaseEnd:
            return {true, false, false, false, true, false, false, true};
        case BarAfter::CaseBeginning:
            return {true, true, true, false, true, true, false, false};
        case BarAfter::CasePlayOrOpen:
            return {true, true, true, false, true, true, true, false};
        case BarAfter::StepAtStart:
            return {false, true, true, false, false, true, false, false};
        case BarAfter::StepAtEnd:
            return {true, false, false, false, true, true, false, false};
        case BarAfter::StepBetween:
            return {true, true, true, false, true, true, false, true};
    }
    return {};
}

bool cmdEOLAfter(const TransportBar& bar, bool RecordedOnce, bool cmdEOL) {
    if (bar.Stop && !bar.Record) return false;
    if (!bar.Stop && bar.Record && RecordedOnce) return true;
    if (!bar.Stop && !bar.Record) return false;
    return cmdEOL;
}

void normalise(DictationState& state) {
    // An insert or an overwrite records into the scratch editor while the file
    // itself stands still: the take is shown until its own end puts it in.
    if (state.Recordingstatus && (state.DoingInsertUpdate || state.OverWriteFile)) return;
    if (state.WhichBut == "Record") {
        state.Recordingstatus = true;
    } else if (!state.Recordingstatus) {
        // stays false
    } else if (state.WhichBut == "Stop") {
        state.Recordingstatus = false;
        state.RecordingstatusPaused = true;
    }
}

std::string refusalText(std::string_view tag) {
    return "Recording in Progress. Please hit the stop button to stop current recording. -" +
           std::string(tag) + "-";
}

}  // namespace ovd::dictation
