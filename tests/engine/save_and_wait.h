#pragma once
// A save waited for the way the dictation waits: until the save thread is done and
// the file is free, the loop turning meanwhile.

#include <unistd.h>

#include <string>

#include "engine/wave_editor.h"
#include "platform/files.h"
#include "support/virtual_event_loop.h"

namespace ovd::engine::testing {

// The save's own outcome, or why it could not start.
inline platform::Result<void> saveAndWait(WaveEditor& editor, ovd::testing::VirtualEventLoop& loop,
                                          const std::string& path) {
    const auto saved = editor.SaveAs(path);
    if (!saved) return saved.failed();
    while (editor.saving() || !platform::FileAvailable(path)) {
        loop.runPending();
        ::usleep(1000);
    }
    loop.runPending();
    return saved->get();
}

}  // namespace ovd::engine::testing
