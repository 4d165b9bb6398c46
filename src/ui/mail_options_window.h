#pragma once
// frmOptions on screen: the sender identity, relay or direct sending, the POP3
// login before sending, encryption, and the identity's TLS and SMTP AUTH. The
// rules live in mail::OptionsForm.

#include <QDialog>

#include "mail/options_form.h"

class QCheckBox;
class QComboBox;
class QFormLayout;
class QLineEdit;
class QRadioButton;

namespace ovd::ui {

class MailOptionsWindow : public QDialog {
  public:
    MailOptionsWindow(const settings::CompanyRecords& records, platform::Prompts& prompts,
                      QWidget* parent = nullptr);

    [[nodiscard]] mail::OptionsForm& form() { return form_; }
    // A box by the control name it stands for ("txtRelayServer"); null if none.
    [[nodiscard]] QLineEdit* box(const char* control) const;
    void render();

  private:
    QLineEdit* addBox(QFormLayout* fields, const char* control, const QString& label,
                      std::string mail::SenderSettings::*field, bool secret = false);
    void take();

    mail::OptionsForm form_;
    QComboBox* identity_ = nullptr;
    QRadioButton* relay_ = nullptr;
    QRadioButton* direct_ = nullptr;
    QCheckBox* authentication_ = nullptr;
    QCheckBox* encrypt_ = nullptr;
    QComboBox* security_ = nullptr;
    std::vector<std::pair<QLineEdit*, std::string mail::SenderSettings::*>> boxes_;
};

}  // namespace ovd::ui
