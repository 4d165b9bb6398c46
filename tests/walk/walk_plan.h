#pragma once
// A walk is a station's settings and a list of steps: a command with up to two
// numbers, then a stretch of virtual time. The list is pure data drawn from a
// seed, so a walk can be printed as one line of text and run again from it.

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace ovd::walk {

struct Step {
    std::string command;
    int a = 0;
    int b = 0;
    int advanceMs = 0;  // virtual time that passes after the command
};

// What a walk sets up before its first step.
struct WalkSettings {
    std::string format = "WAV";  // FormatType: "WAV" or "MP3"
    int rate = 16000;
    bool crashProtection = false;  // every Stop saves
    bool last3AutoRecord = false;  // the take goes on after the last three seconds
    bool overwriteToEnd = false;
};

struct Plan {
    WalkSettings settings;
    std::vector<Step> steps;
};

// "record+1200", "select:120,800+35".
std::string stepText(const Step& step);
// "MP3/16000/cp1/ar0/ow1" then the steps, separated by blanks.
std::string planText(const Plan& plan);
std::optional<Plan> parsePlan(const std::string& text);

// The walk of a seed: settings and steps drawn from it alone.
Plan generatePlan(std::uint64_t seed, int steps);

// A small, well-mixed generator whose sequence is the same on every machine.
class WalkRandom {
  public:
    explicit WalkRandom(std::uint64_t seed) : state_(seed) {}
    std::uint64_t next();
    // From lowest to highest, both included.
    int between(int lowest, int highest);
    bool chance(int percent) { return between(1, 100) <= percent; }

  private:
    std::uint64_t state_;
};

}  // namespace ovd::walk
