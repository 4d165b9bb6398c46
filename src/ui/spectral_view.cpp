#include "ui/spectral_view.h"

#include <QPainter>
#include <algorithm>

#include "engine/wave_editor.h"

namespace ovd::ui {

namespace {

// Dark blue through red to yellow: the usual colours of a spectrogram.
QRgb colourOf(float db) {
    const float t =
        std::clamp((db - SpectralView::kFloorDb) / (SpectralView::kTopDb - SpectralView::kFloorDb),
                   0.0f, 1.0f);
    const auto channel = [](float v) { return static_cast<int>(std::clamp(v, 0.0f, 1.0f) * 255); };
    return qRgb(channel(2.0f * t - 0.4f), channel(2.0f * t - 1.0f),
                channel(0.5f - std::abs(t - 0.3f) * 1.6f + 0.2f));
}

}  // namespace

SpectralView::SpectralView(engine::WaveEditor& editor, QWidget* parent)
    : QWidget(parent), editor_(editor) {
    setObjectName("SpectralView");
    setMinimumSize(120, 60);
}

void SpectralView::show(engine::SampleCount from, engine::SampleCount to, unsigned long revision) {
    if (from == from_ && to == to_ && revision == revision_ && !stale_) return;
    from_ = from;
    to_ = to;
    revision_ = revision;
    stale_ = true;
    update();
}

void SpectralView::resizeEvent(QResizeEvent* event) {
    stale_ = true;
    QWidget::resizeEvent(event);
}

void SpectralView::measure() {
    stale_ = false;
    const int columns = std::max(1, width());
    const int bins = std::max(1, height());
    picture_ = QImage(columns, bins, QImage::Format_RGB32);
    picture_.fill(colourOf(kFloorDb));
    if (to_ <= from_) return;
    const std::vector<std::vector<float>> spectrum = editor_.Spectrum(from_, to_, columns, bins);
    for (int x = 0; x < columns && x < static_cast<int>(spectrum.size()); ++x) {
        const std::vector<float>& column = spectrum[static_cast<std::size_t>(x)];
        for (int b = 0; b < bins && b < static_cast<int>(column.size()); ++b)
            picture_.setPixel(x, bins - 1 - b, colourOf(column[static_cast<std::size_t>(b)]));
    }
}

void SpectralView::paintEvent(QPaintEvent*) {
    if (stale_ || picture_.size() != size()) measure();
    QPainter painter(this);
    painter.drawImage(0, 0, picture_);
    // The selection and the cursor over the picture, as the waveform shows them.
    const engine::SampleCount span = to_ - from_;
    if (span <= 0) return;
    const auto xOf = [&](engine::SampleCount at) {
        return static_cast<int>((at - from_) * width() / span);
    };
    if (editor_.SelectionActive() && editor_.SelectionStart() != editor_.SelectionEnd()) {
        const int left = xOf(std::min(editor_.SelectionStart(), editor_.SelectionEnd()));
        const int right = xOf(std::max(editor_.SelectionStart(), editor_.SelectionEnd()));
        painter.fillRect(QRect(left, 0, std::max(1, right - left), height()),
                         QColor(255, 255, 255, 60));
    }
    painter.setPen(QColor(255, 255, 255, 200));
    const int cursor = xOf(editor_.CursorPosition());
    painter.drawLine(cursor, 0, cursor, height());
}

}  // namespace ovd::ui
