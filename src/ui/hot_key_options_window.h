#pragma once
// The hot-key half of the end-of-letter options on screen: the key and modifier
// lists, "Disable ALL Hot Keys" and the two scopes, as a section any window can
// hold (the end-of-letter options window puts it above its exit option).

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

}  // namespace ovd::ui
