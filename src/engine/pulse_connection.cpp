#include "engine/pulse_connection.h"

#include <pulse/pulseaudio.h>
#include <pulse/rtclock.h>

namespace ovd::engine {

// The library's C callbacks, passed on to the connection.
struct PulseConnectionCallbacks {
    static void contextState(pa_context*, void* self) {
        static_cast<PulseConnection*>(self)->wake();
    }

    static void serverEvent(pa_context*, pa_subscription_event_type_t type, std::uint32_t,
                            void* self) {
        auto* connection = static_cast<PulseConnection*>(self);
        if (!connection->onChange_) return;
        const auto facility = type & PA_SUBSCRIPTION_EVENT_FACILITY_MASK;
        // A change of the server's defaults moves "Current" in both lists.
        const bool server = facility == PA_SUBSCRIPTION_EVENT_SERVER;
        connection->onChange_(server || facility == PA_SUBSCRIPTION_EVENT_SINK,
                              server || facility == PA_SUBSCRIPTION_EVENT_SOURCE);
    }

    static void alarm(pa_mainloop_api*, pa_time_event*, const timeval*, void* rang) {
        auto* flag = static_cast<std::pair<PulseConnection*, bool>*>(rang);
        flag->second = true;
        flag->first->wake();
    }

    static void success(pa_context*, int ok, void* outcome) {
        auto* result = static_cast<std::pair<PulseConnection*, int>*>(outcome);
        result->second = ok != 0 ? 1 : 0;
        result->first->wake();
    }
};

PulseConnection::Lock::Lock(pa_threaded_mainloop* mainloop) : mainloop_(mainloop) {
    pa_threaded_mainloop_lock(mainloop_);
}

PulseConnection::Lock::~Lock() { pa_threaded_mainloop_unlock(mainloop_); }

platform::Result<std::shared_ptr<PulseConnection>> PulseConnection::open(
    const std::string& server) {
    std::shared_ptr<PulseConnection> connection(new PulseConnection());
    connection->mainloop_ = pa_threaded_mainloop_new();
    if (connection->mainloop_ == nullptr)
        return platform::failure("sound server: cannot create the sound thread");
    pa_proplist* properties = pa_proplist_new();
    pa_proplist_sets(properties, PA_PROP_APPLICATION_NAME, "Orvane Voice Desk");
    pa_proplist_sets(properties, PA_PROP_APPLICATION_ID, "orvane-voice-desk");
    pa_proplist_sets(properties, PA_PROP_MEDIA_ROLE, "production");
    connection->context_ = pa_context_new_with_proplist(
        pa_threaded_mainloop_get_api(connection->mainloop_), "Orvane Voice Desk", properties);
    pa_proplist_free(properties);
    if (connection->context_ == nullptr)
        return platform::failure("sound server: cannot create a client context");
    pa_context_set_state_callback(connection->context_, &PulseConnectionCallbacks::contextState,
                                  connection.get());
    // Never start a server of our own: without one the station records on the virtual backend.
    if (pa_context_connect(connection->context_, server.empty() ? nullptr : server.c_str(),
                           PA_CONTEXT_NOAUTOSPAWN, nullptr) < 0) {
        return platform::failure("sound server: " + connection->lastError());
    }
    if (pa_threaded_mainloop_start(connection->mainloop_) < 0)
        return platform::failure("sound server: cannot start the sound thread");
    const Lock held = connection->lock();
    pa_context* context = connection->context_;
    const bool settled = connection->waitUntil([context] {
        const pa_context_state_t state = pa_context_get_state(context);
        return state == PA_CONTEXT_READY || !PA_CONTEXT_IS_GOOD(state);
    });
    if (pa_context_get_state(context) != PA_CONTEXT_READY) {
        return platform::failure(settled ? "sound server: " + connection->lastError()
                                         : "sound server: no answer within " +
                                               std::to_string(kAnswerTimeout.count() / 1000) +
                                               " seconds");
    }
    pa_context_set_subscribe_callback(context, &PulseConnectionCallbacks::serverEvent,
                                      connection.get());
    const auto mask = static_cast<pa_subscription_mask_t>(
        PA_SUBSCRIPTION_MASK_SINK | PA_SUBSCRIPTION_MASK_SOURCE | PA_SUBSCRIPTION_MASK_SERVER);
    if (pa_operation* subscribing = pa_context_subscribe(context, mask, nullptr, nullptr)) {
        pa_operation_unref(subscribing);
    }
    return connection;
}

PulseConnection::~PulseConnection() {
    if (mainloop_ == nullptr) return;
    if (context_ != nullptr) {
        {
            const Lock held = lock();
            pa_context_set_state_callback(context_, nullptr, nullptr);
            pa_context_set_subscribe_callback(context_, nullptr, nullptr);
            pa_context_disconnect(context_);
            pa_context_unref(context_);
        }
        context_ = nullptr;
    }
    pa_threaded_mainloop_stop(mainloop_);
    pa_threaded_mainloop_free(mainloop_);
}

bool PulseConnection::waitUntil(const std::function<bool()>& done) {
    if (done()) return true;
    std::pair<PulseConnection*, bool> rang{this, false};
    const auto timeout = std::chrono::duration_cast<std::chrono::microseconds>(kAnswerTimeout);
    pa_time_event* alarm =
        pa_context_rttime_new(context_, pa_rtclock_now() + static_cast<pa_usec_t>(timeout.count()),
                              &PulseConnectionCallbacks::alarm, &rang);
    while (!done() && !rang.second) pa_threaded_mainloop_wait(mainloop_);
    if (alarm != nullptr) {
        pa_mainloop_api* api = pa_threaded_mainloop_get_api(mainloop_);
        api->time_free(alarm);
    }
    return done();
}

void PulseConnection::wake() { pa_threaded_mainloop_signal(mainloop_, 0); }

bool PulseConnection::finish(pa_operation* operation) {
    if (operation == nullptr) return false;
    const bool finished = waitUntil(
        [operation] { return pa_operation_get_state(operation) != PA_OPERATION_RUNNING; });
    if (!finished) pa_operation_cancel(operation);
    const bool completed = pa_operation_get_state(operation) == PA_OPERATION_DONE;
    pa_operation_unref(operation);
    return completed;
}

platform::Result<void> PulseConnection::call(
    const std::string& what, const std::function<pa_operation*(SuccessCallback, void*)>& start) {
    std::pair<PulseConnection*, int> outcome{this, -1};
    if (!finish(start(&PulseConnectionCallbacks::success, &outcome)) || outcome.second != 1) {
        return failure(what);
    }
    return platform::Result<void>::success();
}

std::string PulseConnection::lastError() const {
    if (context_ == nullptr) return "no connection";
    return pa_strerror(pa_context_errno(context_));
}

platform::Result<void> PulseConnection::failure(const std::string& what) const {
    return platform::failure("sound server: " + what + ": " + lastError());
}

}  // namespace ovd::engine
