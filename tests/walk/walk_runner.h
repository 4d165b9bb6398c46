#pragma once
// Runs walks: one plan on a fresh station with every check after every step and
// an orderly exit at the end; the smallest plan that still breaks the same rule;
// the options a run takes from the environment.

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>

#include "walk/walk_checks.h"
#include "walk/walk_plan.h"

namespace ovd::walk {

struct WalkOutcome {
    int stepsRun = 0;
    long checks = 0;
    std::map<std::string, long> checksByRule;
    std::optional<Violation> violation;
    int failedStep = -1;  // index of the step; the number of steps for the exit
    bool atExit = false;  // the failure came with the orderly exit
};

WalkOutcome runPlan(const Plan& plan, const std::set<std::string>& skipped);

// Drops steps one at a time, and the steps after the failing one, for as long as
// the same rule still breaks; at most budget runs.
Plan smallestFailingPlan(const Plan& plan, const WalkOutcome& outcome,
                         const std::set<std::string>& skipped, int budget);

struct WalkOptions {
    std::uint64_t firstSeed = 1;
    int sequences = 0;
    int steps = 0;
    std::optional<std::string> plan;  // OVD_WALK_PLAN: one plan as printed
    std::set<std::string> skipped;    // OVD_WALK_SKIP: invariants left out, comma-separated
    int smallestPerRule = 2;          // OVD_WALK_MINIMISE: failures made smallest per rule
};

WalkOptions walkOptionsFromEnvironment(int defaultSequences, int defaultSteps);

}  // namespace ovd::walk
