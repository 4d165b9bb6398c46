#include "ui/window_placement.h"

#include <QGuiApplication>
#include <QScreen>
#include <QWidget>
#include <algorithm>

namespace ovd::ui {

void keepAboveStation(QWidget& dialog, const QWidget* station) {
    const QWidget* main = station != nullptr ? station->window() : nullptr;
    const bool onTop = main == nullptr || !main->isVisible() ||
                       main->windowFlags().testFlag(Qt::WindowStaysOnTopHint);
    if (dialog.windowFlags().testFlag(Qt::WindowStaysOnTopHint) == onTop) return;
    const bool wasVisible = dialog.isVisible();
    dialog.setWindowFlag(Qt::WindowStaysOnTopHint, onTop);
    if (wasVisible) dialog.show();  // changing a window's flags hides it
}

void placeOverStation(QWidget& window, const QWidget* station) {
    const QWidget* main = station != nullptr ? station->window() : nullptr;
    if (main == nullptr || !main->isVisible()) return;
    const QRect over = main->frameGeometry();
    QSize size = window.frameGeometry().size();
    if (!window.testAttribute(Qt::WA_WState_Created) || size.isEmpty()) size = window.size();
    QPoint corner = over.center() - QPoint(size.width() / 2, size.height() / 2);
    if (const QScreen* screen = main->screen()) {
        const QRect area = screen->availableGeometry();
        corner.setX(std::clamp(corner.x(), area.left(),
                               std::max(area.left(), area.right() - size.width())));
        corner.setY(std::clamp(corner.y(), area.top(),
                               std::max(area.top(), area.bottom() - size.height())));
    }
    window.move(corner);
}

}  // namespace ovd::ui
