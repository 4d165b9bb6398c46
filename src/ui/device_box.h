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
    QComboBox* cmbDevInput_ = nullptr;
    QComboBox* cmbSrcInput_ = nullptr;
    QComboBox* cmbDevOutput_ = nullptr;
    QComboBox* cmbSrcOutput_ = nullptr;
    QSlider* sldrVolumeInp_ = nullptr;
    QSlider* sldrVolumeOut_ = nullptr;
    QLabel* lblRecLev_ = nullptr;
    QLabel* Label6_ = nullptr;
};

}  // namespace ovd::ui
