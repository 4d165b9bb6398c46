#pragma once
// The document under dictation as a waveform, with the cursor and the selection:
// authors look rather than read, and a take that is silent or clipped shows at
// once. Each column of pixels shows the loudest and softest sample of its stretch;
// long documents are sampled so a redraw costs the same for a minute or an hour.
// Dragging across it selects that stretch in the editor, for Cut, Copy, Paste,
// Play and Record to act on; a click without a drag drops the selection.

#include <QWidget>

#include <cstdint>
#include <functional>
#include <vector>

#include "engine/audio_format.h"

namespace ovd::engine {
class WaveEditor;
}

namespace ovd::ui {

class WaveformView : public QWidget {
public:
    explicit WaveformView(engine::WaveEditor& editor, QWidget* parent = nullptr);

    // The editor says its document changed (an edit can keep the length).
    void markChanged() { changed_ = true; }
    // Reads the document again if it changed since the last look.
    void refresh();

    [[nodiscard]] QSize sizeHint() const override { return {560, 110}; }
    [[nodiscard]] QSize minimumSizeHint() const override { return {120, 40}; }

    // One pair of (lowest, highest) per column; empty for an empty document.
    [[nodiscard]] const std::vector<std::pair<std::int16_t, std::int16_t>>& columns() const {
        return columns_;
    }

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    void readColumns();
    // The document position under a column of pixels.
    [[nodiscard]] engine::SampleCount positionAt(int x) const;
    // A selection is made only on a stopped document with something in it.
    [[nodiscard]] bool selectable() const;
    void selectTo(int x);

    engine::WaveEditor& editor_;
    bool dragging_ = false;
    bool dragged_ = false;
    int dragFromX_ = 0;
    std::vector<std::pair<std::int16_t, std::int16_t>> columns_;
    engine::SampleCount readLength_ = -1;
    bool changed_ = true;
    engine::SampleCount cursor_ = 0;
    bool selection_ = false;
    engine::SampleCount selectionStart_ = 0;
    engine::SampleCount selectionEnd_ = 0;
    std::vector<std::int16_t> buffer_;
};

}  // namespace ovd::ui
