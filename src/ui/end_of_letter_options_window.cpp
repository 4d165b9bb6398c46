#include "ui/end_of_letter_options_window.h"

#include <QCheckBox>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

#include "ui/hot_key_options_window.h"

namespace ovd::ui {

EndOfLetterOptionsWindow::EndOfLetterOptionsWindow(configuration::EndOfLetterOptions& model,
                                                   devices::HotKeyOptionsForm& hotKeys,
                                                   QWidget* parent)
    : QDialog(parent), model_(model), hotKeys_(hotKeys) {
    setObjectName("frmEOLOptions");
    setWindowTitle(QString::fromLatin1(configuration::kEndOfLetterOptionsTitle));
    setModal(true);
    model_.load();
    auto* column = new QVBoxLayout(this);
    hotKeySection_ = new HotKeyOptionsSection(hotKeys_, this);
    column->addWidget(hotKeySection_);
    auto* exitAtEnd = new QCheckBox(QString::fromLatin1(configuration::kExitAtEOLCaption), this);
    exitAtEnd->setObjectName("chkExitAtEOL");
    exitAtEnd->setChecked(model_.exitAtEndOfLetter());
    column->addWidget(exitAtEnd);
    auto* buttons = new QHBoxLayout;
    auto* ok = new QPushButton(tr("OK"), this);
    ok->setObjectName("Command1");
    apply_ = new QPushButton(tr("Apply"), this);
    apply_->setObjectName("cmdApply");
    auto* cancel = new QPushButton(tr("Cancel"), this);
    cancel->setObjectName("Command2");
    buttons->addStretch();
    buttons->addWidget(ok);
    buttons->addWidget(apply_);
    buttons->addWidget(cancel);
    column->addLayout(buttons);
    refreshApply();
    hotKeySection_->onChanged = [this] { refreshApply(); };
    connect(exitAtEnd, &QCheckBox::clicked, this, [this](bool on) {
        model_.setExitAtEndOfLetter(on);
        refreshApply();
    });
    connect(apply_, &QPushButton::clicked, this, [this] { applyBoth(); });
    connect(ok, &QPushButton::clicked, this, [this] {
        applyBoth();
        accept();
    });
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
}

void EndOfLetterOptionsWindow::applyBoth() {
    model_.ok();
    // The hot key's apply writes the settings record, the exit option included.
    hotKeys_.apply();
    refreshApply();
}

void EndOfLetterOptionsWindow::refreshApply() {
    apply_->setEnabled(model_.applyEnabled() || hotKeys_.applyEnabled);
}

}  // namespace ovd::ui
