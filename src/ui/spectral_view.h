#pragma once
// The second editor's document as a spectrogram: time across, pitch up, loudness
// as colour, so a hum, a hiss or what a filter took away shows at a glance. The
// engine measures the columns; the view only paints them, and measures again
// only when the document, the stretch shown or the size changed.

#include <QImage>
#include <QWidget>

#include "engine/audio_format.h"

namespace ovd::engine {
class WaveEditor;
}

namespace ovd::ui {

class SpectralView : public QWidget {
  public:
    // The loudness painted darkest and brightest, in dB below full scale.
    static constexpr float kFloorDb = -100.0f;
    static constexpr float kTopDb = 0.0f;

    explicit SpectralView(engine::WaveEditor& editor, QWidget* parent = nullptr);

    // The stretch shown, and a number that moves whenever the audio changed.
    void show(engine::SampleCount from, engine::SampleCount to, unsigned long revision);

    [[nodiscard]] QSize sizeHint() const override { return {560, 160}; }
    [[nodiscard]] const QImage& picture() const { return picture_; }

  protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    void measure();

    engine::WaveEditor& editor_;
    engine::SampleCount from_ = 0;
    engine::SampleCount to_ = 0;
    unsigned long revision_ = 0;
    bool stale_ = true;
    QImage picture_;
};

}  // namespace ovd::ui
