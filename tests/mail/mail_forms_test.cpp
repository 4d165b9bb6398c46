// The compose and options windows as data, against the plain test relay: what a
// user types, the boxes each mistake brings, and what reaches the server.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "mail/compose_form.h"
#include "mail/curl_mail_transport.h"
#include "mail/mail_servers_environment.h"
#include "mail/options_form.h"
#include "mail/parsed_message.h"
#include "settings/email_sites_tables.h"
#include "settings/ini_store.h"
#include "support/real_time_event_loop.h"
#include "support/scripted_prompts.h"
#include "support/temp_folder.h"

namespace ovd::mail {
namespace {

using namespace ovd::mail::testing;
using std::chrono::milliseconds;
namespace fs = std::filesystem;

class MailFormsTest : public ::testing::Test {
  protected:
    void SetUp() override {
        write("OurCompanyInfo.ini",
              "[Company]\r\nCompanyName=Northside Clinic\r\nName=Dr. Ann Smith\r\n"
              "Email2=ann@clinic.example\r\nRelayServer2=127.0.0.1\r\nRelayPort2=" +
                  std::to_string(plainRelay().port()) +
                  "\r\nPOPServer2=pop.clinic.example\r\nUserNamePopServ2=ann\r\n"
                  "PassPopServer2=pw\r\nPOPPort2=110\r\nPOPTimeOut2=30\r\n"
                  "SMTPSecurity2=STARTTLS\r\n[Key]\r\nEncryptKey=K1\r\n");
        write("DefaultInfo.ini",
              "[DefaultEmailForCO]\r\nDefaultEmail=ann@clinic.example\r\n"
              "DefaultRecEMail=typist@pool.example\r\nChkRelayMessages=1\r\n"
              "DefaultRelayServer=127.0.0.1\r\nDefaultRelayPort=" +
                  std::to_string(plainRelay().port()) + "\r\n");
        settings::EmailReceiversTable table(data.path());
        ASSERT_TRUE(table.saveReceiver({"Pool Typing", "typist@pool.example", "PK", "PT"}));
        ASSERT_TRUE(table.saveReceiver({"Second Pool", "second@pool.example", "SK", "SP"}));
        recording = data.file("0009 Brown.wav");
        std::ofstream(recording, std::ios::binary) << std::string(70000, 'r');
    }
    void write(const std::string& name, const std::string& text) {
        std::ofstream(data.file(name), std::ios::binary) << text;
    }

