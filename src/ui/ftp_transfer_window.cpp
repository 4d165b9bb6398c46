#include "ui/ftp_transfer_window.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFileInfo>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPointer>
#include <QProcess>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QSplitter>
#include <QStandardPaths>
#include <QToolBar>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "ftp/client_for_site.h"
#include "ftp/ftp_window_texts.h"
#include "ftp/site_connection.h"
#include "platform/text.h"
#include "settings/our_company_form.h"
#include "settings/transcriber_records.h"
#include "ui/record_window_parts.h"

namespace ovd::ui {

namespace {

constexpr const char* kSoundPlayer = "paplay";

// complete.wav is a short chime: played and not waited for.
void playWave(const std::string& path) {
    const QString wave = fromText(path);
    const QString player = QStandardPaths::findExecutable(kSoundPlayer);
    if (player.isEmpty() || !QFileInfo::exists(wave)) return;
    QProcess::startDetached(player, {wave});
}

std::vector<std::string> selectedNames(const QList<QListWidgetItem*>& items) {
    std::vector<std::string> names;
    for (const QListWidgetItem* item : items) names.push_back(toText(item->text()));
    return names;
}

}  // namespace

FtpTransferWindow::FtpTransferWindow(FtpWindowFace face, const std::string& dataFolder,
                                     const std::string& programFolder, platform::Prompts& prompts,
                                     QWidget* parent)
    : QDialog(parent),
      face_(face),
      prompts_(prompts),
      programFolder_(programFolder),
      records_(dataFolder),
      session_(loop_, std::make_unique<ftp::AnySiteClient>()) {
    const bool automatic = face == FtpWindowFace::Automatic;
    setObjectName(automatic ? "FTPfrmAutoFTP" : "FTPfrmFTP");
    setWindowTitle(automatic ? tr("Automatic FTP") : tr("FTP"));
    setModal(false);
    resize(980, 560);

    std::string company = records_.defaultFtpClient();
    const settings::TranscriberStore store(records_);
    const auto names = store.companies();
    if (company.empty() && names && !names->empty()) company = names->front();
    window_ = std::make_unique<ftp::FtpSiteWindow>(loop_, prompts_, session_, contextFor(company));
    window_->onChange = [this] { render(); };
    if (automatic) {
        run_ = std::make_unique<ftp::UnattendedFtpRun>(*window_, session_, prompts_, playWave);
        schedule_ = std::make_unique<ftp::FtpSchedule>(loop_, [this](std::function<void()> ended) {
            if (!run_->start([ended](const ftp::RunOutcome&) { ended(); })) ended();
        });
        window_->onTransferring = [this](bool on) {
            if (on) {
                schedule_->hold();
            } else {
                schedule_->release();
            }
        };
    } else {
        manual_ = ftp::loadManualFtpSettings(dataFolder);
        applyManualSettings();
    }

    auto* layout = new QVBoxLayout(this);
    auto* chooser = new QHBoxLayout;
    chooser->addWidget(new QLabel(tr("Transcriber:")));
    companies_ = new QComboBox;
    companies_->setObjectName("cboCompany");
    if (names) {
        for (const std::string& name : *names) companies_->addItem(fromText(name));
    }
    companies_->setCurrentIndex(companies_->findText(fromText(company)));
    QObject::connect(companies_, &QComboBox::textActivated, this,
                     [this](const QString& name) { chooseSite(toText(name)); });
    chooser->addWidget(companies_, 1);
    layout->addLayout(chooser);
    buildToolBar(layout);
    buildPanes(layout);
    buildButtons(layout);
    if (automatic) {
        buildUnattended(layout);
    } else {
        buildManualOptions(layout);
    }
    status_ = new QLabel;
    status_->setObjectName("lblStatus");
    status_->setWordWrap(true);
    sessionLabel_ = new QLabel;
    sessionLabel_->setObjectName("lblSession");
    progress_ = new QProgressBar;
    progress_->setObjectName("ProgressBar1");
    progress_->setRange(0, 100);
    layout->addWidget(status_);
    auto* bottom = new QHBoxLayout;
    bottom->addWidget(sessionLabel_);
    bottom->addWidget(progress_, 1);
    layout->addLayout(bottom);

    const std::string localStart =
        automatic ? window_->site().record.get("FTPUFLMUploadFrom") : std::string();
    window_->setLocalFolder(localStart.empty() ? records_.dataFolder() : localStart);
    if (automatic) armSchedule();
    render();
}

FtpTransferWindow::~FtpTransferWindow() {
    // A window closed mid-transfer stops it; the file stays where it was.
    session_.cancel();
}

void FtpTransferWindow::buildToolBar(QVBoxLayout* layout) {
    auto* bar = new QToolBar;
    bar->setObjectName("Toolbar1");
    const auto key = [this, bar](const char* name, const QString& text) {
        QAction* action = bar->addAction(text);
        action->setObjectName(name);
        QObject::connect(action, &QAction::triggered, this, [this, name] { command(name); });
    };
    key(ftp::kConnectKey, tr("Connect"));
    key(ftp::kDisconnectKey, tr("Disconnect"));
    bar->addSeparator();
    key(ftp::kDownloadKey, tr("Download"));
    key(ftp::kUploadKey, tr("Upload"));
    key(ftp::kDeleteKey, tr("Delete"));
    key(ftp::kRenameKey, tr("Rename"));
    key(ftp::kRefreshKey, tr("Refresh"));
    key(ftp::kCreateDirectoryKey, tr("New Folder"));
    bar->addSeparator();
    if (face_ == FtpWindowFace::Automatic) key(ftp::kUnattendedKey, tr("Unattended"));
    key(ftp::kViewInfoKey, tr("Site Info"));
    key(ftp::kSettingsKey, tr("Settings"));
    key(ftp::kAboutKey, tr("About"));
    key(ftp::kExitKey, tr("Exit"));
    layout->addWidget(bar);
}

void FtpTransferWindow::buildPanes(QVBoxLayout* layout) {
    auto* splitter = new QSplitter;
    auto* localSide = new QWidget;
    auto* local = new QVBoxLayout(localSide);
    local->setContentsMargins(0, 0, 0, 0);
    localFolder_ = new QLineEdit;
    localFolder_->setObjectName("txtLocalFolder");
    QObject::connect(localFolder_, &QLineEdit::editingFinished, this,
                     [this] { window_->setLocalFolder(toText(localFolder_->text())); });
    local->addWidget(localFolder_);
    localFiles_ = new QListWidget;
    localFiles_->setObjectName(face_ == FtpWindowFace::Automatic ? "FileUPL" : "File1");
    localFiles_->setSelectionMode(QAbstractItemView::ExtendedSelection);
    QObject::connect(localFiles_, &QListWidget::itemSelectionChanged, this,
                     [this] { window_->selectLocal(selectedNames(localFiles_->selectedItems())); });
    local->addWidget(localFiles_);
    splitter->addWidget(localSide);

    auto* remoteSide = new QWidget;
    auto* remote = new QVBoxLayout(remoteSide);
    remote->setContentsMargins(0, 0, 0, 0);
    remoteFolder_ = new QLabel;
    remoteFolder_->setObjectName("lblRemoteFolder");
    remote->addWidget(remoteFolder_);
    remote_ = new QTreeWidget;
    remote_->setObjectName("lv");
    remote_->setRootIsDecorated(false);
    remote_->setSelectionMode(QAbstractItemView::ExtendedSelection);
    remote_->setHeaderLabels({tr("Name"), tr("Size"), tr("Date"), tr("Attributes")});
    remote_->header()->setStretchLastSection(false);
    remote_->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    for (int column = 1; column < 4; ++column) {
        remote_->header()->setSectionResizeMode(column, QHeaderView::ResizeToContents);
    }
    QObject::connect(remote_, &QTreeWidget::itemSelectionChanged, this, [this] {
        std::vector<std::string> names;
        for (const QTreeWidgetItem* item : remote_->selectedItems()) {
            names.push_back(toText(item->text(0)));
        }
        window_->selectRemote(std::move(names));
    });
    QObject::connect(remote_, &QTreeWidget::itemDoubleClicked, this, [this](QTreeWidgetItem* item) {
        // Entering the folder rebuilds the list, item included: not while its click runs.
        QMetaObject::invokeMethod(
            this, [this, name = toText(item->text(0))] { window_->openRemote(name); },
            Qt::QueuedConnection);
    });
    remote->addWidget(remote_);
    splitter->addWidget(remoteSide);
    layout->addWidget(splitter, 1);
}

void FtpTransferWindow::buildButtons(QVBoxLayout* layout) {
    auto* row = new QHBoxLayout;
    const auto twin = [this, row](const char* name, const QString& text) {
        QObject::connect(addButton(row, name, text), &QPushButton::clicked, this,
                         [this, name] { command(name); });
    };
    twin(ftp::kConnectButton, tr("Connect"));
    twin(ftp::kDisconnectButton, tr("Disconnect"));
    twin(ftp::kUploadButton, tr("Upload ->"));
    twin(ftp::kDownloadButton, tr("<- Download"));
    twin(ftp::kDeleteButton, tr("Delete"));
    twin(ftp::kRenameButton, tr("Rename"));
    twin(ftp::kCreateDirectoryButton, tr("New Folder"));
    twin(ftp::kRefreshButton, tr("Refresh"));
    layout->addLayout(row);
}

void FtpTransferWindow::buildManualOptions(QVBoxLayout* layout) {
    auto* box = new QGroupBox(tr("Connection"));
    auto* row = new QHBoxLayout(box);
    auto* modes = new QWidget;
    auto* modeRow = new QHBoxLayout(modes);
    active_ = new QRadioButton(tr("Active"));
    active_->setObjectName("optActive");
    passive_ = new QRadioButton(tr("Passive"));
    passive_->setObjectName("optPassive");
    modeRow->addWidget(active_);
    modeRow->addWidget(passive_);
    auto* types = new QWidget;
    auto* typeRow = new QHBoxLayout(types);
    ascii_ = new QRadioButton(tr("ASCII"));
    ascii_->setObjectName("optAscii");
    binary_ = new QRadioButton(tr("Binary"));
    binary_->setObjectName("optBin");
    typeRow->addWidget(ascii_);
    typeRow->addWidget(binary_);
    row->addWidget(modes);
    row->addWidget(types);
    (manual_.ManActive ? active_ : passive_)->setChecked(true);
    (manual_.ManAscii ? ascii_ : binary_)->setChecked(true);
    for (QRadioButton* option : {active_, passive_, ascii_, binary_}) {
        QObject::connect(option, &QRadioButton::toggled, this, [this](bool on) {
            if (!on) return;
            manual_.ManActive = active_->isChecked();
            manual_.ManPassive = passive_->isChecked();
            manual_.ManAscii = ascii_->isChecked();
            manual_.ManBin = binary_->isChecked();
            // The choice is kept even when it can't be written: this window uses it now.
            (void)ftp::saveManualFtpSettings(records_.dataFolder(), manual_);
            applyManualSettings();
        });
    }
    layout->addWidget(box);
}

void FtpTransferWindow::buildUnattended(QVBoxLayout* layout) {
    auto* box = new QGroupBox(tr("Unattended"));
    auto* row = new QHBoxLayout(box);
    auto_ = addButton(row, "cmdAuto", tr("Run Unattended"));
    QObject::connect(auto_, &QPushButton::clicked, this, [this] {
        if (run_->running()) {
            run_->cancel();
        } else {
            runUnattended();
        }
    });
    scheduleCheck_ = new QCheckBox(tr("Run every"));
    scheduleCheck_->setObjectName("ASchedCheck");
    minutes_ = new QSpinBox;
    minutes_->setObjectName("txtASched");
    minutes_->setRange(1, 24 * 60);
    row->addWidget(scheduleCheck_);
    row->addWidget(minutes_);
    row->addWidget(new QLabel(tr("minutes")));
    row->addStretch(1);
    const auto& record = window_->site().record;
    scheduleCheck_->setChecked(ftp::recordOptionOn(record.get("FTPAutoScheduler")));
    minutes_->setValue(std::max(1, std::atoi(record.get("FTPAutoSchedulerMinutes").c_str())));
    QObject::connect(scheduleCheck_, &QCheckBox::toggled, this, [this] { armSchedule(); });
    QObject::connect(minutes_, &QSpinBox::valueChanged, this, [this] { armSchedule(); });
    layout->addWidget(box);
}

void FtpTransferWindow::armSchedule() {
    if (!schedule_ || scheduleCheck_ == nullptr) return;
    if (scheduleCheck_->isChecked()) {
        schedule_->arm(minutes_->value());
    } else {
        schedule_->disarm();
    }
}

ftp::SiteContext FtpTransferWindow::contextFor(const std::string& company) const {
    ftp::SiteContext context;
    if (!company.empty()) {
        const auto record = settings::TranscriberStore(records_).load(company);
        if (record) context.record = *record;
    }
    const settings::OurCompany ours = settings::readOurCompany(records_);
    context.ourCompany = ours.g_strOrganization;
    context.ourKey = ours.g_strSaveOurCompanyKey;
    context.dataFolder = records_.dataFolder();
    context.programFolder = programFolder_;
    return context;
}

void FtpTransferWindow::applyManualSettings() {
    if (face_ != FtpWindowFace::Manual) return;
    ftp::ConnectionSettings settings = window_->connection();
    manual_.applyTo(settings);
    window_->setConnection(settings);
}

void FtpTransferWindow::chooseSite(const std::string& company) {
    if (!window_->changeSite(contextFor(company))) {
        companies_->setCurrentIndex(
            companies_->findText(fromText(window_->site().record.companyName())));
        return;
    }
    applyManualSettings();
    render();
}

void FtpTransferWindow::command(const std::string& key) {
    if (key == ftp::kExitKey) {
        close();
    } else if (key == ftp::kUnattendedKey) {
        runUnattended();
    } else if (key == ftp::kSettingsKey) {
        openSettings();
    } else if (key == ftp::kViewInfoKey) {
        showSiteInfo();
    } else if (key == ftp::kAboutKey) {
        prompts_.showMessage("Orvane Voice Desk FTP", "About");
    } else if ((key == ftp::kConnectKey || key == ftp::kConnectButton) &&
               window_->site().record.companyName().empty()) {
        prompts_.showMessage(ftp::kNoTranscriberText);
    } else {
        window_->command(key);
    }
}

void FtpTransferWindow::runUnattended() {
    if (!run_) return;
    if (!run_->start([this](const ftp::RunOutcome&) { render(); })) {
        window_->setStatus(ftp::kTransferRunningText);
    }
    render();
}

void FtpTransferWindow::openSettings() {
    if (window_->view().connected) {
        prompts_.showMessage(ftp::kDisconnectToChangeText);
        return;
    }
    showFtpSetupWindow(face_, this, records_.dataFolder(), prompts_);
    chooseSite(toText(companies_->currentText()));
}

void FtpTransferWindow::showSiteInfo() {
    const ftp::ConnectionSettings& settings = window_->connection();
    const auto& record = window_->site().record;
    prompts_.showMessage("Transcriber: " + record.companyName() + "\r\n" +
                         "Site: " + record.get("FTPDescription") + "\r\n" +
                         "Server: " + settings.hostName + ":" + std::to_string(settings.port) +
                         "\r\n" + "User: " + settings.userName + "\r\n" +
                         "Mode: " + (settings.passiveMode ? "Passive" : "Active"));
}

void FtpTransferWindow::render() {
    const ftp::FtpWindowView& view = window_->view();
    status_->setText(fromText(view.status));
    sessionLabel_->setText(fromText(view.session));
    progress_->setValue(view.percent);
    remoteFolder_->setText(fromText(view.remoteFolder));
    showText(localFolder_, view.localFolder);

    QStringList locals;
    for (const std::string& name : view.localFiles) locals << fromText(name);
    QStringList shownLocals;
    for (int index = 0; index < localFiles_->count(); ++index) {
        shownLocals << localFiles_->item(index)->text();
    }
    if (shownLocals != locals) {
        localFiles_->clear();
        localFiles_->addItems(locals);
    }

    QStringList rows;
    for (const ftp::RemoteRow& row : view.remoteRows) rows << fromText(row.name + row.size);
    QStringList shownRows;
    for (int index = 0; index < remote_->topLevelItemCount(); ++index) {
        const QTreeWidgetItem* item = remote_->topLevelItem(index);
        shownRows << item->text(0) + item->text(1);
    }
    if (shownRows != rows) {
        remote_->clear();
        for (const ftp::RemoteRow& row : view.remoteRows) {
            auto* item = new QTreeWidgetItem(remote_, {fromText(row.name), fromText(row.size),
                                                       fromText(row.date), fromText(row.marks)});
            if (row.directory) item->setIcon(0, style()->standardIcon(QStyle::SP_DirIcon));
        }
    }
    if (auto_ != nullptr) {
        auto_->setText(run_->running() ? tr("Cancel") : tr("Run Unattended"));
    }
}

void showFtpTransferWindow(FtpWindowFace face, QWidget* parent, const std::string& dataFolder,
                           const std::string& programFolder, const std::string& recordings,
                           platform::Prompts& prompts) {
    const char* name = face == FtpWindowFace::Automatic ? "FTPfrmAutoFTP" : "FTPfrmFTP";
    if (parent != nullptr) {
        if (auto* open = parent->findChild<FtpTransferWindow*>(name)) {
            open->raise();
            open->activateWindow();
            return;
        }
    }
    auto* window = new FtpTransferWindow(face, dataFolder, programFolder, prompts, parent);
    if (face == FtpWindowFace::Manual && !recordings.empty()) {
        window->site().setLocalFolder(recordings);
    }
    window->setAttribute(Qt::WA_DeleteOnClose);
    window->show();
}

}  // namespace ovd::ui
