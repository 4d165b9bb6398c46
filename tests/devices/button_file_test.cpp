// Button.cfg: the split of each line, the twenty-line limit, and the line a
// message button sends.

#include "devices/button_file.h"

#include <gtest/gtest.h>

namespace ovd::devices {
namespace {

TEST(ButtonFileTest, LinesSplitAtTheFirstTwoCommasWithinTwentyLinesAndTheLengthLimit) {
    std::string content =
        "Typist,Urgent,First, then the rest\r\n"
        "only a label\n"
        "label,second only\r\n"
        ",," +
        std::string(300, 'x') + "\r\n";
    for (int i = 5; i <= 25; ++i) content += "l,l,message " + std::to_string(i) + "\r\n";

    const ButtonMessages messages = parseButtonFile(content);

    EXPECT_EQ(messages.firstLabels[0], "Typist");
    EXPECT_EQ(messages.secondLabels[0], "Urgent");
    EXPECT_EQ(messages.texts[0], "First, then the rest") << "further commas belong to the text";
    EXPECT_EQ(messages.firstLabels[1], "only a label");
    EXPECT_EQ(messages.texts[1], "");
    EXPECT_EQ(messages.secondLabels[2], "second only");
    EXPECT_EQ(messages.texts[3].size(), kButtonMessageLength);
    EXPECT_EQ(messages.texts[19], "message 20");
    EXPECT_EQ(ReadButtonFile("/no/such/Button.cfg").texts[0], "") << "a missing file is no error";
}

TEST(ButtonFileTest, TheShippedFileLoadsAndAButtonSendsItsLine) {
    const ButtonMessages shipped = ReadButtonFile(std::string(OVD_TEST_ASSETS) + "/Button.cfg");
    for (std::size_t i = 0; i < 8; ++i) EXPECT_FALSE(shipped.texts[i].empty()) << "MSG" << i + 1;
    EXPECT_EQ(shipped.texts[6], "Gone to lunch, back at two.");

    EXPECT_EQ(buttonMessageLine(3, "/rec/AB0007.MP3", shipped.texts[0]),
              "BTN3_AB0007 Please transcribe this letter first: it is urgent.\r\n");
}

}  // namespace
}  // namespace ovd::devices
