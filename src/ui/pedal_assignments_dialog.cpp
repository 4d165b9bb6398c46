#include "ui/pedal_assignments_dialog.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalBlocker>
#include <QSlider>
#include <QTimer>
#include <QVBoxLayout>

namespace ovd::ui {

namespace {

constexpr int kMarkIntervalMs = 100;
constexpr const char* kRowMark = "\u25B6";  // beside a function some pedal has

QLabel* plainLabel(const QString& text) {
    auto* label = new QLabel(text);
    label->setTextFormat(Qt::PlainText);
    return label;
}

}  // namespace

PedalAssignmentsDialog::PedalAssignmentsDialog(devices::PedalDialog which,
                                               settings::ConfigFile& config,
                                               platform::Prompts& prompts, QWidget* parent)
    : QDialog(parent), form_(which, config, prompts) {
    const devices::PedalDialogSpec& spec = form_.spec();
    setWindowTitle(QString::fromLatin1(spec.title));
    setModal(true);
    if (config.record.Ontopcheck.toNumber().value_or(0) == 1)
        setWindowFlag(Qt::WindowStaysOnTopHint, true);

    auto* column = new QVBoxLayout(this);
    if (spec.heading[0] != '\0') {
        QLabel* heading = plainLabel(QString::fromLatin1(spec.heading));
        QFont bold = heading->font();
        bold.setBold(true);
        heading->setFont(bold);
        heading->setAlignment(Qt::AlignCenter);
        column->addWidget(heading);
    }

    auto* grid = new QGridLayout;
    grid->addWidget(plainLabel(QString::fromLatin1(devices::kPedalHeadings[0])), 0, 1);
    grid->addWidget(plainLabel(QString::fromLatin1(devices::kPedalHeadings[1])), 0, 2);
    for (int row = 0; row < devices::kPedalRows; ++row) {
        const devices::PedalKeyword& keyword =
            devices::kPedalKeywords[static_cast<std::size_t>(row)];
        rowMarks_[static_cast<std::size_t>(row)] = plainLabel({});
        grid->addWidget(rowMarks_[static_cast<std::size_t>(row)], row + 1, 0);
        grid->addWidget(
            plainLabel(QString::fromLatin1(keyword.functionLabel.data(),
                                           static_cast<int>(keyword.functionLabel.size()))),
            row + 1, 1);
        grid->addWidget(
            plainLabel(QString::fromLatin1(keyword.descriptionLabel.data(),
                                           static_cast<int>(keyword.descriptionLabel.size()))),
            row + 1, 2);
    }
    // One frame per pedal: the options of a column exclude one another.
    for (int pedal = 0; pedal < devices::kPedalColumns; ++pedal) {
        auto* frame = new QGroupBox;
        frame->setObjectName(QStringLiteral("Frame%1").arg(pedal + 1));
        auto* frameColumn = new QVBoxLayout(frame);
        QLabel* heading = plainLabel(
            QString::fromLatin1(devices::kPedalHeadings[2 + static_cast<std::size_t>(pedal)]));
        frameColumn->addWidget(heading);
        if (pedal == 1) middleHeading_ = heading;
        for (int row = 0; row < devices::kPedalRows; ++row) {
            auto* option = new QRadioButton(
                devices::PedalAssignmentsForm::factoryDefault(row, pedal) ? QStringLiteral("=")
                                                                          : QString());
            option->setObjectName(QStringLiteral("Option%1%2").arg(row + 1).arg(pedal + 1));
            option->setAutoExclusive(false);  // the form decides, the window shows
            options_[static_cast<std::size_t>(row)][static_cast<std::size_t>(pedal)] = option;
            frameColumn->addWidget(option);
            connect(option, &QRadioButton::clicked, this, [this, row, pedal] {
                form_.clickOption(row, pedal);
                render();
            });
        }
        frames_[static_cast<std::size_t>(pedal)] = frame;
        grid->addWidget(frame, 0, 3 + pedal, devices::kPedalRows + 1, 1);
    }
    column->addLayout(grid);
    column->addWidget(plainLabel(QString::fromLatin1(devices::kFactoryDefaultsLine)));

    if (spec.twoPedalCheck) {
        twoPedal_ = new QCheckBox(QString::fromLatin1(devices::kTwoPedalCaption));
        twoPedal_->setObjectName("chkSER2Pedal");
        column->addWidget(twoPedal_);
        connect(twoPedal_, &QCheckBox::clicked, this, [this](bool checked) {
            form_.clickTwoPedal(checked);
            render();
        });
    }
    if (spec.stopSpeedSlider) {
        column->addWidget(plainLabel(QString::fromLatin1(devices::kUsbStopSpeedCaption)));
        stopSpeed_ = new QSlider(Qt::Horizontal);
        stopSpeed_->setObjectName("sldUSBStopSpeed");
        stopSpeed_->setRange(0, 2);
        stopSpeed_->setTickPosition(QSlider::TicksBelow);
        column->addWidget(stopSpeed_);
        auto* ticks = new QHBoxLayout;
        for (std::size_t i = 0; i < devices::kUsbStopSpeedLabels.size(); ++i) {
            if (i > 0) ticks->addStretch();
            ticks->addWidget(plainLabel(QString::fromLatin1(devices::kUsbStopSpeedLabels[i])));
        }
        column->addLayout(ticks);
        connect(stopSpeed_, &QSlider::valueChanged, this,
                [this](int value) { form_.usbStopSpeed = value; });
    }

    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    ok_ = new QPushButton("OK");
    cancel_ = new QPushButton("Cancel");
    ok_->setDefault(true);
    buttons->addWidget(ok_);
    buttons->addWidget(cancel_);
    column->addLayout(buttons);
    connect(ok_, &QPushButton::clicked, this, [this] {
        if (form_.ok()) accept();
    });
    // The clicks have changed the settings in memory already; they stay until the
    // next start, only the file is not written.
    connect(cancel_, &QPushButton::clicked, this, [this] { reject(); });

    markTimer_ = new QTimer(this);
    markTimer_->setInterval(kMarkIntervalMs);
    connect(markTimer_, &QTimer::timeout, this, [this] { render(); });
    markTimer_->start();
    render();
}

QRadioButton* PedalAssignmentsDialog::option(int row, int column) const {
    if (row < 0 || row >= devices::kPedalRows || column < 0 || column >= devices::kPedalColumns)
        return nullptr;
    return options_[static_cast<std::size_t>(row)][static_cast<std::size_t>(column)];
}

QLabel* PedalAssignmentsDialog::rowMark(int row) const {
    if (row < 0 || row >= devices::kPedalRows) return nullptr;
    return rowMarks_[static_cast<std::size_t>(row)];
}

void PedalAssignmentsDialog::render() {
    for (int row = 0; row < devices::kPedalRows; ++row) {
        for (int pedal = 0; pedal < devices::kPedalColumns; ++pedal) {
            QRadioButton* button = option(row, pedal);
            const QSignalBlocker quiet(button);
            button->setChecked(form_.option(row, pedal));
        }
        rowMark(row)->setText(form_.rowMarked(row) ? QString::fromUtf8(kRowMark) : QString());
    }
    frames_[1]->setVisible(form_.middleColumnShown());
    middleHeading_->setVisible(form_.middleColumnShown());
    if (twoPedal_ != nullptr) {
        const QSignalBlocker quiet(twoPedal_);
        twoPedal_->setChecked(form_.twoPedalChecked());
    }
}

}  // namespace ovd::ui
