#include "ui/device_box.h"

#include <QComboBox>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSlider>

#include "station/device_choice.h"

namespace ovd::ui {

namespace {

void fillBox(QComboBox* box, const std::vector<std::string>& names, int current) {
    const QSignalBlocker quiet(box);
    box->clear();
    for (const std::string& name : names) box->addItem(QString::fromStdString(name));
    box->setCurrentIndex(current);
    box->setEnabled(!names.empty());
}

QSlider* volumeSlider(QWidget* parent, const char* name) {
    auto* slider = new QSlider(Qt::Horizontal, parent);
    slider->setObjectName(QString::fromLatin1(name));
    slider->setRange(0, station::kVolumeMax);
    slider->setPageStep(station::kVolumeMax / 20);
    return slider;
}

}  // namespace

DeviceBox::DeviceBox(station::DeviceChoice& choice, QWidget* parent)
    : QGroupBox(tr("Sound"), parent), choice_(choice) {
    setObjectName("frameDevices");
    auto* grid = new QGridLayout(this);
    inputDeviceBox_ = new QComboBox(this);
    inputDeviceBox_->setObjectName("cmbDevInput");
    inputLineBox_ = new QComboBox(this);
    inputLineBox_->setObjectName("cmbSrcInput");
    outputDeviceBox_ = new QComboBox(this);
    outputDeviceBox_->setObjectName("cmbDevOutput");
    outputLineBox_ = new QComboBox(this);
    outputLineBox_->setObjectName("cmbSrcOutput");
    for (QComboBox* box : {inputDeviceBox_, inputLineBox_, outputDeviceBox_, outputLineBox_}) {
        box->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
        box->setMinimumContentsLength(18);
    }
    inputVolumeSlider_ = volumeSlider(this, "sldrVolumeInp");
    outputVolumeSlider_ = volumeSlider(this, "sldrVolumeOut");
    inputVolumeLabel_ = new QLabel(this);
    inputVolumeLabel_->setObjectName("lblRecLev");
    outputVolumeLabel_ = new QLabel(this);
    outputVolumeLabel_->setObjectName("Label6");
    auto* advancedInput = new QPushButton(tr("Advanced..."), this);
    advancedInput->setObjectName("cmdAdvancedInput");
    auto* advancedOutput = new QPushButton(tr("Advanced..."), this);
    advancedOutput->setObjectName("cmdAdvancedOutput");
    for (QPushButton* advanced : {advancedInput, advancedOutput}) {
        advanced->setEnabled(false);
        advanced->setToolTip(tr("The advanced sound settings are not available yet"));
    }

    grid->addWidget(new QLabel(tr("Record from"), this), 0, 0);
    grid->addWidget(inputDeviceBox_, 0, 1);
    grid->addWidget(inputLineBox_, 0, 2);
    grid->addWidget(advancedInput, 0, 3);
    grid->addWidget(inputVolumeLabel_, 1, 0);
    grid->addWidget(inputVolumeSlider_, 1, 1, 1, 3);
    grid->addWidget(new QLabel(tr("Play to"), this), 2, 0);
    grid->addWidget(outputDeviceBox_, 2, 1);
    grid->addWidget(outputLineBox_, 2, 2);
    grid->addWidget(advancedOutput, 2, 3);
    grid->addWidget(outputVolumeLabel_, 3, 0);
    grid->addWidget(outputVolumeSlider_, 3, 1, 1, 3);

    connect(inputDeviceBox_, &QComboBox::activated, this, [this](int index) {
        choice_.cmbDevInput_Click(index);
        fill();
    });
    connect(inputLineBox_, &QComboBox::activated, this, [this](int index) {
        choice_.cmbSrcInput_Click(index);
        showVolumes();
    });
    connect(outputDeviceBox_, &QComboBox::activated, this, [this](int index) {
        choice_.cmbDevOutput_Click(index);
        fill();
    });
    connect(outputLineBox_, &QComboBox::activated, this, [this](int index) {
        choice_.cmbSrcOutput_Click(index);
        showVolumes();
    });
    connect(inputVolumeSlider_, &QSlider::valueChanged, this, [this](int position) {
        choice_.sldrVolumeInp_Change(position);
        inputVolumeLabel_->setText(
            QString::fromStdString(station::volumeLabel("Recording Volume", position)));
    });
    connect(outputVolumeSlider_, &QSlider::valueChanged, this, [this](int position) {
        choice_.sldrVolumeOut_Change(position);
        outputVolumeLabel_->setText(
            QString::fromStdString(station::volumeLabel("Playing Volume", position)));
    });
    connect(inputVolumeSlider_, &QSlider::sliderReleased, this,
            [this] { choice_.sldrVolumeInp_MouseUp(); });
    connect(outputVolumeSlider_, &QSlider::sliderReleased, this,
            [this] { choice_.sldrVolumeOut_MouseUp(); });
    // A step of the keyboard or a click beside the handle has no release: store at once.
    connect(inputVolumeSlider_, &QSlider::actionTriggered, this, [this](int action) {
        if (action != QAbstractSlider::SliderMove) choice_.sldrVolumeInp_MouseUp();
    });
    connect(outputVolumeSlider_, &QSlider::actionTriggered, this, [this](int action) {
        if (action != QAbstractSlider::SliderMove) choice_.sldrVolumeOut_MouseUp();
    });
    fill();
}

void DeviceBox::follow() {
    const unsigned long changes = choice_.listChanges();
    if (changes == shownChanges_) return;
    shownChanges_ = changes;
    choice_.devicesChanged();
    fill();
}

void DeviceBox::fill() {
    shownChanges_ = choice_.listChanges();
    fillBox(inputDeviceBox_, choice_.inputDevices(), choice_.inputDevice());
    fillBox(inputLineBox_, choice_.inputSources(), choice_.inputSource());
    fillBox(outputDeviceBox_, choice_.outputDevices(), choice_.outputDevice());
    fillBox(outputLineBox_, choice_.outputSources(), choice_.outputSource());
    showVolumes();
}

void DeviceBox::showVolumes() {
    {
        const QSignalBlocker quietIn(inputVolumeSlider_);
        const QSignalBlocker quietOut(outputVolumeSlider_);
        inputVolumeSlider_->setValue(choice_.sldrVolumeInp());
        outputVolumeSlider_->setValue(choice_.sldrVolumeOut());
    }
    inputVolumeSlider_->setEnabled(choice_.inputVolumeAvailable());
    outputVolumeSlider_->setEnabled(choice_.outputVolumeAvailable());
    inputVolumeLabel_->setText(
        QString::fromStdString(station::volumeLabel("Recording Volume", choice_.sldrVolumeInp())));
    outputVolumeLabel_->setText(
        QString::fromStdString(station::volumeLabel("Playing Volume", choice_.sldrVolumeOut())));
}

}  // namespace ovd::ui
