#include "walk/walk_runner.h"

#include <cstdlib>
#include <exception>
#include <iostream>
#include <sstream>

namespace ovd::walk {

WalkOutcome runPlan(const Plan& plan, const std::set<std::string>& skipped) {
    WalkOutcome outcome;
    WalkChecks checks(skipped);
    WalkStation station(plan.settings);
    try {
        station.start();
        for (const Step& step : plan.steps) {
            if (!station.running()) break;  // the station asked to end: the exit below ends it
            const WalkCommand* command = findWalkCommand(step.command);
            if (command == nullptr) continue;
            checks.beforeStep(station, step);
            station.stepBegins();
            std::optional<Violation> violation;
            if (controlEnabled(station, command->control)) {
                command->run(station, step);
                violation = checks.afterCommand(station, step);
            } else {
                // The window can't click a greyed control; the hands-free route can try.
                violation = checks.afterGreyedRoute(station, step,
                                                    runGreyedRoute(station, command->control));
            }
            if (violation) {
                ++outcome.stepsRun;
                outcome.violation = std::move(violation);
                outcome.failedStep = outcome.stepsRun - 1;
                break;
            }
            if (station.running()) station.advance(step.advanceMs);
            ++outcome.stepsRun;
            if ((violation = checks.afterStep(station, step))) {
                outcome.violation = std::move(violation);
                outcome.failedStep = outcome.stepsRun - 1;
                break;
            }
        }
        outcome.atExit = !outcome.violation;
        station.exitInOrder();
        if (!outcome.violation) {
            if (auto violation = checks.afterExit(station)) {
                outcome.violation = std::move(violation);
                outcome.failedStep = outcome.stepsRun;
            }
        }
    } catch (const WalkHang& hang) {
        outcome.violation = Violation{"hang", hang.what()};
        outcome.failedStep = outcome.stepsRun;
        if (!outcome.atExit) ++outcome.stepsRun;  // the step that hung counts as run
    } catch (const std::exception& error) {
        outcome.violation = Violation{"exception", error.what()};
        outcome.failedStep = outcome.stepsRun;
    }
    outcome.checks = checks.checks();
    outcome.checksByRule = checks.checksByRule();
    // OVD_WALK_LOG=1: the station's event log of the walk, for diagnosis.
    if (const char* show = std::getenv("OVD_WALK_LOG"); show != nullptr && *show == '1') {
        std::cout << station.log.text() << std::flush;
    }
    return outcome;
}

Plan smallestFailingPlan(const Plan& plan, const WalkOutcome& outcome,
                         const std::set<std::string>& skipped, int budget) {
    if (!outcome.violation) return plan;
    const std::string rule = outcome.violation->invariant;
    Plan smallest = plan;
    // Nothing after the failing step is needed, nor, for a failure of the exit,
    // what the walk never ran because the station had asked to end.
    const int needed = outcome.atExit ? outcome.stepsRun : outcome.failedStep + 1;
    if (needed >= 0 && needed < static_cast<int>(smallest.steps.size())) {
        smallest.steps.resize(static_cast<std::size_t>(needed));
    }
    const auto stillFails = [&](const Plan& candidate) {
        --budget;
        const WalkOutcome again = runPlan(candidate, skipped);
        return again.violation && again.violation->invariant == rule;
    };
    bool shrunk = true;
    while (shrunk && budget > 0) {
        shrunk = false;
        for (std::size_t i = smallest.steps.size(); i-- > 0 && budget > 0;) {
            Plan candidate = smallest;
            candidate.steps.erase(candidate.steps.begin() + static_cast<std::ptrdiff_t>(i));
            if (stillFails(candidate)) {
                smallest = std::move(candidate);
                shrunk = true;
            }
        }
    }
    // Shorter pauses make the plan easier to read, where the failure allows.
    for (std::size_t i = 0; i < smallest.steps.size() && budget > 0; ++i) {
        if (smallest.steps[i].advanceMs <= 100) continue;
        Plan candidate = smallest;
        candidate.steps[i].advanceMs = 100;
        if (stillFails(candidate)) smallest = std::move(candidate);
    }
    return smallest;
}

namespace {

std::optional<long long> environmentNumber(const char* name) {
    const char* text = std::getenv(name);
    if (text == nullptr || *text == '\0') return std::nullopt;
    char* end = nullptr;
    const long long value = std::strtoll(text, &end, 10);
    if (end == nullptr || *end != '\0' || value < 0) return std::nullopt;
    return value;
}

}  // namespace

WalkOptions walkOptionsFromEnvironment(int defaultSequences, int defaultSteps) {
    WalkOptions options;
    options.sequences = defaultSequences;
    options.steps = defaultSteps;
    if (const auto seed = environmentNumber("OVD_WALK_SEED")) {
        options.firstSeed = static_cast<std::uint64_t>(*seed);
        options.sequences = 1;  // one seed names one walk, unless a count is given too
    }
    if (const auto count = environmentNumber("OVD_WALK_SEQUENCES"))
        options.sequences = static_cast<int>(*count);
    if (const auto steps = environmentNumber("OVD_WALK_STEPS"))
        options.steps = static_cast<int>(*steps);
    if (const auto smallest = environmentNumber("OVD_WALK_MINIMISE"))
        options.smallestPerRule = static_cast<int>(*smallest);
    if (const char* plan = std::getenv("OVD_WALK_PLAN"); plan != nullptr && *plan != '\0')
        options.plan = plan;
    if (const char* skip = std::getenv("OVD_WALK_SKIP"); skip != nullptr) {
        std::stringstream in(skip);
        for (std::string name; std::getline(in, name, ',');) {
            if (!name.empty()) options.skipped.insert(name);
        }
    }
    return options;
}

}  // namespace ovd::walk
