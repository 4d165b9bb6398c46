#pragma once
// The device and source boxes of the main window with the recording and playing
// volume sliders: which microphone and which line the station records from, where
// it plays, and how loud. The choices and their storage are DeviceChoice's; this
// box shows them and hands it each pick.

#include <QGroupBox>

class QComboBox;
class QLabel;
class QSlider;

namespace ovd::station {
class DeviceChoice;
}
namespace ovd::ui {

class DeviceBox : public QGroupBox {
  public:
    explicit DeviceBox(station::DeviceChoice& choice, QWidget* parent = nullptr);

    // Fills the lists from the choice, without calling back into it.
    void fill();
    // Fills them again when the sound system's devices changed since the last look,
    // so the boxes list what is there and show the device really in use.
    void follow();

  private:
    void showVolumes();

    station::DeviceChoice& choice_;
    unsigned long shownChanges_ = 0;
    QComboBox* inputDeviceBox_ = nullptr;    // cmbDevInput
    QComboBox* inputLineBox_ = nullptr;      // cmbSrcInput
    QComboBox* outputDeviceBox_ = nullptr;   // cmbDevOutput
    QComboBox* outputLineBox_ = nullptr;     // cmbSrcOutput
    QSlider* inputVolumeSlider_ = nullptr;   // sldrVolumeInp
    QSlider* outputVolumeSlider_ = nullptr;  // sldrVolumeOut
    QLabel* inputVolumeLabel_ = nullptr;     // lblRecLev
    QLabel* outputVolumeLabel_ = nullptr;    // Label6
};

}  // namespace ovd::ui
