#include "mail/send_step.h"

#include <map>

#include "platform/text.h"

namespace ovd::mail {

namespace {

using platform::Result;

int portOf(const std::string& text, int fallback) {
    try {
        return std::stoi(text);
    } catch (...) {
        return fallback;
    }
}

std::string domainOf(const std::string& address) {
    const auto at = address.rfind('@');
    return at == std::string::npos ? std::string() : address.substr(at + 1);
}

platform::Failure refuse(platform::Prompts& prompts, PlanRefusal& refusal, const std::string& text,
                         const std::string& title, bool autoDone) {
    prompts.showMessage(text, title, platform::Severity::Warning);
    refusal = {text, autoDone};
    return platform::failure(text);
}

// One server's part of the message: its recipients, delivered or failed as one.
bool sendTo(const SmtpServer& server, const std::vector<std::string>& recipients,
            const SendPlan& plan, const MailMessage& message, MailTransport& transport,
            const DeliveryEvents& events, DeliveryOutcome& outcome) {
    auto stream = MessageStream::open(message);
    if (!stream) {
        outcome.error = {0, std::string(kUnableToCreateMessage) + ": " + stream.error(), false};
        return false;
    }
    SendReport report;
    const bool sent = transport.send(server, {plan.envelope.from, recipients}, **stream,
                                     events.transport, report, outcome.error);
    for (const auto& address : report.accepted) {
        outcome.deliveredTo.push_back(address);
        if (events.deliveredTo) events.deliveredTo(address);
    }
    return sent;
}

bool sendDirect(const std::string& domain, const std::vector<std::string>& recipients,
                const SendPlan& plan, const MailMessage& message, MailTransport& transport,
                const DeliveryEvents& events, DeliveryOutcome& outcome) {
    const auto exchangers = findMailExchangers(domain, plan.resolver);
    if (!exchangers) {
        outcome.error = {0, exchangers.error(), true};
        return false;
    }
    for (const auto& exchanger : *exchangers) {
        for (const auto& address : exchanger.addresses) {
            SmtpServer server;
            server.host = exchanger.host;
            server.address = address;
            server.port = plan.directPort;
            if (sendTo(server, recipients, plan, message, transport, events, outcome)) return true;
            // A server that answered has decided; only one that could not be reached
            // leaves the message to the next exchanger.
            if (!outcome.error.connectionFailed) return false;
        }
    }
    return false;
}

}  // namespace

Result<SendPlan> planSend(const MailMessage& message, const SenderSettings& sender,
                          platform::Prompts& prompts, PlanRefusal& refusal) {
    SendPlan plan;
    plan.envelope.from = sender.g_strSenderAddress;
    plan.envelope.recipients = message.recipients();
    if (plan.envelope.recipients.empty()) {
        return refuse(prompts, refusal, kNoRecipientsMessage, {}, false);
    }
    plan.relay = sender.g_bRelayMessages;
    if (sender.g_bRelayMessages) {
        const bool relayGiven = !sender.g_strRelayServer.empty() && !sender.g_nRelayPort.empty();
        if (sender.g_chkServerAuthentication) {
            if (sender.g_POPServer.empty() || sender.g_POPUserName.empty() ||
                sender.g_POPPassword.empty() || !relayGiven) {
                return refuse(prompts, refusal, kRelayWithAuthenticationBlank,
                              kAuthenticationProblemTitle, true);
            }
            plan.popFirst = true;
            plan.popServer = {sender.g_POPServer, portOf(sender.g_POPPort, 110),
                              sender.g_POPUserName, sender.g_POPPassword,
                              portOf(sender.g_POPTimeOut, 60)};
        } else if (!relayGiven) {
            return refuse(prompts, refusal, kRelayWithoutAuthenticationBlank,
                          kAuthenticationProblemTitle, true);
        }
        plan.relayServer.host = sender.g_strRelayServer;
        plan.relayServer.port = portOf(sender.g_nRelayPort, 25);
        plan.relayServer.security = sender.security;
        plan.relayServer.user = sender.smtpUser;
        plan.relayServer.password = sender.smtpPassword;
        plan.relayServer.pinnedCertificateFile = sender.pinnedCertificateFile;
    }
    plan.resolver = sender.resolver;
    plan.directPort = sender.directPort;
    return plan;
}

DeliveryOutcome deliver(const SendPlan& plan, const MailMessage& message, MailTransport& transport,
                        const DeliveryEvents& events) {
    DeliveryOutcome outcome;
    if (plan.popFirst && !transport.popLogin(plan.popServer, events.transport, outcome.error)) {
        return outcome;
    }
    if (plan.relay) {
        outcome.delivered = sendTo(plan.relayServer, plan.envelope.recipients, plan, message,
                                   transport, events, outcome);
        return outcome;
    }
    // Each domain's recipients go to that domain's own exchanger, in the order given.
    std::vector<std::string> domains;
    std::map<std::string, std::vector<std::string>> byDomain;
    for (const auto& address : plan.envelope.recipients) {
        const std::string domain = platform::toUpper(domainOf(address));
        if (!byDomain.contains(domain)) domains.push_back(domain);
        byDomain[domain].push_back(address);
    }
    bool all = true;
    SendError firstError;
    for (const auto& domain : domains) {
        const auto& recipients = byDomain[domain];
        if (sendDirect(domainOf(recipients.front()), recipients, plan, message, transport, events,
                       outcome)) {
            continue;
        }
        if (all) firstError = outcome.error;
        all = false;
    }
    outcome.delivered = all;
    if (!all) outcome.error = firstError;
    return outcome;
}

std::string sendErrorText(const SendError& error) {
    return kSendErrorTrace + std::to_string(error.code) + " " + error.text;
}

}  // namespace ovd::mail
