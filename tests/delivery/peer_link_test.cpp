// The peer link against a real peer on loopback, on the virtual clock: every
// message arrives byte for byte on a connection of its own; a peer that can't be
// reached queues, the reconnection dialog opens once, and a later connection
// resends in order; orders come only from the peer or from this machine.

#include "delivery/peer_link.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <thread>

#include "support/loopback_peer.h"
#include "support/scripted_prompts.h"
#include "support/temp_folder.h"
#include "support/virtual_event_loop.h"

namespace ovd::delivery {
namespace {

using platform::Milliseconds;

class PeerLinkTest : public ::testing::Test {
  protected:
    PeerLinkTest() {
        config.record.TCP = true;
        config.record.TCPIP = "127.0.0.1";
        config.record.TCPPort = peer.portText();
        config.record.TCPDelay = 2;
        link.showStatusText = [this](const std::string& text) { label40 = text; };
        link.onDialogChanged = [this] { dialogShown.push_back(link.frmTCPReConnection); };
    }

    [[nodiscard]] bool logged(const std::string& text) const {
        return log.text().find(text) != std::string::npos;
    }
    void run(int milliseconds) {
        for (int i = 0; i < milliseconds / 10; ++i) loop.advance(Milliseconds(10));
    }
    // Points the link at a port where nobody listens.
    void peerGone() { config.record.TCPPort = std::to_string(testing::unusedLoopbackPort()); }

