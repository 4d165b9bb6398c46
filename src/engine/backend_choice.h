#pragma once
// Which sound the station uses: the sound server when one answers, otherwise the
// virtual backend, or whichever the user names.

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "engine/audio_backend.h"
#include "platform/event_loop.h"

namespace ovd::engine {

enum class BackendChoice { Automatic, Pulse, Virtual };

// "auto", "pulse" or "virtual"; nothing for any other word.
std::optional<BackendChoice> parseBackendChoice(std::string_view word);

struct OpenedBackend {
    std::unique_ptr<AudioBackend> backend;  // null only when the named backend failed
    std::string logLine;                    // what was chosen and why, for the event log
};

// virtualInput: a WAV file the virtual microphone plays in a loop (empty: a tone).
OpenedBackend openAudioBackend(BackendChoice choice, platform::EventLoop& loop,
                               const std::string& virtualInput = {});

}  // namespace ovd::engine
