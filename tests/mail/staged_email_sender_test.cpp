#include "mail/staged_email_sender.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "crypto/transport.h"
#include "mail/mail_servers_environment.h"
#include "mail/parsed_message.h"
#include "mail/send_step.h"
#include "settings/email_sites_tables.h"
#include "support/scripted_prompts.h"
#include "support/temp_folder.h"

namespace ovd::mail {
namespace {

using namespace ovd::mail::testing;
namespace fs = std::filesystem;

constexpr const char* kOurKey = "OurKey-2024";
constexpr const char* kReceiverKey = "TypeKey";
constexpr const char* kReceiverCompany = "Pool Typing Services";

// A data folder as the record windows leave it: our company, the default
// receiver among the e-mail receivers, and the relay of the default sender.
class StagedEmailSenderTest : public ::testing::Test {
  protected:
    void SetUp() override {
        write("OurCompanyInfo.ini",
              "[Company]\r\nCompanyName=Northside Clinic\r\nName=Dr. Ann Smith\r\n"
              "Email1=ann@clinic.example\r\n[Key]\r\nEncryptKey=" +
                  std::string(kOurKey) + "\r\n");
        settings::EmailReceiversTable table(data.path());
        ASSERT_TRUE(
            table.saveReceiver({kReceiverCompany, "typist@pool.example", kReceiverKey, "PT"}));
        fs::create_directories(staged);
        letter = staged + "/0007 Jones.wav";
        std::ofstream out(letter, std::ios::binary);
        for (int i = 0; i < 150001; ++i) out.put(static_cast<char>(i * 13 % 256));
    }

    void write(const std::string& name, const std::string& text) {
        std::ofstream(data.file(name), std::ios::binary) << text;
    }

    void defaults(const std::string& extra) {
        write("DefaultInfo.ini",
              "[DefaultEmailForCO]\r\nDefaultEmail=ann@clinic.example\r\n"
              "DefaultRecEMail=Typist@Pool.example\r\nDefaultCameFrom=POPServer1"
              "\r\nChkRelayMessages=1\r\nDefaultRelayServer=127.0.0.1\r\n"
              "DefaultRelayPort=" +
                  std::to_string(plainRelay().port()) + "\r\n" + extra);
    }

    platform::Result<void> send(const std::string& file) {
        StagedEmailSender sender(data.path(), prompts);
        sender.setTrace([this](const std::string& line) { traced.push_back(line); });
        return sender.send(file);
    }

