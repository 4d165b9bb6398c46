#include "ui/key_records_window.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QVBoxLayout>

namespace ovd::ui {

KeyRecordsPanel::KeyRecordsPanel(settings::KeyRecordsForm& form, QWidget* parent)
    : QWidget(parent), form_(form) {
    auto* fields = new QFormLayout(this);
    fields->setContentsMargins(0, 0, 0, 0);
    names_ = new QComboBox;
    names_->setObjectName("cboName");
    names_->setEditable(true);
    names_->setInsertPolicy(QComboBox::NoInsert);
    fields->addRow(tr("Name"), names_);
    key_ = addRecordBox(fields, "txtKey", tr("Key"), tr("Enter the Encryption Key"));
    connect(names_, &QComboBox::textActivated, this, [this](const QString& text) {
        form_.chooseName(toText(text));
        render();
    });
    connect(names_->lineEdit(), &QLineEdit::textEdited, this,
            [this](const QString& text) { form_.setName(toText(text)); });
    connect(key_.edit, &QLineEdit::editingFinished, this, [this] {
        takeTypedKey();
        render();
    });
    fillNames();
    render();
}

void KeyRecordsPanel::fillNames() {
    names_->clear();
    for (const auto& name : form_.names()) names_->addItem(fromText(name));
    names_->setCurrentText(fromText(form_.name()));
}

void KeyRecordsPanel::render() {
    if (names_->currentText() != fromText(form_.name()))
        names_->setCurrentText(fromText(form_.name()));
    showText(key_.edit, form_.key());
    key_.edit->setReadOnly(!form_.keyEditable());
}

bool KeyRecordsPanel::takeTypedKey() {
    const std::string typed = toText(key_.edit->text());
    if (!form_.keyEditable() || typed == form_.key()) return true;
    if (form_.enterKey(typed)) return true;
    showText(key_.edit, form_.key());
    return false;
}

KeyRecordsWindow::KeyRecordsWindow(const std::string& dataFolder, platform::Prompts& prompts,
                                   QWidget* parent)
    : QDialog(parent), form_(dataFolder, prompts) {
    setObjectName("frmPasswords");
    setWindowTitle(tr("Decryption Keys"));
    setMinimumWidth(440);
    form_.Form_Load();
    auto* layout = new QVBoxLayout(this);
    panel_ = new KeyRecordsPanel(form_);
    layout->addWidget(panel_);
    auto* tools = new QHBoxLayout;
    connect(addButton(tools, settings::kEditEncryptionKeyCommand, tr("Edit Encryption Key")),
            &QPushButton::clicked, this, [this] {
                form_.editEncryptionKey();
                panel_->render();
            });
    tools->addStretch();
    connect(addButton(tools, "cmdSave", tr("&Save")), &QPushButton::clicked, this,
            [this] { save(); });
    connect(addButton(tools, "cmdDelete", tr("&Delete")), &QPushButton::clicked, this,
            [this] { deleteRecord(); });
    connect(addButton(tools, "cmdClose", tr("&Close")), &QPushButton::clicked, this,
            [this] { reject(); });
    layout->addLayout(tools);
}

void KeyRecordsWindow::save() {
    if (!panel_->takeTypedKey()) return;
    if (form_.save()) panel_->fillNames();
    panel_->render();
}

void KeyRecordsWindow::deleteRecord() {
    if (form_.deleteRecord()) panel_->fillNames();
    panel_->render();
}

void KeyRecordsWindow::done(int result) {
    panel_->takeTypedKey();
    if (!form_.requestClose()) return;
    QDialog::done(result);
}

}  // namespace ovd::ui
