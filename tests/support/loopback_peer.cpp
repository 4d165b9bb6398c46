#include "support/loopback_peer.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <stdexcept>

namespace ovd::testing {

namespace {

sockaddr_in addressOf(const std::string& address, int port) {
    sockaddr_in where{};
    where.sin_family = AF_INET;
    where.sin_port = htons(static_cast<std::uint16_t>(port));
    if (::inet_pton(AF_INET, address.c_str(), &where.sin_addr) != 1) {
        throw std::runtime_error("not an IPv4 address: " + address);
    }
    return where;
}

bool endsWithLineEnd(const std::string& bytes) {
    return bytes.size() >= 2 && bytes.compare(bytes.size() - 2, 2, "\r\n") == 0;
}

}  // namespace

LoopbackPeer::LoopbackPeer(const std::string& address, int port) {
    listenFd_ = ::socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    const int on = 1;
    ::setsockopt(listenFd_, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    sockaddr_in where = addressOf(address, port);
    if (::bind(listenFd_, reinterpret_cast<sockaddr*>(&where), sizeof where) != 0 ||
        ::listen(listenFd_, 1024) != 0) {
        ::close(listenFd_);
        throw std::runtime_error("the test peer can't listen on " + address);
    }
    socklen_t size = sizeof where;
    ::getsockname(listenFd_, reinterpret_cast<sockaddr*>(&where), &size);
    port_ = ntohs(where.sin_port);
}

LoopbackPeer::~LoopbackPeer() {
    for (const Connection& connection : connections_) {
        if (connection.open) ::close(connection.fd);
    }
    ::close(listenFd_);
}

void LoopbackPeer::pump(std::chrono::milliseconds slice) {
    std::vector<pollfd> probes{{listenFd_, POLLIN, 0}};
    for (const Connection& connection : connections_) {
        if (connection.open) probes.push_back({connection.fd, POLLIN, 0});
    }
    if (::poll(probes.data(), probes.size(), static_cast<int>(slice.count())) <= 0) return;
    for (;;) {
        const int fd = ::accept4(listenFd_, nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC);
        if (fd < 0) break;
        connections_.push_back({fd, {}, true});
    }
    for (Connection& connection : connections_) {
        if (!connection.open) continue;
        char buffer[4096];
        for (;;) {
            const ssize_t got = ::recv(connection.fd, buffer, sizeof buffer, 0);
            if (got > 0) {
                connection.bytes.append(buffer, static_cast<std::size_t>(got));
                continue;
            }
            if (got == 0 || (errno != EAGAIN && errno != EWOULDBLOCK && errno != EINTR)) {
                ::close(connection.fd);
                connection.open = false;
            }
            break;
        }
    }
}

std::vector<std::string> LoopbackPeer::receive(std::size_t count,
                                               std::chrono::milliseconds timeout) {
    const auto until = std::chrono::steady_clock::now() + timeout;
    const auto messages = [this] {
        std::vector<std::string> out;
        for (const Connection& connection : connections_) {
            if (endsWithLineEnd(connection.bytes)) out.push_back(connection.bytes);
        }
        return out;
    };
    pump(std::chrono::milliseconds(0));
    while (messages().size() < count && std::chrono::steady_clock::now() < until) {
        pump(std::chrono::milliseconds(10));
    }
    return messages();
}

int unusedLoopbackPort() {
    LoopbackPeer probe;
    return probe.port();
}

bool sendFrom(const std::string& localAddress, const std::string& toAddress, int port,
              const std::string& bytes) {
    const int fd = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in local = addressOf(localAddress, 0);
    sockaddr_in remote = addressOf(toAddress, port);
    const bool connected = ::bind(fd, reinterpret_cast<sockaddr*>(&local), sizeof local) == 0 &&
                           ::connect(fd, reinterpret_cast<sockaddr*>(&remote), sizeof remote) == 0;
    std::size_t done = 0;
    while (connected && done < bytes.size()) {
        const ssize_t sent = ::send(fd, bytes.data() + done, bytes.size() - done, MSG_NOSIGNAL);
        if (sent <= 0) break;
        done += static_cast<std::size_t>(sent);
    }
    ::close(fd);
    return connected && done == bytes.size();
}

int connectToLoopback(int port) {
    const int client = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in to{};
    to.sin_family = AF_INET;
    to.sin_port = htons(static_cast<std::uint16_t>(port));
    to.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (::connect(client, reinterpret_cast<sockaddr*>(&to), sizeof to) == 0) return client;
    ::close(client);
    return -1;
}

}  // namespace ovd::testing
