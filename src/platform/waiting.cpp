#include "platform/waiting.h"

#include <cmath>
#include <cstdio>

namespace ovd::platform {

std::string formatSeconds(double seconds) {
    char buffer[32];
    if (std::floor(seconds) == seconds && std::fabs(seconds) < 1e15) {
        std::snprintf(buffer, sizeof buffer, "%lld", static_cast<long long>(seconds));
    } else {
        std::snprintf(buffer, sizeof buffer, "%g", seconds);
    }
    return buffer;
}

void pauseWithTrace(EventLoop& loop, const EventLineSink& trace, double seconds,
                    const std::string& tag) {
    if (trace) trace(" Pausing = " + formatSeconds(seconds) + tag);
    loop.waitSeconds(seconds);
}

}  // namespace ovd::platform
