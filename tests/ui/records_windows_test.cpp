// The delivery record windows on the offscreen platform: each is filled as a user
// would, saved, and its file or database read back from disk.

#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include "crypto/file_crypt.h"
#include "platform/files.h"
#include "settings/company_records.h"
#include "settings/email_sites_tables.h"
#include "settings/ini_store.h"
#include "settings/passwords_tables.h"
#include "support/scripted_prompts.h"
#include "support/temp_folder.h"
#include "ui/company_info_window.h"
#include "ui/email_receivers_window.h"
#include "ui/key_records_window.h"
#include "ui/manual_decrypt_window.h"
#include "ui/our_company_window.h"
#include "ui/transcriber_window.h"

namespace ovd::ui {
namespace {

using platform::Answer;

class RecordsWindowsTest : public ::testing::Test {
  protected:
    ::ovd::testing::TempFolder folder;
    ::ovd::testing::ScriptedPrompts prompts;
    settings::CompanyRecords records{folder.path()};

    // Typing as a user does: the text, then the box left.
    static void type(QLineEdit* edit, const QString& text) {
        edit->setText(text);
        Q_EMIT edit->textEdited(text);
        Q_EMIT edit->editingFinished();
    }
    static void click(QWidget& window, const char* button) {
        auto* found = window.findChild<QPushButton*>(button);
        ASSERT_NE(found, nullptr) << button;
        found->click();
    }
};

TEST_F(RecordsWindowsTest, TranscriberWindowSavesToClientsInfo) {
    TranscriberWindow window(records, prompts, {.email = true, .peer = false, .encipher = true});
    EXPECT_EQ(window.box("txtRecCity")->placeholderText(), "Enter Transcriber City");
    EXPECT_TRUE(window.asterisk("txtRecEmail")->objectName() == "reqAstrk4");
    EXPECT_FALSE(window.asterisk("txtRecEmail")->isHidden());
    EXPECT_TRUE(window.asterisk("txtRecPTPHostIP")->isHidden());
    EXPECT_NE(window.box("txtRecEmail")->styleSheet().indexOf("#ffff80"), -1);

    type(window.box("txtRecCompanyName"), "Pool & Sons");
    type(window.box("txtRecName"), "Ann Pool");
    type(window.box("txtRecEmail"), "ann@example.org");
    prompts.answerNextText("AP");
    type(window.box("txtRecKey"), "PoolKey");
    click(window, "cmdSave");
    EXPECT_EQ(prompts.texts().back(), "Transcribers information has been saved");
    const settings::IniStore clients = records.clients();
    EXPECT_EQ(clients.ReadKey("Pool & Sons", "Email"), "ann@example.org");
    EXPECT_EQ(clients.ReadKey("Pool & Sons", "RECEncryptKey"), "PoolKey");
    EXPECT_EQ(clients.ReadKey("Pool & Sons", "RECEncryptINITS"), "AP");
    EXPECT_TRUE(window.box("txtRecKey")->isReadOnly());
    EXPECT_EQ(window.cboCompanyName()->count(), 1);
    click(window, settings::kSaveToClipboardCommand);
    EXPECT_TRUE(QApplication::clipboard()->text().startsWith("Company Name: Pool & Sons\n"));
}

TEST_F(RecordsWindowsTest, OurCompanyWindowSavesToOurCompanyInfo) {
    OurCompanyWindow window(records, prompts);
    type(window.box("txtCompanyName"), "Orvane Medical");
    type(window.box("txtName"), "Dr Who");
    type(window.box("txtKeyInfo"), "OurKey");
    click(window, "cmdSave");
    EXPECT_EQ(prompts.texts().back(),
              "Thank You... All required fields have been entered --- Company Information saved");
    EXPECT_EQ(settings::readOurCompany(records).g_strOrganization, "Orvane Medical");
    EXPECT_EQ(settings::readOurCompany(records).g_strSaveOurCompanyKey, "OurKey");
    EXPECT_TRUE(window.box("txtKeyInfo")->isReadOnly());
    click(window, settings::kEditEncryptionKeyCommand);
    EXPECT_FALSE(window.box("txtKeyInfo")->isReadOnly());
}

TEST_F(RecordsWindowsTest, CompanyInfoWindowSavesCompanyAndMailAccount) {
    CompanyInfoWindow window(records, prompts);
    type(window.box("txtCompanyName"), "Orvane Medical");
    type(window.box("txtName"), "Dr Who");
    type(window.box("txtKeyInfo"), "OurKey");
    window.cboAccount()->setCurrentIndex(1);
    window.senderBox(3)->setText("desk@orvane.example");
    window.senderBox(6)->setText("smtp.orvane.example");
    click(window, "cmdSave");
    const settings::IniStore ours = records.ourCompany();
    EXPECT_EQ(ours.ReadKey("Company", "CompanyName"), "Orvane Medical");
    EXPECT_EQ(ours.ReadKey("Company", "Email2"), "desk@orvane.example");
    EXPECT_EQ(ours.ReadKey("Company", "RelayServer2"), "smtp.orvane.example");
    EXPECT_EQ(ours.ReadKey("Company", "Email1"), "");
    EXPECT_EQ(records.LoadOurEmails(), (std::vector<std::string>{"desk@orvane.example"}));
    window.cboAccount()->setCurrentIndex(0);
    EXPECT_EQ(window.senderBox(3)->text(), "");
}

TEST_F(RecordsWindowsTest, EmailReceiversWindowSavesToTheDatabase) {
    EmailReceiversWindow window(records, prompts);
    window.cboCo()->setEditText("Pool");
    Q_EMIT window.cboCo()->lineEdit()->textEdited("Pool");
    type(window.txtEmail(), "pool@example.org");
    prompts.answerNextText("PL");
    type(window.txtKey(), "PoolKey");
    click(window, "cmdSave");
    click(window, "cmdDefault");
    const auto row = settings::EmailReceiversTable(folder.path()).findReceiver("Pool");
    ASSERT_TRUE(row);
    EXPECT_EQ(row->EmailEmailAddress, "pool@example.org");
    EXPECT_EQ(row->EmailINITS, "PL");
    EXPECT_EQ(records.defaults().ReadKey("DefaultEmailForCO", "DefaultRecEMail"),
              "pool@example.org");
    EXPECT_EQ(window.lblDefault()->text(), "pool@example.org");
}

TEST_F(RecordsWindowsTest, KeyRecordsWindowSavesToThePasswordsDatabase) {
    KeyRecordsWindow window(folder.path(), prompts);
    window.panel()->cboName()->setEditText("Pool");
    Q_EMIT window.panel()->cboName()->lineEdit()->textEdited("Pool");
    type(window.panel()->txtKey(), "has space");
    EXPECT_EQ(prompts.texts().back(), "Please try again. Spaces are not allowed");
    EXPECT_EQ(window.panel()->txtKey()->text(), "");
    type(window.panel()->txtKey(), "PoolKey");
    click(window, "cmdSave");
    const auto row = settings::DecryptPasswordsTable(folder.path()).findPassword("pool");
    ASSERT_TRUE(row);
    EXPECT_EQ(row->Password, "PoolKey");
    EXPECT_EQ(window.panel()->cboName()->count(), 1);
}

TEST_F(RecordsWindowsTest, ManualDecryptWindowDecryptsWithANamedKey) {
    ASSERT_TRUE(platform::writeWholeFile(folder.file("Letter.wav"), "spoken"));
    ASSERT_TRUE(crypto::EncryptFile(folder.file("Letter.wav"), "PoolKey", prompts).ok());
    ASSERT_EQ(std::remove(folder.file("Letter.wav").c_str()), 0);
    ASSERT_TRUE(settings::DecryptPasswordsTable(folder.path()).addPassword("Pool", "PoolKey"));

    ManualDecryptWindow window(folder.path(), prompts);
    ASSERT_EQ(window.panel()->cboName()->count(), 1);
    window.panel()->cboName()->textActivated("Pool");
    EXPECT_EQ(window.panel()->txtKey()->text(), "PoolKey");
    prompts.answerNextText(folder.file("ENC_Letter.wav"));
    click(window, "cmdDecrypt");
    EXPECT_EQ(window.lblStatus()->text(), "File Decrypted");
    EXPECT_EQ(platform::readWholeFile(folder.file("Letter.wav")).valueOr(""), "spoken");
}

}  // namespace
}  // namespace ovd::ui
