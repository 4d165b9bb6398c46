#pragma once
// frmPasswords on screen: the named keys for manual decryption. The rules live in
// settings::KeyRecordsForm.

#include <QDialog>

#include "settings/key_records_form.h"
#include "ui/record_window_parts.h"

class QComboBox;

namespace ovd::ui {

// The name box and key box both this window and the manual decryption window show.
class KeyRecordsPanel : public QWidget {
  public:
    KeyRecordsPanel(settings::KeyRecordsForm& form, QWidget* parent = nullptr);

    [[nodiscard]] QComboBox* cboName() const { return names_; }
    [[nodiscard]] QLineEdit* txtKey() const { return key_.edit; }
    void fillNames();
    void render();
    // The key typed but not yet left passes its entry rule; false when refused.
    bool takeTypedKey();

  private:
    settings::KeyRecordsForm& form_;
    QComboBox* names_ = nullptr;
    RecordBox key_;
};

class KeyRecordsWindow : public QDialog {
  public:
    KeyRecordsWindow(const std::string& dataFolder, platform::Prompts& prompts,
                     QWidget* parent = nullptr);

    [[nodiscard]] settings::KeyRecordsForm& form() { return form_; }
    [[nodiscard]] KeyRecordsPanel* panel() const { return panel_; }
    void save();
    void deleteRecord();

  protected:
    void done(int result) override;

  private:
    settings::KeyRecordsForm form_;
    KeyRecordsPanel* panel_ = nullptr;
};

}  // namespace ovd::ui
