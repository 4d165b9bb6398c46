#pragma once
// Runs a delivery off the loop's thread and brings its events and its outcome
// back onto the loop, so the compose window stays responsive while a long letter
// goes out. One send at a time; a second while one runs is refused.

#include <atomic>
#include <functional>
#include <memory>
#include <thread>

#include "mail/send_step.h"
#include "platform/event_loop.h"
#include "platform/result.h"

namespace ovd::mail {

inline constexpr const char* kSendRunningText = "A message is already being sent.";

class MailSession {
  public:
    using DoneCallback = std::function<void(const DeliveryOutcome&)>;

    MailSession(platform::EventLoop& loop, std::unique_ptr<MailTransport> transport);
    // Cancels a running send and waits for it; nothing more reaches the loop.
    ~MailSession();
    MailSession(const MailSession&) = delete;
    MailSession& operator=(const MailSession&) = delete;

    // The events' sendingTo, deliveredTo and progress run on the loop, in order,
    // then `done`; the trace runs on the sending thread (MailTrace takes that).
    platform::Result<void> start(SendPlan plan, MailMessage message, DeliveryEvents events,
                                 DoneCallback done);
    [[nodiscard]] bool busy() const { return busy_; }
    void cancel();

  private:
    platform::EventLoop& loop_;
    std::unique_ptr<MailTransport> transport_;
    std::thread worker_;
    bool busy_ = false;
    std::shared_ptr<std::atomic<bool>> alive_;
};

}  // namespace ovd::mail
