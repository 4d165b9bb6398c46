#pragma once
// frmCompInfo on screen: the own company and the mail sender accounts in one
// window. The company's rules are those of settings::OurCompanyForm.

#include <QDialog>
#include <array>
#include <map>
#include <string>

#include "settings/mail_senders.h"
#include "settings/our_company_form.h"
#include "ui/record_window_parts.h"

class QComboBox;

namespace ovd::ui {

class CompanyInfoWindow : public QDialog {
  public:
    CompanyInfoWindow(const settings::CompanyRecords& records, platform::Prompts& prompts,
                      QWidget* parent = nullptr);

    [[nodiscard]] settings::OurCompanyForm& form() { return form_; }
    [[nodiscard]] QLineEdit* box(const std::string& control) const {
        return boxes_.at(control).edit;
    }
    [[nodiscard]] QComboBox* cboAccount() const { return account_; }
    [[nodiscard]] QLineEdit* senderBox(std::size_t key) const { return sender_[key]; }
    // Saves the company by its rules, then the chosen account when the company saved.
    void save();

  protected:
    void done(int result) override;

  private:
    void showAccount();
    void render();

    const settings::CompanyRecords& records_;
    platform::Prompts& prompts_;
    settings::OurCompanyForm form_;
    std::map<std::string, RecordBox> boxes_;
    QComboBox* account_ = nullptr;
    std::array<QLineEdit*, settings::kMailSenderKeys.size()> sender_{};
};

}  // namespace ovd::ui
