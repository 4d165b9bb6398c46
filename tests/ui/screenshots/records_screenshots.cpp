// Pictures of the delivery record windows for the README, each filled as a new user
// would fill it, on a real X display so the fonts are the ones the user sees.
//
//   records_screenshots OUTPUT_FOLDER     (DISPLAY must name a running X server)

#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QPixmap>
#include <iostream>

#include "crypto/manual_decrypt.h"
#include "platform/files.h"
#include "screenshot_shots.h"
#include "settings/company_records.h"
#include "settings/email_sites_tables.h"
#include "settings/our_company_form.h"
#include "settings/passwords_tables.h"
#include "support/scripted_prompts.h"
#include "support/temp_folder.h"
#include "ui/company_info_window.h"
#include "ui/email_receivers_window.h"
#include "ui/key_records_window.h"
#include "ui/manual_decrypt_window.h"
#include "ui/our_company_window.h"
#include "ui/transcriber_window.h"

namespace {

using namespace ovd;

// The records windows are pictured at the size their contents ask for.
void save(QWidget& window, const std::string& folder, const char* name) {
    window.adjustSize();
    testing::saveScreenshot(window, folder, name);
}

void fill(QLineEdit* edit, const char* text) {
    edit->setText(QString::fromUtf8(text));
    Q_EMIT edit->textEdited(edit->text());
}

}  // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    const auto folder = testing::screenshotFolder(argc, argv, "records_screenshots");
    if (!folder) return 2;
    const std::string& output = *folder;
    testing::TempFolder data;
    testing::ScriptedPrompts prompts;
    const settings::CompanyRecords records(data.path());

    {
        ui::OurCompanyWindow window(records, prompts);
        fill(window.box("txtCompanyName"), "Orvane Medical Group");
        fill(window.box("txtName"), "Dr Ann Byrne");
        fill(window.box("txtCity"), "Cork");
        fill(window.box("txtKeyInfo"), "OrvKey2024");
        window.save();
        save(window, output, "records-company.png");
    }
    {
        ui::CompanyInfoWindow window(records, prompts);
        window.senderBox(3)->setText("desk@orvane.example");
        window.senderBox(6)->setText("smtp.orvane.example");
        save(window, output, "records-company-and-mail.png");
    }
    {
        ui::TranscriberWindow window(records, prompts,
                                     {.email = true, .peer = false, .encipher = true});
        fill(window.box("txtRecCompanyName"), "Typing Pool Ltd");
        fill(window.box("txtRecName"), "Mary Walsh");
        fill(window.box("txtRecEmail"), "mary@typingpool.example");
        save(window, output, "records-transcriber.png");
    }
    {
        settings::EmailReceiversTable(data.path())
            .saveReceiver({"Typing Pool Ltd", "mary@typingpool.example", "PoolKey7", "TP", false});
        ui::EmailReceiversWindow window(records, prompts);
        window.cboCo()->textActivated("Typing Pool Ltd");
        window.makeDefault();
        save(window, output, "records-email-receivers.png");
    }
    settings::DecryptPasswordsTable(data.path()).addPassword("Typing Pool Ltd", "PoolKey7");
    {
        ui::KeyRecordsWindow window(data.path(), prompts);
        window.panel()->cboName()->textActivated("Typing Pool Ltd");
        save(window, output, "records-keys.png");
    }
    {
        ui::ManualDecryptWindow window(data.path(), prompts);
        window.panel()->cboName()->textActivated("Typing Pool Ltd");
        save(window, output, "records-decrypt.png");
    }
    return 0;
}
