#pragma once
// The two lamps either side of the ON AIR caption: dark while nothing is taken,
// flashing in turn during a take, so that the author sees from across the room
// that the station is listening.

#include <QWidget>

class QLabel;

namespace ovd::ui {

class Lamp : public QWidget {
  public:
    explicit Lamp(QWidget* parent = nullptr);
    void setLit(bool lit);
    [[nodiscard]] bool lit() const { return lit_; }
    [[nodiscard]] QSize sizeHint() const override { return {22, 22}; }

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    bool lit_ = false;
};

class OnAirLamps : public QWidget {
  public:
    explicit OnAirLamps(QWidget* parent = nullptr);
    // The lamps (Image5, Image6) and the caption (lblOnAir) as the dictation leaves them.
    void show(bool leftLit, bool rightLit, const QString& caption, bool captionVisible);

    [[nodiscard]] QLabel* caption() const { return onAirCaption_; }

  private:
    Lamp* leftLamp_ = nullptr;        // Image5
    Lamp* rightLamp_ = nullptr;       // Image6
    QLabel* onAirCaption_ = nullptr;  // lblOnAir
};

}  // namespace ovd::ui
