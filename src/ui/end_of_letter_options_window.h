#pragma once
// frmEOLOptions: whether the station ends after an end of letter. The hot key's
// controls take the group box "Frame3" above the exit option.

#include <QDialog>

#include "configuration/end_of_letter_options.h"

class QGroupBox;

namespace ovd::ui {

class EndOfLetterOptionsWindow : public QDialog {
  public:
    EndOfLetterOptionsWindow(configuration::EndOfLetterOptions& model, QWidget* parent);

    // Where the hot key's lists and mode go; empty until they are built.
    [[nodiscard]] QGroupBox* hotKeyArea() const { return hotKeyArea_; }

  private:
    configuration::EndOfLetterOptions& model_;
    QGroupBox* hotKeyArea_ = nullptr;
};

}  // namespace ovd::ui
