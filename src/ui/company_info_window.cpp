#include "ui/company_info_window.h"

#include <QComboBox>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QVBoxLayout>

#include "settings/config_file.h"

namespace ovd::ui {

CompanyInfoWindow::CompanyInfoWindow(const settings::CompanyRecords& records,
                                     platform::Prompts& prompts, QWidget* parent)
    : QDialog(parent), records_(records), prompts_(prompts), form_(records, prompts) {
    setObjectName("frmCompInfo");
    setWindowTitle(tr("Company and Mail Information"));
    setMinimumWidth(640);
    auto* layout = new QVBoxLayout(this);
    auto* columns = new QHBoxLayout;
    auto* company = new QGroupBox(tr("Company"));
    auto* companyFields = new QFormLayout(company);
    for (const auto& item : settings::kOurCompanyBoxes) {
        const std::string control = item.control;
        RecordBox made = addRecordBox(companyFields, item.control, fromText(item.key));
        connect(made.edit, &QLineEdit::textEdited, this, [this, control](const QString& text) {
            if (control != "txtKeyInfo") form_.setText(control, toText(text));
        });
        boxes_[control] = made;
    }
    connect(box("txtKeyInfo"), &QLineEdit::editingFinished, this, [this] {
        const std::string typed = toText(box("txtKeyInfo")->text());
        if (typed != form_.text("txtKeyInfo") && !form_.enterKey(typed)) {
            showText(box("txtKeyInfo"), form_.text("txtKeyInfo"));
        }
        render();
    });
    columns->addWidget(company);

    auto* mail = new QGroupBox(tr("Mail Account"));
    auto* mailFields = new QFormLayout(mail);
    account_ = new QComboBox;
    account_->setObjectName("cboAccount");
    for (int number = 1; number <= settings::kMailAccounts; ++number) {
        account_->addItem(QString::number(number));
    }
    mailFields->addRow(tr("Account"), account_);
    for (std::size_t i = 0; i < settings::kMailSenderKeys.size(); ++i) {
        const std::string key(settings::kMailSenderKeys[i]);
        sender_[i] = addRecordBox(mailFields, key.c_str(), fromText(key)).edit;
        if (key == "PassPopServer") sender_[i]->setEchoMode(QLineEdit::Password);
    }
    connect(account_, &QComboBox::currentIndexChanged, this, [this] { showAccount(); });
    columns->addWidget(mail);
    layout->addLayout(columns);

    auto* buttons = new QHBoxLayout;
    connect(addButton(buttons, settings::kEditEncryptionKeyCommand, tr("Edit Encryption Key")),
            &QPushButton::clicked, this, [this] {
                form_.editEncryptionKey();
                render();
            });
    buttons->addStretch();
    connect(addButton(buttons, "cmdSave", tr("&Save")), &QPushButton::clicked, this,
            [this] { save(); });
    connect(addButton(buttons, "cmdClose", tr("&Close")), &QPushButton::clicked, this,
            [this] { reject(); });
    layout->addLayout(buttons);
    form_.focusName = [this] { box("txtName")->setFocus(); };

    form_.Form_Load();
    render();
    showAccount();
}

void CompanyInfoWindow::showAccount() {
    const settings::MailSender sender =
        settings::readMailSender(records_, account_->currentIndex() + 1);
    for (std::size_t i = 0; i < sender.size(); ++i) sender_[i]->setText(fromText(sender[i]));
}

void CompanyInfoWindow::render() {
    for (auto& [control, made] : boxes_) {
        showText(made.edit, form_.text(control));
        markRequired(made, form_.required(control));
    }
    box("txtKeyInfo")->setReadOnly(!form_.keyEditable());
}

void CompanyInfoWindow::save() {
    const std::string typed = toText(box("txtKeyInfo")->text());
    if (form_.keyEditable() && typed != form_.text("txtKeyInfo") && !form_.enterKey(typed)) return;
    if (form_.save()) {
        settings::MailSender sender;
        for (std::size_t i = 0; i < sender.size(); ++i) sender[i] = toText(sender_[i]->text());
        auto written = settings::writeMailSender(records_, account_->currentIndex() + 1, sender);
        if (!written) {
            prompts_.showMessage(written.error(), settings::kProductTitle,
                                 platform::Severity::Critical);
        }
    }
    render();
}

void CompanyInfoWindow::done(int result) {
    if (!form_.requestClose()) return;
    QDialog::done(result);
}

}  // namespace ovd::ui
