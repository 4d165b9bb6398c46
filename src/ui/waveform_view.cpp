#include "ui/waveform_view.h"

#include <QMouseEvent>
#include <QPainter>
#include <QResizeEvent>

#include <algorithm>
#include <cstdlib>

#include "engine/wave_editor.h"

namespace ovd::ui {

namespace {
// Frames looked at per column at most; a longer stretch is sampled at its start.
constexpr std::size_t kFramesPerColumn = 512;
// A hand that moves less than this while it clicks has not dragged.
constexpr int kDragPixels = 3;
}  // namespace

WaveformView::WaveformView(engine::WaveEditor& editor, QWidget* parent)
    : QWidget(parent), editor_(editor) {
    setObjectName("AudioEditor1");
    setMinimumHeight(80);
    setAttribute(Qt::WA_OpaquePaintEvent);
}

void WaveformView::refresh() {
    const bool hasDocument = editor_.hasDocument();
    const engine::SampleCount length = hasDocument ? editor_.Length() : 0;
    const engine::SampleCount cursor = hasDocument ? editor_.CursorPosition() : 0;
    const bool selection = hasDocument && editor_.SelectionActive();
    const engine::SampleCount start = editor_.SelectionStart();
    const engine::SampleCount end = editor_.SelectionEnd();
    if (changed_ || length != readLength_) {
        changed_ = false;
        readLength_ = length;
        readColumns();
    } else if (cursor == cursor_ && selection == selection_ && start == selectionStart_ &&
               end == selectionEnd_) {
        return;
    }
    cursor_ = cursor;
    selection_ = selection;
    selectionStart_ = start;
    selectionEnd_ = end;
    update();
}

void WaveformView::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    readColumns();
}

void WaveformView::readColumns() {
    columns_.clear();
    const engine::SampleCount length = editor_.hasDocument() ? editor_.Length() : 0;
    const int width = std::max(1, this->width() - 2);
    if (length <= 0) return;
    const int channels = std::max(1, editor_.Channels());
    columns_.reserve(static_cast<std::size_t>(width));
    for (int x = 0; x < width; ++x) {
        const engine::SampleCount from = length * x / width;
        const engine::SampleCount to = std::max(from + 1, length * (x + 1) / width);
        const auto frames = static_cast<std::size_t>(std::min<engine::SampleCount>(
            to - from, static_cast<engine::SampleCount>(kFramesPerColumn)));
        buffer_.resize(frames * static_cast<std::size_t>(channels));
        const std::size_t got = editor_.readFrames(from, buffer_.data(), frames);
        std::int16_t low = 0;
        std::int16_t high = 0;
        for (std::size_t i = 0; i < got * static_cast<std::size_t>(channels); ++i) {
            low = std::min(low, buffer_[i]);
            high = std::max(high, buffer_[i]);
        }
        columns_.emplace_back(low, high);
    }
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

void WaveformView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    const QRect box = rect();
    painter.fillRect(box, isEnabled() ? QColor(16, 32, 24) : QColor(40, 44, 42));
    const int middle = box.center().y();
    const double half = (box.height() - 4) / 2.0;
    painter.setPen(QColor(50, 80, 60));
    painter.drawLine(box.left(), middle, box.right(), middle);
    const engine::SampleCount length = readLength_;
    if (length > 0 && selection_ && selectionEnd_ > selectionStart_) {
        const int x0 = static_cast<int>(selectionStart_ * (box.width() - 2) / length) + 1;
        const int x1 = static_cast<int>(selectionEnd_ * (box.width() - 2) / length) + 1;
        painter.fillRect(QRect(x0, box.top(), std::max(1, x1 - x0), box.height()), QColor(60, 70, 130));
    }
    painter.setPen(QColor(90, 220, 120));
    for (std::size_t x = 0; x < columns_.size(); ++x) {
        const auto [low, high] = columns_[x];
        const int top = middle - static_cast<int>(high / 32768.0 * half);
        const int bottom = middle - static_cast<int>(low / 32768.0 * half);
        painter.drawLine(static_cast<int>(x) + 1, top, static_cast<int>(x) + 1, bottom);
    }
    if (length > 0) {
        const int x = static_cast<int>(std::min(cursor_, length) * (box.width() - 2) / length) + 1;
        painter.setPen(QPen(QColor(255, 230, 80), 1));
        painter.drawLine(x, box.top(), x, box.bottom());
    } else {
        painter.setPen(QColor(120, 150, 130));
        painter.drawText(box, Qt::AlignCenter, tr("No recording"));
    }
    painter.setPen(QColor(80, 80, 80));
    painter.drawRect(box.adjusted(0, 0, -1, -1));
}

}  // namespace ovd::ui
