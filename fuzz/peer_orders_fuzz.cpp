// Any bytes as what a client sends to the order port, and as the address it
// comes from: the search must find "EXIT" and "CLOSE" in any case wherever they
// stand, never elsewhere, and a client is let in only from this machine or as
// the peer itself.

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

    const bool local = text == "127.0.0.1" || text == "::1" || text == "::ffff:127.0.0.1";
    check(ovd::delivery::orderSenderAllowed(text, {}) == local);
    check(ovd::delivery::orderSenderAllowed(text, {text}) == !text.empty());
    return 0;
}
