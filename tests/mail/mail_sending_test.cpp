#include <gtest/gtest.h>

#include <fstream>

#include "mail/curl_mail_transport.h"
#include "mail/mail_servers_environment.h"
#include "mail/mime_text.h"
#include "mail/parsed_message.h"
#include "mail/send_step.h"
#include "support/scripted_prompts.h"
#include "support/temp_folder.h"

namespace ovd::mail {
namespace {

using namespace ovd::mail::testing;
using ovd::testing::SmtpTestServer;

class MailSendingTest : public ::testing::Test {
  protected:
    void SetUp() override {
        recording = folder.file("0042 Smith.wav");
        std::ofstream out(recording, std::ios::binary);
        for (int i = 0; i < 200000; ++i) out.put(static_cast<char>(i * 7 % 251));
    }

    MailMessage letter(std::vector<std::string> to) const {
        MailMessage message;
        message.fromName = "Dr. Ann Smith";
        message.fromAddress = "ann@clinic.example";
        message.to = std::move(to);
        message.organization = "Northside Clinic";
        message.subject = "0042 Smith.wav";
        message.body = "Letter attached.";
        message.attachments = {{recording, "0042 Smith.wav"}};
        return message;
    }

    SenderSettings relayThrough(const SmtpTestServer& server) const {
        SenderSettings sender;
        sender.g_strSenderAddress = "ann@clinic.example";
        sender.g_bRelayMessages = true;
        sender.g_strRelayServer = "127.0.0.1";
        sender.g_nRelayPort = std::to_string(server.port());
        return sender;
    }

    SenderSettings overTls(const SmtpTestServer& server, Security security) const {
        SenderSettings sender = relayThrough(server);
        sender.security = security;
        sender.smtpUser = kSmtpUser;
        sender.smtpPassword = kSmtpPassword;
        sender.pinnedCertificateFile = server.certificateFile();
        return sender;
    }

    // Plans and delivers as the sender does, noting every event in order.
    DeliveryOutcome send(const MailMessage& message, const SenderSettings& sender) {
        PlanRefusal refusal;
        auto plan = planSend(message, sender, prompts, refusal);
        if (!plan) {
            DeliveryOutcome refused;
            refused.error.text = refusal.text;
            return refused;
        }
        DeliveryEvents events;
        events.transport.sendingTo = [this](const std::string& a) { seen.push_back("to " + a); };
        events.transport.trace = [this](const std::string& line) { trace += line + "\n"; };
        events.deliveredTo = [this](const std::string& a) { seen.push_back("got " + a); };
        return deliver(*plan, message, transport, events);
    }

