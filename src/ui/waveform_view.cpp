#include "ui/waveform_view.h"

#include <QMouseEvent>
#include <QPainter>
#include <QResizeEvent>
#include <QTimer>
#include <algorithm>
#include <cstdlib>

#include "engine/wave_editor.h"

namespace ovd::ui {

namespace {
// A hand that moves less than this while it clicks has not dragged.
constexpr int kDragPixels = 3;
}  // namespace

WaveformView::WaveformView(engine::WaveEditor& editor, QWidget* parent)
    : QWidget(parent), editor_(editor) {
    setObjectName("AudioEditor1");
    setMinimumHeight(80);
    setAttribute(Qt::WA_OpaquePaintEvent);
    moving_ = new QTimer(this);
    moving_->setInterval(kMovingLookMs);
    connect(moving_, &QTimer::timeout, this, [this] { refresh(); });
}

void WaveformView::markChanged() {
    changed_ = true;
    if (lookQueued_) return;
    lookQueued_ = true;
    QMetaObject::invokeMethod(
        this,
        [this] {
            if (lookQueued_) refresh();
        },
        Qt::QueuedConnection);
}

bool WaveformView::following() const { return moving_->isActive(); }

void WaveformView::refresh() {
    lookQueued_ = false;
    const bool hasDocument = editor_.hasDocument();
    const int state =
        hasDocument ? editor_.State() : static_cast<int>(engine::EditorState::Stopped);
    if (readDocument()) layOutColumns();
    const bool selection = hasDocument && editor_.SelectionActive();
    const engine::SampleCount start = editor_.SelectionStart();
    const engine::SampleCount end = editor_.SelectionEnd();
    // Ends of a selection not shown (a take moves them along) change nothing drawn.
    if (selection != selection_ ||
        (selection && (start != selectionStart_ || end != selectionEnd_))) {
        pictureStale_ = true;
    }
    selection_ = selection;
    selectionStart_ = start;
    selectionEnd_ = end;
    const engine::SampleCount cursor = hasDocument ? editor_.CursorPosition() : 0;
    if (cursor != cursor_) {
        // On a picture that stands, only the cursor's old and new columns change.
        if (!pictureStale_) {
            repaintCursorAt(cursor_);
            repaintCursorAt(cursor);
        }
        cursor_ = cursor;
    }
    if (pictureStale_) update();
    const bool moving = state == static_cast<int>(engine::EditorState::Playing) ||
                        state == static_cast<int>(engine::EditorState::Recording);
    if (moving && !moving_->isActive()) {
        moving_->start();
    } else if (!moving && moving_->isActive()) {
        moving_->stop();
    }
}

bool WaveformView::readDocument() {
    const bool hasDocument = editor_.hasDocument();
    const engine::SampleCount length = hasDocument ? editor_.Length() : 0;
    if (!changed_ && length == peaks_.length()) return false;
    // A take being recorded goes in at the cursor: all before where the cursor
    // stood at the last look is as it was. Anything else is read again whole.
    const bool recording =
        hasDocument && editor_.State() == static_cast<int>(engine::EditorState::Recording);
    const engine::SampleCount unchanged = !changed_ && recording ? cursor_ : 0;
    changed_ = false;
    peaks_.update(unchanged, length, std::max(1, editor_.Channels()),
                  [this](engine::SampleCount position, std::int16_t* out, std::size_t frames) {
                      return editor_.readFrames(position, out, frames);
                  });
    return true;
}

void WaveformView::layOutColumns() {
    columns_ = peaks_.columns(std::max(1, width() - 2));
    pictureStale_ = true;
}

void WaveformView::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    layOutColumns();
}

void WaveformView::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::EnabledChange) {
        pictureStale_ = true;
        update();
    }
}

int WaveformView::cursorX(engine::SampleCount cursor) const {
    const engine::SampleCount length = peaks_.length();
    if (length <= 0) return 0;
    return static_cast<int>(std::min(cursor, length) * (width() - 2) / length) + 1;
}

void WaveformView::repaintCursorAt(engine::SampleCount cursor) {
    if (peaks_.length() > 0) update(QRect(cursorX(cursor), 0, 1, height()));
}

