#include "walk/walk_plan.h"

#include <sstream>

#include "walk/walk_commands.h"

namespace ovd::walk {

std::uint64_t WalkRandom::next() {
    // splitmix64
    std::uint64_t z = (state_ += 0x9E3779B97F4A7C15ULL);
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ULL;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBULL;
    return z ^ (z >> 31);
}

int WalkRandom::between(int lowest, int highest) {
    if (highest <= lowest) return lowest;
    const auto span = static_cast<std::uint64_t>(highest - lowest) + 1;
    return lowest + static_cast<int>(next() % span);
}

std::string stepText(const Step& step) {
    std::string text = step.command;
    const WalkCommand* command = findWalkCommand(step.command);
    if (command != nullptr && command->aRange > 0) {
        text += ":" + std::to_string(step.a);
        if (command->bRange > 0) text += "," + std::to_string(step.b);
    }
    return text + "+" + std::to_string(step.advanceMs);
}

std::string planText(const Plan& plan) {
    const WalkSettings& s = plan.settings;
    std::string text = s.format + "/" + std::to_string(s.rate) + "/cp" +
                       (s.crashProtection ? "1" : "0") + "/ar" + (s.last3AutoRecord ? "1" : "0") +
                       "/ow" + (s.overwriteToEnd ? "1" : "0");
    for (const Step& step : plan.steps) text += " " + stepText(step);
    return text;
}

namespace {

std::optional<int> number(const std::string& text) {
    if (text.empty()) return std::nullopt;
    int value = 0;
    for (const char c : text) {
        if (c < '0' || c > '9' || value > 100'000'000) return std::nullopt;
        value = value * 10 + (c - '0');
    }
    return value;
}

std::optional<WalkSettings> parseSettings(const std::string& text) {
    std::vector<std::string> parts;
    std::stringstream in(text);
    for (std::string part; std::getline(in, part, '/');) parts.push_back(part);
    if (parts.size() != 5 || (parts[0] != "WAV" && parts[0] != "MP3")) return std::nullopt;
    WalkSettings s;
    s.format = parts[0];
    const auto rate = number(parts[1]);
    if (!rate) return std::nullopt;
    s.rate = *rate;
    const auto flag = [](const std::string& part, const char* name) -> std::optional<bool> {
        if (part == std::string(name) + "1") return true;
        if (part == std::string(name) + "0") return false;
        return std::nullopt;
    };
    const auto cp = flag(parts[2], "cp");
    const auto ar = flag(parts[3], "ar");
    const auto ow = flag(parts[4], "ow");
    if (!cp || !ar || !ow) return std::nullopt;
    s.crashProtection = *cp;
    s.last3AutoRecord = *ar;
    s.overwriteToEnd = *ow;
    return s;
}

std::optional<Step> parseStep(const std::string& text) {
    const auto plus = text.rfind('+');
    if (plus == std::string::npos) return std::nullopt;
    Step step;
    const auto advance = number(text.substr(plus + 1));
    if (!advance) return std::nullopt;
    step.advanceMs = *advance;
    std::string head = text.substr(0, plus);
    if (const auto colon = head.find(':'); colon != std::string::npos) {
        std::string numbers = head.substr(colon + 1);
        head = head.substr(0, colon);
        const auto comma = numbers.find(',');
        const auto a = number(numbers.substr(0, comma));
        if (!a) return std::nullopt;
        step.a = *a;
        if (comma != std::string::npos) {
            const auto b = number(numbers.substr(comma + 1));
            if (!b) return std::nullopt;
            step.b = *b;
        }
    }
    if (findWalkCommand(head) == nullptr) return std::nullopt;
    step.command = head;
    return step;
}

}  // namespace

std::optional<Plan> parsePlan(const std::string& text) {
    std::stringstream in(text);
    std::string word;
    if (!(in >> word)) return std::nullopt;
    const auto settings = parseSettings(word);
    if (!settings) return std::nullopt;
    Plan plan{*settings, {}};
    while (in >> word) {
        const auto step = parseStep(word);
        if (!step) return std::nullopt;
        plan.steps.push_back(*step);
    }
    return plan;
}

Plan generatePlan(std::uint64_t seed, int steps) {
    WalkRandom random(seed);
    Plan plan;
    plan.settings.format = random.chance(50) ? "MP3" : "WAV";
    plan.settings.rate = random.chance(70) ? 16000 : 8000;
    plan.settings.crashProtection = random.chance(40);
    plan.settings.last3AutoRecord = random.chance(40);
    plan.settings.overwriteToEnd = random.chance(30);

    int totalWeight = 0;
    for (const WalkCommand& command : walkCommands()) totalWeight += command.weight;
    for (int i = 0; i < steps; ++i) {
        int pick = random.between(1, totalWeight);
        const WalkCommand* chosen = &walkCommands().front();
        for (const WalkCommand& command : walkCommands()) {
            if (command.weight == 0) continue;
            chosen = &command;
            pick -= command.weight;
            if (pick <= 0) break;
        }
        Step step;
        step.command = std::string(chosen->name);
        step.a = chosen->aRange > 0 ? random.between(0, chosen->aRange) : 0;
        step.b = chosen->bRange > 0 ? random.between(0, chosen->bRange) : 0;
        if (step.command == "button") step.a = random.between(1, 8);
        // Mostly short pauses between commands, now and then a longer take.
        step.advanceMs = random.chance(70) ? random.between(10, 1500) : random.between(1500, 5000);
        plan.steps.push_back(step);
    }
    return plan;
}

}  // namespace ovd::walk
