#pragma once
// MMControl1: the eight transport buttons, Prev, Next, Play, Pause, Back, Step,
// Stop and Record, each enabled as the dictation leaves it, with its caption
// under it while the captions are shown.

#include <QWidget>
#include <array>
#include <functional>

#include "dictation/transport_rules.h"

class QToolButton;

namespace ovd::ui {

class TransportBar : public QWidget {
  public:
    enum Button { Prev, Next, Play, Pause, Back, Step, Stop, Record };
    static constexpr int kButtons = 8;

    explicit TransportBar(QWidget* parent = nullptr);

    void render(const dictation::TransportBar& bar, bool captionsVisible);
    // With no file Record is greyed; its tip says what to do first.
    void showNoFile(bool noFile);
    [[nodiscard]] QToolButton* button(Button which) const { return buttons_[which]; }

    // What a click on each button calls.
    std::array<std::function<void()>, kButtons> onClick;

  private:
    std::array<QToolButton*, kButtons> buttons_{};
};

}  // namespace ovd::ui
