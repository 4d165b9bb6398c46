#pragma once
// A private sound server for integration tests: a pulseaudio daemon of its own,
// started as a child process with its home, runtime folder and socket in a fresh
// temporary folder, so that it never meets the machine's own sound server. It
// has a null sink (what is played there can be recorded from its monitor), a
// 440 Hz sine source (the default source) and a silent source that keeps the sink
// running. While it runs, PULSE_SERVER points this process at it.
//
// Running as root: pulseaudio only warns ("not intended to be run as root") as
// long as it is not in system mode, and everything it writes lies in our folder;
// it is the same command for root and for ordinary users.
//
// A daemon that does not start is a test failure, with its own words in error().

#include <sys/types.h>

#include <optional>
#include <string>

#include "support/temp_folder.h"

namespace ovd::testing {

class PulseDaemon {
  public:
    static constexpr const char* kSinkName = "ovd_test_sink";
    static constexpr const char* kSinkLabel = "OvdTestSink";
    static constexpr const char* kMonitorLabel = "Monitor of OvdTestSink";
    static constexpr const char* kSineLabel = "Sine source at 440 Hz";
    static constexpr const char* kSilenceLabel = "OvdSilence";
    static constexpr double kSineHz = 440.0;

    // Starts the daemon and waits (up to ten seconds) until it answers.
    PulseDaemon();
    // Stops it (SIGTERM, then SIGKILL), puts PULSE_SERVER back and removes the folder.
    ~PulseDaemon();
    PulseDaemon(const PulseDaemon&) = delete;
    PulseDaemon& operator=(const PulseDaemon&) = delete;

    [[nodiscard]] bool running() const { return pid_ > 0; }
    [[nodiscard]] const std::string& error() const { return error_; }
    // "unix:" and the socket's path, as PULSE_SERVER takes it.
    [[nodiscard]] const std::string& server() const { return server_; }
    // What the daemon has written so far.
    [[nodiscard]] std::string log() const;
    // Ends the daemon now: to its clients, a sound server that went away.
    void stop();

  private:
    void start();
    bool answers() const;

    TempFolder folder_;
    std::string socket_;
    std::string server_;
    std::string error_;
    pid_t pid_ = -1;
    bool environmentSet_ = false;
    std::optional<std::string> savedServer_;
    std::optional<std::string> savedCookie_;
    std::optional<std::string> savedClientConfig_;
};

}  // namespace ovd::testing
