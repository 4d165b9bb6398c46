#pragma once
// What must hold around every step of a walk, whatever the author did:
//   status     Recordingstatus is true exactly while an engine records;
//   onair      the lamps and "ON AIR" show only while an engine records;
//   caption    the caption says recording or playing only when it is so;
//   greyed     a greyed control's action, reached by the hands-free route,
//              changes neither audio nor file nor take;
//   document   the audio changes only through the author's own edits;
//   selection  cut and copy with no selection change nothing;
//   saved      a saved file decodes to the document's length (one encoder frame);
//   listen     a file opened to listen is byte for byte the same when it goes;
//   workfiles  no work file is left in Temp after the program ends in order;
//   second     while the letter's engine records, it holds the microphone and
//              the second editor neither plays nor records;
//   announced  once the loop turned, every change of the view was announced, and
//              a window redrawn on the announcements shows the view as it is.
// Each can be left out by name while diagnosing (OVD_WALK_SKIP).

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>

#include "walk/walk_commands.h"
#include "walk/walk_station.h"

namespace ovd::walk {

struct Violation {
    std::string invariant;
    std::string text;
};

// The station as one step leaves it.
struct Observation {
    bool hasDocument = false;
    std::string filename;
    engine::SampleCount length = 0;
    int rate = 0;  // samples per second of the document
    std::uint64_t checksum = 0;
    bool selection = false;  // an active selection of at least one sample
    int state1 = 0;
    int state21 = 0;
    bool Recordingstatus = false;
    bool scratchTake = false;  // insert, overwrite or append under way
    std::size_t logLength = 0;

    [[nodiscard]] bool engineRecords() const { return state1 == 2 || state21 == 2; }
    [[nodiscard]] bool takeUnderWay() const {
        return engineRecords() || Recordingstatus || scratchTake;
    }
};

Observation observe(WalkStation& station);

class WalkChecks {
  public:
    explicit WalkChecks(std::set<std::string> skipped) : skipped_(std::move(skipped)) {}

    void beforeStep(WalkStation& station, const Step& step);
    // Right after the command, before time passes: cut and copy with no selection.
    std::optional<Violation> afterCommand(WalkStation& station, const Step& step);
    // The step's control was greyed and its hands-free route (named) ran instead:
    // neither the audio, nor the file in hand, nor the take may have moved.
    std::optional<Violation> afterGreyedRoute(WalkStation& station, const Step& step,
                                              const std::string& route);
    std::optional<Violation> afterStep(WalkStation& station, const Step& step);
    // After the station has ended in order and is gone.
    std::optional<Violation> afterExit(WalkStation& station);

    [[nodiscard]] long checks() const { return checks_; }
    [[nodiscard]] const std::map<std::string, long>& checksByRule() const { return byRule_; }

  private:
    // Counts the check and says whether it is to be made.
    bool checking(const char* invariant);
    std::optional<Violation> screenAgreesWithEngine(WalkStation& station, const Observation& now);
    std::optional<Violation> audioKeptUnlessEdited(WalkStation& station, const Step& step,
                                                   const Observation& now);
    std::optional<Violation> savedFileIsWhole(WalkStation& station, const Observation& now);
    std::optional<Violation> listenedFileUntouched(WalkStation& station, const Step& step,
                                                   const Observation& now);
    std::optional<Violation> letterKeepsTheSoundDevice(WalkStation& station,
                                                       const Observation& now);
    // Redraws a window's copy of the view on each announcement, as the window does.
    void watchScreen(WalkStation& station);
    std::optional<Violation> everyChangeAnnounced(WalkStation& station);

    std::set<std::string> skipped_;
    long checks_ = 0;
    std::map<std::string, long> byRule_;
    Observation before_;
    bool haveBefore_ = false;
    // The files on disk before a step that may open one of them.
    std::map<std::string, std::uint64_t> lettersBefore_;
    struct Listened {
        std::string path;
        std::uint64_t bytes = 0;
        engine::SampleCount length = 0;
        std::uint64_t checksum = 0;
        bool edited = false;
    };
    std::optional<Listened> listened_;
    // The screen as a window redrawn on the announcements would show it.
    dictation::MainView drawn_;
    bool watchingScreen_ = false;
};

}  // namespace ovd::walk
