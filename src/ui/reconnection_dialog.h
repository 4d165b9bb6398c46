#pragma once
// frmTCPReConnection on screen: the peer link's reconnection dialog. It shows what
// the link's view of it says, stands a little in from the main window's corner,
// and hands its two buttons back to the link. Modal means the rest of the station
// takes no clicks while it stands; the station's loop keeps running.

#include <QDialog>
#include <QPointer>

#include "delivery/peer_link.h"

class QLabel;
class QPushButton;

namespace ovd::ui {

class ReconnectionDialogWindow : public QDialog {
  public:
    ReconnectionDialogWindow(delivery::PeerLink& link, QWidget* mainWindow);

    // Shows, redraws or hides the dialog as the link's view now says.
    void render();

    QLabel* waitText() const { return waitText_; }                 // lblWait
    QPushButton* okButton() const { return okButton_; }            // cmdOK
    QPushButton* connectButton() const { return connectButton_; }  // cmdConnect

  protected:
    // The window's close box is the OK button, and only while the buttons show.
    void reject() override;

  private:
    delivery::PeerLink& link_;
    QPointer<QWidget> mainWindow_;
    QLabel* waitText_;
    QPushButton* okButton_;
    QPushButton* connectButton_;
};

// Without a window nobody can choose: the dialog's default, OK, is taken as soon
// as it asks, which keeps the queue for the next attempt.
void answerReconnectionHeadless(delivery::PeerLink& link, platform::EventLoop& loop);

}  // namespace ovd::ui
