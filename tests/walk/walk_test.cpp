// The random walk over the dictation's commands: seeded, replayable walks on a
// whole station, every rule checked after every step, and the figures at the end.
//
//   OVD_WALK_SEED=17 ovd_walk_tests                 one walk, as a failure printed it
//   OVD_WALK_PLAN='WAV/16000/cp0/ar0/ow0 new+100 record+2000 save+100' ovd_walk_tests
//   OVD_WALK_SEQUENCES, OVD_WALK_STEPS              how many walks, how long
//   OVD_WALK_SKIP=caption,greyed                    rules left out while diagnosing

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <iostream>
#include <map>

#include "open_findings.h"
#include "walk/walk_runner.h"

namespace ovd::walk {
namespace {

#ifdef OVD_WALK_SANITIZED
constexpr int kDefaultSequences = 500;
#else
constexpr int kDefaultSequences = 1200;
#endif
constexpr int kDefaultSteps = 30;

std::string thisProgram() {
    char path[4096];
    const ssize_t length = ::readlink("/proc/self/exe", path, sizeof path - 1);
    return length > 0 ? std::string(path, static_cast<std::size_t>(length)) : "ovd_walk_tests";
}

std::string stepsSoFar(const Plan& plan, int upTo) {
    Plan shown = plan;
    if (upTo + 1 < static_cast<int>(shown.steps.size()))
        shown.steps.resize(static_cast<std::size_t>(upTo) + 1);
    return planText(shown);
}

// Every save ends in an fsync, which on a disk folder costs more than the rest of
// the walk; the walks' folders go to memory where the machine has it.
class MemoryFolders : public ::testing::Environment {
  public:
    void SetUp() override {
        const char* chosen = std::getenv("TMPDIR");
        if ((chosen == nullptr || *chosen == '\0') && ::access("/dev/shm", W_OK) == 0)
            ::setenv("TMPDIR", "/dev/shm", 1);
    }
};
const auto* const kMemoryFolders = ::testing::AddGlobalTestEnvironment(new MemoryFolders);

TEST(RandomWalk, EveryRuleHoldsAfterEveryStep) {
    const WalkOptions options = walkOptionsFromEnvironment(kDefaultSequences, kDefaultSteps);
    const std::string program = thisProgram();
    std::string skipping;
    for (const std::string& rule : options.skipped)
        skipping += (skipping.empty() ? " OVD_WALK_SKIP=" : ",") + rule;
    long sequences = 0, steps = 0, checks = 0;
    std::map<std::string, std::vector<std::string>> failuresByRule;
    std::map<std::string, long> checksByRule;
    const char* strictText = std::getenv("OVD_WALK_STRICT");
    const bool strict = strictText != nullptr && std::string(strictText) == "1";
    long openFindingsMet = 0;

    const auto walk = [&](const Plan& plan, const std::string& replay) {
        const WalkOutcome outcome = runPlan(plan, options.skipped);
        ++sequences;
        steps += outcome.stepsRun;
        checks += outcome.checks;
        for (const auto& [rule, count] : outcome.checksByRule) checksByRule[rule] += count;
        if (!outcome.violation) return;
        const Violation& v = *outcome.violation;
        const bool atExit = outcome.atExit;
        std::ostringstream report;
        report << "[walk] " << replay << " broke '" << v.invariant << "' "
               << (atExit ? std::string("at the exit")
                          : "at step " + std::to_string(outcome.failedStep + 1) + " (" +
                                stepText(plan.steps[static_cast<std::size_t>(outcome.failedStep)]) +
                                ")")
               << ": " << v.text << "\n"
               << "[walk]   replay:  "
               << (replay.starts_with("seed ")
                       ? "OVD_WALK_SEED=" + replay.substr(5) +
                             " OVD_WALK_STEPS=" + std::to_string(options.steps)
                       : std::string("OVD_WALK_PLAN='") + planText(plan) + "'")
               << skipping << " " << program << "\n"
               << "[walk]   steps:   " << stepsSoFar(plan, outcome.failedStep) << "\n";
        auto& seen = failuresByRule[v.invariant];
        if (static_cast<int>(seen.size()) < options.smallestPerRule) {
            const Plan smallest = smallestFailingPlan(plan, outcome, options.skipped, 150);
            report << "[walk]   smallest: OVD_WALK_PLAN='" << planText(smallest) << "'" << skipping
                   << " " << program << "\n";
        }
        seen.push_back(replay);
        const std::string lastStep =
            atExit ? std::string()
                   : stepText(plan.steps[static_cast<std::size_t>(outcome.failedStep)]);
        if (!strict && isOpenFinding(v.invariant, v.text, lastStep)) {
            ++openFindingsMet;
            std::cout << "[walk] OPEN finding (known, not yet fixed):\n"
                      << report.str() << std::flush;
            return;
        }
        std::cout << report.str() << std::flush;
        ADD_FAILURE() << "walk " << replay << " broke '" << v.invariant << "': " << v.text;
    };

    if (options.plan) {
        const auto plan = parsePlan(*options.plan);
        ASSERT_TRUE(plan.has_value()) << "OVD_WALK_PLAN does not read as a plan: " << *options.plan;
        walk(*plan, "plan");
    } else {
        for (int i = 0; i < options.sequences; ++i) {
            const std::uint64_t seed = options.firstSeed + static_cast<std::uint64_t>(i);
            walk(generatePlan(seed, options.steps), "seed " + std::to_string(seed));
        }
    }

    std::cout << "[walk] " << sequences << " sequences, " << steps << " steps, " << checks
              << " invariant checks (";
    const char* separator = "";
    for (const auto& [rule, count] : checksByRule) {
        std::cout << separator << rule << " " << count;
        separator = ", ";
    }
    std::cout << ")";
    for (const auto& [rule, seeds] : failuresByRule) {
        std::cout << "; '" << rule << "' broken by " << seeds.size();
    }
    std::cout << "; open findings met " << openFindingsMet << std::endl;
}

TEST(RandomWalk, APlanReadsBackAsPrinted) {
    for (std::uint64_t seed : {1u, 2u, 99u}) {
        const Plan plan = generatePlan(seed, 60);
        const std::string text = planText(plan);
        const auto again = parsePlan(text);
        ASSERT_TRUE(again.has_value()) << text;
        EXPECT_EQ(planText(*again), text);
    }
    EXPECT_EQ(planText(generatePlan(5, 40)), planText(generatePlan(5, 40)))
        << "a seed names one walk";
    EXPECT_FALSE(parsePlan("WAV/16000/cp0/ar0/ow0 fly+10").has_value());
}

TEST(RandomWalk, AudioChangedBehindTheAuthorsBackIsCaught) {
    // The net itself: audio that changes without an edit of the author's must be
    // reported, and no other rule may stand in for that one.
    const auto plan = parsePlan("WAV/16000/cp0/ar0/ow0 record+2000 stop+100 tamper+100");
    ASSERT_TRUE(plan.has_value());
    const WalkOutcome outcome = runPlan(*plan, {});
    ASSERT_TRUE(outcome.violation.has_value());
    EXPECT_EQ(outcome.violation->invariant, "document");
    EXPECT_EQ(outcome.failedStep, 2);
}

}  // namespace
}  // namespace ovd::walk
