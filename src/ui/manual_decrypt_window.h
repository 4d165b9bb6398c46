#pragma once
// frmManuallyDecrypt on screen: choose a name (or type a key), pick an enciphered
// file, and save what comes out. The rules live in crypto::ManualDecryptForm.

#include <QDialog>

#include "crypto/manual_decrypt.h"
#include "ui/key_records_window.h"

namespace ovd::ui {

class ManualDecryptWindow : public QDialog {
  public:
    ManualDecryptWindow(const std::string& dataFolder, platform::Prompts& prompts,
                        QWidget* parent = nullptr);

    [[nodiscard]] crypto::ManualDecryptForm& form() { return form_; }
    [[nodiscard]] KeyRecordsPanel* panel() const { return panel_; }
    [[nodiscard]] QLabel* lblStatus() const { return status_; }
    void decrypt();
    void saveDecrypted();

  private:
    void render();

    crypto::ManualDecryptForm form_;
    KeyRecordsPanel* panel_ = nullptr;
    QLabel* status_ = nullptr;
    QPushButton* save_ = nullptr;
};

}  // namespace ovd::ui
