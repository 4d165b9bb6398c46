#include "ui/manual_decrypt_window.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

namespace ovd::ui {

ManualDecryptWindow::ManualDecryptWindow(const std::string& dataFolder, platform::Prompts& prompts,
                                         QWidget* parent)
    : QDialog(parent), form_(dataFolder, prompts) {
    setObjectName("frmManuallyDecrypt");
    setWindowTitle(tr("Decrypt a File"));
    setMinimumWidth(440);
    form_.Form_Load();
    auto* layout = new QVBoxLayout(this);
    panel_ = new KeyRecordsPanel(form_.keys);
    layout->addWidget(panel_);
    status_ = new QLabel;
    status_->setObjectName("lblStatus");
    status_->setWordWrap(true);
    layout->addWidget(status_);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    connect(addButton(buttons, "cmdDecrypt", tr("&Decrypt File...")), &QPushButton::clicked, this,
            [this] { decrypt(); });
    save_ = addButton(buttons, "cmdSaveFile", tr("&Save File..."));
    connect(save_, &QPushButton::clicked, this, [this] { saveDecrypted(); });
    connect(addButton(buttons, "cmdClose", tr("&Close")), &QPushButton::clicked, this,
            [this] { reject(); });
    layout->addLayout(buttons);
    render();
}

void ManualDecryptWindow::render() {
    QStringList lines;
    for (const auto& line : form_.status()) lines << fromText(line);
    status_->setText(lines.join(QLatin1Char('\n')));
    save_->setEnabled(!form_.decryptedPath().empty());
}

void ManualDecryptWindow::decrypt() {
    if (!panel_->takeTypedKey()) return;
    form_.decryptChosenFile();
    render();
}

void ManualDecryptWindow::saveDecrypted() {
    form_.saveDecryptedFile();
    render();
}

}  // namespace ovd::ui
