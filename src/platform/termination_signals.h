#pragma once
// SIGINT, SIGTERM and SIGHUP as a descriptor the loop can watch, so that an
// ordered shutdown (settings written, log saved) runs on the loop's thread rather
// than inside a signal handler. Make it before any thread starts.

namespace ovd::platform {

class TerminationSignals {
  public:
    TerminationSignals();
    ~TerminationSignals();
    TerminationSignals(const TerminationSignals&) = delete;
    TerminationSignals& operator=(const TerminationSignals&) = delete;

    // Readable when a signal has arrived; -1 when it could not be set up.
    [[nodiscard]] int fd() const { return fd_; }
    // Reads the pending signal; returns its number, or 0 when there was none.
    int take();

  private:
    int fd_ = -1;
};

}  // namespace ovd::platform