    ovd::testing::TempFolder data;
    ovd::testing::ScriptedPrompts prompts;
    std::string staged = data.file("EmailTemp");
    std::string letter;
    std::vector<std::string> traced;
};

TEST_F(StagedEmailSenderTest, TheLetterGoesToTheDefaultReceiverFromOurCompany) {
    ASSERT_TRUE(plainRelay().running()) << plainRelay().error();
    plainRelay().clear();
    defaults("ChkEncryptDecrypt=0\r\n");
    const auto sent = send(letter);
    ASSERT_TRUE(sent.ok()) << sent.error();

    const std::vector<std::string> expected = {"Sending message to typist@pool.example",
                                               "Message delivered to typist@pool.example",
                                               "EMail File 0007 Jones.wav Sucessfuly Sent"};
    EXPECT_EQ(traced, expected);
    const auto received = plainRelay().messages();
    ASSERT_EQ(received.size(), 1U);
    const auto parsed = parseMessageFile(received[0]);
    EXPECT_EQ(parsed.at("from.name"), "Dr. Ann Smith");
    EXPECT_EQ(parsed.at("from.address"), "ann@clinic.example");
    EXPECT_EQ(parsed.at("header.To"), "typist@pool.example");
    EXPECT_EQ(parsed.at("header.Organization"), "Northside Clinic");
    EXPECT_EQ(parsed.at("header.Subject"), "0007 Jones.wav");
    EXPECT_EQ(parsed.at("header.X-Priority"), "3 (Normal)");
    EXPECT_EQ(parsed.at("text.charset"), "iso-8859-1");
    EXPECT_EQ(parsed.at("attachment.0.name"), "0007 Jones.wav");
    EXPECT_EQ(parsed.at("attachment.0.sha256"), sha256Of(letter));
    // The staged file is the caller's to remove; the exchange is in the mail trace.
    EXPECT_TRUE(fs::exists(letter));
    EXPECT_NE(ovd::testing::readTextFile(data.file("MailTrace.log"))
                  .find("RCPT TO:<typist@pool.example>"),
              std::string::npos);
}

TEST_F(StagedEmailSenderTest, AnEncipheredLetterTravelsUnderItsTransportNameAndOpensWithTheKey) {
    ASSERT_TRUE(plainRelay().running()) << plainRelay().error();
    plainRelay().clear();
    defaults("ChkEncryptDecrypt=1\r\n");
    const auto sent = send(letter);
    ASSERT_TRUE(sent.ok()) << sent.error();
    ASSERT_EQ(plainRelay().messages().size(), 1U);

    const std::string transportName =
        crypto::emailTransportName("0007 Jones.wav", "Northside Clinic", kReceiverCompany);
    EXPECT_EQ(transportName, "0007 Jones.wav_Norths_to_Pool T.enc");
    const std::string saved = data.file("arrived.enc");
    ASSERT_EQ(
        std::system(("/usr/bin/python3 -c \"import email,sys; m=email.message_from_binary_file("
                     "open(sys.argv[1],'rb')); p=[x for x in m.walk() if x.get_filename()][0];"
                     " open(sys.argv[2],'wb').write(p.get_payload(decode=True))\" '" +
                     plainRelay().messages()[0] + "' '" + saved + "'")
                        .c_str()),
        0);
    EXPECT_EQ(parseMessageFile(plainRelay().messages()[0]).at("attachment.0.name"), transportName);
    // The key is the first sixteen characters of our key, their company and their key.
    const std::string keyText =
        crypto::emailSendingKeyText(kOurKey, kReceiverCompany, kReceiverKey).substr(0, 16);
    std::string hex;
    for (const unsigned char c : keyText) {
        char pair[3];
        std::snprintf(pair, sizeof pair, "%02x", c);
        hex += pair;
    }
    const std::string opened = data.file("opened.wav");
    ASSERT_EQ(std::system(("openssl enc -d -aes-128-cbc -K " + hex + " -iv " + hex + " -in '" +
                           saved + "' -out '" + opened + "'")
                              .c_str()),
              0);
    EXPECT_EQ(sha256Of(opened), sha256Of(letter));
    // Nothing of the journey is left behind in clear.
    EXPECT_FALSE(fs::exists(data.file(crypto::kEmailTempFolderName)));
}

TEST_F(StagedEmailSenderTest, EachFailureKeepsTheFileAndSaysWhy) {
    ASSERT_TRUE(plainRelay().running()) << plainRelay().error();
    ASSERT_TRUE(popServer().running()) << popServer().error();
    plainRelay().clear();

    defaults("ChkEncryptDecrypt=0\r\n");
    auto sent = send("");
    EXPECT_EQ(sent.error(), "There are no files to attach for this message");
    sent = send(staged + "/vanished.wav");
    EXPECT_EQ(sent.error(),
              "vanished.wav--File not attached! File Not found or File already Attached");

    defaults("ChkServerAuthentication=1\r\nDefaultPOPServer=127.0.0.1\r\nDefaultPOPPort=" +
             std::to_string(popServer().port()) +
             "\r\nDefaultPOPUserName=popuser\r\nDefaultPOPPassword=wrong\r\n");
    traced.clear();
    sent = send(letter);
    EXPECT_NE(sent.error().find("-ERR"), std::string::npos) << sent.error();
    ASSERT_FALSE(traced.empty());
    EXPECT_EQ(traced.back().rfind("Sending File via Email error = 67 ", 0), 0U) << traced.back();

    defaults("ChkServerAuthentication=1\r\n");
    sent = send(letter);
    EXPECT_EQ(sent.error(), kRelayWithAuthenticationBlank);
    ASSERT_FALSE(prompts.transcript().empty());
    EXPECT_EQ(prompts.transcript().back().title, kAuthenticationProblemTitle);

    write("DefaultInfo.ini", "[DefaultEmailForCO]\r\nDefaultRecEMail=stranger@else.example\r\n");
    sent = send(letter);
    EXPECT_NE(sent.error().find("does not exist in the Transcibers file"), std::string::npos);

    EXPECT_TRUE(plainRelay().messages().empty());
    EXPECT_TRUE(fs::exists(letter));
}

TEST_F(StagedEmailSenderTest, ARelayThatIsDownIsTracedWithItsCodeAndTheNextScanDeliversOnce) {
    ovd::testing::SmtpTestServer& relay = plainRelay();
    ASSERT_TRUE(relay.running()) << relay.error();
    relay.clear();
    write("DefaultInfo.ini",
          "[DefaultEmailForCO]\r\nDefaultEmail=ann@clinic.example\r\n"
          "DefaultRecEMail=typist@pool.example\r\nChkRelayMessages=1\r\n"
          "DefaultRelayServer=127.0.0.1\r\nDefaultRelayPort=" +
              std::to_string(ovd::testing::freeLoopbackPort()) + "\r\n");
    const auto down = send(letter);
    EXPECT_FALSE(down.ok());
    ASSERT_FALSE(traced.empty());
    EXPECT_EQ(traced.back().rfind("Sending File via Email error = 7 ", 0), 0U) << traced.back();

    defaults({});
    ASSERT_TRUE(send(letter).ok());
    EXPECT_EQ(relay.messages().size(), 1U);
}

TEST_F(StagedEmailSenderTest, NonAsciiNamesArriveAsTheyWereWritten) {
    ASSERT_TRUE(plainRelay().running()) << plainRelay().error();
    plainRelay().clear();
    defaults({});
    const std::string named = staged + "/Brief an Frau Größe – Überweisung.wav";
    fs::copy_file(letter, named);
    ASSERT_TRUE(send(named).ok());
    ASSERT_EQ(plainRelay().messages().size(), 1U);
    const auto parsed = parseMessageFile(plainRelay().messages()[0]);
    EXPECT_EQ(parsed.at("header.Subject"), "Brief an Frau Größe – Überweisung.wav");
    EXPECT_EQ(parsed.at("attachment.0.name"), "Brief an Frau Größe – Überweisung.wav");
    EXPECT_EQ(parsed.at("attachment.0.sha256"), sha256Of(letter));
}

}  // namespace
}  // namespace ovd::mail
