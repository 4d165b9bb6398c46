#include "ui/letter_details_panel.h"

#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QToolButton>
#include <QVBoxLayout>
#include <string>

#include "dictation/dictation.h"
#include "engine/file_tags.h"

namespace ovd::ui {

namespace {

// "Y-Author" -> "Author", "SF-Meeting Name" -> "Meeting Name": the label the field carries.
QString captionOf(const std::string& key) {
    const std::size_t dash = key.find('-');
    return QString::fromStdString(dash == std::string::npos ? key : key.substr(dash + 1));
}

}  // namespace

LetterDetailsPanel::LetterDetailsPanel(dictation::Dictation& dictation, QWidget* parent)
    : QWidget(parent), dictation_(dictation) {
    setObjectName("frameLetterDetails");
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    heading_ = new QToolButton(this);
    heading_->setObjectName("cmdLetterDetails");
    heading_->setText(tr("Letter details"));
    heading_->setCheckable(true);
    heading_->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    heading_->setArrowType(Qt::RightArrow);
    heading_->setAutoRaise(true);
    column->addWidget(heading_);

    fields_ = new QWidget(this);
    // Two fields to a row, so the open panel stays about half as tall.
    auto* grid = new QGridLayout(fields_);
    grid->setContentsMargins(12, 0, 0, 0);
    int at = 0;
    for (const char* key : engine::kLetterDetailKeys) {
        auto* edit = new QLineEdit(fields_);
        edit->setObjectName(QString::fromLatin1(key));
        connect(edit, &QLineEdit::editingFinished, this, [this] { apply(); });
        auto* label = new QLabel(captionOf(key), fields_);
        label->setBuddy(edit);
        grid->addWidget(label, at / 2, (at % 2) * 2);
        grid->addWidget(edit, at / 2, (at % 2) * 2 + 1);
        edits_.push_back(edit);
        ++at;
    }
    grid->setColumnStretch(1, 1);
    grid->setColumnStretch(3, 1);
    column->addWidget(fields_);
    fields_->setVisible(false);
    connect(heading_, &QToolButton::toggled, this, [this](bool open) { setOpen(open); });
    refresh();
}

void LetterDetailsPanel::setOpen(bool open) {
    if (heading_->isChecked() != open) heading_->setChecked(open);
    heading_->setArrowType(open ? Qt::DownArrow : Qt::RightArrow);
    fields_->setVisible(open);
}

bool LetterDetailsPanel::isOpen() const { return heading_->isChecked(); }

void LetterDetailsPanel::refresh() {
    const bool letterOpen = dictation_.state().flgfileOpen1 && !dictation_.state().Filename.empty();
    fields_->setEnabled(letterOpen);
    const engine::LetterDetails& details = dictation_.letterDetails();
    for (std::size_t i = 0; i < edits_.size(); ++i) {
        QLineEdit* edit = edits_[i];
        if (edit->hasFocus()) continue;
        QString value;
        for (const engine::FileTag& tag : details) {
            if (tag.key == engine::kLetterDetailKeys[i]) value = QString::fromStdString(tag.value);
        }
        if (edit->text() != value) edit->setText(value);
    }
}

void LetterDetailsPanel::apply() {
    engine::LetterDetails details;
    for (std::size_t i = 0; i < edits_.size(); ++i) {
        details.push_back({engine::kLetterDetailKeys[i], edits_[i]->text().toStdString()});
    }
    dictation_.setLetterDetails(details);
}

}  // namespace ovd::ui
