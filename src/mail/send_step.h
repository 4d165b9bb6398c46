#pragma once
// The send step of the mail sender: the checks of the relay and POP fields with
// their boxes, then the delivery itself (POP3 login first when asked, the relay,
// or each recipient's own mail server found by its MX records).
//
// planSend runs on the loop's thread, where boxes may be shown; deliver does the
// network work and may run on any thread.

#include <functional>
#include <string>
#include <vector>

#include "mail/mail_message.h"
#include "mail/mail_transport.h"
#include "mail/sender_settings.h"
#include "platform/prompts.h"
#include "platform/result.h"

namespace ovd::mail {

inline constexpr const char* kUnableToCreateMessage = "Unable to create a new message";
inline constexpr const char* kNoRecipientsMessage = "There are no recipients for this message";
inline constexpr const char* kAuthenticationProblemTitle = "Authentication Problem";
inline constexpr const char* kRelayWithAuthenticationBlank =
    " You have indicated to use the Outgoing Relay Server and Authentication is required by the "
    "mail server, "
    "But these fields have not been entered."
    "Please go to the POP setup Option to do this procedure.";
inline constexpr const char* kRelayWithoutAuthenticationBlank =
    " You have indicated to use the Outgoing Relay Server with out Authentication for the mail "
    "server, "
    "But these fields have not been entered."
    "Please go to the POP setup Option to do this procedure.";
inline constexpr const char* kSendingMessageTo = "Sending message to ";
inline constexpr const char* kMessageDeliveredTo = "Message delivered to ";
inline constexpr const char* kSendErrorTrace = "Sending File via Email error = ";

struct SendPlan {
    bool relay = false;
    bool popFirst = false;
    SmtpServer relayServer;
    PopServer popServer;
    ResolverSettings resolver;
    int directPort = 25;
    Envelope envelope;
};

// Why planSend stopped: the text shown, and whether the send ends as finished
// (the relay boxes set AutoDone themselves).
struct PlanRefusal {
    std::string text;
    bool autoDone = false;
};

// Checks the message and the settings, showing the box of the first thing missing.
// With relaying off the POP settings are not looked at.
platform::Result<SendPlan> planSend(const MailMessage& message, const SenderSettings& sender,
                                    platform::Prompts& prompts, PlanRefusal& refusal);

struct DeliveryEvents {
    TransportEvents transport;
    std::function<void(const std::string& address)> deliveredTo;
};

struct DeliveryOutcome {
    bool delivered = false;  // every recipient has it
    std::vector<std::string> deliveredTo;
    SendError error;
};

// Sends the message as planned. A recipient counts as delivered only after its
// server's final OK of the message.
DeliveryOutcome deliver(const SendPlan& plan, const MailMessage& message, MailTransport& transport,
                        const DeliveryEvents& events);

// "Sending File via Email error = " + code + " " + text.
std::string sendErrorText(const SendError& error);

}  // namespace ovd::mail
