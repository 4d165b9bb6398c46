#include "mail/mail_session.h"

#include <gtest/gtest.h>

#include <fstream>
#include <thread>

#include "mail/curl_mail_transport.h"
#include "mail/mail_servers_environment.h"
#include "support/real_time_event_loop.h"
#include "support/temp_folder.h"

namespace ovd::mail {
namespace {

using namespace ovd::mail::testing;
using std::chrono::milliseconds;

class MailSessionTest : public ::testing::Test {
  protected:
    void SetUp() override {
        ASSERT_TRUE(plainRelay().running()) << plainRelay().error();
        plainRelay().clear();
        const std::string attachment = folder.file("0100 Long.wav");
        std::ofstream(attachment, std::ios::binary) << std::string(12 * 1024 * 1024, 'a');
        message.fromAddress = "ann@clinic.example";
        message.to = {"typist@pool.example", "second@pool.example"};
        message.subject = "0100 Long.wav";
        message.attachments = {{attachment, "0100 Long.wav"}};
        plan.relay = true;
        plan.relayServer.host = "127.0.0.1";
        plan.relayServer.port = plainRelay().port();
        plan.envelope = {message.fromAddress, message.recipients()};
    }

    DeliveryEvents recording() {
        DeliveryEvents events;
        const auto note = [this](const char* what) {
            return [this, what](const std::string& address) {
                offLoop = offLoop || std::this_thread::get_id() != loopThread;
                seen.push_back(what + address);
            };
        };
        events.transport.sendingTo = note("to ");
        events.deliveredTo = note("got ");
        events.transport.progress = [this](std::uint64_t sent) {
            offLoop = offLoop || std::this_thread::get_id() != loopThread;
            lastProgress = sent;
        };
        return events;
    }

    ovd::testing::TempFolder folder;
    ovd::testing::RealTimeEventLoop loop;
    MailMessage message;
    SendPlan plan;
    std::thread::id loopThread = std::this_thread::get_id();
    std::vector<std::string> seen;
    std::uint64_t lastProgress = 0;
    bool offLoop = false;
};

TEST_F(MailSessionTest, EveryEventReachesTheLoopInOrderAndASecondSendWaits) {
    MailSession session(loop, std::make_unique<CurlMailTransport>());
    std::optional<DeliveryOutcome> outcome;
    ASSERT_TRUE(session.start(plan, message, recording(),
                              [&](const DeliveryOutcome& done) { outcome = done; }));
    EXPECT_EQ(session.start(plan, message, {}, {}).error(), kSendRunningText);
    ASSERT_TRUE(loop.runUntil([&] { return outcome.has_value(); }, milliseconds(60000)));
    EXPECT_TRUE(outcome->delivered) << outcome->error.text;
    EXPECT_FALSE(offLoop);
    EXPECT_EQ(seen,
              (std::vector<std::string>{"to typist@pool.example", "to second@pool.example",
                                        "got typist@pool.example", "got second@pool.example"}));
    // The base64 of the attachment alone is a third larger than the file.
    EXPECT_GT(lastProgress, 16U * 1024U * 1024U);
    EXPECT_FALSE(session.busy());
}

TEST_F(MailSessionTest, EndingTheSessionMidSendStopsItAndReportsNothingMore) {
    bool reported = false;
    const auto started = std::chrono::steady_clock::now();
    {
        MailSession session(loop, std::make_unique<CurlMailTransport>());
        ASSERT_TRUE(session.start(plan, message, recording(),
                                  [&](const DeliveryOutcome&) { reported = true; }));
        loop.runUntil([&] { return lastProgress > 0; }, milliseconds(10000));
    }
    EXPECT_LT(std::chrono::steady_clock::now() - started, std::chrono::seconds(10));
    loop.runFor(milliseconds(200));
    EXPECT_FALSE(reported);
    EXPECT_TRUE(plainRelay().messages().empty());
}

}  // namespace
}  // namespace ovd::mail
