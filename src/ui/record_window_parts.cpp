#include "ui/record_window_parts.h"

#include <QHBoxLayout>

#include "settings/record_rules.h"

namespace ovd::ui {

RecordBox addRecordBox(QFormLayout* form, const char* control, const QString& label,
                       const QString& prompt, const char* starName) {
    RecordBox box;
    box.edit = new QLineEdit;
    box.edit->setObjectName(control);
    box.edit->setPlaceholderText(prompt);
    auto* row = new QHBoxLayout;
    row->addWidget(box.edit);
    box.star = new QLabel(QStringLiteral("*"));
    box.star->setObjectName(starName != nullptr ? starName : "");
    box.star->setStyleSheet(QStringLiteral("color: red; font-weight: bold"));
    box.star->setFixedWidth(10);
    box.star->setVisible(false);
    row->addWidget(box.star);
    form->addRow(label, row);
    return box;
}

void markRequired(const RecordBox& box, bool required) {
    // The colour value is stored blue-green-red; 8454143 is 0x80FFFF, pale yellow.
    constexpr int bgr = settings::kRequiredFieldColour;
    const QString colour = QStringLiteral("#%1%2%3")
                               .arg(bgr & 0xFF, 2, 16, QLatin1Char('0'))
                               .arg((bgr >> 8) & 0xFF, 2, 16, QLatin1Char('0'))
                               .arg((bgr >> 16) & 0xFF, 2, 16, QLatin1Char('0'));
    box.edit->setStyleSheet(required ? QStringLiteral("QLineEdit { background: %1 }").arg(colour)
                                     : QString());
    box.star->setVisible(required);
}

void showText(QLineEdit* edit, const std::string& text) {
    const QString wanted = fromText(text);
    if (edit->text() != wanted) edit->setText(wanted);
}

QPushButton* addButton(QLayout* row, const char* name, const QString& text) {
    auto* button = new QPushButton(text);
    button->setObjectName(name);
    button->setAutoDefault(false);
    row->addWidget(button);
    return button;
}

}  // namespace ovd::ui
