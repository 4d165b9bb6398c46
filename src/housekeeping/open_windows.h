#pragma once
// The drive scan scheduler and the transcriber records are never open together:
// both may change where recordings go and what is kept, and each would save over
// what the other shows. Whichever is asked for second is refused, with its text.

#include "platform/prompts.h"

namespace ovd::housekeeping {

inline constexpr const char* kDriveScanWithTranscribers =
    "Transcribers Information can not be opened at the same time as the Drive Scan Scheduler "
    "program.";
inline constexpr const char* kTranscribersWillClose =
    "Transcribers Information program will close.";

class OpenWindows {
  public:
    // True, and the window counts as open, unless the other one is; then false after
    // the refusal is shown.
    [[nodiscard]] bool openDriveScan(platform::Prompts& prompts);
    [[nodiscard]] bool openTranscribers(platform::Prompts& prompts);
    void driveScanClosed() { driveScan_ = false; }
    void transcribersClosed() { transcribers_ = false; }

    [[nodiscard]] bool driveScanOpen() const { return driveScan_; }
    [[nodiscard]] bool transcribersOpen() const { return transcribers_; }

  private:
    bool driveScan_ = false;
    bool transcribers_ = false;
};

}  // namespace ovd::housekeeping
