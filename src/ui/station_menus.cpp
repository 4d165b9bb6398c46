#include "ui/station_menus.h"

#include <QActionGroup>
#include <QMenu>
#include <QMenuBar>

#include "devices/hands_free.h"
#include "dictation/dictation.h"
#include "engine/wave_editor.h"
#include "settings/config_file.h"
#include "ui/compose_mail_window.h"
#include "ui/configuration_windows.h"
#include "ui/convert_window.h"
#include "ui/drive_scan_window.h"
#include "ui/ftp_setup_window.h"
#include "ui/ftp_transfer_window.h"
#include "ui/hot_key_options_window.h"
#include "ui/pedal_windows.h"
#include "ui/records_windows.h"
#include "ui/speaker_list_window.h"
#include "ui/station_window.h"
#include "ui/weekly_delete_window.h"

namespace ovd::ui {

namespace {
constexpr const char* kNotYet = "Not available in this version of the station yet";
constexpr const char* kNoRecentFiles = "None";
}  // namespace

StationMenus::StationMenus(StationWindow& window, StationWindowParts& parts)
    : window_(window), parts_(parts) {
    buildFile();
    buildEdit();
    buildView();
    buildConfiguration();
    buildPedals();
    buildTools();
    buildHelp();
    buildContextMenu();
}

QAction* StationMenus::add(QMenu* menu, const std::string& name, const QString& text,
                           const std::function<void()>& routine) {
    QAction* entry = menu->addAction(text);
    entry->setObjectName(QString::fromStdString(name));
    QObject::connect(entry, &QAction::triggered, &window_, [routine] { routine(); });
    actions_[name] = entry;
    return entry;
}

QAction* StationMenus::addGreyed(QMenu* menu, const std::string& name, const QString& text) {
    QAction* entry = menu->addAction(text);
    entry->setObjectName(QString::fromStdString(name));
    entry->setEnabled(false);
    entry->setToolTip(QObject::tr(kNotYet));
    actions_[name] = entry;
    return entry;
}

QAction* StationMenus::action(const std::string& name) const {
    const auto found = actions_.find(name);
    return found == actions_.end() ? nullptr : found->second;
}

void StationMenus::buildFile() {
    dictation::Dictation& d = parts_.dictation;
    QMenu* file = window_.menuBar()->addMenu(QObject::tr("&File"));
    file->setObjectName("mnuFile");
    add(file, "mnuNew", QObject::tr("&New"), [&d] {
        d.newLetter();
    })->setShortcut(QKeySequence::New);
    add(file, "mnuOpen", QObject::tr("&Open..."), [&d] {
        d.openLetter();
    })->setShortcut(QKeySequence::Open);
    add(file, "mnuSave", QObject::tr("&Save"), [&d] {
        d.saveNow();
    })->setShortcut(QKeySequence::Save);
    add(file, "mnuSaveAs", QObject::tr("Save &As..."), [&d] { d.saveAs(); });
    add(file, "mnclose", QObject::tr("&Close"), [&d] { d.closeFromMenu(); });
    file->addSeparator();
    reopen_ = file->addMenu(QObject::tr("&Reopen"));
    reopen_->setObjectName("mnuReopen");
    file->addSeparator();
    add(file, "mnuExit", QObject::tr("E&xit"), [this] {
        if (window_.onExit) window_.onExit();
    })->setShortcut(QKeySequence::Quit);
    QObject::connect(file, &QMenu::aboutToShow, &window_,
                     [this] { refresh(parts_.dictation.view()); });
}

void StationMenus::buildEdit() {
    dictation::Dictation& d = parts_.dictation;
    QMenu* edit = window_.menuBar()->addMenu(QObject::tr("&Edit"));
    edit->setObjectName("mnuEdit");
    // The editing keys run their routine and then refresh the screen as a toolbar would.
    const auto key = [&d](const char* name) { return [&d, name] { d.toolbarButton(name); }; };
    add(edit, "mnuUndo", QObject::tr("&Undo"), key("Undo"))->setShortcut(QKeySequence::Undo);
    add(edit, "mnuRedo", QObject::tr("&Redo"), key("Redo"))->setShortcut(QKeySequence::Redo);
    edit->addSeparator();
    add(edit, "mnuCut", QObject::tr("Cu&t"), key("Cut"))->setShortcut(QKeySequence::Cut);
    add(edit, "mnuCopy", QObject::tr("&Copy"), key("Copy"))->setShortcut(QKeySequence::Copy);
    add(edit, "mnuPaste", QObject::tr("&Paste"), key("Paste"))->setShortcut(QKeySequence::Paste);
    add(edit, "mnuInsSilence", QObject::tr("Insert &Silence"), key("InsSilence"));
    add(edit, "mnuConvert", QObject::tr("Con&vert Sample Type..."), [this, &d] {
        const engine::WaveEditor& editor = parts_.recordingEditor;
        askConvertSampleType(
            editor.SamplesPerSecond(), editor.Channels(),
            [&d](int rate, int channels) { d.CaseConvertSampleType(rate, channels); }, &window_);
    });
}

void StationMenus::buildView() {
    QMenu* view = window_.menuBar()->addMenu(QObject::tr("&View"));
    view->setObjectName("mnuView");
    auto* faces = new QActionGroup(view);
    for (const Face face : {Face::Regular, Face::Thin, Face::SuperThin}) {
        const std::string name = std::string("mnu") + faceSetting(face) + "Face";
        QAction* entry = add(view, name, QString::fromLatin1(faceSetting(face)),
                             [this, face] { window_.setFace(face); });
        entry->setCheckable(true);
        faces->addAction(entry);
    }
    view->addSeparator();
    QAction* onTop = add(view, "mnuOnTop", QObject::tr("Always on &Top"), [] {});
    onTop->setCheckable(true);
    QObject::connect(onTop, &QAction::toggled, &window_, [this](bool on) { window_.setOnTop(on); });
    QAction* log = add(view, "mnuViewLog", QObject::tr("&Event Log"), [] {});
    log->setCheckable(true);
    QObject::connect(log, &QAction::toggled, &window_,
                     [this](bool on) { window_.showEventLog(on); });
    QObject::connect(view, &QMenu::aboutToShow, &window_,
                     [this] { refresh(parts_.dictation.view()); });
}

void StationMenus::buildConfiguration() {
    dictation::Dictation& d = parts_.dictation;
    QMenu* configuration = window_.menuBar()->addMenu(QObject::tr("&Configuration"));
    configuration->setObjectName("mnuConfiguration");
    add(configuration, "mnuFileSaves", QObject::tr("File Names, Folders and Delivery..."),
        [this] { showFileSaves(window_, parts_); });
    add(configuration, "mnuRecordingFormats", QObject::tr("Recording Formats..."),
        [this] { showMp3Options(window_, parts_); });
    add(configuration, "CaseDefaults", QObject::tr("Factory Recording Formats"),
        [&d] { d.restoreFactoryFormats(); });
    configuration->addSeparator();
    addGreyed(configuration, "mnuQDUCon", QObject::tr("Quadrant Desk Unit Connected"))
        ->setCheckable(true);
    addGreyed(configuration, "mnuButtons", QObject::tr("Desk Unit Buttons..."));
    add(configuration, "mnuHotKeys", QObject::tr("Hot Keys..."), [this] { showHotKeyOptions(); });
    add(configuration, "mnuSpeakers", QObject::tr("Speakers..."),
        [this] { showSpeakerList(window_, parts_); });
    if (parts_.housekeeping == nullptr) {
        addGreyed(configuration, "mnuFilePurge", QObject::tr("Scheduled Deletion..."));
        addGreyed(configuration, "mnuDriveScan", QObject::tr("Drive Scan Scheduler..."));
    } else {
        add(configuration, "mnuFilePurge", QObject::tr("Scheduled Deletion..."),
            [this] { WeeklyDeleteWindow(*parts_.housekeeping, &window_).exec(); });
        add(configuration, "mnuDriveScan", QObject::tr("Drive Scan Scheduler..."),
            [this] { showDriveScanWindow(*parts_.housekeeping, parts_.prompts, &window_); });
    }
    configuration->addSeparator();
    const auto records = [this](RecordsWindow which) {
        return [this, which] {
            showRecordsWindow(which, &window_, parts_.config.dataFolder(), parts_.prompts,
                              parts_.config.record,
                              parts_.housekeeping ? &parts_.housekeeping->windows : nullptr);
        };
    };
    add(configuration, "mnCompanyInfo", QObject::tr("Company Information..."),
        records(RecordsWindow::OurCompany));
    add(configuration, "mnCompInfo", QObject::tr("Company and Mail Accounts..."),
        records(RecordsWindow::CompanyAndMail));
    add(configuration, "mnTranscribers", QObject::tr("Transcribers..."),
        records(RecordsWindow::Transcribers));
    add(configuration, "mnemail", QObject::tr("Configure Email..."),
        records(RecordsWindow::EmailReceivers));
    add(configuration, "mnFTP", QObject::tr("Configure FTP..."), [this] {
        showFtpSetupWindow(FtpWindowFace::Automatic, &window_, parts_.config.dataFolder(),
                           parts_.prompts);
    });
    add(configuration, "mnPOP", QObject::tr("Email Server Options..."),
        [this] { showMailOptionsWindow(&window_, parts_.config.dataFolder(), parts_.prompts); });
    add(configuration, "mnSendEmail", QObject::tr("Send E-Mail..."),
        [this] { showComposeMailWindow(&window_, parts_.config.dataFolder(), parts_.prompts); });
    add(configuration, "mnPasswords", QObject::tr("Decryption Keys..."),
        records(RecordsWindow::DecryptionKeys));
    add(configuration, "mnDecrypt", QObject::tr("Decrypt a File..."),
        records(RecordsWindow::ManualDecrypt));
}

void StationMenus::buildPedals() {
    QMenu* pedals = window_.menuBar()->addMenu(QObject::tr("&Pedals"));
    pedals->setObjectName("mnuEXTFootPedals");
    devices::HandsFree* handsFree = parts_.handsFree;
    const auto pedalEntry = [&](const std::string& name, const QString& text,
                                const std::function<void(devices::HandsFree&)>& routine) {
        QAction* entry = handsFree != nullptr ? add(pedals, name, text,
                                                    [handsFree, routine] { routine(*handsFree); })
                                              : addGreyed(pedals, name, text);
        entry->setCheckable(true);
    };
    pedalEntry("mnuUSBFootPedals", QObject::tr("USB Foot Pedals"),
               [](devices::HandsFree& h) { h.usb.toggleUsbPedals(); });
    pedalEntry("mnuSERFootPedals", QObject::tr("Serial Foot Pedals"),
               [](devices::HandsFree& h) { h.serial.toggleSerialPedals(); });
    pedalEntry("mnuGAMEFootPedals", QObject::tr("Game Port Foot Pedals"),
               [](devices::HandsFree& h) { h.game.toggleGamePedals(); });
    pedalEntry("mnuOtherMakers", QObject::tr("Dictation Devices of Other Makers"),
               [](devices::HandsFree& h) { h.otherMakers.toggle(); });
    pedals->addSeparator();
    pedalEntry("mn30VEC", QObject::tr("Use 3.0 Infinity Foot Pedal Controller"),
               [](devices::HandsFree& h) { h.usb.toggleVec30Pedal(); });
    QMenu* ports = pedals->addMenu(QObject::tr("COM &Port"));
    ports->setObjectName("mnuComPort");
    for (int index = 0; index < devices::SerialPedals::kPortCount; ++index) {
        const std::string name = "mnuComPortItem" + std::to_string(index);
        const QString text = QStringLiteral("COM%1").arg(index + 1);
        QAction* entry = handsFree != nullptr
                             ? add(ports, name, text,
                                   [handsFree, index] { handsFree->serial.chooseComPort(index); })
                             : addGreyed(ports, name, text);
        entry->setCheckable(true);
    }
    pedals->addSeparator();
    const auto assignments = [this](devices::PedalDialog which) {
        return
            [this, which] { showPedalAssignments(which, &window_, parts_.config, parts_.prompts); };
    };
    add(pedals, "mnuConfigUSBFootPedals", QObject::tr("USB Pedal Assignments..."),
        assignments(devices::PedalDialog::Usb));
    add(pedals, "mnuConfigSERFootPedals", QObject::tr("Serial Pedal Assignments..."),
        assignments(devices::PedalDialog::Serial));
    add(pedals, "mnuConfigGAMEFootPedals", QObject::tr("Game Port Pedal Assignments..."),
        assignments(devices::PedalDialog::Game));
    add(pedals, "mnuConfigFootPedals", QObject::tr("Desk Unit Pedal Assignments..."),
        assignments(devices::PedalDialog::DeskUnit));
    add(pedals, "mnuPrintButton", QObject::tr("Print Desk Unit Button Template..."),
        [this] { showPrintButtonTemplate(&window_, parts_.config.record); });
    if (handsFree != nullptr)
        showPedalDialogsFromMenus(*handsFree, &window_, parts_.config, parts_.prompts);
    QObject::connect(pedals, &QMenu::aboutToShow, &window_, [this] { refreshPedals(); });
}

void StationMenus::showHotKeyOptions() {
    devices::HandsFree* handsFree = parts_.handsFree;
    devices::HotKeyOptionsForm hotKeys(
        parts_.config, parts_.prompts,
        dictation::applicationTitle(parts_.config.record.HandsFreeEdition),
        handsFree != nullptr ? handsFree->hotKeySystemUnavailable : std::string());
    hotKeys.onHookChanged = [handsFree] {
        if (handsFree != nullptr && handsFree->onHotKeySettingsChanged)
            handsFree->onHotKeySettingsChanged();
    };
    showEndOfLetterOptions(window_, parts_, hotKeys);
}

void StationMenus::buildTools() {
    QMenu* tools = window_.menuBar()->addMenu(QObject::tr("&Tools"));
    tools->setObjectName("mnuTools");
    add(tools, "mnAutoSend", QObject::tr("Manually Start AutoSend"), [this] {
        if (window_.onAutoSend) window_.onAutoSend();
    })->setEnabled(false);
    add(tools, "mnuScanConvert", QObject::tr("Scan/Convert..."), [this] {
        if (window_.onScanConvert) window_.onScanConvert();
    });
    const auto ftpWindow = [this](FtpWindowFace face) {
        return [this, face] {
            showFtpTransferWindow(face, &window_, parts_.config.dataFolder(), parts_.programFolder,
                                  parts_.config.record.CaptureFilePath.toText(), parts_.prompts);
        };
    };
    add(tools, "mnFTPTransfer", QObject::tr("FTP Transfer..."), ftpWindow(FtpWindowFace::Manual));
    add(tools, "mnAutoFTP", QObject::tr("Automatic FTP..."), ftpWindow(FtpWindowFace::Automatic));
    add(tools, "mnuInsertRecording", QObject::tr("Insert Recording..."), [this] {
        if (window_.onSecondEditor) window_.onSecondEditor();
    });
    tools->addSeparator();
    add(tools, "mnuDebugTrace", QObject::tr("Debug Trace"), [this] {
        parts_.debugTrace.DebugOn = true;
        if (parts_.debugTrace.onShow) parts_.debugTrace.onShow();
    });
    QObject::connect(tools, &QMenu::aboutToShow, &window_,
                     [this] { refresh(parts_.dictation.view()); });
}

void StationMenus::buildHelp() {
    QMenu* help = window_.menuBar()->addMenu(QObject::tr("&Help"));
    help->setObjectName("mnuHelp");
    add(help, "mnuHelpTopics", QObject::tr("Help &Topics"), [this] {
        window_.showHelp();
    })->setShortcut(QKeySequence::HelpContents);
    add(help, "mnuAbout", QObject::tr("&About"), [this] { window_.showAbout(); });
}

void StationMenus::buildContextMenu() {
    dictation::Dictation& d = parts_.dictation;
    contextMenu_ = new QMenu(&window_);
    contextMenu_->setObjectName("mnuPopUp");
    add(contextMenu_, "mnuInsertBeginning", QStringLiteral("Insert Beginning of File"),
        [&d] { d.insertAtBeginningFromMenu(); });
    add(contextMenu_, "mnuAppendEnd", QStringLiteral("Append End of File"),
        [&d] { d.appendAtEnd(); });
    add(contextMenu_, "mnuLastThreeContinue",
        QStringLiteral("Play Last Three Seconds Continue Recording"),
        [&d] { d.lastThreeSecondsContinueFromMenu(); });
}

void StationMenus::refresh(const dictation::MainView& view) {
    refreshReopen(view);
    action("mnuScanConvert")
        ->setEnabled(view.mnuScanConvertEnabled && window_.onScanConvert != nullptr);
    QAction* autoSend = action("mnAutoSend");
    autoSend->setEnabled(window_.onAutoSend != nullptr);
    action("mnuInsertRecording")->setEnabled(window_.onSecondEditor != nullptr);
    if (window_.autoSendCaption)
        autoSend->setText(QString::fromStdString(window_.autoSendCaption()));
    action(std::string("mnu") + faceSetting(window_.face()) + "Face")->setChecked(true);
    QAction* onTop = action("mnuOnTop");
    const QSignalBlocker quiet(onTop);
    onTop->setChecked(parts_.config.record.Ontopcheck.toNumber().value_or(0) == 1);
    action("mnuQDUCon")->setChecked(!parts_.config.record.QDUDisconnected);
    refreshPedals();
}

void StationMenus::refreshPedals() {
    const settings::SettingsRecord& record = parts_.config.record;
    if (parts_.handsFree == nullptr) {
        action("mnuUSBFootPedals")->setChecked(record.UserSelectUSB);
        action("mnuSERFootPedals")->setChecked(record.UserSelectSerial);
        action("mnuGAMEFootPedals")->setChecked(record.UserSelectGame);
        return;
    }
    const devices::HandsFree& h = *parts_.handsFree;
    action("mnuUSBFootPedals")->setChecked(h.usb.menu.usbChecked);
    action("mnuSERFootPedals")->setChecked(h.serial.serialPedalsChecked());
    action("mnuGAMEFootPedals")->setChecked(h.usb.menu.gameChecked);
    action("mnuOtherMakers")->setChecked(h.otherMakers.enabled());
    action("mn30VEC")->setChecked(record.Use30VEC);
    for (int index = 0; index < devices::SerialPedals::kPortCount; ++index) {
        action("mnuComPortItem" + std::to_string(index))
            ->setChecked(h.serial.comPortChecked(index));
    }
}

void StationMenus::refreshReopen(const dictation::MainView& view) {
    if (reopenShown_ && view.Reopen == shownReopen_) return;
    reopenShown_ = true;
    shownReopen_ = view.Reopen;
    reopen_->clear();
    dictation::Dictation& d = parts_.dictation;
    if (view.Reopen.empty()) {
        reopen_->addAction(QString::fromLatin1(kNoRecentFiles))->setEnabled(false);
    }
    int number = 1;
    for (const std::string& path : view.Reopen) {
        const QString text =
            QStringLiteral("&%1 %2").arg(number++).arg(QString::fromStdString(path));
        QObject::connect(reopen_->addAction(text), &QAction::triggered, &window_,
                         [&d, path] { d.openRecentFile(path); });
    }
    reopen_->addSeparator();
    QAction* clear = reopen_->addAction(QObject::tr("Clear"));
    clear->setObjectName("mnuClear");
    clear->setEnabled(!view.Reopen.empty());
    QObject::connect(clear, &QAction::triggered, &window_, [&d] { d.clearRecentFiles(); });
}

}  // namespace ovd::ui
