#include "ui/hot_key_options_window.h"

#include <QCheckBox>
#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

namespace ovd::ui {

namespace {

void fill(QComboBox* box, const std::vector<std::string>& names, const std::string& chosen) {
    for (const std::string& name : names) box->addItem(QString::fromStdString(name));
    box->setCurrentIndex(box->findText(QString::fromStdString(chosen)));
}

}  // namespace

HotKeyOptionsSection::HotKeyOptionsSection(devices::HotKeyOptionsForm& form, QWidget* parent)
    : QGroupBox(tr("End of Letter Hot Key"), parent), form_(form) {
    auto* column = new QVBoxLayout(this);
    auto* row = new QHBoxLayout;
    keys_ = new QComboBox;
    keys_->setObjectName("Combo9");
    modifiers_ = new QComboBox;
    modifiers_->setObjectName("Combo10");
    fill(keys_, form_.keyNames(), form_.key);
    fill(modifiers_, form_.modifierNames(), form_.modifier);
    row->addWidget(modifiers_);
    row->addWidget(keys_);
    column->addLayout(row);
    disableAll_ = new QCheckBox(QString::fromLatin1(devices::kDisableAllHotKeysCaption));
    disableAll_->setObjectName("Check3");
    disableAll_->setChecked(form_.disableAll);
    column->addWidget(disableAll_);
    scope_ = new QGroupBox;
    scope_->setObjectName("Frame3");
    auto* scopeColumn = new QVBoxLayout(scope_);
    system_ = new QRadioButton(QString::fromStdString(form_.systemCaption()));
    local_ = new QRadioButton(QString::fromStdString(form_.localCaption()));
    system_->setChecked(form_.systemWide);
    local_->setChecked(!form_.systemWide);
    scopeColumn->addWidget(system_);
    scopeColumn->addWidget(local_);
    column->addWidget(scope_);
    reason_ = new QLabel(QString::fromStdString(form_.systemUnavailableReason()));
    reason_->setTextFormat(Qt::PlainText);
    reason_->setWordWrap(true);
    reason_->setVisible(!form_.systemAvailable());
    column->addWidget(reason_);
    // Where keys can't be heard from other programs, only the station's own
    // windows are offered, and the choice is not the user's to make.
    if (!form_.systemAvailable()) {
        system_->setEnabled(false);
        scope_->setEnabled(false);
    }

    const auto changed = [this] {
        form_.key = keys_->currentText().toStdString();
        form_.modifier = modifiers_->currentText().toStdString();
        form_.disableAll = disableAll_->isChecked();
        form_.systemWide = system_->isChecked();
        form_.changed();
        if (onChanged) onChanged();
    };
    connect(keys_, &QComboBox::currentIndexChanged, this, changed);
    connect(modifiers_, &QComboBox::currentIndexChanged, this, changed);
    connect(disableAll_, &QCheckBox::toggled, this, changed);
    connect(system_, &QRadioButton::toggled, this, changed);
}

}  // namespace ovd::ui
