#include "ui/level_meter.h"

#include <QPainter>
#include <QTimer>
#include <algorithm>

namespace ovd::ui {

namespace {
constexpr int kFallEveryMs = 50;  // 20 pictures a second at most
constexpr int kFallStep = 4;      // percent per step: about a second from the top to nothing
}  // namespace

LevelMeter::LevelMeter(QWidget* parent) : QWidget(parent) {
    setObjectName("levelMeter");
    setToolTip(tr("Input level"));
    fall_ = new QTimer(this);
    fall_->setInterval(kFallEveryMs);
    connect(fall_, &QTimer::timeout, this, [this] { fall(); });
}

void LevelMeter::setLevel(int peakPercent) {
    heard_ = std::max(heard_, std::clamp(peakPercent, 0, 100));
    // The sound comes in blocks many times a second; the bar moves at the pace of
    // its own fall, which is enough for the eye. After a quiet spell it jumps at once.
    if (!fall_->isActive() && heard_ > shown_) {
        step();
        fall_->start();
    }
}

void LevelMeter::step() {
    const int level = std::max({heard_, shown_ - kFallStep, 0});
    heard_ = 0;
    if (level == shown_) return;
    shown_ = level;
    update();
}

void LevelMeter::fall() {
    step();
    if (shown_ == 0) fall_->stop();
}

void LevelMeter::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    const QRect box = rect().adjusted(0, 0, -1, -1);
    painter.fillRect(box, QColor(30, 30, 30));
    const int width = box.width() * shown_ / 100;
    const int amberFrom = box.width() * 70 / 100;
    const int redFrom = box.width() * 90 / 100;
    const auto band = [&](int from, int to, QColor colour) {
        if (width > from)
            painter.fillRect(QRect(box.left() + from, box.top() + 1, std::min(width, to) - from,
                                   box.height() - 1),
                             colour);
    };
    band(0, amberFrom, QColor(40, 190, 60));
    band(amberFrom, redFrom, QColor(230, 170, 20));
    band(redFrom, box.width(), QColor(220, 30, 30));
    painter.setPen(QColor(90, 90, 90));
    painter.drawRect(box);
}

}  // namespace ovd::ui
