#pragma once
// The station's ear for its peer: a listening socket on a fixed port that takes
// the peer's two orders. Any data that arrives is searched without regard to case
// for "EXIT", then "CLOSE", anywhere in it, together with the unfinished line
// before it, so that an order the network split in two still counts; nothing is
// answered.
// One peer is served at a time: a new connection takes the place of the one
// before. Orders are taken only from the peer's own address or from this machine
// itself; any other client is closed unread, and the log says who it was.

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/event_loop.h"
#include "platform/result.h"

namespace ovd::delivery {

inline constexpr int kOrderPort = 2013;

struct PeerOrders {
    bool exit = false;
    bool close = false;
};

// The orders a text holds; "exit", "Exit" and "DISCLOSED" all count.
PeerOrders findOrders(std::string_view text);

// The orders of one connection as its data arrives. Each arrival is searched
// within its lines, the first one joined to the unfinished line the connection
// left before; an order is found once, in the arrival that completes it. The
// unfinished line is kept up to a bound, beyond which only its last letters are,
// enough to finish an order: a client that never ends its line can't grow memory.
class OrderLines {
  public:
    static constexpr std::size_t kLongestLine = 1024;

    PeerOrders take(std::string_view data);
    void clear() { unfinished_.clear(); }
    [[nodiscard]] std::size_t unfinishedSize() const { return unfinished_.size(); }

  private:
    std::string unfinished_;
};

// True when the client's address (as getnameinfo gives it, v4-mapped IPv6
// included) may give orders: this machine itself, or one of peerAddresses.
bool orderSenderAllowed(const std::string& clientAddress,
                        const std::vector<std::string>& peerAddresses);

// Every address the peer's host name or address stands for; empty when it can't
// be resolved.
std::vector<std::string> addressesOf(const std::string& host);

class OrderListener {
  public:
    OrderListener(platform::EventLoop& loop, std::function<void(const std::string&)> trace);
    ~OrderListener();
    OrderListener(const OrderListener&) = delete;
    OrderListener& operator=(const OrderListener&) = delete;

    // Listens on the port on every address of this machine; the failure is the
    // system's reason when the port can't be had.
    platform::Result<void> listen(int port);
    // Closes the listening socket and the peer's connection.
    void close();
    [[nodiscard]] bool listening() const { return listenFd_ >= 0; }

    // Where orders are taken from besides this machine: read at each connection,
    // so a change of the settings holds at once.
    std::function<std::string()> peerAddress;
    // Called for the orders found in one arrival of data.
    std::function<void(const PeerOrders&)> onOrders;

  private:
    void accept();
    void read();
    void dropPeer();

    platform::EventLoop& loop_;
    std::function<void(const std::string&)> trace_;
    int listenFd_ = -1;
    int peerFd_ = -1;
    platform::EventLoop::Handle listenWatch_ = 0;
    platform::EventLoop::Handle peerWatch_ = 0;
    OrderLines lines_;
};

}  // namespace ovd::delivery
