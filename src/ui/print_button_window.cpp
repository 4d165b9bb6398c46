#include "ui/print_button_window.h"

#include <QFileInfo>
#include <QGridLayout>
#include <QLabel>
#include <QPainter>
#include <QPrintDialog>
#include <QPrinter>
#include <QPushButton>
#include <QVBoxLayout>

#include "devices/button_template.h"

namespace ovd::ui {

namespace {

constexpr int kColumns = 4;
// The unit's button caps, in millimetres, and the gaps between them.
constexpr double kCapWidthMm = 18.0;
constexpr double kCapHeightMm = 12.0;
constexpr double kGapMm = 4.0;
constexpr double kMarginMm = 20.0;
constexpr double kNoteWidthMm = 120.0;
constexpr double kLabelPoints = 8.0;

}  // namespace

PrintButtonWindow::PrintButtonWindow(const settings::SettingsRecord& record, QWidget* parent)
    : QDialog(parent) {
    setWindowTitle(QString::fromLatin1(devices::kPrintButtonTitle));
    const std::array<std::string, 8> names = devices::templateLabels(record);
    auto* column = new QVBoxLayout(this);
    auto* grid = new QGridLayout;
    for (std::size_t i = 0; i < names.size(); ++i) {
        texts_[i] = QString::fromStdString(names[i]);
        auto* label = new QLabel(texts_[i]);
        label->setTextFormat(Qt::PlainText);
        label->setObjectName(QStringLiteral("BUT%1").arg(i + 1));
        label->setAlignment(Qt::AlignCenter);
        label->setFrameShape(QFrame::Box);
        label->setMinimumSize(90, 50);
        labels_[i] = label;
        grid->addWidget(label, static_cast<int>(i) / kColumns, static_cast<int>(i) % kColumns);
    }
    column->addLayout(grid);
    auto* note = new QLabel(QString::fromLatin1(devices::kAffixTemplateText));
    note->setTextFormat(Qt::PlainText);
    note->setWordWrap(true);
    column->addWidget(note);
    print_ = new QPushButton(tr("Print..."));
    column->addWidget(print_, 0, Qt::AlignRight);
    connect(print_, &QPushButton::clicked, this, [this] {
        QPrinter printer(QPrinter::HighResolution);
        QPrintDialog dialog(&printer, this);
        if (dialog.exec() == QDialog::Accepted) printOn(printer);
    });
}

QLabel* PrintButtonWindow::buttonLabel(int index) const {
    if (index < 0 || index >= static_cast<int>(labels_.size())) return nullptr;
    return labels_[static_cast<std::size_t>(index)];
}

void PrintButtonWindow::printOn(QPrinter& printer) const {
    QPainter painter(&printer);
    // Millimetres to the printer's dots; the font's points are the printer's own.
    const double dots = printer.resolution() / 25.4;
    const auto mm = [dots](double x, double y, double width, double height) {
        return QRectF(x * dots, y * dots, width * dots, height * dots);
    };
    QFont font("Sans");
    font.setPointSizeF(kLabelPoints);
    painter.setFont(font);
    painter.setPen(QPen(Qt::black, 0.3 * dots));
    for (std::size_t i = 0; i < texts_.size(); ++i) {
        const double x = kMarginMm + static_cast<double>(i % kColumns) * (kCapWidthMm + kGapMm);
        const double y = kMarginMm + static_cast<double>(i / kColumns) * (kCapHeightMm + kGapMm);
        const QRectF cap = mm(x, y, kCapWidthMm, kCapHeightMm);
        painter.drawRect(cap);
        painter.drawText(cap, Qt::AlignCenter | Qt::TextWordWrap, texts_[i]);
    }
    const double below = kMarginMm + 2 * (kCapHeightMm + kGapMm) + kGapMm;
    painter.drawText(mm(kMarginMm, below, kNoteWidthMm, 20.0), Qt::TextWordWrap,
                     QString::fromLatin1(devices::kAffixTemplateText));
}

bool PrintButtonWindow::printToPdf(const QString& path) const {
    QPrinter printer(QPrinter::HighResolution);
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(path);
    printOn(printer);
    return QFileInfo(path).size() > 0;
}

}  // namespace ovd::ui
