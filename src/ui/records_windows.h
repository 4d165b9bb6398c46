#pragma once
// Opening the delivery record windows from the menus and from the start-up checks:
// each modal over the main window, the company asked for first where one is needed.

#include <QWidget>
#include <string>

#include "housekeeping/open_windows.h"
#include "platform/prompts.h"
#include "settings/settings_record.h"

namespace ovd::ui {

enum class RecordsWindow {
    OurCompany,      // FTPfrmInformation
    CompanyAndMail,  // frmCompInfo
    Transcribers,    // FTPfrmReceiverInfo
    EmailReceivers,  // frmEmailSetup
    DecryptionKeys,  // frmPasswords
    ManualDecrypt,   // frmManuallyDecrypt
};

// Returns when the window closes. With the station's open windows given, the
// transcriber records refuse to open beside the drive scan scheduler.
void showRecordsWindow(RecordsWindow which, QWidget* parent, const std::string& dataFolder,
                       platform::Prompts& prompts, const settings::SettingsRecord& record,
                       housekeeping::OpenWindows* openWindows = nullptr);

}  // namespace ovd::ui
