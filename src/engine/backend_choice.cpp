#include "engine/backend_choice.h"

#include "engine/pulse_backend.h"
#include "engine/virtual_backend.h"

namespace ovd::engine {

std::optional<BackendChoice> parseBackendChoice(std::string_view word) {
    if (word == "auto") return BackendChoice::Automatic;
    if (word == "pulse") return BackendChoice::Pulse;
    if (word == "virtual") return BackendChoice::Virtual;
    return std::nullopt;
}

OpenedBackend openAudioBackend(BackendChoice choice, platform::EventLoop& loop,
                               const std::string& virtualInput) {
    OpenedBackend opened;
    const auto openVirtual = [&](const std::string& why) {
        VirtualBackend::Options options;
        options.inputFile = virtualInput;
        opened.backend = std::make_unique<VirtualBackend>(loop, options);
        opened.logLine = "Sound: virtual backend, " + why + "; microphone " +
                         (virtualInput.empty() ? std::string("a 440 Hz tone") : virtualInput) +
                         ", output discarded";
    };
    if (choice == BackendChoice::Virtual) {
        openVirtual("as chosen");
        return opened;
    }
    auto connected = PulseBackend::connect(loop);
    if (connected) {
        opened.backend = std::move(*connected);
        opened.logLine = "Sound: sound server";
        return opened;
    }
    const std::string& error = connected.error();
    if (choice == BackendChoice::Pulse) {
        opened.logLine = "Sound: the sound server can't be reached (" + error + ")";
        return opened;
    }
    openVirtual("since the sound server can't be reached (" + error + ")");
    return opened;
}

}  // namespace ovd::engine
