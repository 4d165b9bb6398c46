#include "ui/second_editor_dialogs.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

#include "second_editor/file_info.h"
#include "second_editor/second_editor.h"

namespace ovd::ui {

FileInfoDialog::FileInfoDialog(second_editor::SecondEditor& editor, QWidget* parent)
    : QDialog(parent) {
    setObjectName("frmInfo");
    setWindowTitle(tr("File Information"));
    auto* form = new QFormLayout;
    for (const auto& [label, value] :
         second_editor::fileInformation(editor.editor(), editor.view().fileName)) {
        auto* shown = new QLabel(QString::fromStdString(value));
        shown->setTextInteractionFlags(Qt::TextSelectableByMouse);
        shown->setObjectName(QString::fromStdString(label));
        form->addRow(QString::fromStdString(label + ":"), shown);
    }
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    auto* column = new QVBoxLayout(this);
    column->addLayout(form);
    column->addWidget(buttons);
}

MarkersDialog::MarkersDialog(second_editor::SecondEditor& editor, QWidget* parent)
    : QDialog(parent), editor_(editor) {
    setObjectName("frmMarkers");
    setWindowTitle(tr("Markers"));
    list_ = new QListWidget;
    list_->setObjectName("lstMarkers");
    name_ = new QLineEdit;
    name_->setObjectName("txtMarkerName");
    name_->setPlaceholderText(tr("Name of the new marker"));
    auto* add = new QPushButton(tr("&Add at Cursor"));
    add->setObjectName("cmdAddMarker");
    auto* remove = new QPushButton(tr("&Remove"));
    remove->setObjectName("cmdRemoveMarker");
    auto* goTo = new QPushButton(tr("&Go To"));
    goTo->setObjectName("cmdGoToMarker");
    auto* close = new QPushButton(tr("Close"));

    connect(add, &QPushButton::clicked, this, [this] {
        editor_.markers().add(name_->text().toStdString(), editor_.editor().CursorPosition());
        name_->clear();
        fill();
    });
    connect(remove, &QPushButton::clicked, this, [this] {
        if (list_->currentRow() < 0) return;
        editor_.markers().remove(static_cast<std::size_t>(list_->currentRow()));
        fill();
    });
    const auto goToCurrent = [this] {
        const int row = list_->currentRow();
        const auto& markers = editor_.markers().list();
        if (row < 0 || row >= static_cast<int>(markers.size())) return;
        const int rate = editor_.editor().SamplesPerSecond();
        if (rate > 0)
            editor_.setCursorSeconds(
                static_cast<double>(markers[static_cast<std::size_t>(row)].position) / rate);
    };
    connect(goTo, &QPushButton::clicked, this, goToCurrent);
    connect(list_, &QListWidget::itemDoubleClicked, this, goToCurrent);
    connect(close, &QPushButton::clicked, this, &QDialog::accept);

    auto* buttons = new QHBoxLayout;
    for (QPushButton* b : {goTo, add, remove, close}) buttons->addWidget(b);
    auto* column = new QVBoxLayout(this);
    column->addWidget(list_);
    column->addWidget(name_);
    column->addLayout(buttons);
    fill();
}

void MarkersDialog::fill() {
    list_->clear();
    const int rate = editor_.editor().SamplesPerSecond();
    for (const second_editor::Marker& m : editor_.markers().list()) {
        const double at = rate > 0 ? static_cast<double>(m.position) / rate : 0;
        list_->addItem(QString::fromStdString(m.name + "  " + second_editor::lengthText(at)));
    }
}

}  // namespace ovd::ui
