// The orders of one connection as its data arrives in pieces: an order the
// network split is found in the piece that completes it, once, and a client that
// never ends its line can't make the station keep more than a line's worth.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "delivery/order_listener.h"

namespace ovd::delivery {
namespace {

struct Heard {
    int exits = 0;
    int closes = 0;
    bool operator==(const Heard&) const = default;
};

Heard feed(OrderLines& lines, const std::vector<std::string>& pieces) {
    Heard heard;
    for (const std::string& piece : pieces) {
        const PeerOrders found = lines.take(piece);
        heard.exits += found.exit ? 1 : 0;
        heard.closes += found.close ? 1 : 0;
    }
    return heard;
}

TEST(OrderLinesTest, OrdersAreFoundOnceInThePieceThatCompletesThem) {
    struct Case {
        std::vector<std::string> pieces;
        Heard heard;
    };
    const std::vector<Case> cases = {
        {{"EX", "IT\r\n"}, {1, 0}},
        {{"e", "x", "i", "t"}, {1, 0}},
        {{"EXIT", "\r\n"}, {1, 0}},  // found with its last letter, not again at the line end
        {{"CLO", "SE then ex", "it\r\n"}, {1, 1}},
        {{"EX\r\n", "IT\r\n"}, {0, 0}},  // a line end parts the letters
        {{"EX\n", "IT"}, {0, 0}},
        {{"EXIT\r\nEXIT\r\n"}, {1, 0}},  // one arrival is one text
        {{"EXIT\r\n", "EXIT\r\n"}, {2, 0}},
        {{"disCL", "OSEd"}, {0, 1}},
        {{"nothing", " to say\r\n"}, {0, 0}},
    };
    for (const Case& c : cases) {
        OrderLines lines;
        EXPECT_EQ(feed(lines, c.pieces), c.heard) << ::testing::PrintToString(c.pieces);
    }
}

TEST(OrderLinesTest, AnEndlessLineIsBoundedAndStillEndsInAnOrder) {
    OrderLines lines;
    const std::string noise(60000, '#');
    for (int i = 0; i < 100; ++i) {
        EXPECT_EQ(feed(lines, {noise}), Heard{});
        EXPECT_LE(lines.unfinishedSize(), OrderLines::kLongestLine);
    }
    EXPECT_EQ(feed(lines, {noise + "CLO", "SE"}), (Heard{0, 1}));
    // The letters kept at the bound are not found twice.
    EXPECT_EQ(feed(lines, {noise + "EXIT", "!"}), (Heard{1, 0}));
    lines.clear();
    EXPECT_EQ(lines.unfinishedSize(), 0u);
    EXPECT_EQ(feed(lines, {"IT"}), Heard{});
}

}  // namespace
}  // namespace ovd::delivery
