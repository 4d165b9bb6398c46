#include "ui/ftp_setup_window.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QRadioButton>
#include <QVBoxLayout>

#include "ftp/site_connection.h"
#include "ui/record_window_parts.h"

namespace ovd::ui {

namespace {
const char* trueOrFalse(bool on) { return on ? "True" : "False"; }
}  // namespace

FtpSetupWindow::FtpSetupWindow(FtpWindowFace face, const std::string& dataFolder,
                               platform::Prompts& prompts, QWidget* parent)
    : QDialog(parent), records_(dataFolder), form_(records_, prompts) {
    const bool automatic = face == FtpWindowFace::Automatic;
    setObjectName(automatic ? "FTPfrmAutoFTPSetup" : "FTPfrmFTPSetup");
    setWindowTitle(automatic ? tr("Automatic FTP Setup") : tr("FTP Setup"));
    auto* layout = new QVBoxLayout(this);

    auto* chooser = new QFormLayout;
    companies_ = new QComboBox;
    companies_->setObjectName("cboCompany");
    chooser->addRow(tr("Transcriber:"), companies_);
    layout->addLayout(chooser);

    auto* siteBox = new QGroupBox(tr("FTP Site"));
    auto* site = new QFormLayout(siteBox);
    addLine(site, "txtServerDesc", "FTPDescription", tr("Description:"));
    addLine(site, "txtServer", "FTPServer", tr("Server:"));
    addLine(site, "txtServerPort", "FTPPort", tr("Port:"));
    addLine(site, "txtUser", "FTPUserName", tr("User name:"));
    addLine(site, "txtPassword", "FTPPassword", tr("Password:"), /*secret=*/true);
    security_ = new QComboBox;
    security_->setObjectName("cboSecurity");
    security_->addItems({tr("FTP"), tr("FTPS (explicit TLS)"), tr("SFTP")});
    site->addRow(tr("Security:"), security_);
    addLine(site, "txtPinnedCert", ftp::kSitePinnedCertificateKey, tr("Trusted certificate:"));
    auto* modes = new QHBoxLayout;
    active_ = new QRadioButton(tr("Active"));
    active_->setObjectName("optActive");
    passive_ = new QRadioButton(tr("Passive"));
    passive_->setObjectName("optPassive");
    modes->addWidget(active_);
    modes->addWidget(passive_);
    site->addRow(tr("Mode:"), modes);
    auto* types = new QHBoxLayout;
    auto* typeGroup = new QWidget;
    typeGroup->setLayout(types);
    ascii_ = new QRadioButton(tr("ASCII"));
    ascii_->setObjectName("optAscii");
    binary_ = new QRadioButton(tr("Binary"));
    binary_->setObjectName("optBin");
    types->setContentsMargins(0, 0, 0, 0);
    types->addWidget(ascii_);
    types->addWidget(binary_);
    site->addRow(tr("Transfer:"), typeGroup);
    addCheck(site, "ProxyCheck", "FTPUseProxyServer", tr("Use a proxy server"));
    addLine(site, "txtProxyAddr", "FTPProxyAddress", tr("Proxy address:"));
    addLine(site, "txtProxyPort", "FTPProxyPort", tr("Proxy port:"));
    addCheck(site, "chkEncrypt", "FTPEncryptOption", tr("Encrypt files sent to this site"));
    addLine(site, "txtEncryptKey", "FTPEncryptKey", tr("Encryption key:"), /*secret=*/true);
    layout->addWidget(siteBox);

    if (automatic) {
        auto* rulesBox = new QGroupBox(tr("Schedule and Rules"));
        auto* rules = new QFormLayout(rulesBox);
        addCheck(rules, "ASchedCheck", "FTPAutoScheduler", tr("Run on a schedule"));
        addLine(rules, "txtASched", "FTPAutoSchedulerMinutes", tr("Minutes between runs:"));
        addCheck(rules, "ULoadCheck", "FTPUFLMOption", tr("Upload files"));
        addLine(rules, "txtULoadLocal", "FTPUFLMUploadFrom", tr("Upload from:"));
        addLine(rules, "txtULoadRemote", "FTPUFLMRemotePath", tr("Remote folder:"));
        addLine(rules, "txtULoadSpec", "FTPUFLMFileSpec", tr("File spec:"));
        addCheck(rules, "AULoadCheck", "FTPUFLMMoveLocalAfterUploadOption",
                 tr("Move files after upload"));
        addLine(rules, "txtAULoadLocal", "FTPUFLMMoveTO", tr("Move to:"));
        addCheck(rules, "DLoadCheck", "FTPDFRSOption", tr("Download files"));
        addLine(rules, "txtDLoadRemote", "FTPDFRSRemotePath", tr("Remote folder:"));
        addLine(rules, "txtDLoadLocal", "FTPDFRSDownloadTo", tr("Download to:"));
        addLine(rules, "txtDLoadSpec", "FTPDFRSFileSpec", tr("File spec:"));
        addCheck(rules, "DDLoadCheck", "FTPDFRSDelete", tr("Delete from the site after download"));
        layout->addWidget(rulesBox);
    }

    auto* buttons = new QHBoxLayout;
    QObject::connect(addButton(buttons, "cmdSave", tr("&Save")), &QPushButton::clicked, this,
                     [this] { save(); });
    QObject::connect(addButton(buttons, "cmdDefault", tr("Use as &Default Site")),
                     &QPushButton::clicked, this, [this] {
                         takeBoxes();
                         form_.makeDefaultSite();
                     });
    QObject::connect(addButton(buttons, "cmdClose", tr("&Close")), &QPushButton::clicked, this,
                     &QDialog::reject);
    layout->addLayout(buttons);

    form_.Form_Load();
    for (const std::string& name : form_.companies()) companies_->addItem(fromText(name));
    companies_->setCurrentIndex(companies_->findText(fromText(form_.company())));
    QObject::connect(companies_, &QComboBox::textActivated, this,
                     [this](const QString& name) { chooseCompany(name); });
    render();
}

void FtpSetupWindow::addLine(QFormLayout* layout, const char* control, const char* key,
                             const QString& label, bool secret) {
    auto* edit = new QLineEdit;
    edit->setObjectName(control);
    if (secret) edit->setEchoMode(QLineEdit::Password);
    layout->addRow(label, edit);
    lines_[key] = edit;
}

void FtpSetupWindow::addCheck(QFormLayout* layout, const char* control, const char* key,
                              const QString& label) {
    auto* check = new QCheckBox(label);
    check->setObjectName(control);
    layout->addRow(QString(), check);
    checks_[key] = check;
}

void FtpSetupWindow::chooseCompany(const QString& name) {
    if (form_.GetInfoForCrypt(toText(name))) render();
}

void FtpSetupWindow::render() {
    for (const auto& [key, edit] : lines_) showText(edit, form_.field(key));
    for (const auto& [key, check] : checks_) {
        check->setChecked(ftp::recordOptionOn(form_.field(key)));
    }
    security_->setCurrentIndex(static_cast<int>(ftp::schemeFromText(form_.field("FTPSecurity"))));
    const ftp::SiteConnection site = [this] {
        settings::TranscriberRecord record;
        for (const std::string_view key : ftp::kFtpSetupKeys) record.set(key, form_.field(key));
        // Only the mode and transfer type are read here: no folder is needed.
        return ftp::connectionFor(record, {});
    }();
    (site.settings.passiveMode ? passive_ : active_)->setChecked(true);
    (site.settings.transferType == ftp::TransferType::Ascii ? ascii_ : binary_)->setChecked(true);
}

void FtpSetupWindow::takeBoxes() {
    for (const auto& [key, edit] : lines_) form_.setField(key, toText(edit->text()));
    for (const auto& [key, check] : checks_) {
        // A box never ticked stays unwritten, so an untouched record keeps its text.
        if (check->isChecked() != ftp::recordOptionOn(form_.field(key))) {
            form_.setField(key, trueOrFalse(check->isChecked()));
        }
    }
    form_.setField("FTPSecurity",
                   ftp::schemeText(static_cast<ftp::SiteScheme>(security_->currentIndex())));
    form_.setField("FTPMode", active_->isChecked() ? ftp::kActiveMode : ftp::kPassiveMode);
    form_.setField("FTPTranferMode",
                   ascii_->isChecked() ? ftp::kAsciiTransfer : ftp::kBinaryTransfer);
}

bool FtpSetupWindow::save() {
    takeBoxes();
    const bool saved = form_.WriteCryptoInfo();
    render();
    return saved;
}

void showFtpSetupWindow(FtpWindowFace face, QWidget* parent, const std::string& dataFolder,
                        platform::Prompts& prompts) {
    FtpSetupWindow window(face, dataFolder, prompts, parent);
    window.exec();
}

}  // namespace ovd::ui
