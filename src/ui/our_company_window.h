#pragma once
// FTPfrmInformation on screen: the station's own company and key. The rules live in
// settings::OurCompanyForm.

#include <QDialog>
#include <map>
#include <string>

#include "settings/our_company_form.h"
#include "ui/record_window_parts.h"

namespace ovd::ui {

class OurCompanyWindow : public QDialog {
  public:
    OurCompanyWindow(const settings::CompanyRecords& records, platform::Prompts& prompts,
                     QWidget* parent = nullptr);

    [[nodiscard]] settings::OurCompanyForm& form() { return form_; }
    [[nodiscard]] QLineEdit* box(const std::string& control) const {
        return boxes_.at(control).edit;
    }
    void save();
    void editEncryptionKey();
    void render();

  protected:
    void done(int result) override;

  private:
    settings::OurCompanyForm form_;
    std::map<std::string, RecordBox> boxes_;
};

}  // namespace ovd::ui
