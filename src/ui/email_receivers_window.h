#pragma once
// frmEmailSetup on screen: the e-mail receivers and the default one. The rules live
// in settings::EmailReceiversForm.

#include <QDialog>

#include "settings/email_receivers_form.h"
#include "ui/record_window_parts.h"

class QComboBox;

namespace ovd::ui {

class EmailReceiversWindow : public QDialog {
  public:
    EmailReceiversWindow(const settings::CompanyRecords& records, platform::Prompts& prompts,
                         QWidget* parent = nullptr);

    [[nodiscard]] settings::EmailReceiversForm& form() { return form_; }
    [[nodiscard]] QComboBox* cboCo() const { return companies_; }
    [[nodiscard]] QLineEdit* txtEmail() const { return email_.edit; }
    [[nodiscard]] QLineEdit* txtKey() const { return key_.edit; }
    [[nodiscard]] QLabel* lblDefault() const { return default_; }
    void save();
    void deleteReceiver();
    void makeDefault();
    void render();

  private:
    void fillCompanies();
    bool takeTypedKey();

    settings::EmailReceiversForm form_;
    QComboBox* companies_ = nullptr;
    RecordBox email_;
    RecordBox key_;
    QLabel* initials_ = nullptr;
    QLabel* default_ = nullptr;
};

}  // namespace ovd::ui
