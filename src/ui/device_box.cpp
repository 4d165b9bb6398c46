#include "ui/device_box.h"

#include <QComboBox>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSlider>

#include "ui/device_choice.h"

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
    slider->setRange(0, kVolumeMax);
    slider->setPageStep(kVolumeMax / 20);
    return slider;
}

}  // namespace

DeviceBox::DeviceBox(DeviceChoice& choice, QWidget* parent)
    : QGroupBox(tr("Sound"), parent), choice_(choice) {
    setObjectName("frameDevices");
    auto* grid = new QGridLayout(this);
    cmbDevInput_ = new QComboBox(this);
    cmbDevInput_->setObjectName("cmbDevInput");
    cmbSrcInput_ = new QComboBox(this);
    cmbSrcInput_->setObjectName("cmbSrcInput");
    cmbDevOutput_ = new QComboBox(this);
    cmbDevOutput_->setObjectName("cmbDevOutput");
    cmbSrcOutput_ = new QComboBox(this);
    cmbSrcOutput_->setObjectName("cmbSrcOutput");
    for (QComboBox* box : {cmbDevInput_, cmbSrcInput_, cmbDevOutput_, cmbSrcOutput_}) {
        box->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
        box->setMinimumContentsLength(18);
    }
    sldrVolumeInp_ = volumeSlider(this, "sldrVolumeInp");
    sldrVolumeOut_ = volumeSlider(this, "sldrVolumeOut");
    lblRecLev_ = new QLabel(this);
    lblRecLev_->setObjectName("lblRecLev");
    Label6_ = new QLabel(this);
    Label6_->setObjectName("Label6");
    auto* advancedInput = new QPushButton(tr("Advanced..."), this);
    advancedInput->setObjectName("cmdAdvancedInput");
    auto* advancedOutput = new QPushButton(tr("Advanced..."), this);
    advancedOutput->setObjectName("cmdAdvancedOutput");
    for (QPushButton* advanced : {advancedInput, advancedOutput}) {
        advanced->setEnabled(false);
        advanced->setToolTip(tr("The advanced sound settings are not available yet"));
    }

    grid->addWidget(new QLabel(tr("Record from"), this), 0, 0);
    grid->addWidget(cmbDevInput_, 0, 1);
    grid->addWidget(cmbSrcInput_, 0, 2);
    grid->addWidget(advancedInput, 0, 3);
    grid->addWidget(lblRecLev_, 1, 0);
    grid->addWidget(sldrVolumeInp_, 1, 1, 1, 3);
    grid->addWidget(new QLabel(tr("Play to"), this), 2, 0);
    grid->addWidget(cmbDevOutput_, 2, 1);
    grid->addWidget(cmbSrcOutput_, 2, 2);
    grid->addWidget(advancedOutput, 2, 3);
    grid->addWidget(Label6_, 3, 0);
    grid->addWidget(sldrVolumeOut_, 3, 1, 1, 3);

    connect(cmbDevInput_, &QComboBox::activated, this, [this](int index) {
        choice_.cmbDevInput_Click(index);
        fill();
    });
    connect(cmbSrcInput_, &QComboBox::activated, this, [this](int index) {
        choice_.cmbSrcInput_Click(index);
        showVolumes();
    });
    connect(cmbDevOutput_, &QComboBox::activated, this, [this](int index) {
        choice_.cmbDevOutput_Click(index);
        fill();
    });
    connect(cmbSrcOutput_, &QComboBox::activated, this, [this](int index) {
        choice_.cmbSrcOutput_Click(index);
        showVolumes();
    });
    connect(sldrVolumeInp_, &QSlider::valueChanged, this, [this](int position) {
        choice_.sldrVolumeInp_Change(position);
        lblRecLev_->setText(QString::fromStdString(volumeLabel("Recording Volume", position)));
    });
    connect(sldrVolumeOut_, &QSlider::valueChanged, this, [this](int position) {
        choice_.sldrVolumeOut_Change(position);
        Label6_->setText(QString::fromStdString(volumeLabel("Playing Volume", position)));
    });
    connect(sldrVolumeInp_, &QSlider::sliderReleased, this, [this] { choice_.sldrVolumeInp_MouseUp(); });
    connect(sldrVolumeOut_, &QSlider::sliderReleased, this, [this] { choice_.sldrVolumeOut_MouseUp(); });
    // A step of the keyboard or a click beside the handle has no release: store at once.
    connect(sldrVolumeInp_, &QSlider::actionTriggered, this, [this](int action) {
        if (action != QAbstractSlider::SliderMove) choice_.sldrVolumeInp_MouseUp();
    });
    connect(sldrVolumeOut_, &QSlider::actionTriggered, this, [this](int action) {
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
    fillBox(cmbDevInput_, choice_.inputDevices(), choice_.inputDevice());
    fillBox(cmbSrcInput_, choice_.inputSources(), choice_.inputSource());
    fillBox(cmbDevOutput_, choice_.outputDevices(), choice_.outputDevice());
    fillBox(cmbSrcOutput_, choice_.outputSources(), choice_.outputSource());
    showVolumes();
}

void DeviceBox::showVolumes() {
    {
        const QSignalBlocker quietIn(sldrVolumeInp_);
        const QSignalBlocker quietOut(sldrVolumeOut_);
        sldrVolumeInp_->setValue(choice_.sldrVolumeInp());
        sldrVolumeOut_->setValue(choice_.sldrVolumeOut());
    }
    sldrVolumeInp_->setEnabled(choice_.inputVolumeAvailable());
    sldrVolumeOut_->setEnabled(choice_.outputVolumeAvailable());
    lblRecLev_->setText(QString::fromStdString(volumeLabel("Recording Volume", choice_.sldrVolumeInp())));
    Label6_->setText(QString::fromStdString(volumeLabel("Playing Volume", choice_.sldrVolumeOut())));
}

}  // namespace ovd::ui
