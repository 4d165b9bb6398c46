#include "ui/end_of_letter_options_window.h"

#include <QCheckBox>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

namespace ovd::ui {

EndOfLetterOptionsWindow::EndOfLetterOptionsWindow(configuration::EndOfLetterOptions& model,
                                                   QWidget* parent)
    : QDialog(parent), model_(model) {
    setObjectName("frmEOLOptions");
    setWindowTitle(QString::fromLatin1(configuration::kEndOfLetterOptionsTitle));
    setModal(true);
    model_.load();
    auto* column = new QVBoxLayout(this);
    hotKeyArea_ = new QGroupBox(tr("Hot Keys"), this);
    hotKeyArea_->setObjectName("Frame3");
    hotKeyArea_->setLayout(new QVBoxLayout);
    hotKeyArea_->hide();
    column->addWidget(hotKeyArea_);
    auto* exitAtEnd = new QCheckBox(QString::fromLatin1(configuration::kExitAtEOLCaption), this);
    exitAtEnd->setObjectName("chkExitAtEOL");
    exitAtEnd->setChecked(model_.exitAtEndOfLetter());
    column->addWidget(exitAtEnd);
    auto* buttons = new QHBoxLayout;
    auto* ok = new QPushButton(tr("OK"), this);
    ok->setObjectName("Command1");
    auto* apply = new QPushButton(tr("Apply"), this);
    apply->setObjectName("cmdApply");
    auto* cancel = new QPushButton(tr("Cancel"), this);
    cancel->setObjectName("Command2");
    buttons->addStretch();
    buttons->addWidget(ok);
    buttons->addWidget(apply);
    buttons->addWidget(cancel);
    column->addLayout(buttons);
    apply->setEnabled(model_.applyEnabled());
    connect(exitAtEnd, &QCheckBox::clicked, this, [this, apply](bool on) {
        model_.setExitAtEndOfLetter(on);
        apply->setEnabled(model_.applyEnabled());
    });
    connect(apply, &QPushButton::clicked, this, [this, apply] {
        model_.ok();
        apply->setEnabled(model_.applyEnabled());
    });
    connect(ok, &QPushButton::clicked, this, [this] {
        model_.ok();
        accept();
    });
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
}

}  // namespace ovd::ui
