#include "housekeeping/open_windows.h"

#include <string>

namespace ovd::housekeeping {

bool OpenWindows::openDriveScan(platform::Prompts& prompts) {
    if (transcribers_) {
        prompts.showMessage(kDriveScanWithTranscribers);
        return false;
    }
    driveScan_ = true;
    return true;
}

bool OpenWindows::openTranscribers(platform::Prompts& prompts) {
    if (driveScan_) {
        // The two texts run on as one, the way the transcriber window has always said it.
        prompts.showMessage(std::string(kDriveScanWithTranscribers) + kTranscribersWillClose);
        return false;
    }
    transcribers_ = true;
    return true;
}

}  // namespace ovd::housekeeping
