#include "ui/compose_mail_window.h"

#include <QComboBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QStackedWidget>
#include <QToolBar>
#include <QVBoxLayout>

#include "mail/curl_mail_transport.h"
#include "ui/email_receivers_window.h"
#include "ui/mail_options_window.h"
#include "ui/record_window_parts.h"

namespace ovd::ui {

namespace {

const char* const kCharsetTexts[] = {"Western European", "Eastern European", "Cyrillic", "Greek",
                                     "Turkish"};

QComboBox* choiceBox(const char* name, const QStringList& texts) {
    auto* box = new QComboBox;
    box->setObjectName(name);
    box->addItems(texts);
    return box;
}

}  // namespace

ComposeMailWindow::ComposeMailWindow(const settings::CompanyRecords& records,
                                     platform::Prompts& prompts, QWidget* parent)
    : QDialog(parent),
      records_(records),
      prompts_(prompts),
      form_(std::make_unique<mail::ComposeForm>(loop_, records, prompts,
                                                std::make_unique<mail::CurlMailTransport>())) {
    setObjectName("frmAutoSendEmail");
    setWindowTitle(tr("Send E-Mail"));
    resize(640, 560);
    auto* layout = new QVBoxLayout(this);

    auto* bar = new QToolBar;
    bar->setToolButtonStyle(Qt::ToolButtonTextOnly);
    addKey(bar, mail::kNewMessageKey, tr("New"));
    addKey(bar, mail::kSendMessageKey, tr("Send"));
    bar->addSeparator();
    addKey(bar, mail::kFileAttachKey, tr("Attach..."));
    addKey(bar, mail::kFileDeleteAttachmentKey, tr("Remove Attachment"));
    addKey(bar, mail::kFileSaveAsKey, tr("Save As..."));
    addKey(bar, mail::kFileSpellCheckKey, tr("Spelling"));
    bar->addSeparator();
    addKey(bar, mail::kViewEmailsKey, tr("Receivers..."));
    addKey(bar, mail::kOptionsKey, tr("Options..."));
    addKey(bar, mail::kCloseKey, tr("Close"));
    layout->addWidget(bar);

    auto* choices = new QHBoxLayout;
    QStringList priorities;
    for (const char* text : mail::kPriorityTexts) priorities << QString::fromLatin1(text);
    priority_ = choiceBox("cboPriority", priorities);
    QStringList charsets;
    for (const char* text : kCharsetTexts) charsets << QString::fromLatin1(text);
    charset_ = choiceBox("cboCharacterSet", charsets);
    encoding_ = choiceBox("cboEncoding", {tr("7-bit text"), tr("Quoted printable")});
    format_ = choiceBox("cboFormat", {tr("Plain text"), tr("Styled text (HTML)")});
    for (QComboBox* box : {priority_, charset_, encoding_, format_}) choices->addWidget(box);
    layout->addLayout(choices);

    auto* fields = new QFormLayout;
    receiver_ = new QComboBox;
    receiver_->setObjectName("cboEmail");
    receiver_->setEditable(true);
    receiver_->setInsertPolicy(QComboBox::NoInsert);
    fields->addRow(tr("To"), receiver_);
    cc_ = new QLineEdit;
    cc_->setObjectName("editCc");
    fields->addRow(tr("Cc"), cc_);
    bcc_ = new QLineEdit;
    bcc_->setObjectName("editBcc");
    fields->addRow(tr("Bcc"), bcc_);
    subject_ = new QLineEdit;
    subject_->setObjectName("editSubject");
    fields->addRow(tr("Subject"), subject_);
    auto* attachmentRow = new QHBoxLayout;
    attachments_ = new QComboBox;
    attachments_->setObjectName("comboAttachmentShort");
    attachmentRow->addWidget(attachments_, 1);
    QPushButton* browse = addButton(attachmentRow, "cmdBrowse", tr("Browse..."));
    QPushButton* remove = addButton(attachmentRow, "cmdDelete", tr("Delete"));
    fields->addRow(tr("Attachments"), attachmentRow);
    layout->addLayout(fields);

    formatLabel_ = new QLabel;
    formatLabel_->setObjectName("lblFormat");
    layout->addWidget(formatLabel_);
    bodies_ = new QStackedWidget;
    plain_ = new QPlainTextEdit;
    plain_->setObjectName("editMessageText");
    styled_ = new QPlainTextEdit;
    styled_->setObjectName("editMessageHTML");
    bodies_->addWidget(plain_);
    bodies_->addWidget(styled_);
    layout->addWidget(bodies_, 1);

    auto* statusRow = new QHBoxLayout;
    status_ = new QLabel;
    status_->setObjectName("StatusBar");
    progress_ = new QProgressBar;
    progress_->setObjectName("ProgressBar");
    progress_->setMaximumWidth(160);
    progress_->setTextVisible(false);
    statusRow->addWidget(status_, 1);
    statusRow->addWidget(progress_);
    layout->addLayout(statusRow);

    mail::ComposeForm& form = *form_;
    form.changed = [this] { render(); };
    form.close = [this] { reject(); };
    form.openOptions = [this] { MailOptionsWindow(records_, prompts_, this).exec(); };
    form.viewEmails = [this] {
        EmailReceiversWindow(records_, prompts_, this).exec();
        take();
        form_->Form_Load();
    };
    const auto chosen = [this](const std::array<const char*, 5>& keys) {
        return [this, &keys](int index) {
            if (rendering_ || index < 0) return;
            take();
            form_->command(keys[static_cast<std::size_t>(index)]);
        };
    };
    connect(priority_, &QComboBox::currentIndexChanged, this, chosen(mail::kPriorityKeys));
    connect(charset_, &QComboBox::currentIndexChanged, this, chosen(mail::kCharsetKeys));
    connect(encoding_, &QComboBox::currentIndexChanged, this, [this](int index) {
        if (rendering_ || index < 0) return;
        take();
        form_->command(mail::kEncodingKeys[static_cast<std::size_t>(index)]);
    });
    connect(format_, &QComboBox::currentIndexChanged, this, [this](int index) {
        if (rendering_ || index < 0) return;
        take();
        form_->command(mail::kFormatKeys[static_cast<std::size_t>(index)]);
    });
    connect(receiver_->lineEdit(), &QLineEdit::editingFinished, this, [this] {
        if (rendering_) return;
        take();
        if (!form_->cboEmail.empty()) form_->leaveReceiver();
    });
    connect(browse, &QPushButton::clicked, this, [this] {
        take();
        form_->browse();
    });
    connect(remove, &QPushButton::clicked, this, [this] {
        take();
        if (attachments_->currentIndex() >= 0) {
            form_->deleteAttachment(static_cast<std::size_t>(attachments_->currentIndex()));
        }
    });
    form.Form_Load();
    render();
}

// A send still running is cancelled and waited for before the window goes.
ComposeMailWindow::~ComposeMailWindow() { form_.reset(); }

QAction* ComposeMailWindow::addKey(QToolBar* bar, const char* key, const QString& text) {
    QAction* action = bar->addAction(text);
    action->setObjectName(key);
    connect(action, &QAction::triggered, this, [this, key] {
        take();
        form_->command(key);
    });
    keys_.emplace_back(key, action);
    return action;
}

QAction* ComposeMailWindow::toolKey(const std::string& key) const {
    for (const auto& [name, action] : keys_) {
        if (name == key) return action;
    }
    return nullptr;
}

void ComposeMailWindow::take() {
    mail::ComposeForm& form = *form_;
    form.cboEmail = toText(receiver_->currentText());
    form.editCc = toText(cc_->text());
    form.editBcc = toText(bcc_->text());
    form.editSubject = toText(subject_->text());
    form.editMessageText = toText(plain_->toPlainText());
    form.editMessageHTML = toText(styled_->toPlainText());
}

void ComposeMailWindow::render() {
    rendering_ = true;
    const mail::ComposeForm& form = *form_;
    if (receiver_->count() != static_cast<int>(form.receivers.size())) {
        receiver_->clear();
        for (const auto& each : form.receivers) {
            receiver_->addItem(fromText(each.company + " <" + each.address + ">"),
                               fromText(each.address));
        }
    }
    receiver_->setEditText(fromText(form.cboEmail));
    showText(cc_, form.editCc);
    showText(bcc_, form.editBcc);
    showText(subject_, form.editSubject);
    if (plain_->toPlainText() != fromText(form.editMessageText)) {
        plain_->setPlainText(fromText(form.editMessageText));
    }
    if (styled_->toPlainText() != fromText(form.editMessageHTML)) {
        styled_->setPlainText(fromText(form.editMessageHTML));
    }
    priority_->setCurrentIndex(static_cast<int>(form.priority));
    charset_->setCurrentIndex(static_cast<int>(form.charset));
    encoding_->setCurrentIndex(static_cast<int>(form.encoding));
    format_->setCurrentIndex(static_cast<int>(form.format));
    formatLabel_->setText(QString::fromLatin1(form.formatLabel()));
    bodies_->setCurrentIndex(static_cast<int>(form.format));
    attachments_->clear();
    for (const auto& name : form.comboAttachmentShort) attachments_->addItem(fromText(name));
    attachments_->setCurrentIndex(attachments_->count() - 1);
    status_->setText(fromText(form.statusText));
    // A moving bar while the message goes; an empty one otherwise.
    progress_->setRange(0, form.sending() ? 0 : 1);
    progress_->setValue(0);
    toolKey(mail::kSendMessageKey)->setEnabled(!form.sending());
    rendering_ = false;
}

void showComposeMailWindow(QWidget* parent, const std::string& dataFolder,
                           platform::Prompts& prompts) {
    const settings::CompanyRecords records(dataFolder);
    ComposeMailWindow(records, prompts, parent).exec();
}

void showMailOptionsWindow(QWidget* parent, const std::string& dataFolder,
                           platform::Prompts& prompts) {
    const settings::CompanyRecords records(dataFolder);
    MailOptionsWindow(records, prompts, parent).exec();
}

}  // namespace ovd::ui
