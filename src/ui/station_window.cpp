#include "ui/station_window.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QContextMenuEvent>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QIntValidator>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMoveEvent>
#include <QPushButton>
#include <QRadioButton>
#include <QScreen>
#include <QSlider>
#include <QStatusBar>
#include <QStyle>
#include <QTimer>
#include <QToolBar>
#include <QVBoxLayout>

#include "devices/hands_free.h"
#include "dictation/dictation.h"
#include "dictation/globals_snapshot.h"
#include "engine/wave_editor.h"
#include "settings/config_file.h"
#include "settings/debug_trace.h"
#include "settings/event_log.h"
#include "station/device_choice.h"
#include "ui/debug_window.h"
#include "ui/desk_unit_panel.h"
#include "ui/device_box.h"
#include "ui/event_log_window.h"
#include "ui/letter_details_panel.h"
#include "ui/level_meter.h"
#include "ui/on_air_lamps.h"
#include "ui/station_menus.h"
#include "ui/transport_bar.h"
#include "ui/typewriter_font.h"
#include "ui/waveform_view.h"
#include "ui/window_placement.h"

namespace ovd::ui {

namespace {

// While a take records or a file plays, the times and the size move many times
// a second; the eye needs them no more often than this.
constexpr qint64 kMovingRenderMs = 100;

QLabel* named(QLabel* label, const char* name) {
    label->setObjectName(QString::fromLatin1(name));
    return label;
}

QPushButton* namedButton(QWidget* parent, const char* name, const QString& text) {
    auto* button = new QPushButton(text, parent);
    button->setObjectName(QString::fromLatin1(name));
    return button;
}

// A caption over a value, as the time displays show them.
QWidget* captioned(QWidget* parent, const QString& caption, QLabel* value) {
    auto* box = new QWidget(parent);
    auto* column = new QVBoxLayout(box);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    auto* title = new QLabel(caption, box);
    QFont small = title->font();
    small.setPointSizeF(small.pointSizeF() * 0.85);
    title->setFont(small);
    title->setAlignment(Qt::AlignHCenter);
    value->setAlignment(Qt::AlignHCenter);
    column->addWidget(title);
    column->addWidget(value);
    return box;
}

}  // namespace

QString StationWindow::titleFor(bool handsFreeEdition) {
    return QString::fromStdString(dictation::applicationTitle(handsFreeEdition));
}

StationWindow::StationWindow(StationWindowParts parts) : parts_(std::move(parts)) {
    setObjectName("frmDialog");
    setWindowTitle(titleFor(parts_.config.record.HandsFreeEdition));
    setWindowIcon(QIcon::fromTheme(QStringLiteral("orvane-voice-desk")));

    deviceChoice_ = std::make_unique<station::DeviceChoice>(
        parts_.recordingEditor.RecordingDevices(), parts_.recordingEditor.PlaybackDevices(),
        parts_.config, parts_.prompts);
    deviceChoice_->onRestartNeeded = [this] {
        if (onRestartNeeded) onRestartNeeded();
    };

    buildToolIcons();
    auto* central = new QWidget(this);
    column_ = new QVBoxLayout(central);
    column_->setSpacing(6);
    statusRows_ = buildStatusRows();
    column_->addWidget(statusRows_);
    audioFrame_ = buildAudioFrame();
    column_->addWidget(audioFrame_, 1);
    column_->addWidget(positionSlider_);
    column_->addWidget(buildTimesRow());
    column_->addWidget(buildTransportRow());
    editRow_ = buildEditRow();
    column_->addWidget(editRow_);
    optionsRow_ = buildOptionsRow();
    column_->addWidget(optionsRow_);
    detailsPanel_ = new LetterDetailsPanel(parts_.dictation, central);
    column_->addWidget(detailsPanel_);
    deviceBox_ = new DeviceBox(*deviceChoice_, central);
    column_->addWidget(deviceBox_);
    setCentralWidget(central);
    buildStatusBar();

    menus_ = std::make_unique<StationMenus>(*this, parts_);
    eventLogWindow_ = new EventLogWindow(parts_.eventLog, this);
    eventLogWindow_->onClosed = [this] { viewLogCheck_->setChecked(false); };
    debugWindow_ = new DebugWindow(
        parts_.debugTrace,
        [this] { return dictation::snapshotOf(parts_.dictation, parts_.config.record); }, this);
    wireEngineEvents();
    parts_.dictation.onViewChanged = [this] { viewAnnounced(); };
    sinceRender_.start();
    render();
}

StationWindow::~StationWindow() {
    parts_.dictation.onViewChanged = nullptr;
    parts_.recordingEditor.onLevel = nullptr;
    parts_.scratchEditor.onLevel = nullptr;
    parts_.recordingEditor.onViewChange = nullptr;
    parts_.recordingEditor.RecordingDevices().onChanged = nullptr;
    parts_.recordingEditor.PlaybackDevices().onChanged = nullptr;
}

void StationWindow::wireEngineEvents() {
    // The meter shows whichever editor is taking: the file, or the scratch take of
    // an insert or overwrite.
    parts_.recordingEditor.onLevel = [this](int peak) { levelMeter_->setLevel(peak); };
    parts_.scratchEditor.onLevel = [this](int peak) { levelMeter_->setLevel(peak); };
    parts_.recordingEditor.onViewChange = [this] { waveform_->markChanged(); };
    // A device plugged in or taken away shows in the boxes.
    parts_.recordingEditor.RecordingDevices().onChanged = [this] { deviceBox_->follow(); };
    parts_.recordingEditor.PlaybackDevices().onChanged = [this] { deviceBox_->follow(); };
}

void StationWindow::buildToolIcons() {
    dictation::Dictation& d = parts_.dictation;
    toolIcons_ = addToolBar(tr("Files"));
    toolIcons_->setObjectName("toolIcons");
    toolIcons_->setMovable(false);
    toolIcons_->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    struct Icon {
        const char* name;
        const char* text;
        QStyle::StandardPixmap pixmap;
        std::function<void()> routine;
    };
    const Icon icons[] = {
        {"Image2", "New", QStyle::SP_FileIcon, [&d] { d.newLetter(); }},
        {"Image3", "Open", QStyle::SP_DialogOpenButton, [&d] { d.openLetter(); }},
        {"Image4", "Save", QStyle::SP_DialogSaveButton, [&d] { d.saveNow(); }},
        {"Image10", "Close", QStyle::SP_DialogCloseButton, [&d] { d.closeFile(); }},
        {"Image7", "Defaults", QStyle::SP_BrowserReload, [&d] { d.restoreFactoryFormats(); }},
    };
    for (const Icon& icon : icons) {
        QAction* action = toolIcons_->addAction(style()->standardIcon(icon.pixmap), tr(icon.text));
        action->setObjectName(QString::fromLatin1(icon.name));
        const auto routine = icon.routine;
        connect(action, &QAction::triggered, this, [this, routine] { routed(routine); });
    }
    toolIcons_->actions().back()->setToolTip(tr("Factory recording formats"));
}

QWidget* StationWindow::buildStatusRows() {
    auto* rows = new QWidget(this);
    auto* grid = new QGridLayout(rows);
    grid->setContentsMargins(0, 0, 0, 0);
    statusLine_ = named(new QLabel(rows), "Label40");
    QFont strong = statusLine_->font();
    strong.setBold(true);
    strong.setPointSizeF(strong.pointSizeF() * 1.15);
    statusLine_->setFont(strong);
    busyLabel_ = named(new QLabel(tr("Busy..."), rows), "lblBusy");
    busyLabel_->setStyleSheet(QStringLiteral("color: #a06000; font-weight: bold;"));
    fileNameLabel_ = named(new QLabel(rows), "lblReady");
    fileNameLabel_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    modeLabel_ = named(new QLabel(rows), "lblMode");
    modeLabel_->setStyleSheet(QStringLiteral("color: #1040a0; font-weight: bold;"));
    operationLabel_ = named(new QLabel(rows), "Label37");
    grid->addWidget(statusLine_, 0, 0, 1, 2);
    grid->addWidget(busyLabel_, 0, 2, Qt::AlignRight);
    auto* fileNameCaption = named(new QLabel(tr("File Name:"), rows), "lblFileNameCaption");
    fileNameCaption->installEventFilter(this);
    grid->addWidget(fileNameCaption, 1, 0);
    grid->addWidget(fileNameLabel_, 1, 1);
    grid->addWidget(modeLabel_, 1, 2, Qt::AlignRight);
    grid->addWidget(operationLabel_, 2, 1);
    grid->setColumnStretch(1, 1);
    return rows;
}

QWidget* StationWindow::buildAudioFrame() {
    dictation::Dictation& d = parts_.dictation;
    auto* frame = new QWidget(this);
    frame->setObjectName("frameAudio");
    auto* column = new QVBoxLayout(frame);
    column->setContentsMargins(0, 0, 0, 0);
    waveform_ = new WaveformView(parts_.recordingEditor, frame);
    column->addWidget(waveform_, 1);
    // The slider stays usable while the frame is greyed during playback.
    positionSlider_ = new QSlider(Qt::Horizontal, this);
    positionSlider_->setObjectName("ctSlide1");
    positionSlider_->setRange(0, 100);
    positionSlider_->setEnabled(false);
    positionSlider_->setToolTip(tr("Position in the file"));
    connect(positionSlider_, &QSlider::sliderPressed, this,
            [this, &d] { routed([&d] { d.positionSliderPressed(); }); });
    connect(positionSlider_, &QSlider::valueChanged, this, [this, &d](int value) {
        // Only the hand moves the position; the dictation's own moves are rendered.
        if (positionSlider_->isSliderDown()) d.positionSliderMoved(value);
    });
    connect(positionSlider_, &QSlider::sliderReleased, this, [this, &d] {
        routed([this, &d] { d.positionSliderReleased(positionSlider_->value()); });
    });
    // A click beside the handle or a key moves it with no press or release.
    connect(positionSlider_, &QSlider::actionTriggered, this, [this, &d](int action) {
        if (action == QAbstractSlider::SliderMove || positionSlider_->isSliderDown()) return;
        QTimer::singleShot(0, this, [this, &d] {
            routed([this, &d] {
                d.positionSliderPressed();
                d.positionSliderMoved(positionSlider_->value());
                d.positionSliderReleased(positionSlider_->value());
            });
        });
    });
    return frame;
}

QWidget* StationWindow::buildTimesRow() {
    auto* times = new QWidget(this);
    times->setObjectName("frameTimes");
    auto* row = new QHBoxLayout(times);
    row->setContentsMargins(0, 0, 0, 0);
    lamps_ = new OnAirLamps(times);
    timeElapsed_ = named(new QLabel(QStringLiteral("00:00:00"), times), "NCTTimeDisplay21");
    QFont clock = typewriterFont();
    clock.setBold(true);
    clock.setPointSizeF(timeElapsed_->font().pointSizeF() * 1.6);
    timeElapsed_->setFont(clock);
    timeRemaining_ = named(new QLabel(QStringLiteral("00:00:00"), times), "Label24");
    QFont remaining = clock;
    remaining.setPointSizeF(clock.pointSizeF() * 0.7);
    timeRemaining_->setFont(remaining);
    fileSize_ = named(new QLabel(times), "Label43");
    fileSize_->setMinimumWidth(70);
    levelMeter_ = new LevelMeter(times);
    row->addWidget(lamps_);
    row->addSpacing(8);
    row->addWidget(captioned(times, tr("Time Elapsed"), timeElapsed_));
    row->addWidget(captioned(times, tr("Time Remaining"), timeRemaining_));
    row->addWidget(captioned(times, tr("File Size"), fileSize_));
    row->addWidget(levelMeter_, 1, Qt::AlignVCenter);
    return times;
}

QWidget* StationWindow::buildTransportRow() {
    dictation::Dictation& d = parts_.dictation;
    auto* rowWidget = new QWidget(this);
    auto* row = new QHBoxLayout(rowWidget);
    row->setContentsMargins(0, 0, 0, 0);
    transportBar_ = new TransportBar(rowWidget);
    transportBar_->onClick = {
        [this, &d] { routed([&d] { d.goToBeginning(); }); },
        [this, &d] { routed([&d] { d.goToEnd(); }); },
        [this, &d] { routed([&d] { d.play(); }); },
        [this, &d] { routed([&d] { d.pause(); }); },
        [this, &d] { routed([&d] { d.stepBack(); }); },
        [this, &d] { routed([&d] { d.stepForward(); }); },
        [this, &d] { routed([&d] { d.stop(); }); },
        [this, &d] { routed([&d] { d.recordTake(); }); },
    };
    row->addWidget(transportBar_);
    row->addStretch();
    endInsertButton_ = namedButton(rowWidget, "ButtonEx1", tr("End Insert"));
    endAppendButton_ = namedButton(rowWidget, "ButtonEx2", tr("End Append"));
    endOfLetterButton_ = namedButton(rowWidget, "cmdEOL", tr("End of Letter"));
    endOfLetterButton_->setMinimumHeight(40);
    endOfLetterButton_->setToolTip(tr("Close and save the file, and begin the next"));
    connect(endInsertButton_, &QPushButton::clicked, this,
            [this, &d] { routed([&d] { d.endInsert(); }); });
    connect(endAppendButton_, &QPushButton::clicked, this,
            [this, &d] { routed([&d] { d.endAppend(); }); });
    connect(endOfLetterButton_, &QPushButton::clicked, this,
            [this, &d] { routed([&d] { d.finishLetter(); }); });
    row->addWidget(endInsertButton_);
    row->addWidget(endAppendButton_);
    row->addWidget(endOfLetterButton_);
    return rowWidget;
}

QWidget* StationWindow::buildEditRow() {
    dictation::Dictation& d = parts_.dictation;
    auto* rowWidget = new QWidget(this);
    auto* row = new QHBoxLayout(rowWidget);
    row->setContentsMargins(0, 0, 0, 0);
    addToBeginningButton_ =
        namedButton(rowWidget, "Command1", QStringLiteral("Add Comments To Beginning"));
    insertButton_ =
        namedButton(rowWidget, "Command2", QStringLiteral("Insert Audio at Current Position"));
    overwriteButton_ =
        namedButton(rowWidget, "cmdOVR", QStringLiteral("Overwrite Audio at Current Position"));
    lastThreeSecondsButton_ = namedButton(rowWidget, "Command3", QStringLiteral("Test"));
    lastThreeSecondsButton_->setToolTip(tr("Play the last three seconds"));
    auto* lastThree = new QPushButton(tr("Play Last 3 secs"), rowWidget);
    lastThree->setObjectName("lblPlayLast3");
    lastThree->setFlat(true);
    connect(addToBeginningButton_, &QPushButton::clicked, this,
            [this, &d] { routed([&d] { d.addToBeginning(); }); });
    connect(insertButton_, &QPushButton::clicked, this,
            [this, &d] { routed([&d] { d.insertAtCursor(); }); });
    connect(overwriteButton_, &QPushButton::clicked, this,
            [this, &d] { routed([&d] { d.overwriteAtCursor(); }); });
    connect(lastThreeSecondsButton_, &QPushButton::clicked, this,
            [this, &d] { routed([&d] { d.replayLastThreeSeconds(); }); });
    connect(lastThree, &QPushButton::clicked, this,
            [this, &d] { routed([&d] { d.replayLastThreeSeconds(); }); });
    stepSecondsBox_ = new QLineEdit(rowWidget);
    stepSecondsBox_->setObjectName("txtStepAmt");
    stepSecondsBox_->setValidator(new QIntValidator(0, 3600, stepSecondsBox_));
    stepSecondsBox_->setMaximumWidth(50);
    stepSecondsBox_->setToolTip(tr("Seconds of one step back or forward"));
    connect(stepSecondsBox_, &QLineEdit::textEdited, this, [this, &d](const QString& text) {
        routed([&d, text] { d.stepAmountChanged(text.toStdString()); });
    });
    row->addWidget(addToBeginningButton_);
    row->addWidget(insertButton_);
    row->addWidget(overwriteButton_);
    row->addStretch();
    row->addWidget(lastThreeSecondsButton_);
    row->addWidget(lastThree);
    row->addWidget(new QLabel(tr("Step (secs)"), rowWidget));
    row->addWidget(stepSecondsBox_);
    return rowWidget;
}

QWidget* StationWindow::buildOptionsRow() {
    auto* rowWidget = new QWidget(this);
    auto* row = new QHBoxLayout(rowWidget);
    row->setContentsMargins(0, 0, 0, 0);
    auto* formatBox = new QGroupBox(QStringLiteral("Recording Format"), rowWidget);
    formatBox->setObjectName("frRec");
    auto* formats = new QHBoxLayout(formatBox);
    normalConditionsOption_ = new QRadioButton(QStringLiteral("Normal Conditions"), formatBox);
    normalConditionsOption_->setObjectName("Option2");
    otherConditionsOption_ = new QRadioButton(QStringLiteral("Other Conditions"), formatBox);
    otherConditionsOption_->setObjectName("Option3");
    otherConditionsOption_->setToolTip(
        QStringLiteral("IE: Conference, Group, Hard-to-hear Audio, Heavy Accent"));
    formats->addWidget(normalConditionsOption_);
    formats->addWidget(otherConditionsOption_);
    connect(normalConditionsOption_, &QRadioButton::clicked, this,
            [this] { chooseRecordingFormat(false); });
    connect(otherConditionsOption_, &QRadioButton::clicked, this,
            [this] { chooseRecordingFormat(true); });
    formatBox_ = formatBox;

    auto* speakerBox = new QGroupBox(tr("Speaker"), rowWidget);
    speakerBox->setObjectName("frameSpeaker");
    auto* speakerRow = new QHBoxLayout(speakerBox);
    speakerNames_ = new QComboBox(speakerBox);
    speakerNames_->setObjectName("cboName");
    speakerNames_->setMinimumContentsLength(16);
    speakerRow->addWidget(speakerNames_);
    connect(speakerNames_, &QComboBox::activated, this, [this](int index) {
        const std::string name = speakerNames_->itemText(index).toStdString();
        routed([this, name] { parts_.dictation.naming.pickDictator(name); });
    });
    speakerBox_ = speakerBox;

    viewLogCheck_ = new QCheckBox(tr("View Event Log"), rowWidget);
    viewLogCheck_->setObjectName("chkViewlOG");
    connect(viewLogCheck_, &QCheckBox::toggled, this, [this](bool on) { showEventLog(on); });
    row->addWidget(formatBox);
    row->addWidget(speakerBox);
    row->addStretch();
    row->addWidget(viewLogCheck_);
    return rowWidget;
}

void StationWindow::buildStatusBar() {
    fileNamePanel_ = named(new QLabel(this), "StatusBar1Panel1");
    fileSizePanel_ = named(new QLabel(this), "StatusBar1Panel2");
    auto* traceCorner = named(new QLabel(QStringLiteral(" "), this), "lblDebugPrint");
    traceCorner->setMinimumWidth(16);
    traceCorner->setToolTip(tr("Double click: support trace"));
    traceCorner->installEventFilter(this);
    statusBar()->addWidget(fileNamePanel_, 1);
    statusBar()->addPermanentWidget(fileSizePanel_);
    statusBar()->addPermanentWidget(traceCorner);
}

bool StationWindow::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::MouseButtonDblClick && watched->objectName() == "lblDebugPrint") {
        parts_.debugTrace.openForSupport(
            parts_.prompts, dictation::snapshotOf(parts_.dictation, parts_.config.record));
        debugWindow_->refresh();
        debugWindow_->showOverStation();
        return true;
    }
    if (event->type() == QEvent::MouseButtonDblClick &&
        watched->objectName() == "lblFileNameCaption") {
        tabbedFileSaves_ = !tabbedFileSaves_;
        return true;
    }
    return QMainWindow::eventFilter(watched, event);
}

