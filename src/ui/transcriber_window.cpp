#include "ui/transcriber_window.h"

#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QHBoxLayout>
#include <QVBoxLayout>

namespace ovd::ui {

namespace {

const char* labelOf(std::string_view key) {
    if (key == "CompanyName") return "Company Name";
    if (key == "Name") return "Full Name";
    if (key == "St") return "State";
    if (key == "PTPHostName") return "Host Name";
    if (key == "PTPHostIP") return "Host IP";
    if (key == "Email") return "Email Address";
    if (key == "RECEncryptKey") return "Encryption Key";
    return nullptr;
}

const char* starOf(std::string_view key) {
    if (key == "CompanyName") return "reqAstrk1";
    if (key == "Name") return "reqAstrk2";
    if (key == "PTPHostIP") return "reqAstrk3";
    if (key == "Email") return "reqAstrk4";
    if (key == "RECEncryptKey") return "reqAstrk5";
    return nullptr;
}

}  // namespace

TranscriberWindow::TranscriberWindow(const settings::CompanyRecords& records,
                                     platform::Prompts& prompts, settings::DeliveryUse use,
                                     QWidget* parent)
    : QDialog(parent), form_(records, prompts, use) {
    setObjectName("FTPfrmReceiverInfo");
    setWindowTitle(QObject::tr("Transcriber Information"));
    setMinimumWidth(440);
    auto* layout = new QVBoxLayout(this);

    auto* tools = new QHBoxLayout;
    connect(addButton(tools, settings::kEditEncryptionKeyCommand, tr("Edit Encryption Key")),
            &QPushButton::clicked, this, [this] { editEncryptionKey(); });
    connect(addButton(tools, settings::kSaveToClipboardCommand, tr("Copy to Clipboard")),
            &QPushButton::clicked, this, [this] { copyToClipboard(); });
    tools->addStretch();
    layout->addLayout(tools);

    companies_ = new QComboBox;
    companies_->setObjectName("cboCompanyName");
    companies_->setEditable(true);
    companies_->setInsertPolicy(QComboBox::NoInsert);
    auto* fields = new QFormLayout;
    fields->addRow(tr("Transcriber"), companies_);
    for (const auto& item : settings::kTranscriberBoxes) {
        const char* label = labelOf(item.key);
        RecordBox made =
            addRecordBox(fields, item.control, label != nullptr ? tr(label) : tr(item.key),
                         fromText(item.prompt), starOf(item.key));
        const std::string control = item.control;
        connect(made.edit, &QLineEdit::textEdited, this, [this, control](const QString& text) {
            if (control != "txtRecKey") form_.setText(control, toText(text));
        });
        boxes_[control] = made;
    }
    layout->addLayout(fields);

    connect(companies_, &QComboBox::textActivated, this, [this](const QString& text) {
        form_.chooseCompany(toText(text));
        render();
    });
    connect(box("txtRecCompanyName"), &QLineEdit::editingFinished, this,
            [this] { form_.leaveCompanyName(); });
    connect(box("txtRecKey"), &QLineEdit::editingFinished, this, [this] {
        const std::string typed = toText(box("txtRecKey")->text());
        if (typed != form_.text("txtRecKey") && !form_.enterKey(typed)) {
            showText(box("txtRecKey"), form_.text("txtRecKey"));
        }
        render();
    });

    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    connect(addButton(buttons, "cmdSave", tr("&Save")), &QPushButton::clicked, this,
            [this] { save(); });
    connect(addButton(buttons, "cmdClose", tr("&Close")), &QPushButton::clicked, this,
            [this] { reject(); });
    layout->addLayout(buttons);

    form_.Form_Load();
    fillCompanies();
    render();
}

void TranscriberWindow::fillCompanies() {
    const QString current = companies_->currentText();
    companies_->clear();
    for (const auto& name : form_.companies()) companies_->addItem(fromText(name));
    companies_->setCurrentText(current);
}

void TranscriberWindow::render() {
    for (auto& [control, made] : boxes_) {
        showText(made.edit, form_.text(control));
        markRequired(made, form_.required(control));
    }
    box("txtRecKey")->setReadOnly(!form_.keyEditable());
    companies_->setCurrentText(fromText(form_.text("txtRecCompanyName")));
}

void TranscriberWindow::save() {
    // A key typed but not yet left goes through its entry rule first.
    const std::string typed = toText(box("txtRecKey")->text());
    if (form_.keyEditable() && typed != form_.text("txtRecKey") && !form_.enterKey(typed)) return;
    if (form_.save()) fillCompanies();
    render();
}

void TranscriberWindow::editEncryptionKey() {
    form_.editEncryptionKey();
    render();
}

void TranscriberWindow::copyToClipboard() {
    QApplication::clipboard()->setText(fromText(form_.clipboardText()));
}

void TranscriberWindow::done(int result) {
    if (!form_.requestClose()) return;
    QDialog::done(result);
}

}  // namespace ovd::ui
