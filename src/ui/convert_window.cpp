#include "ui/convert_window.h"

#include <QDialogButtonBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

namespace ovd::ui {

ConvertWindow::ConvertWindow(configuration::ConvertDialog& model, QWidget* parent)
    : QDialog(parent), model_(model) {
    setObjectName("frmConvert");
    setWindowTitle(tr("Convert Sample Type"));
    setModal(true);
    auto* column = new QVBoxLayout(this);
    auto* rates = new QGroupBox(tr("Sample rate"));
    auto* grid = new QGridLayout(rates);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    QPushButton* ok = buttons->button(QDialogButtonBox::Ok);
    ok->setObjectName("cmdOK");
    // A file at a rate off the list opens with no rate chosen: OK waits for one.
    ok->setEnabled(model_.choice.frequencyIndex.has_value());
    for (std::size_t i = 0; i < configuration::kDialogFrequencies.size(); ++i) {
        auto* option = new QRadioButton(tr("%1 Hz").arg(configuration::kDialogFrequencies[i]));
        option->setObjectName(QStringLiteral("opFq%1").arg(i));
        option->setChecked(model_.choice.frequencyIndex == static_cast<int>(i));
        grid->addWidget(option, static_cast<int>(i % 5), static_cast<int>(i / 5));
        connect(option, &QRadioButton::clicked, this, [this, i, ok] {
            model_.choice.frequencyIndex = static_cast<int>(i);
            ok->setEnabled(true);
        });
    }
    column->addWidget(rates);
    auto* channels = new QGroupBox(tr("Channels"));
    auto* pair = new QHBoxLayout(channels);
    for (int n = 1; n <= 2; ++n) {
        auto* option = new QRadioButton(n == 1 ? tr("Mono") : tr("Stereo"));
        option->setObjectName(QStringLiteral("opCh%1").arg(n - 1));
        option->setChecked(model_.choice.channels == n);
        pair->addWidget(option);
        connect(option, &QRadioButton::clicked, this, [this, n] { model_.choice.channels = n; });
    }
    column->addWidget(channels);
    column->addWidget(buttons);
    connect(buttons, &QDialogButtonBox::accepted, this, [this] {
        if (model_.ok()) accept();
    });
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
}

bool askConvertSampleType(int samplesPerSecond, int channels,
                          const configuration::ConvertDialog::Convert& convert, QWidget* parent) {
    configuration::ConvertDialog model(samplesPerSecond, channels, convert);
    ConvertWindow window(model, parent);
    return window.exec() == QDialog::Accepted;
}

}  // namespace ovd::ui
