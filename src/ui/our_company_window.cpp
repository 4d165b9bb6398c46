#include "ui/our_company_window.h"

#include <QApplication>
#include <QClipboard>
#include <QHBoxLayout>
#include <QVBoxLayout>

namespace ovd::ui {

namespace {

QString labelOf(std::string_view key) {
    if (key == "CompanyName") return QObject::tr("Company Name");
    if (key == "Name") return QObject::tr("Contact Name");
    if (key == "St") return QObject::tr("State");
    if (key == "EncryptKey") return QObject::tr("Encryption Key");
    return QString::fromLatin1(key.data(), static_cast<int>(key.size()));
}

}  // namespace

OurCompanyWindow::OurCompanyWindow(const settings::CompanyRecords& records,
                                   platform::Prompts& prompts, QWidget* parent)
    : QDialog(parent), form_(records, prompts) {
    setObjectName("FTPfrmInformation");
    setWindowTitle(tr("Company Information"));
    setMinimumWidth(440);
    auto* layout = new QVBoxLayout(this);
    auto* tools = new QHBoxLayout;
    connect(addButton(tools, settings::kEditEncryptionKeyCommand, tr("Edit Encryption Key")),
            &QPushButton::clicked, this, [this] { editEncryptionKey(); });
    connect(addButton(tools, settings::kSaveToClipboardCommand, tr("Copy to Clipboard")),
            &QPushButton::clicked, this,
            [this] { QApplication::clipboard()->setText(fromText(form_.clipboardText())); });
    tools->addStretch();
    layout->addLayout(tools);

    auto* fields = new QFormLayout;
    for (const auto& item : settings::kOurCompanyBoxes) {
        const std::string control = item.control;
        RecordBox made = addRecordBox(fields, item.control, labelOf(item.key));
        connect(made.edit, &QLineEdit::textEdited, this, [this, control](const QString& text) {
            if (control != "txtKeyInfo") form_.setText(control, toText(text));
        });
        boxes_[control] = made;
    }
    layout->addLayout(fields);
    connect(box("txtKeyInfo"), &QLineEdit::editingFinished, this, [this] {
        const std::string typed = toText(box("txtKeyInfo")->text());
        if (typed != form_.text("txtKeyInfo") && !form_.enterKey(typed)) {
            showText(box("txtKeyInfo"), form_.text("txtKeyInfo"));
        }
        render();
    });
    form_.focusName = [this] { box("txtName")->setFocus(); };

    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    connect(addButton(buttons, "cmdSave", tr("&Save")), &QPushButton::clicked, this,
            [this] { save(); });
    connect(addButton(buttons, "cmdClose", tr("&Close")), &QPushButton::clicked, this,
            [this] { reject(); });
    layout->addLayout(buttons);

    form_.Form_Load();
    render();
}

void OurCompanyWindow::render() {
    for (auto& [control, made] : boxes_) {
        showText(made.edit, form_.text(control));
        markRequired(made, form_.required(control));
    }
    box("txtKeyInfo")->setReadOnly(!form_.keyEditable());
}

void OurCompanyWindow::save() {
    const std::string typed = toText(box("txtKeyInfo")->text());
    if (form_.keyEditable() && typed != form_.text("txtKeyInfo") && !form_.enterKey(typed)) return;
    form_.save();
    render();
}

void OurCompanyWindow::editEncryptionKey() {
    form_.editEncryptionKey();
    render();
}

void OurCompanyWindow::done(int result) {
    if (!form_.requestClose()) return;
    QDialog::done(result);
}

}  // namespace ovd::ui
