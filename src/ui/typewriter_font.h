#pragma once
// The fixed-width face of the log, the trace and the clocks, so columns line up.

#include <QFont>

namespace ovd::ui {

inline QFont typewriterFont() {
    QFont font(QStringLiteral("Monospace"));
    font.setStyleHint(QFont::TypeWriter);
    return font;
}

}  // namespace ovd::ui
