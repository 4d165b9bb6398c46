#pragma once
// The input level while recording: a bar that jumps up with each block of sound
// and falls back slowly, green, then amber, then red near the top, so the author
// sees at a glance that the microphone hears them and is not overdriven.

#include <QWidget>

class QTimer;

namespace ovd::ui {

class LevelMeter : public QWidget {
  public:
    explicit LevelMeter(QWidget* parent = nullptr);

    // A peak, in percent of full scale. The bar shows the loudest heard in each
    // step of its fall, so it repaints no more often than that however fast the
    // sound comes in.
    void setLevel(int peakPercent);
    [[nodiscard]] int level() const { return shown_; }

    [[nodiscard]] QSize sizeHint() const override { return {160, 14}; }
    [[nodiscard]] QSize minimumSizeHint() const override { return {60, 10}; }

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    // The loudest peak heard since the last step, or the fall.
    void step();
    void fall();

    int shown_ = 0;
    int heard_ = 0;
    QTimer* fall_ = nullptr;
};

}  // namespace ovd::ui
