// Pictures of the compose and mail options windows for the README, filled as a
// station set up for a relay with STARTTLS and AUTH would show them, on a real X
// display so the fonts are the ones the user sees.
//
//   mail_screenshots OUTPUT_FOLDER     (DISPLAY must name a running X server)

#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QPixmap>
#include <QPlainTextEdit>
#include <fstream>
#include <iostream>

#include "platform/files.h"
#include "screenshot_shots.h"
#include "settings/company_records.h"
#include "settings/email_sites_tables.h"
#include "support/scripted_prompts.h"
#include "support/temp_folder.h"
#include "ui/compose_mail_window.h"
#include "ui/mail_options_window.h"

namespace {

using namespace ovd;

}  // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    const auto folder = testing::screenshotFolder(argc, argv, "mail_screenshots");
    if (!folder) return 2;
    const std::string& output = *folder;
    testing::TempFolder data;
    testing::ScriptedPrompts prompts;
    const settings::CompanyRecords records(data.path());
    std::ofstream(data.file("OurCompanyInfo.ini"))
        << "[Company]\r\nCompanyName=Northside Clinic\r\nName=Dr. Ann Smith\r\n"
           "Email1=ann@northside-clinic.example\r\nRelayServer1=smtp.provider.example\r\n"
           "RelayPort1=587\r\nSMTPSecurity1=STARTTLS\r\nSMTPUser1=ann@northside-clinic.example"
           "\r\nSMTPPassword1=secret\r\n[Key]\r\nEncryptKey=K1\r\n";
    std::ofstream(data.file("DefaultInfo.ini"))
        << "[DefaultEmailForCO]\r\nDefaultEmail=ann@northside-clinic.example\r\n"
           "DefaultRecEMail=typing@pool-typing.example\r\nDefaultCameFrom=POPServer1\r\n"
           "ChkRelayMessages=1\r\nDefaultRelayServer=smtp.provider.example\r\n"
           "DefaultRelayPort=587\r\nChkEncryptDecrypt=1\r\n";
    settings::EmailReceiversTable table(data.path());
    if (!table.saveReceiver({"Pool Typing", "typing@pool-typing.example", "PK", "PT"})) return 1;
    const std::string letter = data.file("0042 Smith referral.wav");
    std::ofstream(letter) << std::string(1000, 'x');

    {
        ui::ComposeMailWindow window(records, prompts);
        window.resize(680, 520);
        window.findChild<QLineEdit*>("editSubject")->setText("0042 Smith referral.wav");
        window.findChild<QPlainTextEdit*>("editMessageText")
            ->setPlainText("Please type the attached referral letter today.\n\nThank you,\nAnn");
        window.form().editSubject = "0042 Smith referral.wav";
        window.form().editMessageText =
            "Please type the attached referral letter today.\n\nThank you,\nAnn";
        window.form().attach(letter);
        testing::saveScreenshot(window, output, "mail-compose.png");
    }
    {
        ui::MailOptionsWindow window(records, prompts);
        testing::saveScreenshot(window, output, "mail-options.png");
    }
    return 0;
}
