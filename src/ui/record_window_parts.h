#pragma once
// The pieces every record window is built of: a labelled box named after its
// control, the pale yellow and asterisk of a required box, and a row of buttons.

#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QString>
#include <string>

namespace ovd::ui {

inline QString fromText(const std::string& text) { return QString::fromStdString(text); }
inline std::string toText(const QString& text) { return text.toStdString(); }

// A box on its own row; `star` is the asterisk beside it, hidden until required.
struct RecordBox {
    QLineEdit* edit = nullptr;
    QLabel* star = nullptr;
};

RecordBox addRecordBox(QFormLayout* form, const char* control, const QString& label,
                       const QString& prompt = {}, const char* starName = nullptr);

// Pale yellow (the colour value 8454143) and the asterisk when required.
void markRequired(const RecordBox& box, bool required);

// Sets the text only when it differs, so the cursor stays where the user left it.
void showText(QLineEdit* edit, const std::string& text);

QPushButton* addButton(QLayout* row, const char* name, const QString& text);

}  // namespace ovd::ui
