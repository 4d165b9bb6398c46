#include "ui/reconnection_dialog.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "ui/window_placement.h"

namespace ovd::ui {

ReconnectionDialogWindow::ReconnectionDialogWindow(delivery::PeerLink& link, QWidget* mainWindow)
    : QDialog(mainWindow), link_(link), mainWindow_(mainWindow) {
    setWindowTitle(delivery::ReconnectionDialog::Caption);
    auto* column = new QVBoxLayout(this);
    waitText_ = new QLabel;
    waitText_->setTextFormat(Qt::PlainText);
    waitText_->setAlignment(Qt::AlignCenter);
    column->addWidget(waitText_);
    auto* row = new QHBoxLayout;
    okButton_ = new QPushButton("OK");
    connectButton_ = new QPushButton("Connect");
    row->addStretch();
    row->addWidget(okButton_);
    row->addWidget(connectButton_);
    column->addLayout(row);
    okButton_->setDefault(true);
    connect(okButton_, &QPushButton::clicked, this, [this] { link_.okClicked(); });
    connect(connectButton_, &QPushButton::clicked, this, [this] { link_.connectClicked(); });
    setMinimumWidth(360);
}

void ReconnectionDialogWindow::render() {
    const delivery::ReconnectionDialog& view = link_.frmTCPReConnection;
    if (!view.loaded) {
        hide();
        return;
    }
    waitText_->setText(QString::fromStdString(view.lblWait));
    okButton_->setVisible(view.cmdOKVisible);
    connectButton_->setVisible(view.cmdConnectVisible);
    const Qt::WindowModality modality = view.modal ? Qt::ApplicationModal : Qt::NonModal;
    if (windowModality() != modality) {
        // Modality is taken when the window is shown.
        hide();
        setWindowModality(modality);
    }
    if (mainWindow_ != nullptr) {
        move(mainWindow_->frameGeometry().topLeft() +
             QPoint(delivery::ReconnectionDialog::kOffsetPixels,
                    delivery::ReconnectionDialog::kOffsetPixels));
    }
    if (!isVisible()) {
        keepAboveStation(*this, mainWindow_);
        show();
    }
    raise();
}

void ReconnectionDialogWindow::reject() {
    if (link_.frmTCPReConnection.cmdOKVisible) link_.okClicked();
}

void answerReconnectionHeadless(delivery::PeerLink& link, platform::EventLoop& loop) {
    link.onDialogChanged = [&link, &loop] {
        const delivery::ReconnectionDialog& view = link.frmTCPReConnection;
        if (!view.loaded || !view.cmdOKVisible) return;
        // After the routine that opened it has finished, as a click would come.
        loop.postFromAnyThread([&link] {
            if (link.frmTCPReConnection.loaded && link.frmTCPReConnection.cmdOKVisible)
                link.okClicked();
        });
    };
}

}  // namespace ovd::ui
