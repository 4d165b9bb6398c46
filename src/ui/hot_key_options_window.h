#pragma once
// The hot-key half of the end-of-letter options on screen: the key and modifier
// lists, "Disable ALL Hot Keys" and the two scopes, as a section any window can
// hold (the end-of-letter options window puts it beside its exit option), and a
// small window of its own for the Hot Keys menu entry.

#include <QDialog>
#include <QGroupBox>

#include "devices/hot_key_options_form.h"

class QCheckBox;
class QComboBox;
class QLabel;
class QPushButton;
class QRadioButton;

namespace ovd::ui {

class HotKeyOptionsSection : public QGroupBox {
  public:
    HotKeyOptionsSection(devices::HotKeyOptionsForm& form, QWidget* parent);

    QComboBox* keyList() const { return keys_; }            // Combo9
    QComboBox* modifierList() const { return modifiers_; }  // Combo10
    QCheckBox* disableAll() const { return disableAll_; }   // Check3
    QRadioButton* systemOption() const { return system_; }  // optHotkeys(1)
    QRadioButton* localOption() const { return local_; }    // optHotkeys(2)
    QGroupBox* scopeFrame() const { return scope_; }        // Frame3
    QLabel* systemReason() const { return reason_; }

    // Called after every change of a control: the window enables its Apply.
    std::function<void()> onChanged;

  private:
    devices::HotKeyOptionsForm& form_;
    QComboBox* keys_;
    QComboBox* modifiers_;
    QCheckBox* disableAll_;
    QGroupBox* scope_;
    QRadioButton* system_;
    QRadioButton* local_;
    QLabel* reason_;
};

class HotKeyOptionsWindow : public QDialog {
  public:
    HotKeyOptionsWindow(settings::ConfigFile& config, platform::Prompts& prompts,
                        const std::string& programTitle, const std::string& systemUnavailable,
                        QWidget* parent);

    [[nodiscard]] devices::HotKeyOptionsForm& form() { return form_; }
    [[nodiscard]] HotKeyOptionsSection* section() const { return section_; }
    [[nodiscard]] QPushButton* okButton() const { return ok_; }        // Command1
    [[nodiscard]] QPushButton* applyButton() const { return apply_; }  // "Apply"

  private:
    devices::HotKeyOptionsForm form_;
    HotKeyOptionsSection* section_;
    QPushButton* ok_;
    QPushButton* apply_;
};

}  // namespace ovd::ui
