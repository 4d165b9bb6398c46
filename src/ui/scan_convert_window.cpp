#include "ui/scan_convert_window.h"

#include <QCloseEvent>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QListWidget>
#include <QProgressBar>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "conversion/scan_convert.h"

namespace ovd::ui {

namespace {
QString text(const std::string& value) { return QString::fromStdString(value); }

void fill(QListWidget* list, const std::vector<std::string>& names) {
    list->clear();
    for (const std::string& name : names) list->addItem(text(name));
}

// The RESTORE button's colour value as the logic keeps it: 0x00bbggrr.
QString buttonStyle(int colour) {
    if (colour == 0) return {};
    const int red = colour & 0xff;
    const int green = (colour >> 8) & 0xff;
    const int blue = (colour >> 16) & 0xff;
    return QStringLiteral("QPushButton { background-color: rgb(%1, %2, %3); color: white; }")
        .arg(red)
        .arg(green)
        .arg(blue);
}
}  // namespace

ScanConvertWindow::ScanConvertWindow(conversion::ScanConvert& scan, QWidget* parent)
    : QDialog(parent), scan_(scan) {
    setObjectName("ScanConvert");
    // While it works the main window takes no commands.
    setModal(true);

    auto* folders = new QGridLayout;
    folders->addWidget(folderBox(tr("Work files (Temp)"), tempLabel_, tempList_), 0, 0);
    folders->addWidget(folderBox(tr("Backup copies (BACK)"), backLabel_, backList_), 0, 1);
    folders->addWidget(folderBox(tr("Recordings"), recordingsLabel_, recordingsList_), 1, 0);
    folders->addWidget(folderBox(tr("Kept as they were (Save)"), saveLabel_, saveList_), 1, 1);
    tempList_->setObjectName("tempFiles");
    backList_->setObjectName("backFiles");
    recordingsList_->setObjectName("recordingFiles");
    saveList_->setObjectName("saveFiles");

    working_ = new QLabel(tr("Working…"), this);
    working_->setObjectName("Image1");
    working_->setStyleSheet("color: #b05000; font-weight: bold;");
    recovered_ = new QLabel(this);
    recovered_->setObjectName("Label5");
    recovered_->setStyleSheet("color: #007000; font-weight: bold;");
    current_ = new QLabel(this);
    current_->setObjectName("Label6");
    current_->setWordWrap(true);
    progress_ = new QProgressBar(this);
    progress_->setObjectName("ProgressConvert");
    progress_->setRange(0, 100);

    operations_ = new QTreeWidget(this);
    operations_->setObjectName("viewEvent");
    operations_->setColumnCount(2);
    operations_->setHeaderLabels({tr("Time"), tr("Operation")});
    operations_->setRootIsDecorated(false);
    operations_->header()->setSectionResizeMode(0, QHeaderView::ResizeToContents);

    restore_ = new QPushButton(tr("RESTORE Temporary Files"), this);
    restore_->setObjectName("Command2");
    cancel_ = new QPushButton(tr("Cancel"), this);
    cancel_->setObjectName("Command1");
    convert_ = new QPushButton(tr("Convert a File…"), this);
    convert_->setObjectName("convertFile");
    auto* exit = new QPushButton(tr("Exit"), this);
    exit->setObjectName("Command3");
    connect(restore_, &QPushButton::clicked, this, [this] { scan_.restoreClicked(); });
    connect(cancel_, &QPushButton::clicked, this, [this] { scan_.cancelClicked(); });
    connect(convert_, &QPushButton::clicked, this, [this] { scan_.ConvertChosenFile(); });
    connect(exit, &QPushButton::clicked, this, [this] { scan_.exitClicked(); });

    connect(tempList_, &QListWidget::itemClicked, this,
            [this] { scan_.fileBoxClick(conversion::FileBox::Temp); });
    connect(backList_, &QListWidget::itemClicked, this,
            [this] { scan_.fileBoxClick(conversion::FileBox::Back); });
    connect(recordingsList_, &QListWidget::itemClicked, this,
            [this] { scan_.fileBoxClick(conversion::FileBox::Recordings); });
    connect(saveList_, &QListWidget::itemClicked, this,
            [this] { scan_.fileBoxClick(conversion::FileBox::Save); });
    connect(tempList_, &QListWidget::itemDoubleClicked, this, [this](QListWidgetItem* item) {
        scan_.tempFileDoubleClicked(item->text().toStdString());
    });

    auto* buttons = new QHBoxLayout;
    buttons->addWidget(restore_);
    buttons->addWidget(convert_);
    buttons->addStretch();
    buttons->addWidget(cancel_);
    buttons->addWidget(exit);

    auto* column = new QVBoxLayout(this);
    column->addLayout(folders);
    column->addWidget(current_);
    column->addWidget(progress_);
    auto* state = new QHBoxLayout;
    state->addWidget(working_);
    state->addStretch();
    state->addWidget(recovered_);
    column->addLayout(state);
    column->addWidget(operations_, 1);
    column->addLayout(buttons);
    resize(760, 620);

    scan_.onViewChanged = [this] { render(); };
    scan_.onClose = [this] { hide(); };
    render();
}

ScanConvertWindow::~ScanConvertWindow() {
    scan_.onViewChanged = nullptr;
    scan_.onClose = nullptr;
}

QWidget* ScanConvertWindow::folderBox(const QString& title, QLabel*& label, QListWidget*& list) {
    auto* box = new QGroupBox(title, this);
    auto* column = new QVBoxLayout(box);
    label = new QLabel(box);
    label->setWordWrap(true);
    label->setStyleSheet("color: palette(mid);");
    list = new QListWidget(box);
    column->addWidget(label);
    column->addWidget(list);
    return box;
}

void ScanConvertWindow::render() {
    const conversion::ScanConvertView& view = scan_.view;
    if (view.revision == shownRevision_ && shownRevision_ != 0) return;
    shownRevision_ = view.revision;
    setWindowTitle(text(view.caption));
    tempLabel_->setText(text(view.tempFolderText));
    recordingsLabel_->setText(text(view.recordingsFolderText));
    backLabel_->setText(text(view.backFolderText));
    saveLabel_->setText(text(view.saveFolderText));
    fill(saveList_, view.saveFiles);
    fill(tempList_, view.tempFiles);
    fill(recordingsList_, view.recordingFiles);
    fill(backList_, view.backFiles);
    recovered_->setText(text(view.recoveredNotice));
    current_->setText(text(view.currentFileText));
    working_->setVisible(view.workingSign);
    progress_->setValue(view.ProgressConvert);
    restore_->setVisible(view.restoreButtonVisible);
    restore_->setStyleSheet(buttonStyle(view.restoreButtonColour));
    restore_->setEnabled(!view.busy);
    convert_->setEnabled(!view.busy);
    cancel_->setEnabled(view.busy);
    while (operations_->topLevelItemCount() > static_cast<int>(view.viewEvent.size())) {
        delete operations_->takeTopLevelItem(operations_->topLevelItemCount() - 1);
    }
    for (auto i = static_cast<std::size_t>(operations_->topLevelItemCount());
         i < view.viewEvent.size(); ++i) {
        operations_->addTopLevelItem(
            new QTreeWidgetItem({text(view.viewEvent[i].Time), text(view.viewEvent[i].Operation)}));
    }
    if (!view.viewEvent.empty()) operations_->scrollToBottom();
}

void ScanConvertWindow::closeEvent(QCloseEvent* event) {
    // Closing the window is the Exit button: a conversion under way stops.
    scan_.exitClicked();
    event->accept();
}

}  // namespace ovd::ui
