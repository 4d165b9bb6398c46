#pragma once
// The document under dictation as a waveform, with the cursor and the selection:
// authors look rather than read, and a take that is silent or clipped shows at
// once. Each column of pixels shows the loudest and softest sample of its stretch
// of the document. The peaks are kept between looks, so while a take grows only
// the new audio is read, and an hour's take costs each look what a minute's does;
// the picture is kept too, and a moving cursor repaints only its own column.
// Dragging across it selects that stretch in the editor, for Cut, Copy, Paste,
// Play and Record to act on; a click without a drag drops the selection.

#include <QPixmap>
#include <QWidget>
#include <cstdint>
#include <functional>
#include <vector>

#include "engine/audio_format.h"
#include "ui/waveform_peaks.h"

class QTimer;

namespace ovd::engine {
class WaveEditor;
}

namespace ovd::ui {

class WaveformView : public QWidget {
  public:
    // How often the view looks at a document that plays or records: enough for
    // the eye, and no more.
    static constexpr int kMovingLookMs = 100;

    explicit WaveformView(engine::WaveEditor& editor, QWidget* parent = nullptr);

    // The editor says its document changed (an edit can keep the length): the
    // view reads it again, once, as soon as the loop is free.
    void markChanged();
    // Looks at the editor and repaints what it shows differently. While the
    // editor plays or records, the view goes on looking by itself.
    void refresh();
    // Whether the view is looking by itself (a document that plays or records).
    [[nodiscard]] bool following() const;

    [[nodiscard]] QSize sizeHint() const override { return {560, 110}; }
    [[nodiscard]] QSize minimumSizeHint() const override { return {120, 40}; }

    // One pair of (lowest, highest) per column; empty for an empty document.
    [[nodiscard]] const std::vector<WaveformPeaks::Peak>& columns() const { return columns_; }

  protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

  private:
    // Reads what changed of the document; true when the peaks moved.
    bool readDocument();
    void layOutColumns();
    void drawPicture();
    [[nodiscard]] int cursorX(engine::SampleCount cursor) const;
    void repaintCursorAt(engine::SampleCount cursor);
    // The document position under a column of pixels.
    [[nodiscard]] engine::SampleCount positionAt(int x) const;
    // A selection is made only on a stopped document with something in it.
    [[nodiscard]] bool selectable() const;
    void selectTo(int x);

    engine::WaveEditor& editor_;
    QTimer* moving_ = nullptr;
    bool dragging_ = false;
    bool dragged_ = false;
    int dragFromX_ = 0;
    WaveformPeaks peaks_;
    std::vector<WaveformPeaks::Peak> columns_;
    // The waveform and the selection as last drawn; the cursor goes over it.
    QPixmap picture_;
    bool pictureStale_ = true;
    bool changed_ = true;
    bool lookQueued_ = false;
    engine::SampleCount cursor_ = 0;
    bool selection_ = false;
    engine::SampleCount selectionStart_ = 0;
    engine::SampleCount selectionEnd_ = 0;
};

}  // namespace ovd::ui
