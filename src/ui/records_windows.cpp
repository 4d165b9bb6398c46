#include "ui/records_windows.h"

#include "settings/company_records.h"
#include "settings/delivery_defaults.h"
#include "settings/our_company_form.h"
#include "ui/company_info_window.h"
#include "ui/email_receivers_window.h"
#include "ui/key_records_window.h"
#include "ui/manual_decrypt_window.h"
#include "ui/our_company_window.h"
#include "ui/transcriber_window.h"

namespace ovd::ui {

void showRecordsWindow(RecordsWindow which, QWidget* parent, const std::string& dataFolder,
                       platform::Prompts& prompts, const settings::SettingsRecord& record,
                       housekeeping::OpenWindows* openWindows) {
    const settings::CompanyRecords records(dataFolder);
    const auto openOurCompany = [&] { OurCompanyWindow(records, prompts, parent).exec(); };
    switch (which) {
        case RecordsWindow::OurCompany:
            openOurCompany();
            return;
        case RecordsWindow::CompanyAndMail:
            CompanyInfoWindow(records, prompts, parent).exec();
            return;
        case RecordsWindow::Transcribers:
            if (openWindows != nullptr && !openWindows->openTranscribers(prompts)) return;
            if (!settings::ensureOurCompany(records, prompts, openOurCompany)) {
                if (openWindows != nullptr) openWindows->transcribersClosed();
                return;
            }
            TranscriberWindow(records, prompts,
                              {record.AutoEmail, record.TCP,
                               settings::LoadDefaultEmail(records).ChkEncryptDecrypt},
                              parent)
                .exec();
            if (openWindows != nullptr) openWindows->transcribersClosed();
            return;
        case RecordsWindow::EmailReceivers:
            if (!settings::ensureOurCompany(records, prompts, openOurCompany)) return;
            EmailReceiversWindow(records, prompts, parent).exec();
            return;
        case RecordsWindow::DecryptionKeys:
            KeyRecordsWindow(dataFolder, prompts, parent).exec();
            return;
        case RecordsWindow::ManualDecrypt:
            ManualDecryptWindow(dataFolder, prompts, parent).exec();
            return;
    }
}

}  // namespace ovd::ui
