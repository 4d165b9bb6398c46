#include "delivery/tcp_client.h"

#include <fcntl.h>
#include <netdb.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace ovd::delivery {

namespace {
constexpr const char* kNotConnected = "The connection to the peer is not open";
constexpr const char* kStillConnecting = "The peer did not answer the connection in time";
}  // namespace

TCPClient::TCPClient(platform::EventLoop& loop) : loop_(loop) {}

TCPClient::~TCPClient() { closeSocket(); }

void TCPClient::fail(const std::string& error) {
    lastError_ = error;
    phase_ = Phase::Failed;
    pending_.clear();
    watchWritable(false);
}

void TCPClient::OpenSocket(const std::string& ip, const std::string& port) {
    closeSocket();
    lastError_.clear();
    addrinfo hints{};
    hints.ai_family = AF_UNSPEC;
    hints.ai_socktype = SOCK_STREAM;
    hints.ai_flags = AI_NUMERICSERV;
    addrinfo* found = nullptr;
    if (const int status = ::getaddrinfo(ip.c_str(), port.c_str(), &hints, &found); status != 0) {
        fail("Can't find the peer " + ip + ":" + port + ": " + ::gai_strerror(status));
        return;
    }
    fd_ = ::socket(found->ai_family, found->ai_socktype | SOCK_NONBLOCK | SOCK_CLOEXEC,
                   found->ai_protocol);
    if (fd_ < 0) {
        ::freeaddrinfo(found);
        fail(std::string("Can't make a socket: ") + std::strerror(errno));
        return;
    }
    const int result = ::connect(fd_, found->ai_addr, found->ai_addrlen);
    const int error = errno;
    ::freeaddrinfo(found);
    if (result == 0) {
        phase_ = Phase::Connected;
    } else if (error == EINPROGRESS) {
        phase_ = Phase::Connecting;
        watchWritable(true);
    } else {
        fail(std::strerror(error));
    }
}

void TCPClient::Send(const std::string& text) {
    settle();
    if (phase_ == Phase::Closed) {
        lastError_ = kNotConnected;
        return;
    }
    if (phase_ == Phase::Failed) return;
    pending_ += text;
    if (phase_ == Phase::Connected) flush();
}

void TCPClient::closeSocket() {
    watchWritable(false);
    if (fd_ >= 0) {
        // One last try for what the peer has not taken; the close itself is orderly.
        if (phase_ == Phase::Connected && !pending_.empty()) flush();
        ::close(fd_);
        fd_ = -1;
    }
    pending_.clear();
    phase_ = Phase::Closed;
}

std::string TCPClient::LastError() {
    settle();
    if (phase_ == Phase::Connecting) fail(kStillConnecting);
    return lastError_;
}

void TCPClient::settle() {
    if (phase_ == Phase::Connecting) {
        pollfd probe{fd_, POLLOUT, 0};
        if (::poll(&probe, 1, 0) <= 0) return;
        int error = 0;
        socklen_t size = sizeof error;
        if (::getsockopt(fd_, SOL_SOCKET, SO_ERROR, &error, &size) != 0) error = errno;
        if (error != 0) {
            fail(std::strerror(error));
            return;
        }
        phase_ = Phase::Connected;
    }
    if (phase_ == Phase::Connected) flush();
}

void TCPClient::flush() {
    while (!pending_.empty()) {
        const ssize_t sent = ::send(fd_, pending_.data(), pending_.size(), MSG_NOSIGNAL);
        if (sent > 0) {
            pending_.erase(0, static_cast<std::size_t>(sent));
        } else if (sent < 0 && errno == EINTR) {
            continue;
        } else if (sent < 0 && (errno == EAGAIN || errno == EWOULDBLOCK)) {
            break;
        } else {
            fail(std::strerror(errno));
            return;
        }
    }
    watchWritable(!pending_.empty());
}

void TCPClient::watchWritable(bool on) {
    if (on && watch_ == 0 && fd_ >= 0) {
        watch_ = loop_.watchFd(fd_, platform::FdEvent::Writable, [this] { settle(); });
    } else if (!on && watch_ != 0) {
        loop_.unwatchFd(watch_);
        watch_ = 0;
    }
}

}  // namespace ovd::delivery