    ovd::testing::TempFolder folder;
    ovd::testing::ScriptedPrompts prompts;
    CurlMailTransport transport;
    std::string recording;
    std::vector<std::string> seen;
    std::string trace;
};

TEST_F(MailSendingTest, TheRelayDeliversToEveryoneAndTheBlindCopyStaysOutOfTheHeaders) {
    SmtpTestServer& relay = plainRelay();
    ASSERT_TRUE(relay.running()) << relay.error();
    relay.clear();
    MailMessage message = letter({"typist@pool.example", "second@pool.example"});
    message.cc = {"office@clinic.example"};
    message.bcc = {"archive@clinic.example"};
    const DeliveryOutcome outcome = send(message, relayThrough(relay));
    ASSERT_TRUE(outcome.delivered) << outcome.error.code << " " << outcome.error.text;

    const std::vector<std::string> expected = {
        "to typist@pool.example",    "to second@pool.example",    "to office@clinic.example",
        "to archive@clinic.example", "got typist@pool.example",   "got second@pool.example",
        "got office@clinic.example", "got archive@clinic.example"};
    EXPECT_EQ(seen, expected);
    const auto received = relay.messages();
    ASSERT_EQ(received.size(), 1U);
    EXPECT_EQ(relay.envelopeOf(received[0]),
              (std::vector<std::string>{"ann@clinic.example", "typist@pool.example",
                                        "second@pool.example", "office@clinic.example",
                                        "archive@clinic.example"}));
    const auto parsed = parseMessageFile(received[0]);
    EXPECT_EQ(parsed.at("header.From"), "\"Dr. Ann Smith\" <ann@clinic.example>");
    EXPECT_EQ(parsed.at("header.Cc"), "office@clinic.example");
    EXPECT_EQ(parsed.count("header.Bcc"), 0U);
    EXPECT_EQ(parsed.at("attachment.0.sha256"), sha256Of(recording));
}

TEST_F(MailSendingTest, ARefusedRecipientFailsTheSendButTheOthersHaveTheLetter) {
    SmtpTestServer& relay = plainRelay();
    ASSERT_TRUE(relay.running()) << relay.error();
    relay.clear();
    const DeliveryOutcome outcome =
        send(letter({"typist@pool.example", kRefusedAddress}), relayThrough(relay));
    EXPECT_FALSE(outcome.delivered);
    EXPECT_EQ(outcome.error.code, 550);
    EXPECT_NE(outcome.error.text.find(kRefusedAddress), std::string::npos);
    EXPECT_EQ(outcome.deliveredTo, std::vector<std::string>{"typist@pool.example"});
    ASSERT_EQ(relay.messages().size(), 1U);
    EXPECT_EQ(relay.envelopeOf(relay.messages()[0]).size(), 2U);

    // Nobody left to take it: nothing is stored and nobody is told delivered.
    relay.clear();
    seen.clear();
    const DeliveryOutcome none = send(letter({kRefusedAddress}), relayThrough(relay));
    EXPECT_FALSE(none.delivered);
    EXPECT_EQ(none.error.code, 550);
    EXPECT_TRUE(none.deliveredTo.empty());
    EXPECT_TRUE(relay.messages().empty());
}

TEST_F(MailSendingTest, TlsRelaysTakeTheLetterAfterAuthWithThePasswordNeverInTheTrace) {
    for (SmtpTestServer* relay : {&startTlsRelay(), &implicitTlsRelay(), &loginOnlyRelay()}) {
        ASSERT_TRUE(relay->running()) << relay->error();
        relay->clear();
        trace.clear();
        const Security security =
            relay == &implicitTlsRelay() ? Security::ImplicitTls : Security::StartTls;
        const DeliveryOutcome outcome =
            send(letter({"typist@pool.example"}), overTls(*relay, security));
        EXPECT_TRUE(outcome.delivered) << outcome.error.code << " " << outcome.error.text;
        ASSERT_EQ(relay->messages().size(), 1U);
        EXPECT_EQ(parseMessageFile(relay->messages()[0]).at("attachment.0.sha256"),
                  sha256Of(recording));
        EXPECT_NE(trace.find("< 235"), std::string::npos) << trace;
        EXPECT_EQ(trace.find(kSmtpPassword), std::string::npos);
        EXPECT_NE(trace.find("********"), std::string::npos);
    }
}

TEST_F(MailSendingTest, ABadPasswordAnUntrustedCertificateOrNoTlsIsRefused) {
    SmtpTestServer& relay = startTlsRelay();
    ASSERT_TRUE(relay.running()) << relay.error();
    relay.clear();

    SenderSettings wrongPassword = overTls(relay, Security::StartTls);
    wrongPassword.smtpPassword = "guess";
    DeliveryOutcome outcome = send(letter({"typist@pool.example"}), wrongPassword);
    EXPECT_FALSE(outcome.delivered);
    EXPECT_EQ(outcome.error.code, 535) << outcome.error.text;

    // The test certificate is nobody's authority but its own.
    SenderSettings untrusted = overTls(relay, Security::StartTls);
    untrusted.pinnedCertificateFile.clear();
    outcome = send(letter({"typist@pool.example"}), untrusted);
    EXPECT_FALSE(outcome.delivered);
    EXPECT_EQ(outcome.error.code, 60) << outcome.error.text;

    SenderSettings plain = overTls(relay, Security::Plain);
    outcome = send(letter({"typist@pool.example"}), plain);
    EXPECT_FALSE(outcome.delivered);
    EXPECT_GE(outcome.error.code, 500) << outcome.error.text;
    EXPECT_TRUE(relay.messages().empty());
}

TEST_F(MailSendingTest, PopBeforeSmtpLogsInFirstAndAFailedLoginSendsNothing) {
    SmtpTestServer& relay = plainRelay();
    ovd::testing::Pop3TestServer& pop = popServer();
    ASSERT_TRUE(relay.running()) << relay.error();
    ASSERT_TRUE(pop.running()) << pop.error();
    relay.clear();
    SenderSettings sender = relayThrough(relay);
    sender.g_chkServerAuthentication = true;
    sender.g_POPServer = "127.0.0.1";
    sender.g_POPPort = std::to_string(pop.port());
    sender.g_POPUserName = ovd::testing::Pop3TestServer::kUser;
    sender.g_POPPassword = ovd::testing::Pop3TestServer::kPassword;
    sender.g_POPTimeOut = "20";
    DeliveryOutcome outcome = send(letter({"typist@pool.example"}), sender);
    EXPECT_TRUE(outcome.delivered) << outcome.error.code << " " << outcome.error.text;
    EXPECT_NE(pop.log().find("Login: user=<popuser>"), std::string::npos) << pop.log();
    EXPECT_EQ(relay.messages().size(), 1U);
    // The login's answer holds the password: the trace has the mask in its place.
    const std::string credentials = std::string("\0popuser\0", 9) + sender.g_POPPassword;
    EXPECT_EQ(trace.find(base64(credentials)), std::string::npos) << trace;
    EXPECT_NE(trace.find("> ********"), std::string::npos) << trace;

    relay.clear();
    sender.g_POPPassword = "wrong";
    outcome = send(letter({"typist@pool.example"}), sender);
    EXPECT_FALSE(outcome.delivered);
    EXPECT_EQ(outcome.error.code, 67) << outcome.error.text;
    EXPECT_NE(outcome.error.text.find("-ERR"), std::string::npos) << outcome.error.text;
    EXPECT_TRUE(relay.messages().empty());
}

TEST_F(MailSendingTest, DirectSendingFindsTheExchangerByItsMxOrAddressRecord) {
    SmtpTestServer& relay = plainRelay();
    ovd::testing::DnsTestServer& dns = nameServer();
    ASSERT_TRUE(relay.running()) << relay.error();
    ASSERT_TRUE(dns.running()) << dns.error();
    relay.clear();
    SenderSettings sender;
    sender.g_strSenderAddress = "ann@clinic.example";
    // The POP fields are not looked at when nothing is relayed.
    sender.g_chkServerAuthentication = true;
    sender.resolver = {"127.0.0.1", dns.port()};
    sender.directPort = relay.port();

    const std::string viaMx = std::string("typist@") + kMxDomain;
    const std::string viaAddress = std::string("office@") + kAddressOnlyDomain;
    const DeliveryOutcome outcome = send(letter({viaMx, viaAddress}), sender);
    EXPECT_TRUE(outcome.delivered) << outcome.error.code << " " << outcome.error.text;
    EXPECT_TRUE(prompts.transcript().empty());
    // One message per domain; the first exchanger of the MX domain did not answer.
    const auto received = relay.messages();
    ASSERT_EQ(received.size(), 2U);
    EXPECT_EQ(relay.envelopeOf(received[0])[1], viaMx);
    EXPECT_EQ(relay.envelopeOf(received[1])[1], viaAddress);

    const DeliveryOutcome unknown = send(letter({"someone@nowhere.test"}), sender);
    EXPECT_FALSE(unknown.delivered);
    EXPECT_NE(unknown.error.text.find("nowhere.test"), std::string::npos);
}

TEST_F(MailSendingTest, MissingRelayFieldsShowTheAuthenticationBoxAndSendNothing) {
    SenderSettings sender;
    sender.g_bRelayMessages = true;
    sender.g_chkServerAuthentication = true;
    sender.g_strRelayServer = "127.0.0.1";
    sender.g_nRelayPort = "25";
    sender.g_POPServer = "127.0.0.1";
    sender.g_POPUserName = "someone";
    DeliveryOutcome outcome = send(letter({"typist@pool.example"}), sender);
    EXPECT_FALSE(outcome.delivered);
    sender.g_chkServerAuthentication = false;
    sender.g_nRelayPort.clear();
    outcome = send(letter({"typist@pool.example"}), sender);
    EXPECT_FALSE(outcome.delivered);
    send(letter({}), sender);
    ASSERT_EQ(prompts.transcript().size(), 3U);
    EXPECT_EQ(prompts.transcript()[0].title, kAuthenticationProblemTitle);
    EXPECT_EQ(prompts.transcript()[0].text, kRelayWithAuthenticationBlank);
    EXPECT_EQ(prompts.transcript()[1].text, kRelayWithoutAuthenticationBlank);
    EXPECT_EQ(prompts.transcript()[2].text, kNoRecipientsMessage);
}

TEST_F(MailSendingTest, ARelayThatIsDownOrAnAttachmentGoneMidwayIsAFailure) {
    SenderSettings down;
    down.g_strSenderAddress = "ann@clinic.example";
    down.g_bRelayMessages = true;
    down.g_strRelayServer = "127.0.0.1";
    down.g_nRelayPort = std::to_string(ovd::testing::freeLoopbackPort());
    DeliveryOutcome outcome = send(letter({"typist@pool.example"}), down);
    EXPECT_FALSE(outcome.delivered);
    EXPECT_EQ(outcome.error.code, 7) << outcome.error.text;

    SmtpTestServer& relay = plainRelay();
    ASSERT_TRUE(relay.running()) << relay.error();
    relay.clear();
    MailMessage message = letter({"typist@pool.example"});
    message.attachments.push_back({folder.file("gone.wav"), "gone.wav"});
    outcome = send(message, relayThrough(relay));
    EXPECT_FALSE(outcome.delivered);
    EXPECT_NE(outcome.error.text.find("gone.wav"), std::string::npos) << outcome.error.text;
    EXPECT_TRUE(outcome.deliveredTo.empty());
    EXPECT_TRUE(relay.messages().empty());
}

}  // namespace
}  // namespace ovd::mail
