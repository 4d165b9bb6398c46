#pragma once
// FTPfrmReceiverInfo on screen: the transcribers, one at a time, chosen by company.
// Every rule lives in settings::TranscriberForm; this window draws it and passes
// the user's typing and clicks on.

#include <QDialog>
#include <map>
#include <string>

#include "settings/transcriber_form.h"
#include "ui/record_window_parts.h"

class QComboBox;

namespace ovd::ui {

class TranscriberWindow : public QDialog {
  public:
    TranscriberWindow(const settings::CompanyRecords& records, platform::Prompts& prompts,
                      settings::DeliveryUse use, QWidget* parent = nullptr);

    [[nodiscard]] settings::TranscriberForm& form() { return form_; }
    [[nodiscard]] QComboBox* cboCompanyName() const { return companies_; }
    [[nodiscard]] QLineEdit* box(const std::string& control) const {
        return boxes_.at(control).edit;
    }
    [[nodiscard]] QLabel* asterisk(const std::string& control) const {
        return boxes_.at(control).star;
    }
    // The tool bar's keys and the save button.
    void save();
    void editEncryptionKey();
    void copyToClipboard();
    void render();

  protected:
    void done(int result) override;

  private:
    void fillCompanies();

    settings::TranscriberForm form_;
    QComboBox* companies_ = nullptr;
    std::map<std::string, RecordBox> boxes_;
};

}  // namespace ovd::ui
