// Any bytes as what a client sends to the order port, and as the address it
// comes from: the search must find "EXIT" and "CLOSE" in any case wherever they
// stand, never elsewhere, and a client is let in only from this machine or as
// the peer itself. The same bytes cut into pieces, as the network may hand them
// over, must give the orders of the whole text's lines, with no more kept than a
// line's worth.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>

#include "delivery/order_listener.h"

namespace {

void check(bool condition) {
    if (!condition) __builtin_trap();
}

std::string upper(std::string text) {
    for (char& c : text) {
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    }
    return text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    const ovd::delivery::PeerOrders orders = ovd::delivery::findOrders(text);
    const std::string shouted = upper(text);
    check(orders.exit == (shouted.find("EXIT") != std::string::npos));
    check(orders.close == (shouted.find("CLOSE") != std::string::npos));

    // Pieces of one to seven bytes, their lengths taken from the bytes themselves.
    ovd::delivery::OrderLines lines;
    ovd::delivery::PeerOrders heard;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t length = std::min<std::size_t>(text.size() - at, data[at] % 7 + 1);
        const ovd::delivery::PeerOrders found =
            lines.take(std::string_view(text).substr(at, length));
        heard.exit = heard.exit || found.exit;
        heard.close = heard.close || found.close;
        check(lines.unfinishedSize() <= ovd::delivery::OrderLines::kLongestLine);
        at += length;
    }
    ovd::delivery::PeerOrders inLines;
    std::size_t start = 0;
    for (std::size_t i = 0; i <= text.size(); ++i) {
        if (i < text.size() && text[i] != '\r' && text[i] != '\n') continue;
        const ovd::delivery::PeerOrders found =
            ovd::delivery::findOrders(text.substr(start, i - start));
        inLines.exit = inLines.exit || found.exit;
        inLines.close = inLines.close || found.close;
        start = i + 1;
    }
    check(heard.exit == inLines.exit && heard.close == inLines.close);

    const bool local = text == "127.0.0.1" || text == "::1" || text == "::ffff:127.0.0.1";
    check(ovd::delivery::orderSenderAllowed(text, {}) == local);
    check(ovd::delivery::orderSenderAllowed(text, {text}) == !text.empty());
    return 0;
}