engine::SampleCount WaveformView::positionAt(int x) const {
    const engine::SampleCount length = editor_.Length();
    const int span = std::max(1, width() - 2);
    return std::clamp<engine::SampleCount>(length * (x - 1) / span, 0, length);
}

bool WaveformView::selectable() const {
    return isEnabled() && editor_.hasDocument() && editor_.Length() > 0 &&
           editor_.State() == static_cast<int>(engine::EditorState::Stopped);
}

void WaveformView::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || !selectable()) {
        QWidget::mousePressEvent(event);
        return;
    }
    dragging_ = true;
    dragged_ = false;
    dragFromX_ = static_cast<int>(event->position().x());
}

void WaveformView::mouseMoveEvent(QMouseEvent* event) {
    if (!dragging_) return;
    const int x = static_cast<int>(event->position().x());
    if (!dragged_ && std::abs(x - dragFromX_) < kDragPixels) return;
    dragged_ = true;
    selectTo(x);
}

void WaveformView::mouseReleaseEvent(QMouseEvent* event) {
    if (!dragging_ || event->button() != Qt::LeftButton) return;
    dragging_ = false;
    const int x = static_cast<int>(event->position().x());
    if (dragged_ || std::abs(x - dragFromX_) >= kDragPixels) {
        selectTo(x);
    } else if (selectable()) {
        editor_.setSelectionActive(false);
    }
    refresh();
}

void WaveformView::selectTo(int x) {
    // The take may have started since the press: a running take keeps its cursor.
    if (!selectable()) return;
    const engine::SampleCount from = positionAt(dragFromX_);
    const engine::SampleCount to = positionAt(x);
    editor_.setSelectionStart(std::min(from, to));
    editor_.setSelectionEnd(std::max(from, to));
    editor_.setSelectionActive(from != to);
    refresh();
}

void WaveformView::drawPicture() {
    const qreal ratio = devicePixelRatioF();
    picture_ = QPixmap(size() * ratio);
    picture_.setDevicePixelRatio(ratio);
    QPainter painter(&picture_);
    const QRect box = rect();
    painter.fillRect(box, isEnabled() ? QColor(16, 32, 24) : QColor(40, 44, 42));
    const int middle = box.center().y();
    const double half = (box.height() - 4) / 2.0;
    painter.setPen(QColor(50, 80, 60));
    painter.drawLine(box.left(), middle, box.right(), middle);
    const engine::SampleCount length = peaks_.length();
    if (length > 0 && selection_ && selectionEnd_ > selectionStart_) {
        const int x0 = static_cast<int>(selectionStart_ * (box.width() - 2) / length) + 1;
        const int x1 = static_cast<int>(selectionEnd_ * (box.width() - 2) / length) + 1;
        painter.fillRect(QRect(x0, box.top(), std::max(1, x1 - x0), box.height()),
                         QColor(60, 70, 130));
    }
    painter.setPen(QColor(90, 220, 120));
    for (std::size_t x = 0; x < columns_.size(); ++x) {
        const auto [low, high] = columns_[x];
        const int top = middle - static_cast<int>(high / 32768.0 * half);
        const int bottom = middle - static_cast<int>(low / 32768.0 * half);
        painter.drawLine(static_cast<int>(x) + 1, top, static_cast<int>(x) + 1, bottom);
    }
    if (length <= 0) {
        painter.setPen(QColor(120, 150, 130));
        painter.drawText(box, Qt::AlignCenter, tr("No recording"));
    }
    painter.setPen(QColor(80, 80, 80));
    painter.drawRect(box.adjusted(0, 0, -1, -1));
    pictureStale_ = false;
}

void WaveformView::paintEvent(QPaintEvent* event) {
    if (pictureStale_ || picture_.size() != size() * devicePixelRatioF()) drawPicture();
    QPainter painter(this);
    painter.drawPixmap(event->rect(), picture_,
                       QRectF(QPointF(event->rect().topLeft()) * devicePixelRatioF(),
                              QSizeF(event->rect().size()) * devicePixelRatioF()));
    if (peaks_.length() > 0) {
        // Inside the border, which stays whole.
        const int x = cursorX(cursor_);
        painter.setPen(QPen(QColor(255, 230, 80), 1));
        painter.drawLine(x, 1, x, height() - 2);
    }
}

}  // namespace ovd::ui
