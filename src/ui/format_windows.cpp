#include "ui/format_windows.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalBlocker>
#include <QSlider>
#include <QSpinBox>
#include <QTabWidget>
#include <QVBoxLayout>
#include <functional>

namespace ovd::ui {

namespace {

using configuration::Mp3Settings;

template <typename Widget>
Widget* named(Widget* widget, const char* name) {
    widget->setObjectName(QString::fromLatin1(name));
    return widget;
}

template <std::size_t N>
QComboBox* listBox(const char* name, const std::array<const char*, N>& items) {
    auto* box = named(new QComboBox, name);
    for (const char* item : items) box->addItem(QString::fromLatin1(item));
    return box;
}

// cmdOK, cmdApply and cmdCancel at the foot of a format window: Apply hands the
// encoder the choice, OK hands it over and closes, Cancel closes.
void addOkApplyCancel(QDialog& dialog, QBoxLayout* column, const std::function<void()>& apply) {
    auto* buttons = new QHBoxLayout;
    auto* ok = named(new QPushButton(QObject::tr("OK")), "cmdOK");
    auto* applyButton = named(new QPushButton(QObject::tr("Apply")), "cmdApply");
    auto* cancel = named(new QPushButton(QObject::tr("Cancel")), "cmdCancel");
    buttons->addStretch();
    buttons->addWidget(ok);
    buttons->addWidget(applyButton);
    buttons->addWidget(cancel);
    column->addLayout(buttons);
    QObject::connect(applyButton, &QPushButton::clicked, &dialog, apply);
    QObject::connect(ok, &QPushButton::clicked, &dialog, [&dialog, apply] {
        apply();
        dialog.accept();
    });
    QObject::connect(cancel, &QPushButton::clicked, &dialog, &QDialog::reject);
}

}  // namespace

Mp3OptionsWindow::Mp3OptionsWindow(configuration::Mp3OptionsDialog& model, QWidget* parent)
    : QDialog(parent), model_(model) {
    setObjectName("frmMP3");
    setWindowTitle(tr("MP3 Options"));
    setModal(true);
    auto* column = new QVBoxLayout(this);
    auto* tabs = named(new QTabWidget(this), "tabMP3");
    tabs->addTab(generalPage(), tr("General"));
    tabs->addTab(vbrPage(), tr("VBR"));
    tabs->addTab(advancedPage(), tr("Advanced"));
    column->addWidget(tabs);
    auto* commandLine = named(new QLineEdit(this), "txtCommLine");
    commandLine->setReadOnly(true);
    commandLine->setMinimumWidth(560);
    column->addWidget(commandLine);
    refreshers_.push_back([this, commandLine] {
        commandLine->setText(QString::fromStdString(model_.commandLine()));
    });
    addOkApplyCancel(*this, column, [this] { (void)model_.apply(); });
    refresh();
}

void Mp3OptionsWindow::refresh() {
    for (const auto& refresher : refreshers_) refresher();
}

QWidget* Mp3OptionsWindow::generalPage() {
    auto* page = new QWidget;
    auto* grid = new QGridLayout(page);
    Mp3Settings& s = model_.settings;
    auto* frequency = listBox("cmbFrequency", configuration::kMp3FrequencyNames);
    auto* mode = listBox("cmbChMode", configuration::kChannelModeNames);
    auto* bitRate = named(new QSlider(Qt::Horizontal), "sldrBitrate");
    bitRate->setRange(0, static_cast<int>(configuration::kMp3SliderBitRates.size()) - 1);
    auto* bitRateLabel = named(new QLabel, "lblBitrate");
    auto* quality = named(new QSlider(Qt::Horizontal), "sldrQuality");
    quality->setRange(0, 9);
    auto* preset = listBox("opPreset", configuration::kPresetNames);
    auto* altPreset = listBox("opAltPreset", configuration::kAltPresetNames);
    grid->addWidget(new QLabel(tr("Frequency")), 0, 0);
    grid->addWidget(frequency, 0, 1);
    grid->addWidget(new QLabel(tr("Channel mode")), 1, 0);
    grid->addWidget(mode, 1, 1);
    grid->addWidget(bitRateLabel, 2, 0);
    grid->addWidget(bitRate, 2, 1);
    grid->addWidget(new QLabel(tr("better")), 3, 0);
    grid->addWidget(quality, 3, 1);
    grid->addWidget(new QLabel(tr("faster")), 3, 2);
    grid->addWidget(new QLabel(tr("Preset")), 4, 0);
    grid->addWidget(preset, 4, 1);
    grid->addWidget(new QLabel(tr("Alternative preset")), 5, 0);
    grid->addWidget(altPreset, 5, 1);
    const auto changed = [this] { refresh(); };
    connect(frequency, &QComboBox::activated, this, [&s, changed](int i) {
        s.frequencyIndex = i;
        changed();
    });
    connect(mode, &QComboBox::activated, this, [&s, changed](int i) {
        s.mode = static_cast<configuration::ChannelMode>(i);
        changed();
    });
    connect(bitRate, &QSlider::valueChanged, this, [&s, changed](int i) {
        s.bitRateIndex = i;
        changed();
    });
    connect(quality, &QSlider::valueChanged, this, [&s, changed](int i) {
        s.quality = i;
        changed();
    });
    connect(preset, &QComboBox::activated, this, [&s, changed](int i) {
        s.preset = i;
        changed();
    });
    connect(altPreset, &QComboBox::activated, this, [&s, changed](int i) {
        s.altPreset = i;
        changed();
    });
    refreshers_.push_back([=, this, &s] {
        const QSignalBlocker q1(bitRate), q2(quality);
        frequency->setCurrentIndex(s.frequencyIndex);
        mode->setCurrentIndex(static_cast<int>(s.mode));
        bitRate->setValue(s.bitRateIndex);
        bitRateLabel->setText(QString::fromStdString(model_.bitRateLabel()));
        quality->setValue(s.quality);
        preset->setCurrentIndex(s.preset);
        altPreset->setCurrentIndex(s.altPreset);
    });
    return page;
}

QWidget* Mp3OptionsWindow::vbrPage() {
    auto* page = new QWidget;
    auto* column = new QVBoxLayout(page);
    Mp3Settings& s = model_.settings;
    auto* method = listBox("cmbVBRCodingMethod", configuration::kVbrMethodNames);
    column->addWidget(method);
    auto* group = named(new QGroupBox(tr("VBR")), "frmVbrBitrate");
    auto* grid = new QGridLayout(group);
    auto* vbrQuality = named(new QSpinBox, "udVbrQuality");
    vbrQuality->setRange(0, 9);
    auto* maxBitRate = named(new QSlider(Qt::Horizontal), "sldrVbrBitrate");
    maxBitRate->setRange(0, static_cast<int>(configuration::kMp3SliderBitRates.size()) - 1);
    auto* abr = named(new QSpinBox, "udAbrBitrate");
    abr->setRange(8, 320);
    auto* header = named(new QCheckBox(tr("Write VBR header")), "chWriteVBRHeader");
    auto* strict =
        named(new QCheckBox(tr("Strictly enforce minimum bitrate")), "chStrictlyEnforceMinBitrate");
    grid->addWidget(named(new QLabel(tr("VBR quality")), "lblVbrQuality"), 0, 0);
    grid->addWidget(vbrQuality, 0, 1);
    grid->addWidget(new QLabel(tr("Maximum bitrate")), 1, 0);
    grid->addWidget(maxBitRate, 1, 1);
    grid->addWidget(named(new QLabel(tr("ABR bitrate")), "lblAbrBitrate"), 2, 0);
    grid->addWidget(abr, 2, 1);
    grid->addWidget(header, 3, 0, 1, 2);
    grid->addWidget(strict, 4, 0, 1, 2);
    column->addWidget(group);
    const auto changed = [this] { refresh(); };
    connect(method, &QComboBox::activated, this, [&s, changed](int i) {
        s.vbr = static_cast<configuration::VbrMethod>(i);
        changed();
    });
    connect(vbrQuality, &QSpinBox::valueChanged, this, [&s, changed](int v) {
        s.vbrQuality = v;
        changed();
    });
    connect(maxBitRate, &QSlider::valueChanged, this, [&s, changed](int v) {
        s.vbrMaxBitRateIndex = v;
        changed();
    });
    connect(abr, &QSpinBox::valueChanged, this, [&s, changed](int v) {
        s.abrBitRate = v;
        changed();
    });
    connect(header, &QCheckBox::clicked, this, [&s, changed](bool on) {
        s.writeVbrHeader = on;
        changed();
    });
    connect(strict, &QCheckBox::clicked, this, [&s, changed](bool on) {
        s.strictlyEnforceMinBitRate = on;
        changed();
    });
    refreshers_.push_back([=, this, &s] {
        const QSignalBlocker q1(vbrQuality), q2(maxBitRate), q3(abr);
        method->setCurrentIndex(static_cast<int>(s.vbr));
        vbrQuality->setValue(s.vbrQuality);
        maxBitRate->setValue(s.vbrMaxBitRateIndex);
        abr->setValue(s.abrBitRate);
        header->setChecked(s.writeVbrHeader);
        strict->setChecked(s.strictlyEnforceMinBitRate);
        // "None" switches the whole group off.
        group->setEnabled(model_.vbrGroupEnabled());
    });
    column->addStretch();
    return page;
}

QWidget* Mp3OptionsWindow::advancedPage() {
    auto* page = new QWidget;
    auto* grid = new QGridLayout(page);
    Mp3Settings& s = model_.settings;
    auto* ath = listBox("cmbATHControl", configuration::kAthControlNames);
    auto* emphasis = listBox("cmbEmphasis", configuration::kEmphasisNames);
    grid->addWidget(new QLabel(tr("ATH control")), 0, 0);
    grid->addWidget(ath, 0, 1);
    grid->addWidget(new QLabel(tr("Emphasis")), 1, 0);
    grid->addWidget(emphasis, 1, 1);
    const auto changed = [this] { refresh(); };
    connect(ath, &QComboBox::activated, this, [&s, changed](int i) {
        s.athControl = i;
        changed();
    });
    connect(emphasis, &QComboBox::activated, this, [&s, changed](int i) {
        s.emphasis = i;
        changed();
    });
    int row = 2;
    const auto tick = [&](const char* name, const QString& text, bool Mp3Settings::*member) {
        auto* box = named(new QCheckBox(text), name);
        grid->addWidget(box, row++, 0, 1, 2);
        connect(box, &QCheckBox::clicked, this, [&s, member, changed](bool on) {
            s.*member = on;
            changed();
        });
        refreshers_.push_back([box, &s, member] { box->setChecked(s.*member); });
    };
    tick("chStrictlyISOCompliance", tr("Strictly ISO compliance"), &Mp3Settings::strictIso);
    tick("chShortBlocks", tr("Short blocks"), &Mp3Settings::shortBlocks);
    tick("chBitReservoir", tr("Bit reservoir"), &Mp3Settings::bitReservoir);
    tick("chBlockType", tr("Short blocks only"), &Mp3Settings::blockType);
    tick("chErrorProtection", tr("Error protection"), &Mp3Settings::errorProtection);
    const auto filter = [&](const char* name, const QString& text, bool Mp3Settings::*on,
                            int Mp3Settings::*frequency, int Mp3Settings::*width) {
        tick(name, text, on);
        auto* hz = new QSpinBox;
        hz->setRange(0, 24000);
        auto* wide = new QSpinBox;
        wide->setRange(0, 24000);
        grid->addWidget(new QLabel(tr("frequency / width (Hz)")), row, 0);
        auto* pair = new QHBoxLayout;
        pair->addWidget(hz);
        pair->addWidget(wide);
        grid->addLayout(pair, row++, 1);
        connect(hz, &QSpinBox::valueChanged, this, [&s, frequency, changed](int v) {
            s.*frequency = v;
            changed();
        });
        connect(wide, &QSpinBox::valueChanged, this, [&s, width, changed](int v) {
            s.*width = v;
            changed();
        });
        refreshers_.push_back([hz, wide, &s, on, frequency, width] {
            const QSignalBlocker q1(hz), q2(wide);
            hz->setValue(s.*frequency);
            wide->setValue(s.*width);
            hz->setEnabled(s.*on);
            wide->setEnabled(s.*on);
        });
    };
    filter("chHFilt", tr("High-pass filter"), &Mp3Settings::highPass,
           &Mp3Settings::highPassFrequency, &Mp3Settings::highPassWidth);
    filter("chLFilt", tr("Low-pass filter"), &Mp3Settings::lowPass, &Mp3Settings::lowPassFrequency,
           &Mp3Settings::lowPassWidth);
    refreshers_.push_back([=, &s] {
        ath->setCurrentIndex(s.athControl);
        emphasis->setCurrentIndex(s.emphasis);
    });
    return page;
}

LayoutWindow::LayoutWindow(Kind kind, std::string dataFolder,
                           std::function<void(int, int)> writeBack, QWidget* parent)
    : QDialog(parent),
      kind_(kind),
      dataFolder_(std::move(dataFolder)),
      writeBack_(std::move(writeBack)),
      layout_(configuration::loadRawLayout(dataFolder_)) {
    const bool raw = kind == Kind::Raw;
    setObjectName(raw ? "frmRAW" : "frmVOX");
    setWindowTitle(raw ? tr("Set RAW Format") : tr("Set VOX Format"));
    setModal(true);
    if (!raw) layout_.frequencyIndex = configuration::loadVoxFrequencyIndex(dataFolder_);
    auto* column = new QVBoxLayout(this);
    if (raw) {
        auto* compression = new QGroupBox(tr("Comperssion"));
        auto* rows = new QVBoxLayout(compression);
        for (int i = 0; i < 3; ++i) {
            auto* option = new QRadioButton(QString::fromLatin1(
                configuration::kRawCompressionNames[static_cast<std::size_t>(i)]));
            option->setObjectName(QStringLiteral("C%1").arg(i + 1));
            option->setChecked(layout_.compression == i);
            rows->addWidget(option);
            connect(option, &QRadioButton::clicked, this, [this, i] { layout_.compression = i; });
        }
        column->addWidget(compression);
        auto* channels = new QGroupBox(tr("nChannels"));
        auto* pair = new QHBoxLayout(channels);
        for (int n = 1; n <= 2; ++n) {
            auto* option = new QRadioButton(n == 1 ? tr("Mono") : tr("Stereo"));
            option->setObjectName(QStringLiteral("P%1").arg(n));
            option->setChecked(layout_.channels == n);
            pair->addWidget(option);
            connect(option, &QRadioButton::clicked, this, [this, n] { layout_.channels = n; });
        }
        column->addWidget(channels);
    }
    auto* frequencies = new QGroupBox(tr("Frequency"));
    auto* grid = new QGridLayout(frequencies);
    for (std::size_t i = 0; i < configuration::kDialogFrequencies.size(); ++i) {
        auto* option = new QRadioButton(tr("%1 Hz").arg(configuration::kDialogFrequencies[i]));
        option->setObjectName(QStringLiteral("F%1").arg(i + 1));
        option->setChecked(layout_.frequencyIndex == static_cast<int>(i));
        grid->addWidget(option, static_cast<int>(i % 5), static_cast<int>(i / 5));
        connect(option, &QRadioButton::clicked, this,
                [this, i] { layout_.frequencyIndex = static_cast<int>(i); });
    }
    column->addWidget(frequencies);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    buttons->button(QDialogButtonBox::Ok)->setObjectName("cmdOK");
    column->addWidget(buttons);
    connect(buttons, &QDialogButtonBox::accepted, this, [this] {
        apply();
        accept();
    });
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
}

void LayoutWindow::apply() {
    // A choice that can't be kept still reaches the boxes; it is kept again at the
    // next apply.
    (void)(kind_ == Kind::Raw
               ? configuration::storeRawLayout(dataFolder_, layout_)
               : configuration::storeVoxFrequencyIndex(dataFolder_, layout_.frequencyIndex));
    if (writeBack_) {
        writeBack_(
            configuration::kDialogFrequencies[static_cast<std::size_t>(layout_.frequencyIndex)],
            kind_ == Kind::Raw ? layout_.channels : 1);
    }
}

OggOptionsWindow::OggOptionsWindow(configuration::OggOptionsDialog& model, QWidget* parent)
    : QDialog(parent), model_(model) {
    setObjectName("frmOgg");
    setWindowTitle(tr("Ogg Vorbis Options"));
    setModal(true);
    configuration::OggSettings& s = model_.settings;
    const int lastRate = static_cast<int>(configuration::kOggBitRates.size()) - 1;
    const auto slider = [lastRate](const char* name, int last) {
        auto* made = named(new QSlider(Qt::Horizontal), name);
        made->setRange(0, last < 0 ? lastRate : last);
        made->setMinimumWidth(220);
        return made;
    };
    auto* frequency = listBox("cmbFrequency", configuration::kMp3FrequencyNames);
    auto* mode = listBox("cmbChMode", configuration::kOggChannelModeNames);
    auto* qualityOn = named(new QCheckBox(tr("Quality Enabled")), "chQuality");
    auto* quality = slider("sldrQuality", 10);
    auto* vbrOn = named(new QCheckBox(tr("VBR Enabled")), "chVbr");
    auto* nominal = slider("sldrBitrate", -1);
    auto* minimum = slider("sldrMinBitrate", -1);
    auto* maximum = slider("sldrMaxBitrate", -1);
    auto* nominalLabel = named(new QLabel, "lblBitrate");
    auto* minLabel = named(new QLabel, "lblMinBitrate");
    auto* maxLabel = named(new QLabel, "lblMaxBitrate");

    auto* column = new QVBoxLayout(this);
    auto* general = new QGridLayout;
    general->addWidget(new QLabel(tr("Frequency")), 0, 0);
    general->addWidget(frequency, 0, 1);
    general->addWidget(new QLabel(tr("Channel mode")), 1, 0);
    general->addWidget(mode, 1, 1);
    column->addLayout(general);
    auto* qualityBox = new QGroupBox(tr("Quality"));
    auto* qualityGrid = new QGridLayout(qualityBox);
    qualityGrid->addWidget(qualityOn, 0, 0, 1, 3);
    qualityGrid->addWidget(new QLabel(tr("smaller")), 1, 0);
    qualityGrid->addWidget(quality, 1, 1);
    qualityGrid->addWidget(new QLabel(tr("better")), 1, 2);
    column->addWidget(qualityBox);
    auto* rateBox = new QGroupBox(tr("Bit rate"));
    auto* rateGrid = new QGridLayout(rateBox);
    rateGrid->addWidget(nominalLabel, 0, 0);
    rateGrid->addWidget(nominal, 0, 1);
    rateGrid->addWidget(vbrOn, 1, 0, 1, 2);
    rateGrid->addWidget(minLabel, 2, 0);
    rateGrid->addWidget(minimum, 2, 1);
    rateGrid->addWidget(maxLabel, 3, 0);
    rateGrid->addWidget(maximum, 3, 1);
    column->addWidget(rateBox);

    const auto changed = [this] { refresh(); };
    connect(frequency, &QComboBox::activated, this, [&s, changed](int i) {
        s.frequencyIndex = i;
        changed();
    });
    connect(mode, &QComboBox::activated, this, [&s, changed](int i) {
        s.stereo = i == 1;
        changed();
    });
    connect(qualityOn, &QCheckBox::toggled, this, [&s, changed](bool on) {
        s.qualityEnabled = on;
        changed();
    });
    connect(quality, &QSlider::valueChanged, this, [&s, changed](int v) {
        s.quality = v;
        changed();
    });
    connect(vbrOn, &QCheckBox::toggled, this, [&s, changed](bool on) {
        s.vbrEnabled = on;
        changed();
    });
    connect(nominal, &QSlider::valueChanged, this, [&s, changed](int v) {
        s.bitRateIndex = v;
        changed();
    });
    connect(minimum, &QSlider::valueChanged, this, [this, changed](int v) {
        model_.setMinBitRateIndex(v);
        changed();
    });
    connect(maximum, &QSlider::valueChanged, this, [this, changed](int v) {
        model_.setMaxBitRateIndex(v);
        changed();
    });
    refreshers_.push_back([this, frequency, mode, qualityOn, quality, vbrOn, nominal, minimum,
                           maximum, nominalLabel, minLabel, maxLabel] {
        const configuration::OggSettings& now = model_.settings;
        const QSignalBlocker b1(frequency), b2(mode), b3(qualityOn), b4(quality), b5(vbrOn),
            b6(nominal), b7(minimum), b8(maximum);
        frequency->setCurrentIndex(now.frequencyIndex);
        mode->setCurrentIndex(now.stereo ? 1 : 0);
        qualityOn->setChecked(now.qualityEnabled);
        quality->setValue(now.quality);
        vbrOn->setChecked(now.vbrEnabled);
        nominal->setValue(now.bitRateIndex);
        minimum->setValue(now.minBitRateIndex);
        maximum->setValue(now.maxBitRateIndex);
        quality->setEnabled(model_.qualitySliderEnabled());
        nominal->setEnabled(model_.bitRateSlidersEnabled());
        vbrOn->setEnabled(model_.bitRateSlidersEnabled());
        minimum->setEnabled(model_.boundSlidersEnabled());
        maximum->setEnabled(model_.boundSlidersEnabled());
        nominalLabel->setText(QString::fromStdString(model_.nominalLabel()));
        minLabel->setText(QString::fromStdString(model_.minLabel()));
        maxLabel->setText(QString::fromStdString(model_.maxLabel()));
    });

    // Options that can't be kept still go to this save; they are kept again at the next apply.
    addOkApplyCancel(*this, column, [this] { (void)model_.apply(); });
    refresh();
}

void OggOptionsWindow::refresh() {
    for (const auto& refresher : refreshers_) refresher();
}

std::optional<engine::TargetFormat> askOggOptions(const std::string& dataFolder, QWidget* parent) {
    configuration::OggOptionsDialog model(dataFolder);
    OggOptionsWindow window(model, parent);
    if (window.exec() != QDialog::Accepted) return std::nullopt;
    return model.target();
}

}  // namespace ovd::ui
