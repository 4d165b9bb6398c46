#include "settings/debug_trace.h"

#include <algorithm>
#include <cctype>
#include <ctime>

#include "platform/text.h"

namespace ovd::settings {

namespace {

char firstLetter(const std::string& name) {
    return name.empty() ? '\0'
                        : static_cast<char>(std::toupper(static_cast<unsigned char>(name[0])));
}

void appendSorted(std::vector<std::string>& out, std::vector<NamedValue> entries,
                  bool blankAfterEachLetter) {
    std::stable_sort(entries.begin(), entries.end(), [](const NamedValue& a, const NamedValue& b) {
        return platform::toUpper(a.first) < platform::toUpper(b.first);
    });
    for (std::size_t i = 0; i < entries.size(); ++i) {
        out.push_back(entries[i].first + " = " + entries[i].second);
        const bool lastOfLetter = i + 1 == entries.size() || firstLetter(entries[i + 1].first) !=
                                                                 firstLetter(entries[i].first);
        if (blankAfterEachLetter && lastOfLetter) out.emplace_back();
    }
}

}  // namespace

std::vector<std::string> formatGlobalsDump(const GlobalsSnapshot& snapshot) {
    std::vector<std::string> out;
    out.emplace_back("Arrays");
    appendSorted(out, snapshot.arrays, false);
    out.emplace_back();
    out.emplace_back("Timmers");  // the dump's own heading, spelled as support knows it
    appendSorted(out, snapshot.timers, false);
    out.emplace_back();
    appendSorted(out, snapshot.globals, true);
    return out;
}

std::vector<NamedValue> settingsGlobals(const SettingsRecord& record) {
    std::vector<NamedValue> values;
    for (const SettingsField& field : settingsFields()) {
        values.emplace_back(field.name, describeField(record, field));
    }
    return values;
}

std::vector<NamedValue> timerStates(const std::vector<const platform::Timer*>& timers) {
    std::vector<NamedValue> values;
    for (const platform::Timer* timer : timers) {
        values.emplace_back(timer->name() + ".Enabled", timer->Enabled() ? "True" : "False");
    }
    return values;
}

DebugTrace::DebugTrace(platform::EventLoop& loop, std::size_t keptLines)
    : loop_(loop), keptLines_(keptLines) {}

void DebugTrace::DebugPrint(const std::string& text) {
    const std::time_t seconds = platform::WallClock::to_time_t(loop_.now());
    std::tm parts{};
    localtime_r(&seconds, &parts);
    char stamp[16];
    std::strftime(stamp, sizeof stamp, "%H:%M:%S", &parts);
    lines_.push_back("[" + std::string(stamp) + "] " + text);
    // The window keeps the recent past; older lines are in the event log if they matter.
    while (lines_.size() > keptLines_) lines_.pop_front();
    if (DebugOn && onShow) onShow();
}

void DebugTrace::DumpGlobals(const GlobalsSnapshot& snapshot) {
    DebugOn = true;
    for (const std::string& line : formatGlobalsDump(snapshot)) DebugPrint(line);
}

void DebugTrace::openForSupport(platform::Prompts& prompts, const GlobalsSnapshot& snapshot) {
    DebugOn = true;
    prompts.showMessage("Button clicked!");
    DumpGlobals(snapshot);
}

}  // namespace ovd::settings
