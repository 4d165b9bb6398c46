#include "mail/mail_message.h"

#include <gtest/gtest.h>

#include <cctype>
#include <fstream>

#include "mail/parsed_message.h"
#include "support/temp_folder.h"

namespace ovd::mail {
namespace {

using testing::parseMessageFile;
using testing::sha256Of;

std::string lower(std::string text) {
    for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return text;
}

class MailMessageTest : public ::testing::Test {
  protected:
    testing::ParsedMessage parsed(const MailMessage& message) {
        const std::string path = folder.file("message.eml");
        const auto saved = saveMessage(message, path);
        EXPECT_TRUE(saved.ok()) << saved.error();
        return parseMessageFile(path);
    }
    std::string makeFile(const std::string& name, std::size_t bytes) {
        const std::string path = folder.file(name);
        std::ofstream out(path, std::ios::binary);
        for (std::size_t i = 0; i < bytes; ++i) out.put(static_cast<char>((i * 131 + 7) % 256));
        return path;
    }
    static MailMessage letter() {
        MailMessage message;
        message.fromName = "Dr. Ann O'Neil";
        message.fromAddress = "ann@clinic.example";
        message.to = {"typing@pool.example", "second@pool.example"};
        message.cc = {"copy@pool.example"};
        message.bcc = {"hidden@pool.example"};
        message.organization = "Northside Clinic";
        message.subject = "0001 Letter.wav";
        message.body = "Please type this letter.\nThank you.";
        return message;
    }
    ovd::testing::TempFolder folder;
};

TEST_F(MailMessageTest, HeadersNameEveryoneButTheBlindCopy) {
    MailMessage message = letter();
    message.priority = Priority::Highest;
    const auto seen = parsed(message);
    EXPECT_EQ(seen.at("defects"), "0");
    EXPECT_EQ(seen.at("from.name"), "Dr. Ann O'Neil");
    EXPECT_EQ(seen.at("from.address"), "ann@clinic.example");
    EXPECT_EQ(seen.at("header.To"), "typing@pool.example, second@pool.example");
    EXPECT_EQ(seen.at("header.Cc"), "copy@pool.example");
    EXPECT_EQ(seen.count("header.Bcc"), 0U);
    EXPECT_EQ(seen.at("header.Organization"), "Northside Clinic");
    EXPECT_EQ(seen.at("header.Subject"), "0001 Letter.wav");
    EXPECT_EQ(seen.at("header.X-Priority"), "1 (Highest)");
    EXPECT_EQ(seen.at("header.Importance"), "High");
    EXPECT_EQ(seen.at("text.type"), "text/plain");
    EXPECT_EQ(seen.at("text.body"), "Please type this letter.\\nThank you.\\n");
    EXPECT_EQ(message.recipients().size(), 4U);
}

TEST_F(MailMessageTest, EachPriorityHasItsOwnHeaders) {
    const std::pair<Priority, const char*> importance[] = {{Priority::Highest, "High"},
                                                           {Priority::High, "High"},
                                                           {Priority::Normal, "Normal"},
                                                           {Priority::Low, "Low"},
                                                           {Priority::Lowest, "Low"}};
    for (const auto& [priority, word] : importance) {
        MailMessage message = letter();
        message.priority = priority;
        const auto seen = parsed(message);
        EXPECT_EQ(seen.at("header.X-Priority"), kPriorityTexts[static_cast<int>(priority)]);
        EXPECT_EQ(seen.at("header.Importance"), word);
    }
}

TEST_F(MailMessageTest, EachCharacterSetCarriesItsOwnLetters) {
    // A letter of each set that the others lack, in both encodings.
    const std::pair<Charset, const char*> samples[] = {{Charset::WesternEuropean, "Grüße à"},
                                                       {Charset::EasternEuropean, "Łódź"},
                                                       {Charset::Cyrillic, "Привет"},
                                                       {Charset::Greek, "Καλημέρα"},
                                                       {Charset::Turkish, "İstanbul ş"}};
    for (const auto& [charset, text] : samples) {
        for (const Encoding encoding : {Encoding::SevenBit, Encoding::QuotedPrintable}) {
            MailMessage message = letter();
            message.charset = charset;
            message.encoding = encoding;
            message.body = text;
            const auto seen = parsed(message);
            EXPECT_EQ(seen.at("text.charset"), lower(kCharsetNames[static_cast<int>(charset)]));
            // Letters past ASCII never travel as 7-bit text.
            EXPECT_EQ(seen.at("text.cte"), "quoted-printable");
            EXPECT_EQ(seen.at("text.body"), std::string(text) + "\\n");
        }
    }
}

TEST_F(MailMessageTest, PlainAsciiStaysSevenBitUnlessALineIsTooLong) {
    MailMessage message = letter();
    EXPECT_EQ(parsed(message).at("text.cte"), "7bit");
    message.body = std::string(1200, 'x') + " end";
    const auto seen = parsed(message);
    EXPECT_EQ(seen.at("text.cte"), "quoted-printable");
    EXPECT_EQ(seen.at("text.body"), message.body + "\\n");
    message.body = "a=b \n.dot line\nlast ";
    message.encoding = Encoding::QuotedPrintable;
    EXPECT_EQ(parsed(message).at("text.body"), "a=b \\n.dot line\\nlast \\n");
}

TEST_F(MailMessageTest, StyledTextIsWrappedWithTheFontOrArial) {
    MailMessage message = letter();
    message.format = BodyFormat::StyledTextHtml;
    message.body = "Hello";
    auto seen = parsed(message);
    EXPECT_EQ(seen.at("text.type"), "text/html");
    EXPECT_EQ(seen.at("text.body"),
              "<html><head><title>0001 Letter.wav</title></head><body><font face=Arial "
              "size=2>Hello</font></body></html>\\n");
    message.fontName = "Verdana";
    message.fontSize = 4;
    seen = parsed(message);
    EXPECT_NE(seen.at("text.body").find("<font face=Verdana size=4>Hello</font>"),
              std::string::npos);
}

TEST_F(MailMessageTest, AttachmentsArriveByteForByteUnderTheirNames) {
    MailMessage message = letter();
    message.subject = "Diktat Müller – Überweisung an Dr. Łukasz Żółć, bitte heute noch tippen";
    message.fromName = "Jürgen Groß";
    // Around the size the stream reads at a time, an empty file and an odd one.
    const std::size_t sizes[] = {0, 1, 57 * 1024 - 1, 57 * 1024, 57 * 1024 + 1, 300001};
    for (std::size_t i = 0; i < std::size(sizes); ++i) {
        const std::string name =
            i == 2 ? "Brief für Frau Öz.wav" : "file" + std::to_string(i) + ".wav";
        message.attachments.push_back({makeFile("source" + std::to_string(i), sizes[i]), name});
    }
    const auto seen = parsed(message);
    EXPECT_EQ(seen.at("defects"), "0");
    EXPECT_EQ(seen.at("header.Subject"), message.subject);
    EXPECT_EQ(seen.at("from.name"), "Jürgen Groß");
    // The line end before a boundary belongs to the boundary: the text is as typed.
    EXPECT_EQ(seen.at("text.body"), "Please type this letter.\\nThank you.");
    ASSERT_EQ(seen.at("attachments"), std::to_string(std::size(sizes)));
    for (std::size_t i = 0; i < std::size(sizes); ++i) {
        const std::string key = "attachment." + std::to_string(i);
        EXPECT_EQ(seen.at(key + ".name"), message.attachments[i].name);
        EXPECT_EQ(seen.at(key + ".size"), std::to_string(sizes[i]));
        EXPECT_EQ(seen.at(key + ".sha256"), sha256Of(message.attachments[i].path));
    }
}

TEST_F(MailMessageTest, ALineEndInAFileNameStaysInsideTheSubject) {
    MailMessage message = letter();
    message.subject = "0001.wav\r\nBcc: everyone@example.com";
    const auto seen = parsed(message);
    EXPECT_EQ(seen.at("defects"), "0");
    EXPECT_EQ(seen.count("header.Bcc"), 0U);
    EXPECT_NE(seen.at("header.Subject").find("0001.wav"), std::string::npos);
}

TEST_F(MailMessageTest, AnAttachmentThatVanishedFailsTheMessage) {
    MailMessage message = letter();
    message.attachments.push_back({folder.file("gone.wav"), "gone.wav"});
    const auto composed = composeMessage(message);
    ASSERT_FALSE(composed.ok());
    EXPECT_NE(composed.error().find("gone.wav"), std::string::npos);
}

}  // namespace
}  // namespace ovd::mail
