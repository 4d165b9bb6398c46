#pragma once
// A test's way into the dictation's private state, for arranging a situation no
// command leads to (a flag a crash would leave, a screen a device would show).
// Writing the view through here still goes through the one door that announces.

#include <stdexcept>
#include <string>

#include "dictation/dictation.h"

namespace ovd::dictation {

class DictationProbe {
  public:
    static DictationState& state(Dictation& d) { return d.state_; }
    static MainView& view(Dictation& d) { return d.screen(); }
};

// One of the dictation's timers by its name, as the support dump lists it.
inline const platform::Timer& timerNamed(const Dictation& d, const std::string& name) {
    for (const platform::Timer* timer : d.timers()) {
        if (timer->name() == name) return *timer;
    }
    throw std::out_of_range("no timer " + name);
}

}  // namespace ovd::dictation
