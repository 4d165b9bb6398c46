#include "ui/desk_unit_panel.h"

#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalBlocker>

#include "devices/control_actions.h"
#include "devices/switch_model.h"
#include "dictation/dictation.h"
#include "settings/settings_record.h"

namespace ovd::ui {

namespace {

constexpr std::array<const char*, 4> kPositionNames = {"DICTATE", "LISTEN", "STOP", "STEP BACK"};
constexpr std::array<const char*, 4> kPositionTexts = {
    dictation::kSwitchDictate, dictation::kSwitchListen, dictation::kSwitchStop,
    dictation::kSwitchStepBack};

const std::string& buttonAction(const settings::SettingsRecord& s, int number) {
    const std::array<const std::string*, 8> actions = {&s.BUT1, &s.BUT2, &s.BUT3, &s.BUT4,
                                                       &s.BUT5, &s.BUT6, &s.BUT7, &s.BUT8};
    return *actions.at(static_cast<std::size_t>(number - 1));
}

}  // namespace

DeskUnitPanel::DeskUnitPanel(devices::SwitchModel& switchModel, const dictation::MainView& view,
                             const settings::SettingsRecord& settings, QWidget* parent)
    : QGroupBox(tr("Desk unit"), parent),
      switchModel_(switchModel),
      view_(view),
      settings_(settings) {
    setObjectName("deskUnitPanel");
    auto* layout = new QGridLayout(this);
    for (std::size_t i = 0; i < positions_.size(); ++i) {
        auto* position = new QRadioButton(QString::fromLatin1(kPositionNames[i]), this);
        position->setObjectName(QStringLiteral("switch%1").arg(i));
        // The switch shows where the model stands, which may be no position at all.
        position->setAutoExclusive(false);
        layout->addWidget(position, 0, static_cast<int>(i));
        connect(position, &QRadioButton::clicked, this, [this, i] {
            switchModel_.SwitchCommand(kPositionCommands[i]);
            refresh();
        });
        positions_[i] = position;
    }
    for (int number = 1; number <= 8; ++number) {
        const std::string& action = buttonAction(settings_, number);
        auto* button =
            new QPushButton(QStringLiteral("%1: %2").arg(number).arg(
                                QString::fromStdString(devices::buttonDisplayName(action))),
                            this);
        button->setObjectName(QStringLiteral("button%1").arg(number));
        layout->addWidget(button, 1 + (number - 1) / 4, (number - 1) % 4);
        connect(button, &QPushButton::pressed, this, [this, number] {
            switchModel_.Switch1TO8ON(buttonAction(settings_, number), number);
            refresh();
        });
        connect(button, &QPushButton::released, this,
                [this, number] { switchModel_.buttonReleased(number); });
        buttons_[static_cast<std::size_t>(number - 1)] = button;
    }
    status_ = new QLabel(this);
    status_->setObjectName("Lbl4Pos");
    layout->addWidget(status_, 3, 0, 1, 4);
    refresh();
}

void DeskUnitPanel::refresh() {
    const QString position = QString::fromStdString(view_.switchPosition);
    if (status_->text() != position) status_->setText(position);
    for (std::size_t i = 0; i < positions_.size(); ++i) {
        const QSignalBlocker quiet(positions_[i]);
        positions_[i]->setChecked(view_.switchPosition == kPositionTexts[i]);
    }
}

}  // namespace ovd::ui
