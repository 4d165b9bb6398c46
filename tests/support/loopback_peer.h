#pragma once
// A peer program for the tests: a listener on a loopback address and a port the
// system picks, which keeps what each connection brings. The station opens a
// connection per message, so each connection's bytes are one message, CR LF and all.

#include <chrono>
#include <string>
#include <vector>

namespace ovd::testing {

// A client connection to a port on 127.0.0.1, or -1 when nothing listens there.
int connectToLoopback(int port);

class LoopbackPeer {
  public:
    explicit LoopbackPeer(const std::string& address = "127.0.0.1", int port = 0);
    ~LoopbackPeer();
    LoopbackPeer(const LoopbackPeer&) = delete;
    LoopbackPeer& operator=(const LoopbackPeer&) = delete;

    [[nodiscard]] int port() const { return port_; }
    [[nodiscard]] std::string portText() const { return std::to_string(port_); }

    // Takes every connection waiting and reads what each brings, until `count`
    // messages (connections whose bytes end in CR LF) are in or the time is up.
    // Returns every message received so far, in the order of the connections.
    std::vector<std::string> receive(
        std::size_t count, std::chrono::milliseconds timeout = std::chrono::milliseconds(2000));
    // What came in so far without waiting.
    std::vector<std::string> received() { return receive(0, std::chrono::milliseconds(0)); }

  private:
    void pump(std::chrono::milliseconds slice);

    int listenFd_ = -1;
    int port_ = 0;
    struct Connection {
        int fd;
        std::string bytes;
        bool open = true;
    };
    std::vector<Connection> connections_;
};

// A port nobody listens on right now (the system picked it and it was let go).
int unusedLoopbackPort();

// Connects from the given local address to 127.0.0.1:port (or the address given),
// sends the bytes and closes. False when the connection was not made.
bool sendFrom(const std::string& localAddress, const std::string& toAddress, int port,
              const std::string& bytes);

}  // namespace ovd::testing
