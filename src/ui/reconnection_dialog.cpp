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
    lblWait_ = new QLabel;
    lblWait_->setTextFormat(Qt::PlainText);
    lblWait_->setAlignment(Qt::AlignCenter);
    column->addWidget(lblWait_);
    auto* row = new QHBoxLayout;
    cmdOK_ = new QPushButton("OK");
    cmdConnect_ = new QPushButton("Connect");
    row->addStretch();
    row->addWidget(cmdOK_);
    row->addWidget(cmdConnect_);
    column->addLayout(row);
    cmdOK_->setDefault(true);
    connect(cmdOK_, &QPushButton::clicked, this, [this] { link_.okClicked(); });
    connect(cmdConnect_, &QPushButton::clicked, this, [this] { link_.connectClicked(); });
    setMinimumWidth(360);
}

void ReconnectionDialogWindow::render() {
    const delivery::ReconnectionDialog& view = link_.frmTCPReConnection;
    if (!view.loaded) {
        hide();
        return;
    }
    lblWait_->setText(QString::fromStdString(view.lblWait));
    cmdOK_->setVisible(view.cmdOKVisible);
    cmdConnect_->setVisible(view.cmdConnectVisible);
    const Qt::WindowModality modality = view.modal ? Qt::ApplicationModal : Qt::NonModal;
    if (windowModality() != modality) {
        // Modality is taken when the window is shown.
        hide();
        setWindowModality(modality);
    }
    if (mainWindow_ != nullptr) {
        move(mainWindow_->frameGeometry().topLeft() +
             QPoint(delivery::ReconnectionDialog::kOffsetPixels, delivery::ReconnectionDialog::kOffsetPixels));
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
            if (link.frmTCPReConnection.loaded && link.frmTCPReConnection.cmdOKVisible) link.okClicked();
        });
    };
}

}  // namespace ovd::ui
