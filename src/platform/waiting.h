#pragma once
// The waiting pattern: leave a line in the event log naming the pause and the
// place it was taken from, then let other events run for that long.

#include <functional>
#include <string>

#include "platform/event_loop.h"

namespace ovd::platform {

using EventLineSink = std::function<void(const std::string&)>;

// Writes " Pausing = " + seconds + tag (for example " Pausing = 2 -62 On Load").
void pauseWithTrace(EventLoop& loop, const EventLineSink& trace, double seconds,
                    const std::string& tag);

// The number as the log shows it: whole numbers without a decimal point.
std::string formatSeconds(double seconds);

}  // namespace ovd::platform
