#pragma once
// FTPfrmAutoFTP and FTPfrmFTP on screen: the local pane, the remote list `lv`, the
// tool bar and its button twins, the status line and the bar; the automatic face
// adds the unattended run (cmdAuto) and its schedule, the manual face its stored
// mode and type. The window does not block the station: files move on the session's
// thread while the dictation goes on.

#include <QDialog>
#include <memory>
#include <string>

#include "ftp/ftp_schedule.h"
#include "ftp/ftp_session.h"
#include "ftp/manual_ftp_settings.h"
#include "ftp/site_window.h"
#include "ftp/unattended_run.h"
#include "settings/company_records.h"
#include "ui/ftp_setup_window.h"
#include "ui/qt_event_loop.h"

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QProgressBar;
class QPushButton;
class QRadioButton;
class QSpinBox;
class QTreeWidget;
class QVBoxLayout;

namespace ovd::ui {

class FtpTransferWindow : public QDialog {
  public:
    FtpTransferWindow(FtpWindowFace face, const std::string& dataFolder,
                      const std::string& programFolder, platform::Prompts& prompts,
                      QWidget* parent = nullptr);
    ~FtpTransferWindow() override;

    [[nodiscard]] ftp::FtpSiteWindow& site() { return *window_; }
    [[nodiscard]] ftp::UnattendedFtpRun* unattended() { return run_.get(); }
    // A tool bar key or button twin, as a click on it.
    void command(const std::string& key);
    void runUnattended();
    void render();

  private:
    void buildToolBar(QVBoxLayout* layout);
    void buildPanes(QVBoxLayout* layout);
    void buildButtons(QVBoxLayout* layout);
    void buildManualOptions(QVBoxLayout* layout);
    void buildUnattended(QVBoxLayout* layout);
    void chooseSite(const std::string& company);
    [[nodiscard]] ftp::SiteContext contextFor(const std::string& company) const;
    void applyManualSettings();
    void armSchedule();
    void openSettings();
    void showSiteInfo();

    FtpWindowFace face_;
    platform::Prompts& prompts_;
    std::string programFolder_;
    settings::CompanyRecords records_;
    QtEventLoop loop_;
    ftp::FtpSession session_;
    std::unique_ptr<ftp::FtpSiteWindow> window_;
    std::unique_ptr<ftp::UnattendedFtpRun> run_;
    std::unique_ptr<ftp::FtpSchedule> schedule_;
    ftp::ManualFtpSettings manual_;

    QComboBox* companies_ = nullptr;
    QLineEdit* localFolder_ = nullptr;
    QListWidget* localFiles_ = nullptr;
    QTreeWidget* remote_ = nullptr;
    QLabel* remoteFolder_ = nullptr;
    QLabel* status_ = nullptr;
    QLabel* sessionLabel_ = nullptr;
    QProgressBar* progress_ = nullptr;
    QPushButton* auto_ = nullptr;
    QCheckBox* scheduleCheck_ = nullptr;
    QSpinBox* minutes_ = nullptr;
    QRadioButton* active_ = nullptr;
    QRadioButton* passive_ = nullptr;
    QRadioButton* ascii_ = nullptr;
    QRadioButton* binary_ = nullptr;
};

// Opens the window without blocking the station; one of each face at a time. The
// manual face starts on `recordings` (the letters), not on the data folder, whose
// files hold the station's passwords and keys.
void showFtpTransferWindow(FtpWindowFace face, QWidget* parent, const std::string& dataFolder,
                           const std::string& programFolder, const std::string& recordings,
                           platform::Prompts& prompts);

}  // namespace ovd::ui