void StationWindow::showDeviceChoice() { deviceBox_->fill(); }

void StationWindow::addDeskUnit(DeskUnitPanel* panel) {
    panel->setParent(centralWidget());
    deskUnit_ = panel;
    column_->addWidget(panel);
    applyFace();
}

void StationWindow::contextMenuEvent(QContextMenuEvent* event) {
    menus_->contextMenu()->popup(event->globalPos());
}

void StationWindow::routed(const std::function<void()>& entry) {
    entry();
    render();
}

bool StationWindow::somethingMoves() const {
    const auto moving = [](const engine::AudioEditor& editor) {
        const int state = editor.State();
        return state == static_cast<int>(engine::EditorState::Playing) ||
               state == static_cast<int>(engine::EditorState::Recording);
    };
    return moving(parts_.recordingEditor) || moving(parts_.scratchEditor);
}

void StationWindow::viewAnnounced() {
    // The dictation announces at most once a loop turn, after the commands of the
    // turn are done: the screen follows at once. While something moves, no more
    // often than the eye needs.
    const qint64 wait = somethingMoves() ? kMovingRenderMs - sinceRender_.elapsed() : 0;
    if (wait <= 0) {
        render();
        return;
    }
    if (renderQueued_) return;
    renderQueued_ = true;
    QTimer::singleShot(static_cast<int>(wait), this, [this] {
        if (renderQueued_) render();
    });
}

}  // namespace ovd::ui
