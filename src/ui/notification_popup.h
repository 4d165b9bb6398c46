#pragma once
// The passive pop-up: a small frameless window in the bottom-right corner of the
// screen that never takes the focus from the dictation, shows a title, a bold
// heading and the body in the colours asked for, and closes itself after its time.
// A click closes it at once.

#include <QFrame>

#include "platform/prompts.h"

class QLabel;

namespace ovd::ui {

class NotificationPopup : public QFrame {
  public:
    explicit NotificationPopup(const platform::Notification& notification,
                               QWidget* parent = nullptr);

    // Shows the pop-up at the bottom right of the screen, lifted by `raisedBy` pixels
    // (so several can stand one above the other), starts its countdown and plays its
    // sound. The pop-up deletes itself once it closes.
    void present(int raisedBy = 0);

    [[nodiscard]] QString titleText() const;
    [[nodiscard]] QString headingText() const;
    [[nodiscard]] QString bodyText() const;

  protected:
    void mousePressEvent(QMouseEvent* event) override;

  private:
    void playSound() const;

    QLabel* title_;
    QLabel* heading_;
    QLabel* body_;
    QString soundFile_;
    int showMilliseconds_;
};

}  // namespace ovd::ui
