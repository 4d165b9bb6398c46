// The real station program and its peer over TCP on loopback: messages that
// could not be delivered reach the peer once it listens again, and an order the
// network splits in two still ends the station in order.

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include "platform/files.h"
#include "station_checks.h"
#include "station_process.h"
#include "support/loopback_peer.h"

namespace ovd {
namespace {

using namespace std::chrono_literals;

// True once the station has ended by itself. It is not reaped here, so its
// number stays its own until terminate() collects it.
bool endsByItself(const testing::StationProcess& station, std::chrono::milliseconds within) {
    const auto until = std::chrono::steady_clock::now() + within;
    while (std::chrono::steady_clock::now() < until) {
        const auto stat =
            platform::readWholeFile("/proc/" + std::to_string(station.pid()) + "/stat");
        if (!stat) return false;
        const auto close = stat->rfind(')');
        if (close != std::string::npos && close + 2 < stat->size() && (*stat)[close + 2] == 'Z')
            return true;
        std::this_thread::sleep_for(50ms);
    }
    return false;
}

void tellPeer(testing::StationProcess& station, const std::string& host, const std::string& port) {
    station.changeSettings([&](settings::SettingsRecord& r) {
        r.TCP = true;
        r.TCPIP = host;
        r.TCPPort = port;
        r.TCPDelay = 0;
    });
}

TEST(PeerStationTest, MessagesQueuedWhileThePeerWasAwayReachItOnceItListens) {
    testing::StationProcess station;
    const int peerPort = testing::unusedLoopbackPort();
    tellPeer(station, "127.0.0.1", std::to_string(peerPort));
    station.start({"--order-port", std::to_string(testing::unusedLoopbackPort())});
    ASSERT_TRUE(station.logShows("MSG NOT SENT LOADED_")) << station.eventLog();
    ASSERT_TRUE(station.logShows("User Selected OK on TCP Comminications Failure message"))
        << station.eventLog();
    std::this_thread::sleep_for(1s);

    testing::LoopbackPeer peer("127.0.0.1", peerPort);
    const std::vector<std::string> heard = peer.receive(2, 20s);
    ASSERT_EQ(heard.size(), 2u) << station.eventLog();
    EXPECT_EQ(heard[0].rfind("LOADED_", 0), 0u) << heard[0];
    EXPECT_EQ(heard[1], heard[0]) << "named, then ready: in that order";
    std::this_thread::sleep_for(4s);
    EXPECT_EQ(peer.received().size(), 2u) << "each message once";

    testing::expectLightAndEndsInOrder(station);
    // The file closed at the end is told after what waited.
    const std::vector<std::string> all = peer.receive(3, 3s);
    ASSERT_EQ(all.size(), 3u);
    EXPECT_EQ(all[2].rfind("UserClose_", 0), 0u) << all[2];
}

TEST(PeerStationTest, AnExitOrderSplitAcrossTwoPacketsEndsTheStationInOrder) {
    testing::StationProcess station;
    testing::LoopbackPeer peer;
    const int orderPort = testing::unusedLoopbackPort();
    tellPeer(station, "127.0.0.1", peer.portText());
    station.start({"--order-port", std::to_string(orderPort)});
    ASSERT_TRUE(station.logShows("Procedure - CASE NEW")) << station.eventLog();
    ASSERT_EQ(peer.receive(2, 20s).size(), 2u) << station.eventLog();
    const double cpu = station.cpuPercentOver(2s);
    EXPECT_LT(cpu, 5.0);

    const int client = testing::connectToLoopback(orderPort);
    ASSERT_GE(client, 0);
    ASSERT_EQ(::send(client, "EX", 2, MSG_NOSIGNAL), 2);
    std::this_thread::sleep_for(300ms);
    ASSERT_EQ(::send(client, "IT\r\n", 4, MSG_NOSIGNAL), 4);

    const bool ended = endsByItself(station, 5s);
    ::close(client);
    EXPECT_TRUE(ended) << station.eventLog();
    EXPECT_TRUE(station.logShows("TCP order EXIT received")) << station.eventLog();
    EXPECT_TRUE(station.logShows("Station ended in order")) << station.eventLog();
    EXPECT_LT(station.eventLogBytes(), 1u << 20);
    const testing::ProcessEnd end = station.terminate();
    EXPECT_TRUE(end.exited && end.status == 0) << end.status;
}

}  // namespace
}  // namespace ovd
