#pragma once
// frmEOLOptions: the hot key (its key and modifier lists, "Disable ALL Hot Keys",
// the two scopes) above whether the station ends after an end of letter. OK and
// Apply set the exit option first, then write the hot key's settings for both.

#include <QDialog>

#include "configuration/end_of_letter_options.h"
#include "devices/hot_key_options_form.h"

class QPushButton;

namespace ovd::ui {

class HotKeyOptionsSection;

class EndOfLetterOptionsWindow : public QDialog {
  public:
    EndOfLetterOptionsWindow(configuration::EndOfLetterOptions& model,
                             devices::HotKeyOptionsForm& hotKeys, QWidget* parent);

    [[nodiscard]] HotKeyOptionsSection* hotKeySection() const { return hotKeySection_; }
    [[nodiscard]] QPushButton* applyButton() const { return apply_; }

  private:
    void applyBoth();
    void refreshApply();

    configuration::EndOfLetterOptions& model_;
    devices::HotKeyOptionsForm& hotKeys_;
    HotKeyOptionsSection* hotKeySection_ = nullptr;
    QPushButton* apply_ = nullptr;
};

}  // namespace ovd::ui
