#include "ui/speaker_list_window.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalBlocker>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "dictation/dictation.h"
#include "settings/config_file.h"
#include "settings/passwords_tables.h"
#include "ui/station_window.h"
#include "ui/window_placement.h"

namespace ovd::ui {

namespace {

QString text(const std::string& s) { return QString::fromStdString(s); }

}  // namespace

SpeakerListWindow::SpeakerListWindow(configuration::SpeakerListForm& model, QWidget* parent)
    : QDialog(parent), model_(model) {
    setObjectName("frmSpeakerDictatorList");
    setWindowTitle(QString::fromLatin1(configuration::kSpeakerListTitle));
    setModal(true);
    auto* column = new QVBoxLayout(this);

    list_ = new QTreeWidget(this);
    list_->setObjectName("ListView1");
    list_->setColumnCount(2);
    list_->setHeaderLabels({tr("Speaker/Dictator"), tr("Status")});
    list_->setRootIsDecorated(false);
    list_->header()->setStretchLastSection(false);
    list_->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    list_->setMinimumHeight(160);
    column->addWidget(list_);

    auto* entry = new QGridLayout;
    entry->addWidget(new QLabel(tr("Speaker/Dictator:"), this), 0, 0);
    newSpeaker_ = new QLineEdit(this);
    newSpeaker_->setObjectName("txtNewSpeaker");
    entry->addWidget(newSpeaker_, 0, 1);
    active_ = new QCheckBox(tr("Active"), this);
    active_->setObjectName("chkActive");
    entry->addWidget(active_, 0, 2);
    column->addLayout(entry);

    auto* buttons = new QHBoxLayout;
    const auto button = [&](const char* name, const QString& caption) {
        auto* b = new QPushButton(caption, this);
        b->setObjectName(name);
        b->setAutoDefault(false);
        buttons->addWidget(b);
        return b;
    };
    QPushButton* add = button("CommandAddStatus", tr("Add"));
    QPushButton* change = button("cmdEdit", tr("Change"));
    QPushButton* remove = button("CommandDeleteStatus", tr("Delete"));
    buttons->addStretch();
    QPushButton* cancel = button("CancelButton", tr("Close"));
    column->addLayout(buttons);

    addNameToFile_ = new QCheckBox(tr("Add Speaker/Dictator Name to File"), this);
    addNameToFile_->setObjectName("chkEnableAddToFileName");
    column->addWidget(addNameToFile_);
    addDateToName_ = new QCheckBox(tr("Add date (YYYYMMDD) to File Name"), this);
    addDateToName_->setObjectName("chkYYYYMMDD");
    column->addWidget(addDateToName_);

    connect(list_, &QTreeWidget::itemClicked, this, [this](QTreeWidgetItem* item) {
        model_.selectRow(static_cast<std::size_t>(list_->indexOfTopLevelItem(item)));
        refresh();
    });
    connect(newSpeaker_, &QLineEdit::textEdited, this,
            [this](const QString& typed) { model_.setNewSpeaker(typed.toStdString()); });
    connect(active_, &QCheckBox::clicked, this, [this](bool on) { model_.setActive(on); });
    connect(add, &QPushButton::clicked, this, [this] {
        model_.add();
        refresh();
    });
    connect(change, &QPushButton::clicked, this, [this] {
        model_.change();
        refresh();
    });
    connect(remove, &QPushButton::clicked, this, [this] {
        model_.deleteRow();
        refresh();
    });
    connect(addNameToFile_, &QCheckBox::clicked, this, [this](bool on) {
        model_.setAddNameToFile(on);
        refresh();
    });
    connect(addDateToName_, &QCheckBox::clicked, this, [this](bool on) {
        model_.setAddDateToName(on);
        refresh();
    });
    connect(cancel, &QPushButton::clicked, this, [this] { reject(); });
    refresh();
}

void SpeakerListWindow::refresh() {
    const configuration::SpeakerListControls& c = model_.controls();
    const QSignalBlocker quiet(list_);
    list_->clear();
    for (const configuration::SpeakerRow& row : c.rows) {
        list_->addTopLevelItem(new QTreeWidgetItem({text(row.name), text(row.status)}));
    }
    if (c.selected) list_->setCurrentItem(list_->topLevelItem(static_cast<int>(*c.selected)));
    if (newSpeaker_->text() != text(c.newSpeaker)) newSpeaker_->setText(text(c.newSpeaker));
    active_->setChecked(c.active);
    addNameToFile_->setChecked(c.addNameToFile);
    addDateToName_->setChecked(c.addDateToName);
}

void SpeakerListWindow::closeFromModel() {
    closing_ = true;
    QDialog::reject();
}

void SpeakerListWindow::reject() {
    if (closing_) {
        QDialog::reject();
        return;
    }
    // Escape and the title bar's close ask as the close button does.
    model_.cancel();
}

void showSpeakerList(StationWindow& window, StationWindowParts& parts) {
    dictation::Dictation& d = parts.dictation;
    settings::SpeakersTable speakers(parts.config.dataFolder());
    SpeakerListWindow* shown = nullptr;
    configuration::SpeakerListHooks hooks;
    hooks.unsavedTake = [&d] { return d.hasUnsavedTake(); };
    hooks.saveAndCloseLetter = [&d] { d.saveAndCloseLetter(); };
    hooks.refreshSpeakerBox = [&d, &window] {
        d.naming.ComboFill();
        window.render();
    };
    hooks.close = [&shown] {
        if (shown != nullptr) shown->closeFromModel();
    };
    configuration::SpeakerListForm model(parts.config, speakers, parts.eventLog, parts.prompts,
                                         hooks);
    model.load();
    SpeakerListWindow dialog(model, &window);
    shown = &dialog;
    placeOverStation(dialog, &window);
    dialog.exec();
    shown = nullptr;
    window.render();
}

}  // namespace ovd::ui
