#pragma once
// The one connection to the sound server that the backend, its device lists and
// its streams share. The sound library runs its own thread: every call into it
// from the station's thread holds the connection's lock, and its callbacks run on
// its thread with that lock already held. Waits for an answer are bounded, so a
// server that hangs costs the station a couple of seconds, never the whole loop.
//
// Only the backend's own files include this; the library's types are declared,
// not included.

#include <chrono>
#include <functional>
#include <memory>
#include <string>

#include "platform/result.h"

struct pa_context;
struct pa_operation;
struct pa_threaded_mainloop;

namespace ovd::engine {

class PulseConnection {
  public:
    // How long the station waits for any answer of the server.
    static constexpr std::chrono::milliseconds kAnswerTimeout{2000};

    // The library's shape of a "done, and did it work" callback.
    using SuccessCallback = void (*)(pa_context*, int success, void* userdata);
    // Called on the library's thread when devices of either kind change.
    using ChangeCallback = std::function<void(bool sinksChanged, bool sourcesChanged)>;

    // Connects to server (empty: the usual lookup, PULSE_SERVER first) without ever
    // starting a server; the reason when none answers in time.
    static platform::Result<std::shared_ptr<PulseConnection>> open(const std::string& server);
    ~PulseConnection();
    PulseConnection(const PulseConnection&) = delete;
    PulseConnection& operator=(const PulseConnection&) = delete;

    // Held by the station's thread around every call into the library.
    class [[nodiscard]] Lock {
      public:
        explicit Lock(pa_threaded_mainloop* mainloop);
        ~Lock();
        Lock(const Lock&) = delete;
        Lock& operator=(const Lock&) = delete;

      private:
        pa_threaded_mainloop* mainloop_;
    };
    [[nodiscard]] Lock lock() const { return Lock(mainloop_); }

    [[nodiscard]] pa_context* context() const { return context_; }

    // With the lock held: lets the library's thread run until done() holds or the
    // answer timeout passes. Callbacks that change what done() looks at call wake().
    bool waitUntil(const std::function<bool()>& done);
    // From a callback on the library's thread: lets a waiting station thread look again.
    void wake();
    // With the lock held: waits for the operation (cancelling it on timeout) and releases it.
    bool finish(pa_operation* operation);
    // With the lock held: runs a call that reports success, and waits for its answer.
    // start gets the callback and its user data and returns the library's operation.
    platform::Result<void> call(const std::string& what,
                                const std::function<pa_operation*(SuccessCallback, void*)>& start);

    // The library's text for the last failure on this connection.
    [[nodiscard]] std::string lastError() const;
    // "what: reason" for an engine error.
    [[nodiscard]] platform::Result<void> failure(const std::string& what) const;

    // With the lock held: who hears of device changes (empty to stop hearing).
    void setOnChange(ChangeCallback onChange) { onChange_ = std::move(onChange); }

  private:
    friend struct PulseConnectionCallbacks;
    PulseConnection() = default;

    pa_threaded_mainloop* mainloop_ = nullptr;
    pa_context* context_ = nullptr;
    ChangeCallback onChange_;
};

}  // namespace ovd::engine
