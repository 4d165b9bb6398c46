#include "ui/email_receivers_window.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QVBoxLayout>

namespace ovd::ui {

EmailReceiversWindow::EmailReceiversWindow(const settings::CompanyRecords& records,
                                           platform::Prompts& prompts, QWidget* parent)
    : QDialog(parent), form_(records, prompts) {
    setObjectName("frmEmailSetup");
    setWindowTitle(tr("Email Receivers"));
    setMinimumWidth(440);
    form_.Form_Load();
    auto* layout = new QVBoxLayout(this);
    auto* fields = new QFormLayout;
    companies_ = new QComboBox;
    companies_->setObjectName("cboCo");
    companies_->setEditable(true);
    companies_->setInsertPolicy(QComboBox::NoInsert);
    fields->addRow(tr("Company"), companies_);
    email_ = addRecordBox(fields, "txtEmail", tr("Email Address"),
                          tr("Enter Transcriber Email Address"));
    key_ = addRecordBox(fields, "cboRecKey", tr("Encryption Key"),
                        tr("Enter Transcriber Encryption Key"));
    initials_ = new QLabel;
    initials_->setObjectName("lblINITS");
    fields->addRow(tr("Key Characters"), initials_);
    default_ = new QLabel;
    default_->setObjectName("lblDefault");
    fields->addRow(tr("Default Receiver"), default_);
    layout->addLayout(fields);
    markRequired(email_, true);

    connect(companies_, &QComboBox::textActivated, this, [this](const QString& text) {
        form_.chooseCompany(toText(text));
        render();
    });
    connect(companies_->lineEdit(), &QLineEdit::textEdited, this,
            [this](const QString& text) { form_.receiver.EmailCompanyName = toText(text); });
    connect(email_.edit, &QLineEdit::textEdited, this,
            [this](const QString& text) { form_.receiver.EmailEmailAddress = toText(text); });
    connect(key_.edit, &QLineEdit::editingFinished, this, [this] {
        takeTypedKey();
        render();
    });

    auto* buttons = new QHBoxLayout;
    connect(addButton(buttons, settings::kEditEncryptionKeyCommand, tr("Edit Encryption Key")),
            &QPushButton::clicked, this, [this] {
                form_.editEncryptionKey();
                render();
            });
    buttons->addStretch();
    connect(addButton(buttons, "cmdSave", tr("&Save")), &QPushButton::clicked, this,
            [this] { save(); });
    connect(addButton(buttons, "cmdDelete", tr("&Delete")), &QPushButton::clicked, this,
            [this] { deleteReceiver(); });
    connect(addButton(buttons, "cmdDefault", tr("Make &Default")), &QPushButton::clicked, this,
            [this] { makeDefault(); });
    connect(addButton(buttons, "cmdClose", tr("&Close")), &QPushButton::clicked, this,
            [this] { reject(); });
    layout->addLayout(buttons);
    fillCompanies();
    render();
}

void EmailReceiversWindow::fillCompanies() {
    companies_->clear();
    for (const auto& name : form_.companies()) companies_->addItem(fromText(name));
    companies_->setCurrentText(fromText(form_.receiver.EmailCompanyName));
}

void EmailReceiversWindow::render() {
    if (companies_->currentText() != fromText(form_.receiver.EmailCompanyName)) {
        companies_->setCurrentText(fromText(form_.receiver.EmailCompanyName));
    }
    showText(email_.edit, form_.receiver.EmailEmailAddress);
    showText(key_.edit, form_.receiver.EmailEncryptKey);
    key_.edit->setReadOnly(!form_.keyEditable());
    initials_->setText(fromText(form_.receiver.EmailINITS));
    default_->setText(fromText(form_.defaultReceiver()));
}

bool EmailReceiversWindow::takeTypedKey() {
    const std::string typed = toText(key_.edit->text());
    if (!form_.keyEditable() || typed == form_.receiver.EmailEncryptKey) return true;
    if (form_.enterKey(typed)) return true;
    showText(key_.edit, form_.receiver.EmailEncryptKey);
    return false;
}

void EmailReceiversWindow::save() {
    if (!takeTypedKey()) return;
    if (form_.save()) fillCompanies();
    render();
}

void EmailReceiversWindow::deleteReceiver() {
    if (form_.deleteReceiver()) fillCompanies();
    render();
}

void EmailReceiversWindow::makeDefault() {
    form_.makeDefault();
    render();
}

}  // namespace ovd::ui