    ovd::testing::TempFolder data;
    ovd::testing::ScriptedPrompts prompts;
    ovd::testing::RealTimeEventLoop loop;
    settings::CompanyRecords records{data.path()};
    std::string recording;
};

TEST_F(MailFormsTest, AComposedMessageShowsEachRecipientAndIsBlankedOnceDelivered) {
    ASSERT_TRUE(plainRelay().running()) << plainRelay().error();
    plainRelay().clear();
    ComposeForm form(loop, records, prompts, std::make_unique<CurlMailTransport>());
    std::vector<std::string> statuses;
    form.changed = [&] {
        if (statuses.empty() || statuses.back() != form.statusText) {
            statuses.push_back(form.statusText);
        }
    };
    form.Form_Load();
    EXPECT_EQ(form.cboEmail, "typist@pool.example");
    form.editCc = "office@clinic.example; second@pool.example";
    form.editSubject = "Letters of today";
    form.editMessageHTML = "Two letters.";
    ASSERT_TRUE(form.command("id_FormatStyledTextHTML"));
    ASSERT_TRUE(form.command("id_MessagePriorityLowest"));
    ASSERT_TRUE(form.command("id_FormatCharacterSetGreek"));
    ASSERT_TRUE(form.command("id_FormatEncodingQuotedPrintable"));
    EXPECT_STREQ(form.formatLabel(), "Enter the styled text version of your message");
    form.attach(recording);
    form.attach(recording);
    form.attach(data.file("missing.wav"));
    ASSERT_EQ(form.comboAttachmentShort, std::vector<std::string>{"0009 Brown.wav"});
    ASSERT_EQ(prompts.texts(),
              (std::vector<std::string>{
                  "0009 Brown.wav--File not attached! File Not found or File already Attached",
                  "missing.wav--File not attached! File Not found or File already Attached"}));

    ASSERT_TRUE(form.command("SendMessage"));
    EXPECT_FALSE(form.send());  // one at a time
    ASSERT_TRUE(loop.runUntil([&] { return !form.sending(); }, milliseconds(20000)));
    const std::vector<std::string> expected = {
        "Sending message to typist@pool.example",     "Sending message to office@clinic.example",
        "Sending message to second@pool.example",     "Message delivered to typist@pool.example",
        "Message delivered to office@clinic.example", "Message delivered to second@pool.example",
        "EMail File 0009 Brown.wav Sucessfuly Sent"};
    std::vector<std::string> shown;
    for (const auto& text : statuses) {
        if (!text.empty()) shown.push_back(text);
    }
    EXPECT_EQ(shown, expected);
    EXPECT_FALSE(form.EmailFailed);
    EXPECT_TRUE(form.editSubject.empty() && form.editMessageHTML.empty() && form.editCc.empty() &&
                form.cboEmail.empty());
    ASSERT_EQ(plainRelay().messages().size(), 1U);
    const auto parsed = parseMessageFile(plainRelay().messages()[0]);
    EXPECT_EQ(parsed.at("header.X-Priority"), "5 (Lowest)");
    EXPECT_EQ(parsed.at("text.type"), "text/html");
    EXPECT_EQ(parsed.at("text.charset"), "iso-8859-7");
    EXPECT_EQ(parsed.at("text.cte"), "quoted-printable");
    EXPECT_NE(parsed.at("text.body").find("<font face=Arial size=2>Two letters.</font>"),
              std::string::npos);
}

TEST_F(MailFormsTest, UnknownReceiversBadCopiesAndSavedMessages) {
    write("ClientsInfo.ini",
          "[Night Typists]\r\nCompanyName=Night Typists\r\nEmail=night@typists.example\r\n");
    ComposeForm form(loop, records, prompts, std::make_unique<CurlMailTransport>());
    form.Form_Load();
    form.cboEmail = "Somebody Else";
    EXPECT_FALSE(form.leaveReceiver());
    // A transcriber with an address is a receiver as well.
    form.cboEmail = "night typists";
    EXPECT_TRUE(form.leaveReceiver());
    EXPECT_EQ(form.cboEmail, "night@typists.example");
    form.cboEmail = "second pool";
    EXPECT_TRUE(form.leaveReceiver());
    EXPECT_EQ(form.cboEmail, "second@pool.example");
    form.editBcc = "archive@clinic.example, not an address";
    EXPECT_FALSE(form.send());
    ASSERT_EQ(prompts.texts().size(), 2U);
    EXPECT_EQ(prompts.texts()[0], kReceiverUnknownMessage);
    EXPECT_EQ(prompts.texts()[1], "This is not a valid e-mail address: not an address");

    form.editBcc.clear();
    form.editSubject = "Saved";
    form.editMessageText = "Kept for later.";
    form.attach(recording);
    const std::string saved = data.file("later.eml");
    prompts.answerNextText(saved);
    ASSERT_TRUE(form.command("id_FileSaveAs"));
    const auto parsed = parseMessageFile(saved);
    EXPECT_EQ(parsed.at("header.To"), "second@pool.example");
    EXPECT_EQ(parsed.count("header.Bcc"), 0U);
    EXPECT_EQ(parsed.at("attachment.0.sha256"), sha256Of(recording));
    prompts.answerNextText(data.file("no/such/folder/x.txt"));
    form.saveAs();
    EXPECT_EQ(prompts.texts().back(),
              "Unable to save message to " + data.file("no/such/folder/x.txt"));
}

TEST_F(MailFormsTest, DeletingAnEncipheredAttachmentRemovesOnlyTheCopy) {
    write("DefaultInfo.ini",
          "[DefaultEmailForCO]\r\nDefaultEmail=ann@clinic.example\r\n"
          "DefaultRecEMail=typist@pool.example\r\nChkEncryptDecrypt=1\r\n");
    ComposeForm form(loop, records, prompts, std::make_unique<CurlMailTransport>());
    form.Form_Load();
    form.attach(recording);
    ASSERT_EQ(form.comboAttachment.size(), 1U);
    const std::string copy = form.comboAttachment[0];
    EXPECT_EQ(form.comboAttachmentShort[0], "0009 Brown.wav_Norths_to_Pool T.enc");
    EXPECT_TRUE(fs::exists(copy));
    form.deleteAttachment(0);
    EXPECT_FALSE(fs::exists(copy));
    EXPECT_TRUE(form.comboAttachment.empty());
    // A plain attachment is the author's own file: it leaves the list, not the disk.
    write("DefaultInfo.ini", "[DefaultEmailForCO]\r\nDefaultRecEMail=typist@pool.example\r\n");
    form.Form_Load();
    form.attach(recording);
    ASSERT_TRUE(form.command("id_FileDeleteAttachment"));
    EXPECT_TRUE(form.comboAttachment.empty());
    EXPECT_TRUE(fs::exists(recording));
}

TEST_F(MailFormsTest, TheSpellingCheckOffersWordsOrSaysThereIsNoDictionary) {
    ComposeForm form(loop, records, prompts, std::make_unique<CurlMailTransport>());
    form.Form_Load();
    form.editMessageText = "Please tpye letter 0042 for Mrs Smiht today.";
    if (const auto speller = openDictionary()) {
        prompts.answerNextText("type");
        prompts.answerNextText(std::nullopt);  // cancelled at the second word
        form.spellCheck(speller.get());
        EXPECT_EQ(form.editMessageText, "Please type letter 0042 for Mrs Smiht today.");
        ASSERT_EQ(prompts.transcript().size(), 2U);
        EXPECT_NE(prompts.transcript()[1].text.find("Smiht"), std::string::npos);
    } else {
        ADD_FAILURE() << "hunspell-en-us is not installed";
    }
    prompts.clear();
    form.openSpeller = [] { return openDictionary("xx_XX"); };
    ASSERT_TRUE(form.command("id_FileSpellCheck"));
    EXPECT_EQ(prompts.texts(), std::vector<std::string>{
                                   "Sorry you do not have 'Word Dictionary' loaded..Spell Check "
                                   "Canceled"});
}

TEST_F(MailFormsTest, OptionsRefuseHalfFilledChoicesAndKeepOnlyOkOrApply) {
    OptionsForm options(records, prompts);
    options.Form_Load();
    EXPECT_TRUE(options.boxes.g_bRelayMessages);
    options.boxes.g_nRelayPort.clear();
    EXPECT_FALSE(options.chooseRelay(true));
    options.boxes.g_POPUserName.clear();
    EXPECT_FALSE(options.setServerAuthentication(true));
    options.boxes.g_bRelayMessages = true;
    options.boxes.g_strRelayServer.clear();
    EXPECT_FALSE(options.cmdOK());
    EXPECT_EQ(prompts.texts(),
              (std::vector<std::string>{kRelayFieldsBlankMessage, kPopFieldsBlankMessage,
                                        kRelayHostRequiredMessage}));
    // Nothing was kept of the refused choices.
    EXPECT_EQ(loadSenderSettings(records).g_nRelayPort, std::to_string(plainRelay().port()));

    EXPECT_EQ(options.identities()[1], "ann@clinic.example");
    options.chooseIdentity(2);
    EXPECT_EQ(options.boxes.g_POPTimeOut, "30");
    EXPECT_EQ(options.boxes.security, Security::StartTls);
    EXPECT_TRUE(options.setServerAuthentication(true));
    options.boxes.smtpUser = "ann";
    ASSERT_TRUE(options.cmdApply());
    const SenderSettings kept = loadSenderSettings(records);
    EXPECT_EQ(kept.g_strCameFrom, "POPServer2");
    EXPECT_EQ(kept.g_POPServer, "pop.clinic.example");
    EXPECT_TRUE(kept.g_chkServerAuthentication);
    EXPECT_EQ(kept.security, Security::StartTls);
    EXPECT_EQ(kept.smtpUser, "ann");
    EXPECT_EQ(settings::IniStore(records.defaultsPath())
                  .ReadKey("DefaultEmailForCO", "ChkServerAuthentication"),
              "1");
}

}  // namespace
}  // namespace ovd::mail
