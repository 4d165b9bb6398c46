#pragma once
// The desk unit on screen: its four-position switch and its eight buttons, so
// that the whole hands-free model can be used without the hardware. The panel
// calls the switch model exactly as a desk unit's link does.

#include <QGroupBox>
#include <array>

class QLabel;
class QPushButton;
class QRadioButton;

namespace ovd::devices {
class SwitchModel;
}
namespace ovd::dictation {
struct MainView;
}
namespace ovd::settings {
struct SettingsRecord;
}

namespace ovd::ui {

class DeskUnitPanel : public QGroupBox {
  public:
    DeskUnitPanel(devices::SwitchModel& switchModel, const dictation::MainView& view,
                  const settings::SettingsRecord& settings, QWidget* parent = nullptr);

    // The switch and the labels follow the dictation (a pedal moves the switch
    // too); the station window calls this whenever the dictation's view changed.
    void refresh();

    // The words the positions send, in the order the switch shows them.
    static constexpr std::array<const char*, 4> kPositionCommands = {"Record", "LISTEN", "STOP",
                                                                     "STEPBACK"};

  private:
    devices::SwitchModel& switchModel_;
    const dictation::MainView& view_;
    const settings::SettingsRecord& settings_;
    std::array<QRadioButton*, 4> positions_{};
    std::array<QPushButton*, 8> buttons_{};
    QLabel* status_ = nullptr;
};

}  // namespace ovd::ui
