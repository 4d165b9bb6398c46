#pragma once
// What every fault run of the real station must show at its end: it waited
// rather than spun, its event log stayed small, and SIGTERM ended it in order.

#include <gtest/gtest.h>

#include <chrono>

#include "station_process.h"

namespace ovd::testing {

inline void expectLightAndEndsInOrder(StationProcess& station,
                                      std::chrono::milliseconds watched = std::chrono::seconds(2)) {
    const double cpu = station.cpuPercentOver(watched);
    EXPECT_GE(cpu, 0.0);
    EXPECT_LE(cpu, 5.0) << "an idle station waits, it does not spin";
    EXPECT_LT(station.eventLogBytes(), 1024u * 1024u);
    const StationProcess::TimedEnd end = station.terminateTimed();
    EXPECT_TRUE(end.end.exited && end.end.status == 0) << end.end.status;
    EXPECT_LT(end.took, std::chrono::seconds(5));
}

}  // namespace ovd::testing
