#include "ui/on_air_lamps.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QRadialGradient>

namespace ovd::ui {

Lamp::Lamp(QWidget* parent) : QWidget(parent) { setFixedSize(sizeHint()); }

void Lamp::setLit(bool lit) {
    if (lit == lit_) return;
    lit_ = lit;
    update();
}

void Lamp::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF disc = QRectF(rect()).adjusted(2, 2, -2, -2);
    QRadialGradient glass(disc.center() - QPointF(3, 3), disc.width() / 1.4);
    if (lit_) {
        glass.setColorAt(0, QColor(255, 190, 170));
        glass.setColorAt(1, QColor(220, 20, 20));
    } else {
        glass.setColorAt(0, QColor(120, 90, 90));
        glass.setColorAt(1, QColor(60, 40, 40));
    }
    painter.setPen(QPen(QColor(40, 40, 40), 1.5));
    painter.setBrush(glass);
    painter.drawEllipse(disc);
}

OnAirLamps::OnAirLamps(QWidget* parent) : QWidget(parent) {
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    leftLamp_ = new Lamp(this);
    leftLamp_->setObjectName("Image5");
    rightLamp_ = new Lamp(this);
    rightLamp_->setObjectName("Image6");
    onAirCaption_ = new QLabel(this);
    onAirCaption_->setObjectName("lblOnAir");
    onAirCaption_->setAlignment(Qt::AlignCenter);
    onAirCaption_->setMinimumWidth(90);
    QFont bold = onAirCaption_->font();
    bold.setBold(true);
    bold.setPointSizeF(bold.pointSizeF() * 1.3);
    onAirCaption_->setFont(bold);
    row->addWidget(leftLamp_);
    row->addWidget(onAirCaption_);
    row->addWidget(rightLamp_);
}

void OnAirLamps::show(bool leftLit, bool rightLit, const QString& caption, bool captionVisible) {
    leftLamp_->setLit(leftLit);
    rightLamp_->setLit(rightLit);
    // Hidden, the caption keeps its room so the window does not jump at each take.
    const QString shown = captionVisible ? caption : QString();
    if (onAirCaption_->text() != shown) onAirCaption_->setText(shown);
    const bool onAir = caption == QLatin1String("ON AIR");
    // A style sheet set again, even the same, restyles and repaints the caption.
    const QString colour =
        onAir ? QStringLiteral("color: #d01010;") : QStringLiteral("color: #a06000;");
    if (onAirCaption_->styleSheet() != colour) onAirCaption_->setStyleSheet(colour);
}

}  // namespace ovd::ui
