// The compose and mail options windows on the offscreen platform: filled through
// their widgets as a user would, a letter sent to a real test relay, and the
// options read back from the settings files.

#include <gtest/gtest.h>

#include <QAction>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <fstream>

#include "mail/sender_settings.h"
#include "settings/email_sites_tables.h"
#include "support/scripted_prompts.h"
#include "support/smtp_test_server.h"
#include "support/temp_folder.h"
#include "ui/compose_mail_window.h"
#include "ui/mail_options_window.h"
#include "ui/ui_test_helpers.h"

namespace ovd::ui {
namespace {

class MailWindowsTest : public ::testing::Test {
  protected:
    void write(const std::string& name, const std::string& text) {
        std::ofstream(folder.file(name), std::ios::binary) << text;
    }
    template <typename T>
    static T* child(QWidget& window, const char* name) {
        auto* found = window.findChild<T*>(name);
        EXPECT_NE(found, nullptr) << name;
        return found;
    }

    ::ovd::testing::TempFolder folder;
    ::ovd::testing::ScriptedPrompts prompts;
    settings::CompanyRecords records{folder.path()};
};

TEST_F(MailWindowsTest, TheComposeWindowSendsWhatIsTypedAndAttached) {
    ::ovd::testing::SmtpTestServer relay;
    ASSERT_TRUE(relay.running()) << relay.error();
    write("OurCompanyInfo.ini", "[Company]\r\nCompanyName=Northside Clinic\r\nName=Ann\r\n");
    write("DefaultInfo.ini",
          "[DefaultEmailForCO]\r\nDefaultEmail=ann@clinic.example\r\n"
          "DefaultRecEMail=typist@pool.example\r\nChkRelayMessages=1\r\n"
          "DefaultRelayServer=127.0.0.1\r\nDefaultRelayPort=" +
              std::to_string(relay.port()) + "\r\n");
    settings::EmailReceiversTable table(folder.path());
    ASSERT_TRUE(table.saveReceiver({"Pool Typing", "typist@pool.example", "PK", "PT"}));
    const std::string letter = folder.file("0003 Lee.wav");
    std::ofstream(letter, std::ios::binary) << std::string(4000, 'x');

    ComposeMailWindow window(records, prompts);
    window.show();
    EXPECT_EQ(child<QComboBox>(window, "cboEmail")->currentText(), "typist@pool.example");
    child<QLineEdit>(window, "editSubject")->setText("Today");
    child<QComboBox>(window, "cboPriority")->setCurrentIndex(1);
    child<QComboBox>(window, "cboFormat")->setCurrentIndex(1);
    EXPECT_EQ(child<QLabel>(window, "lblFormat")->text(),
              "Enter the styled text version of your message");
    child<QPlainTextEdit>(window, "editMessageHTML")->setPlainText("One letter.");
    prompts.answerNextText(letter);
    child<QPushButton>(window, "cmdBrowse")->click();
    EXPECT_EQ(child<QComboBox>(window, "comboAttachmentShort")->currentText(), "0003 Lee.wav");
    EXPECT_EQ(window.form().priority, mail::Priority::High);

    window.toolKey("SendMessage")->trigger();
    ASSERT_TRUE(
        testing::runUntil([&] { return !window.form().sending(); }, std::chrono::seconds(20)));
    EXPECT_EQ(child<QLabel>(window, "StatusBar")->text(),
              "EMail File 0003 Lee.wav Sucessfuly Sent");
    EXPECT_TRUE(child<QLineEdit>(window, "editSubject")->text().isEmpty());
    ASSERT_EQ(relay.messages().size(), 1U);
    for (const auto& shown : prompts.transcript()) EXPECT_NE(shown.kind, "message") << shown.text;
}

TEST_F(MailWindowsTest, TheOptionsWindowTellsBlankFieldsAndKeepsOnlyWhatIsConfirmed) {
    write("DefaultInfo.ini", "[DefaultEmailForCO]\r\nDefaultEmail=ann@clinic.example\r\n");
    MailOptionsWindow window(records, prompts);
    window.show();
    child<QRadioButton>(window, "optServerRelay")->click();
    EXPECT_TRUE(child<QRadioButton>(window, "optServerDirect")->isChecked());
    window.box("txtRelayServer")->setText("smtp.clinic.example");
    window.box("txtRelayPort")->setText("587");
    child<QRadioButton>(window, "optServerRelay")->click();
    EXPECT_TRUE(child<QRadioButton>(window, "optServerRelay")->isChecked());
    child<QPushButton>(window, "cmdCancel")->click();
    EXPECT_FALSE(mail::loadSenderSettings(records).g_bRelayMessages);

    MailOptionsWindow again(records, prompts);
    again.show();
    again.box("txtRelayServer")->setText("smtp.clinic.example");
    again.box("txtRelayPort")->setText("587");
    child<QRadioButton>(again, "optServerRelay")->click();
    again.box("txtRelayServer")->clear();
    child<QPushButton>(again, "cmdOK")->click();
    EXPECT_TRUE(again.isVisible());
    again.box("txtRelayServer")->setText("smtp.clinic.example");
    child<QPushButton>(again, "cmdOK")->click();
    EXPECT_FALSE(again.isVisible());
    const mail::SenderSettings kept = mail::loadSenderSettings(records);
    EXPECT_TRUE(kept.g_bRelayMessages);
    EXPECT_EQ(kept.g_strRelayServer, "smtp.clinic.example");
    EXPECT_EQ(kept.g_nRelayPort, "587");
    EXPECT_EQ(prompts.texts(), (std::vector<std::string>{mail::kRelayFieldsBlankMessage,
                                                         mail::kRelayHostRequiredMessage}));
}

}  // namespace
}  // namespace ovd::ui
