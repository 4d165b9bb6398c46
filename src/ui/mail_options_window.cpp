#include "ui/mail_options_window.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include "ui/record_window_parts.h"

namespace ovd::ui {

using mail::SenderSettings;

MailOptionsWindow::MailOptionsWindow(const settings::CompanyRecords& records,
                                     platform::Prompts& prompts, QWidget* parent)
    : QDialog(parent), form_(records, prompts) {
    setObjectName("frmOptions");
    setWindowTitle(tr("Email Options"));
    setMinimumWidth(480);
    form_.Form_Load();
    auto* layout = new QVBoxLayout(this);

    auto* sender = new QFormLayout;
    identity_ = new QComboBox;
    identity_->setObjectName("cboSenderAddress");
    const auto identities = form_.identities();
    for (std::size_t i = 0; i < identities.size(); ++i) {
        identity_->addItem(identities[i].empty() ? tr("(account %1 not set up)").arg(i + 1)
                                                 : fromText(identities[i]));
    }
    sender->addRow(tr("Send as"), identity_);
    addBox(sender, "txtSenderAddress", tr("Sender address"), &SenderSettings::g_strSenderAddress);
    layout->addLayout(sender);

    auto* outgoing = new QGroupBox(tr("Outgoing mail"));
    auto* outgoingFields = new QFormLayout(outgoing);
    relay_ = new QRadioButton(tr(mail::kRelayOptionText));
    relay_->setObjectName("optServerRelay");
    direct_ = new QRadioButton(tr(mail::kDirectOptionText));
    direct_->setObjectName("optServerDirect");
    outgoingFields->addRow(relay_);
    outgoingFields->addRow(direct_);
    addBox(outgoingFields, "txtRelayServer", tr("Relay Server (outgoing)"),
           &SenderSettings::g_strRelayServer);
    addBox(outgoingFields, "txtRelayPort", tr("Relay Server Port"), &SenderSettings::g_nRelayPort);
    security_ = new QComboBox;
    security_->setObjectName("cboSecurity");
    security_->addItems({tr("None"), tr("STARTTLS"), tr("TLS (port 465)")});
    outgoingFields->addRow(tr("Connection security"), security_);
    addBox(outgoingFields, "txtSmtpUser", tr("SMTP user name"), &SenderSettings::smtpUser);
    addBox(outgoingFields, "txtSmtpPassword", tr("SMTP password"), &SenderSettings::smtpPassword,
           true);
    addBox(outgoingFields, "txtCertificate", tr("Trusted certificate (PEM)"),
           &SenderSettings::pinnedCertificateFile);
    layout->addWidget(outgoing);

    auto* incoming = new QGroupBox(tr("POP3 Server (incoming)"));
    auto* incomingFields = new QFormLayout(incoming);
    authentication_ = new QCheckBox(tr("Log in to the POP3 server before sending"));
    authentication_->setObjectName("chkServerAuthentication");
    incomingFields->addRow(authentication_);
    addBox(incomingFields, "txtPOPServer", tr("POP3 Server"), &SenderSettings::g_POPServer);
    addBox(incomingFields, "txtPOPPort", tr("POP3 Port"), &SenderSettings::g_POPPort);
    addBox(incomingFields, "txtPOPUserName", tr("Username"), &SenderSettings::g_POPUserName);
    addBox(incomingFields, "txtPOPPassword", tr("Password"), &SenderSettings::g_POPPassword, true);
    addBox(incomingFields, "txtPOPTimeOut", tr("Time-out (seconds)"),
           &SenderSettings::g_POPTimeOut);
    layout->addWidget(incoming);

    encrypt_ = new QCheckBox(tr("Encrypt attachments"));
    encrypt_->setObjectName("chkEncryptDecrypt");
    layout->addWidget(encrypt_);

    auto* buttons = new QDialogButtonBox;
    QPushButton* ok = buttons->addButton(QDialogButtonBox::Ok);
    ok->setObjectName("cmdOK");
    QPushButton* apply = buttons->addButton(QDialogButtonBox::Apply);
    apply->setObjectName("cmdApply");
    QPushButton* cancel = buttons->addButton(QDialogButtonBox::Cancel);
    cancel->setObjectName("cmdCancel");
    layout->addWidget(buttons);

    connect(identity_, &QComboBox::activated, this, [this](int index) {
        take();
        form_.chooseIdentity(index + 1);
        render();
    });
    connect(relay_, &QRadioButton::clicked, this, [this] {
        take();
        form_.chooseRelay(true);
        render();
    });
    connect(direct_, &QRadioButton::clicked, this, [this] {
        take();
        form_.chooseRelay(false);
        render();
    });
    connect(authentication_, &QCheckBox::clicked, this, [this](bool on) {
        take();
        form_.setServerAuthentication(on);
        render();
    });
    connect(ok, &QPushButton::clicked, this, [this] {
        take();
        if (form_.cmdOK()) accept();
    });
    connect(apply, &QPushButton::clicked, this, [this] {
        take();
        form_.cmdApply();
    });
    connect(cancel, &QPushButton::clicked, this, [this] { reject(); });
    render();
}

QLineEdit* MailOptionsWindow::addBox(QFormLayout* fields, const char* control, const QString& label,
                                     std::string mail::SenderSettings::*field, bool secret) {
    auto* edit = new QLineEdit;
    edit->setObjectName(control);
    if (secret) edit->setEchoMode(QLineEdit::Password);
    fields->addRow(label, edit);
    boxes_.emplace_back(edit, field);
    return edit;
}

QLineEdit* MailOptionsWindow::box(const char* control) const {
    for (const auto& [edit, field] : boxes_) {
        if (edit->objectName() == control) return edit;
    }
    return nullptr;
}

void MailOptionsWindow::take() {
    for (const auto& [edit, field] : boxes_) form_.boxes.*field = toText(edit->text());
    form_.boxes.g_bEncryptDecrypt = encrypt_->isChecked();
    form_.boxes.security = static_cast<mail::Security>(security_->currentIndex());
}

void MailOptionsWindow::render() {
    for (const auto& [edit, field] : boxes_) showText(edit, form_.boxes.*field);
    const QSignalBlocker quiet(this);
    relay_->setChecked(form_.boxes.g_bRelayMessages);
    direct_->setChecked(!form_.boxes.g_bRelayMessages);
    authentication_->setChecked(form_.boxes.g_chkServerAuthentication);
    encrypt_->setChecked(form_.boxes.g_bEncryptDecrypt);
    security_->setCurrentIndex(static_cast<int>(form_.boxes.security));
    const int account = mail::accountOf(form_.boxes.g_strCameFrom);
    if (account > 0) identity_->setCurrentIndex(account - 1);
}

}  // namespace ovd::ui
