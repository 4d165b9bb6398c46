#include "delivery/order_listener.h"

#include <arpa/inet.h>
#include <netdb.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cerrno>
#include <cstring>

namespace ovd::delivery {

namespace {

constexpr std::string_view kExitOrder = "EXIT";
constexpr std::string_view kCloseOrder = "CLOSE";

bool containsIgnoringCase(std::string_view text, std::string_view word) {
    const auto found =
        std::search(text.begin(), text.end(), word.begin(), word.end(), [](char a, char b) {
            return std::toupper(static_cast<unsigned char>(a)) ==
                   std::toupper(static_cast<unsigned char>(b));
        });
    return found != text.end();
}

// The word in the line, counting only a match that reaches past the first `seen`
// characters: one wholly within them was found when they arrived.
bool containsNew(std::string_view line, std::size_t seen, std::string_view word) {
    const std::size_t from = seen >= word.size() ? seen - word.size() + 1 : 0;
    return from < line.size() && containsIgnoringCase(line.substr(from), word);
}

bool isLineEnd(char c) { return c == '\n' || c == '\r'; }

// "::ffff:127.0.0.2" is how a dual-stack socket shows an IPv4 client.
std::string plainAddress(std::string address) {
    constexpr std::string_view mapped = "::ffff:";
    if (address.size() > mapped.size() && address.compare(0, mapped.size(), mapped) == 0 &&
        address.find('.') != std::string::npos) {
        address.erase(0, mapped.size());
    }
    return address;
}

std::string numericAddress(const sockaddr* address, socklen_t size) {
    std::array<char, NI_MAXHOST> host{};
    if (::getnameinfo(address, size, host.data(), host.size(), nullptr, 0, NI_NUMERICHOST) != 0) {
        return "";
    }
    return plainAddress(host.data());
}

// The listening socket's descriptor; the failure is the system's words alone.
platform::Result<int> listeningSocket(int family, int port) {
    const int fd = ::socket(family, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    if (fd < 0) return platform::failure(std::strerror(errno));
    const int on = 1;
    // A station started again at once finds its port free, not held by the last run.
    ::setsockopt(fd, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    int result = -1;
    if (family == AF_INET6) {
        const int off = 0;
        ::setsockopt(fd, IPPROTO_IPV6, IPV6_V6ONLY, &off, sizeof off);
        sockaddr_in6 any{};
        any.sin6_family = AF_INET6;
        any.sin6_addr = in6addr_any;
        any.sin6_port = htons(static_cast<std::uint16_t>(port));
        result = ::bind(fd, reinterpret_cast<sockaddr*>(&any), sizeof any);
    } else {
        sockaddr_in any{};
        any.sin_family = AF_INET;
        any.sin_addr.s_addr = htonl(INADDR_ANY);
        any.sin_port = htons(static_cast<std::uint16_t>(port));
        result = ::bind(fd, reinterpret_cast<sockaddr*>(&any), sizeof any);
    }
    if (result != 0 || ::listen(fd, 64) != 0) {
        const int error = errno;
        ::close(fd);
        return platform::failure(std::strerror(error));
    }
    return fd;
}

}  // namespace

PeerOrders findOrders(std::string_view text) {
    return {containsIgnoringCase(text, kExitOrder), containsIgnoringCase(text, kCloseOrder)};
}

PeerOrders OrderLines::take(std::string_view data) {
    PeerOrders found;
    const auto search = [&found](std::string_view line, std::size_t seen) {
        found.exit = found.exit || containsNew(line, seen, kExitOrder);
        found.close = found.close || containsNew(line, seen, kCloseOrder);
    };
    while (!data.empty()) {
        const std::size_t end = static_cast<std::size_t>(
            std::find_if(data.begin(), data.end(), isLineEnd) - data.begin());
        const std::size_t seen = unfinished_.size();
        unfinished_.append(data.substr(0, end));
        search(unfinished_, seen);
        if (end == data.size()) break;
        unfinished_.clear();
        data.remove_prefix(end + 1);
    }
    if (unfinished_.size() > kLongestLine) {
        // Its last letters are kept, all of them searched already.
        unfinished_.erase(0, unfinished_.size() - (kCloseOrder.size() - 1));
    }
    return found;
}

bool orderSenderAllowed(const std::string& clientAddress,
                        const std::vector<std::string>& peerAddresses) {
    const std::string client = plainAddress(clientAddress);
    if (client.empty()) return false;
    if (client == "127.0.0.1" || client == "::1") return true;
    return std::any_of(peerAddresses.begin(), peerAddresses.end(),
                       [&](const std::string& peer) { return plainAddress(peer) == client; });
}

std::vector<std::string> addressesOf(const std::string& host) {
    std::vector<std::string> addresses;
    if (host.empty()) return addresses;
    addrinfo hints{};
    hints.ai_family = AF_UNSPEC;
    hints.ai_socktype = SOCK_STREAM;
    addrinfo* found = nullptr;
    if (::getaddrinfo(host.c_str(), nullptr, &hints, &found) != 0) return addresses;
    for (const addrinfo* entry = found; entry != nullptr; entry = entry->ai_next) {
        std::string address = numericAddress(entry->ai_addr, entry->ai_addrlen);
        if (!address.empty()) addresses.push_back(std::move(address));
    }
    ::freeaddrinfo(found);
    return addresses;
}

OrderListener::OrderListener(platform::EventLoop& loop,
                             std::function<void(const std::string&)> trace)
    : loop_(loop), trace_(std::move(trace)) {}

OrderListener::~OrderListener() { close(); }

platform::Result<void> OrderListener::listen(int port) {
    close();
    auto socket = listeningSocket(AF_INET6, port);
    // A machine without IPv6 still hears its peer on IPv4.
    if (!socket && socket.error() != std::strerror(EADDRINUSE))
        socket = listeningSocket(AF_INET, port);
    if (!socket) return socket.failed();
    listenFd_ = *socket;
    listenWatch_ = loop_.watchFd(listenFd_, platform::FdEvent::Readable, [this] { accept(); });
    return platform::Result<void>::success();
}

void OrderListener::close() {
    dropPeer();
    if (listenWatch_ != 0) loop_.unwatchFd(listenWatch_);
    listenWatch_ = 0;
    if (listenFd_ >= 0) ::close(listenFd_);
    listenFd_ = -1;
}

void OrderListener::dropPeer() {
    lines_.clear();
    if (peerWatch_ != 0) loop_.unwatchFd(peerWatch_);
    peerWatch_ = 0;
    if (peerFd_ >= 0) ::close(peerFd_);
    peerFd_ = -1;
}

void OrderListener::accept() {
    // Everything waiting is taken at once, so a crowd of clients never fills the backlog.
    for (;;) {
        sockaddr_storage from{};
        socklen_t size = sizeof from;
        const int fd = ::accept4(listenFd_, reinterpret_cast<sockaddr*>(&from), &size,
                                 SOCK_NONBLOCK | SOCK_CLOEXEC);
        if (fd < 0) return;
        const std::string client = numericAddress(reinterpret_cast<sockaddr*>(&from), size);
        const std::vector<std::string> peer =
            peerAddress ? addressesOf(peerAddress()) : std::vector<std::string>{};
        if (!orderSenderAllowed(client, peer)) {
            ::close(fd);
            if (trace_)
                trace_("TCP order connection from " + client + " closed unread: not the peer");
            continue;
        }
        // Only one peer is served: the newer connection takes the place of the older.
        dropPeer();
        peerFd_ = fd;
        peerWatch_ = loop_.watchFd(peerFd_, platform::FdEvent::Readable, [this] { read(); });
    }
}

void OrderListener::read() {
    std::array<char, 65536> buffer;
    const ssize_t got = ::recv(peerFd_, buffer.data(), buffer.size(), 0);
    if (got < 0 && (errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR)) return;
    if (got <= 0) {
        dropPeer();
        return;
    }
    const PeerOrders orders =
        lines_.take(std::string_view(buffer.data(), static_cast<std::size_t>(got)));
    // The orders may end the program or close this listener: nothing of it is used after.
    if ((orders.exit || orders.close) && onOrders) onOrders(orders);
}

}  // namespace ovd::delivery
