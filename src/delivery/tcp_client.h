#pragma once
// The station's outgoing connection to the peer: a plain non-blocking TCP client
// with the four operations the peer link asks of it. Opening does not wait for the
// connection; whether it worked is read later from LastError, where an empty text
// means all is well. What cannot be written at once is written as the loop turns.

#include <string>

#include "platform/event_loop.h"

namespace ovd::delivery {

class TCPClient {
  public:
    explicit TCPClient(platform::EventLoop& loop);
    ~TCPClient();
    TCPClient(const TCPClient&) = delete;
    TCPClient& operator=(const TCPClient&) = delete;

    // Starts a connection to the host (a name or an address) and port (text).
    void OpenSocket(const std::string& ip, const std::string& port);
    // Sends the text as it stands, no framing of its own.
    void Send(const std::string& text);
    // Drops the connection; bytes the peer could not take by now are lost.
    void closeSocket();
    // The last error; empty when the connection stands and everything sent so far
    // went out. A connection still being made when this is read counts as failed,
    // and what was to go on it is dropped, so that a late connection never delivers
    // a message the station already queued for a resend.
    [[nodiscard]] std::string LastError();

  private:
    enum class Phase { Closed, Connecting, Connected, Failed };
    // Takes up a finished connection attempt and writes what is waiting.
    void settle();
    void flush();
    void watchWritable(bool on);
    void fail(const std::string& error);

    platform::EventLoop& loop_;
    int fd_ = -1;
    Phase phase_ = Phase::Closed;
    std::string pending_;
    std::string lastError_;
    platform::EventLoop::Handle watch_ = 0;
};

}  // namespace ovd::delivery
