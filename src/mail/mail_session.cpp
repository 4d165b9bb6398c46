#include "mail/mail_session.h"

#include <utility>

namespace ovd::mail {

MailSession::MailSession(platform::EventLoop& loop, std::unique_ptr<MailTransport> transport)
    : loop_(loop),
      transport_(std::move(transport)),
      alive_(std::make_shared<std::atomic<bool>>(true)) {}

MailSession::~MailSession() {
    alive_->store(false);
    if (busy_) transport_->cancel();
    if (worker_.joinable()) worker_.join();
}

void MailSession::cancel() {
    if (busy_) transport_->cancel();
}

platform::Result<void> MailSession::start(SendPlan plan, MailMessage message, DeliveryEvents events,
                                          DoneCallback done) {
    if (busy_) return platform::failure(kSendRunningText);
    if (worker_.joinable()) worker_.join();
    busy_ = true;
    transport_->clearCancel();
    auto alive = alive_;
    // Each event is carried to the loop with its own copy of what it says.
    const auto onLoop = [this, alive](std::function<void(const std::string&)> call) {
        return [this, alive, call = std::move(call)](const std::string& text) {
            if (!call) return;
            loop_.postFromAnyThread([alive, call, text] {
                if (alive->load()) call(text);
            });
        };
    };
    DeliveryEvents posted;
    posted.transport.trace = events.transport.trace;
    posted.transport.sendingTo = onLoop(events.transport.sendingTo);
    posted.deliveredTo = onLoop(events.deliveredTo);
    if (events.transport.progress) {
        posted.transport.progress = [this, alive,
                                     progress = events.transport.progress](std::uint64_t sent) {
            loop_.postFromAnyThread([alive, progress, sent] {
                if (alive->load()) progress(sent);
            });
        };
    }
    worker_ = std::thread([this, alive, plan = std::move(plan), message = std::move(message),
                           posted = std::move(posted), done = std::move(done)] {
        DeliveryOutcome outcome = deliver(plan, message, *transport_, posted);
        loop_.postFromAnyThread([this, alive, outcome = std::move(outcome), done] {
            if (!alive->load()) return;
            busy_ = false;
            if (done) done(outcome);
        });
    });
    return {};
}

}  // namespace ovd::mail
