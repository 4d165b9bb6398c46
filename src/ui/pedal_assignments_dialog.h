#pragma once
// The four pedal assignment dialogs on screen, one window for all four: six
// function rows by three pedal columns, each column a frame of its own so that a
// pedal has one function; the two-pedal check of the serial dialog and the stop
// speed slider of the USB dialog where they belong. Every click goes to the
// form, and the window redraws from it.

#include <QDialog>
#include <array>

#include "devices/pedal_assignments_form.h"

class QCheckBox;
class QGroupBox;
class QLabel;
class QPushButton;
class QRadioButton;
class QSlider;
class QTimer;

namespace ovd::ui {

class PedalAssignmentsDialog : public QDialog {
  public:
    PedalAssignmentsDialog(devices::PedalDialog which, settings::ConfigFile& config,
                           platform::Prompts& prompts, QWidget* parent);

    [[nodiscard]] devices::PedalAssignmentsForm& form() { return form_; }
    // Option + row + column.
    [[nodiscard]] QRadioButton* option(int row, int column) const;
    [[nodiscard]] QLabel* rowMark(int row) const;                          // Label1
    [[nodiscard]] QGroupBox* middleFrame() const { return frames_[1]; }    // Frame2
    [[nodiscard]] QCheckBox* twoPedalCheck() const { return twoPedal_; }   // chkSER2Pedal
    [[nodiscard]] QSlider* stopSpeedSlider() const { return stopSpeed_; }  // sldUSBStopSpeed
    [[nodiscard]] QPushButton* okButton() const { return ok_; }            // Command1
    [[nodiscard]] QPushButton* cancelButton() const { return cancel_; }    // Command2

    // Brings every control in line with the form.
    void render();

  private:
    devices::PedalAssignmentsForm form_;
    std::array<std::array<QRadioButton*, devices::kPedalColumns>, devices::kPedalRows> options_{};
    std::array<QLabel*, devices::kPedalRows> rowMarks_{};
    std::array<QGroupBox*, devices::kPedalColumns> frames_{};
    QLabel* middleHeading_ = nullptr;  // Label20
    QCheckBox* twoPedal_ = nullptr;
    QSlider* stopSpeed_ = nullptr;
    QPushButton* ok_ = nullptr;
    QPushButton* cancel_ = nullptr;
    QTimer* markTimer_ = nullptr;  // Timer2
};

}  // namespace ovd::ui
