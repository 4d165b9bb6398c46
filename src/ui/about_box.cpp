#include "ui/about_box.h"

#include <QDialogButtonBox>
#include <QIcon>
#include <QLabel>
#include <QVBoxLayout>

namespace ovd::ui {

AboutBox::AboutBox(const AboutFacts& facts, QWidget* parent) : QDialog(parent) {
    setObjectName("frmAbout");
    setWindowTitle(tr("About %1").arg(QString::fromStdString(facts.title)));
    auto* column = new QVBoxLayout(this);
    auto* heading = new QLabel(this);
    heading->setObjectName("lblTitle");
    heading->setText(QStringLiteral("<h2>%1</h2><p>Version %2</p>")
                         .arg(QString::fromStdString(facts.title).toHtmlEscaped(),
                              QString::fromStdString(facts.version).toHtmlEscaped()));
    column->addWidget(heading);
    auto* details = new QLabel(this);
    details->setObjectName("lblDetails");
    details->setTextInteractionFlags(Qt::TextSelectableByMouse);
    details->setText(
        tr("A hands-free digital dictation station.\n\n"
           "Settings and event logs: %1\nRecordings: %2\nSound: %3\nQt %4")
            .arg(QString::fromStdString(facts.dataFolder), QString::fromStdString(facts.recordings),
                 QString::fromStdString(facts.soundSystem), QString::fromLatin1(qVersion())));
    column->addWidget(details);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    column->addWidget(buttons);
}

}  // namespace ovd::ui