    testing::TempFolder folder;
    testing::VirtualEventLoop loop;
    settings::ConfigFile config{folder.path()};
    settings::EventLog log{loop, folder.path(), config.record};
    testing::ScriptedPrompts prompts;
    testing::LoopbackPeer peer;
    int orderPort = testing::unusedLoopbackPort();
    PeerLink link{{loop, config, log, prompts, orderPort}};
    std::string label40 = "untouched";
    std::vector<ReconnectionDialog> dialogShown;
};

TEST_F(PeerLinkTest, EachMessageArrivesAsItsOwnLineWithBothWaitsTraced) {
    EXPECT_TRUE(link.send({"LOADED_AB0001.WAV", " -58 Sending Message in CreateFileName"}));
    EXPECT_TRUE(link.send({"UserExit_", " -69"}));
    config.record.TCPDelay = 0;  // no wait at all: the verdict is read right after the send
    EXPECT_TRUE(link.send({"BTN3_AB0001 Please call me", " -BTN"}));

    EXPECT_EQ(peer.receive(3), (std::vector<std::string>{"LOADED_AB0001.WAV\r\n", "UserExit_\r\n",
                                                         "BTN3_AB0001 Please call me\r\n"}));
    EXPECT_TRUE(logged(" Pausing = 2 -53 Opening Socket"));
    EXPECT_TRUE(logged(" Pausing = 2 -58 Sending Message in CreateFileName"));
    EXPECT_TRUE(logged(" Pausing = 0 -BTN"));
    EXPECT_TRUE(logged(" LOADED_AB0001.WAV * TCP MSG SUCESSFULLY SENT* "));
    EXPECT_EQ(label40, "") << "the empty error text is shown";
    EXPECT_EQ(link.failedCount(), 0);
    EXPECT_TRUE(dialogShown.empty());
}

TEST_F(PeerLinkTest, AnUnreachablePeerQueuesTheDialogOpensOnceAndConnectResendsInOrder) {
    const int livePort = peer.port();
    peerGone();
    EXPECT_FALSE(link.send({"DICT_AB0001.WAV", " -H", "", kReportSentTrace}));
    EXPECT_TRUE(logged("MSG NOT SENT DICT_AB0001.WAV * TCP CONNECTION ERROR* "));
    EXPECT_NE(label40, "");
    EXPECT_TRUE(link.timShowTCPError.Enabled());

    // The timer tries once by itself, then leaves the choice to the user.
    run(500);
    EXPECT_FALSE(link.timShowTCPError.Enabled());
    ASSERT_GE(dialogShown.size(), 2u);
    EXPECT_FALSE(dialogShown.front().modal);
    EXPECT_EQ(dialogShown.front().lblWait, ReconnectionDialog::kTrying);
    EXPECT_TRUE(logged(" Pausing = 2 -76"));
    const ReconnectionDialog& asking = link.frmTCPReConnection;
    EXPECT_TRUE(asking.loaded && asking.modal && asking.cmdOKVisible && asking.cmdConnectVisible);
    EXPECT_EQ(asking.lblWait, "** CAN NOT CONNECT TO SERVER **");
    EXPECT_TRUE(logged("DICT_AB0001.WAV * 2-TCP CONNECTION ERROR* "));

    // A second failure finds the dialog open and only queues.
    const std::size_t shownBefore = dialogShown.size();
    EXPECT_FALSE(link.send({"ERRDST1_AB0001.WAV", " -I"}));
    EXPECT_FALSE(link.timShowTCPError.Enabled());
    run(500);
    EXPECT_EQ(dialogShown.size(), shownBefore);

    // Connect while the peer is still away: one more try counted, the buttons return.
    link.connectClicked();
    EXPECT_EQ(link.retries(), 1);
    EXPECT_TRUE(logged("ERRDST1_AB0001.WAV-TCP CONNECTION ERROR*  * TRYS =1"));
    EXPECT_TRUE(link.frmTCPReConnection.cmdConnectVisible);

    // The peer is back: the queue goes out in order and the dialog closes.
    config.record.TCPPort = std::to_string(livePort);
    link.connectClicked();
    EXPECT_EQ(peer.receive(2),
              (std::vector<std::string>{"DICT_AB0001.WAV\r\n", "ERRDST1_AB0001.WAV\r\n"}));
    EXPECT_EQ(prompts.texts().back(), "TCP Now Connected");
    EXPECT_TRUE(logged(" Pausing = 2 -78"));
    EXPECT_TRUE(logged(" Pausing = 2 -79"));
    EXPECT_FALSE(link.frmTCPReConnection.loaded);
    EXPECT_TRUE(link.queued().empty());
    EXPECT_EQ(link.retries(), 0);
}

TEST_F(PeerLinkTest, OkKeepsTheQueueAndTheTimersOwnTryResendsWhenThePeerIsBack) {
    const int livePort = peer.port();
    peerGone();
    link.send({"UserClose_", " -63"});
    run(500);
    link.okClicked();
    EXPECT_TRUE(logged(" User Selected OK on TCP Comminications Failure message"));
    EXPECT_FALSE(link.frmTCPReConnection.loaded);
    EXPECT_EQ(link.queued(), std::vector<std::string>{"UserClose_"});

    // The next failure tries again; the peer answers by then, and both go out.
    link.send({"DiskErr_AB0002.WAV", " -68"});
    config.record.TCPPort = std::to_string(livePort);
    run(500);
    EXPECT_EQ(peer.receive(2),
              (std::vector<std::string>{"UserClose_\r\n", "DiskErr_AB0002.WAV\r\n"}));
    EXPECT_TRUE(logged(" Pausing = 2 -77"));
    EXPECT_FALSE(link.frmTCPReConnection.loaded);
    EXPECT_EQ(link.failedCount(), 0);
}

TEST_F(PeerLinkTest, TheQueueKeepsTheVariantTextAndDropsMessagesPastItsSlots) {
    peerGone();
    config.record.TCPDelay = 0;
    link.send({"ERRDST2_AB0001.WAV", " -Q", "ERRDST3_AB0001.WAV"});
    for (int i = 2; i <= 502; ++i) link.send({"LOADED_" + std::to_string(i), " -58"});
    const std::vector<std::string> kept = link.queued();
    ASSERT_EQ(kept.size(), 499u);
    EXPECT_EQ(kept.front(), "ERRDST3_AB0001.WAV");
    EXPECT_EQ(kept.back(), "LOADED_499");
    EXPECT_EQ(link.failedCount(), 502) << "the count goes on past the slots";
}

// The peer goes away and comes back by itself, with no one at the dialog's
// Connect: what waited goes out oldest first, each message once, and a peer that
// stays away leaves the event log alone meanwhile.
TEST_F(PeerLinkTest, TheQueueGoesOutByItselfOnceThePeerListensAgain) {
    const int port = testing::unusedLoopbackPort();
    config.record.TCPPort = std::to_string(port);
    for (const char* text : {"LOADED_AB0001.WAV", "UserClose_AB0001.WAV"}) {
        EXPECT_FALSE(link.send({text, " -73"}));
        run(500);
        link.okClicked();  // as the headless station answers the dialog
    }
    ASSERT_EQ(link.queued(),
              (std::vector<std::string>{"LOADED_AB0001.WAV", "UserClose_AB0001.WAV"}));

    const std::size_t logBefore = log.text().size();
    run(30000);
    EXPECT_EQ(log.text().size(), logBefore) << log.text().substr(logBefore);
    EXPECT_EQ(link.queued().size(), 2u);

    testing::LoopbackPeer back("127.0.0.1", port);
    run(2 * kQueueRetryMs + 500);
    EXPECT_EQ(back.receive(2),
              (std::vector<std::string>{"LOADED_AB0001.WAV\r\n", "UserClose_AB0001.WAV\r\n"}));
    EXPECT_TRUE(link.queued().empty());
    EXPECT_EQ(link.failedCount(), 0);
    EXPECT_TRUE(logged(" LOADED_AB0001.WAV * TCP MSG SUCESSFULLY SENT* "));

    run(4 * kQueueRetryMs);
    EXPECT_TRUE(link.send({"DICT_AB0001.WAV", " -H"}));
    EXPECT_EQ(back.receive(3).size(), 3u);
    run(500);
    EXPECT_EQ(back.received().size(), 3u) << "each message once";
}

TEST_F(PeerLinkTest, TheNextMessageThatGoesThroughBringsTheQueueAfterIt) {
    const int port = testing::unusedLoopbackPort();
    config.record.TCPPort = std::to_string(port);
    link.send({"LOADED_AB0001.WAV", " -73"});
    run(500);
    link.okClicked();

    link.send({"DICT_AB0001.WAV", " -H"});
    run(500);
    link.okClicked();

    testing::LoopbackPeer back("127.0.0.1", port);
    EXPECT_TRUE(link.send({"UserClose_AB0001.WAV", " -63"}));
    EXPECT_EQ(back.receive(3),
              (std::vector<std::string>{"UserClose_AB0001.WAV\r\n", "LOADED_AB0001.WAV\r\n",
                                        "DICT_AB0001.WAV\r\n"}));
    EXPECT_TRUE(link.queued().empty());
    EXPECT_FALSE(link.timShowTCPError.Enabled());
    EXPECT_FALSE(link.frmTCPReConnection.loaded);
}

// ---- Orders ----

class PeerOrdersTest : public PeerLinkTest {
  protected:
    PeerOrdersTest() {
        link.onExitOrder = [this] { heard.push_back("exit"); };
        link.onCloseOrder = [this] { heard.push_back("close"); };
        EXPECT_TRUE(link.start());
    }
    void order(const std::string& from, const std::string& text) {
        ASSERT_TRUE(testing::sendFrom(from, "127.0.0.1", orderPort, text)) << from;
        run(100);
    }
    std::vector<std::string> heard;
};

TEST_F(PeerOrdersTest, OrdersAreFoundInAnyCaseAnywhereInTheText) {
    EXPECT_TRUE(logged(" Pausing = 2 -62 On Load"));
    order("127.0.0.1", "disclosed\r\n");
    EXPECT_EQ(heard, std::vector<std::string>{"close"});
    order("127.0.0.1", "nothing to say");
    EXPECT_EQ(heard.size(), 1u);
    order("127.0.0.1", "CLOSE then exit");
    EXPECT_EQ(heard, (std::vector<std::string>{"close", "exit", "close"})) << "exit goes first";
}

TEST_F(PeerOrdersTest, OnlyThePeerAndThisMachineGiveOrders) {
    config.record.TCPIP = "127.0.0.3";
    order("127.0.0.2", "EXIT");
    EXPECT_TRUE(heard.empty());
    EXPECT_TRUE(logged("TCP order connection from 127.0.0.2 closed unread: not the peer"));
    order("127.0.0.3", "CLOSE");
    order("127.0.0.1", "CLOSE");
    EXPECT_EQ(heard, (std::vector<std::string>{"close", "close"}));
}

TEST_F(PeerOrdersTest, GarbageAndAThousandConnectionsChangeNothing) {
    std::string garbage(1 << 20, '\0');
    for (std::size_t i = 0; i < garbage.size(); ++i) {
        // Every byte but the letters of the two orders.
        char c = static_cast<char>((i * 131) % 256);
        if (std::isalpha(static_cast<unsigned char>(c))) c = '#';
        garbage[i] = c;
    }
    bool sent = false;
    std::thread sender(
        [&] { sent = testing::sendFrom("127.0.0.1", "127.0.0.1", orderPort, garbage); });
    for (int i = 0; i < 400 && !sent; ++i) run(10);
    sender.join();
    EXPECT_TRUE(sent);
    for (int i = 0; i < 1000; ++i) {
        ASSERT_TRUE(testing::sendFrom("127.0.0.1", "127.0.0.1", orderPort, "")) << i;
        if (i % 10 == 0) run(10);
    }
    run(200);
    EXPECT_TRUE(heard.empty());
    order("127.0.0.1", "exit");
    EXPECT_EQ(heard, std::vector<std::string>{"exit"}) << "the listener still hears its peer";
}

// An order the network hands over in two pieces, the second a moment later, on
// a connection the peer keeps open.
TEST_F(PeerOrdersTest, AnOrderSplitAcrossTwoPacketsIsHeardOnce) {
    const int client = testing::connectToLoopback(orderPort);
    ASSERT_GE(client, 0);
    const auto piece = [&](const std::string& text) {
        ASSERT_EQ(::send(client, text.data(), text.size(), MSG_NOSIGNAL),
                  static_cast<ssize_t>(text.size()));
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        run(300);
    };
    piece("cl");
    piece("OSE");
    EXPECT_EQ(heard, std::vector<std::string>{"close"});
    piece("\r\n");
    piece("EX");
    EXPECT_EQ(heard, std::vector<std::string>{"close"});
    piece("IT\r\n");  // the last: the exit closes the listener
    EXPECT_EQ(heard, (std::vector<std::string>{"close", "exit"}));
    ::close(client);
}

TEST_F(PeerLinkTest, APortAlreadyTakenEndsTheProgramWithItsMessage) {
    testing::LoopbackPeer squatter("0.0.0.0", orderPort);
    EXPECT_FALSE(link.start());
    const std::string text = "Error starting Port:  " + std::to_string(orderPort) +
                             " -Server listener. Port already in use. Program will end";
    EXPECT_EQ(prompts.texts(), std::vector<std::string>{text});
    EXPECT_TRUE(logged(text));
}

}  // namespace
}  // namespace ovd::delivery
