#pragma once
// FTPfrmAutoFTPSetup and FTPfrmFTPSetup on screen: a transcriber's FTP site (and,
// for the automatic window, its schedule and rules) in boxes. The rules of loading
// and saving live in ftp::FtpSetupForm.

#include <QDialog>
#include <map>
#include <string>

#include "ftp/ftp_setup_form.h"
#include "settings/company_records.h"

class QCheckBox;
class QComboBox;
class QFormLayout;
class QLineEdit;
class QRadioButton;

namespace ovd::ui {

enum class FtpWindowFace {
    Automatic,  // FTPfrmAutoFTP: schedule and rules
    Manual,     // FTPfrmFTP: the site alone
};

class FtpSetupWindow : public QDialog {
  public:
    FtpSetupWindow(FtpWindowFace face, const std::string& dataFolder, platform::Prompts& prompts,
                   QWidget* parent = nullptr);

    [[nodiscard]] ftp::FtpSetupForm& form() { return form_; }
    // The boxes into the form, then WriteCryptoInfo.
    bool save();
    void chooseCompany(const QString& name);

  private:
    void addLine(QFormLayout* layout, const char* control, const char* key, const QString& label,
                 bool secret = false);
    void addCheck(QFormLayout* layout, const char* control, const char* key, const QString& label);
    void render();
    void takeBoxes();

    settings::CompanyRecords records_;
    ftp::FtpSetupForm form_;
    QComboBox* companies_ = nullptr;
    QComboBox* security_ = nullptr;
    QRadioButton* active_ = nullptr;
    QRadioButton* passive_ = nullptr;
    QRadioButton* ascii_ = nullptr;
    QRadioButton* binary_ = nullptr;
    std::map<std::string, QLineEdit*> lines_;
    std::map<std::string, QCheckBox*> checks_;
};

// Opens the setup window modal over `parent`; returns when it closes.
void showFtpSetupWindow(FtpWindowFace face, QWidget* parent, const std::string& dataFolder,
                        platform::Prompts& prompts);

}  // namespace ovd::ui
