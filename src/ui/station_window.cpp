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
#include "engine/wave_editor.h"
#include "settings/config_file.h"
#include "settings/debug_trace.h"
#include "settings/event_log.h"
#include "ui/debug_window.h"
#include "ui/desk_unit_panel.h"
#include "ui/device_box.h"
#include "ui/device_choice.h"
#include "ui/event_log_window.h"
#include "ui/globals_snapshot.h"
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

    deviceChoice_ = std::make_unique<DeviceChoice>(parts_.recordingEditor.RecordingDevices(),
                                                   parts_.recordingEditor.PlaybackDevices(),
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
    column_->addWidget(ctSlide1_);
    column_->addWidget(buildTimesRow());
    column_->addWidget(buildTransportRow());
    editRow_ = buildEditRow();
    column_->addWidget(editRow_);
    optionsRow_ = buildOptionsRow();
    column_->addWidget(optionsRow_);
    deviceBox_ = new DeviceBox(*deviceChoice_, central);
    column_->addWidget(deviceBox_);
    setCentralWidget(central);
    buildStatusBar();

    menus_ = std::make_unique<StationMenus>(*this, parts_);
    eventLogWindow_ = new EventLogWindow(parts_.eventLog, this);
    eventLogWindow_->onClosed = [this] { chkViewlOG_->setChecked(false); };
    debugWindow_ = new DebugWindow(
        parts_.debugTrace, [this] { return snapshotOf(parts_.dictation, parts_.config.record); }, this);
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
    Label40_ = named(new QLabel(rows), "Label40");
    QFont strong = Label40_->font();
    strong.setBold(true);
    strong.setPointSizeF(strong.pointSizeF() * 1.15);
    Label40_->setFont(strong);
    lblBusy_ = named(new QLabel(tr("Busy..."), rows), "lblBusy");
    lblBusy_->setStyleSheet(QStringLiteral("color: #a06000; font-weight: bold;"));
    lblReady_ = named(new QLabel(rows), "lblReady");
    lblReady_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    lblMode_ = named(new QLabel(rows), "lblMode");
    lblMode_->setStyleSheet(QStringLiteral("color: #1040a0; font-weight: bold;"));
    Label37_ = named(new QLabel(rows), "Label37");
    grid->addWidget(Label40_, 0, 0, 1, 2);
    grid->addWidget(lblBusy_, 0, 2, Qt::AlignRight);
    grid->addWidget(new QLabel(tr("File Name:"), rows), 1, 0);
    grid->addWidget(lblReady_, 1, 1);
    grid->addWidget(lblMode_, 1, 2, Qt::AlignRight);
    grid->addWidget(Label37_, 2, 1);
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
    ctSlide1_ = new QSlider(Qt::Horizontal, this);
    ctSlide1_->setObjectName("ctSlide1");
    ctSlide1_->setRange(0, 100);
    ctSlide1_->setEnabled(false);
    ctSlide1_->setToolTip(tr("Position in the file"));
    connect(ctSlide1_, &QSlider::sliderPressed, this, [this, &d] { routed([&d] { d.positionSliderPressed(); }); });
    connect(ctSlide1_, &QSlider::valueChanged, this, [this, &d](int value) {
        // Only the hand moves the position; the dictation's own moves are rendered.
        if (ctSlide1_->isSliderDown()) d.positionSliderMoved(value);
    });
    connect(ctSlide1_, &QSlider::sliderReleased, this,
            [this, &d] { routed([this, &d] { d.positionSliderReleased(ctSlide1_->value()); }); });
    // A click beside the handle or a key moves it with no press or release.
    connect(ctSlide1_, &QSlider::actionTriggered, this, [this, &d](int action) {
        if (action == QAbstractSlider::SliderMove || ctSlide1_->isSliderDown()) return;
        QTimer::singleShot(0, this, [this, &d] {
            routed([this, &d] {
                d.positionSliderPressed();
                d.positionSliderMoved(ctSlide1_->value());
                d.positionSliderReleased(ctSlide1_->value());
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
    Label24_ = named(new QLabel(QStringLiteral("00:00:00"), times), "Label24");
    QFont remaining = clock;
    remaining.setPointSizeF(clock.pointSizeF() * 0.7);
    Label24_->setFont(remaining);
    Label43_ = named(new QLabel(times), "Label43");
    Label43_->setMinimumWidth(70);
    levelMeter_ = new LevelMeter(times);
    row->addWidget(lamps_);
    row->addSpacing(8);
    row->addWidget(captioned(times, tr("Time Elapsed"), timeElapsed_));
    row->addWidget(captioned(times, tr("Time Remaining"), Label24_));
    row->addWidget(captioned(times, tr("File Size"), Label43_));
    row->addWidget(levelMeter_, 1, Qt::AlignVCenter);
    return times;
}

QWidget* StationWindow::buildTransportRow() {
    dictation::Dictation& d = parts_.dictation;
    auto* rowWidget = new QWidget(this);
    auto* row = new QHBoxLayout(rowWidget);
    row->setContentsMargins(0, 0, 0, 0);
    MMControl1_ = new TransportBar(rowWidget);
    MMControl1_->onClick = {
        [this, &d] { routed([&d] { d.goToBeginning(); }); },
        [this, &d] { routed([&d] { d.goToEnd(); }); },
        [this, &d] { routed([&d] { d.play(); }); },
        [this, &d] { routed([&d] { d.pause(); }); },
        [this, &d] { routed([&d] { d.stepBack(); }); },
        [this, &d] { routed([&d] { d.stepForward(); }); },
        [this, &d] { routed([&d] { d.stop(); }); },
        [this, &d] { routed([&d] { d.recordTake(); }); },
    };
    row->addWidget(MMControl1_);
    row->addStretch();
    ButtonEx1_ = namedButton(rowWidget, "ButtonEx1", tr("End Insert"));
    ButtonEx2_ = namedButton(rowWidget, "ButtonEx2", tr("End Append"));
    cmdEOL_ = namedButton(rowWidget, "cmdEOL", tr("End of Letter"));
    cmdEOL_->setMinimumHeight(40);
    cmdEOL_->setToolTip(tr("Close and save the file, and begin the next"));
    connect(ButtonEx1_, &QPushButton::clicked, this, [this, &d] { routed([&d] { d.endInsert(); }); });
    connect(ButtonEx2_, &QPushButton::clicked, this, [this, &d] { routed([&d] { d.endAppend(); }); });
    connect(cmdEOL_, &QPushButton::clicked, this, [this, &d] { routed([&d] { d.finishLetter(); }); });
    row->addWidget(ButtonEx1_);
    row->addWidget(ButtonEx2_);
    row->addWidget(cmdEOL_);
    return rowWidget;
}

QWidget* StationWindow::buildEditRow() {
    dictation::Dictation& d = parts_.dictation;
    auto* rowWidget = new QWidget(this);
    auto* row = new QHBoxLayout(rowWidget);
    row->setContentsMargins(0, 0, 0, 0);
    Command1_ = namedButton(rowWidget, "Command1", QStringLiteral("Add Comments To Beginning"));
    Command2_ = namedButton(rowWidget, "Command2", QStringLiteral("Insert Audio at Current Position"));
    cmdOVR_ = namedButton(rowWidget, "cmdOVR", QStringLiteral("Overwrite Audio at Current Position"));
    Command3_ = namedButton(rowWidget, "Command3", QStringLiteral("Test"));
    Command3_->setToolTip(tr("Play the last three seconds"));
    auto* lastThree = new QPushButton(tr("Play Last 3 secs"), rowWidget);
    lastThree->setObjectName("lblPlayLast3");
    lastThree->setFlat(true);
    connect(Command1_, &QPushButton::clicked, this, [this, &d] { routed([&d] { d.addToBeginning(); }); });
    connect(Command2_, &QPushButton::clicked, this, [this, &d] { routed([&d] { d.insertAtCursor(); }); });
    connect(cmdOVR_, &QPushButton::clicked, this, [this, &d] { routed([&d] { d.overwriteAtCursor(); }); });
    connect(Command3_, &QPushButton::clicked, this, [this, &d] { routed([&d] { d.replayLastThreeSeconds(); }); });
    connect(lastThree, &QPushButton::clicked, this, [this, &d] { routed([&d] { d.replayLastThreeSeconds(); }); });
    txtStepAmt_ = new QLineEdit(rowWidget);
    txtStepAmt_->setObjectName("txtStepAmt");
    txtStepAmt_->setValidator(new QIntValidator(0, 3600, txtStepAmt_));
    txtStepAmt_->setMaximumWidth(50);
    txtStepAmt_->setToolTip(tr("Seconds of one step back or forward"));
    connect(txtStepAmt_, &QLineEdit::textEdited, this, [this, &d](const QString& text) {
        routed([&d, text] { d.stepAmountChanged(text.toStdString()); });
    });
    row->addWidget(Command1_);
    row->addWidget(Command2_);
    row->addWidget(cmdOVR_);
    row->addStretch();
    row->addWidget(Command3_);
    row->addWidget(lastThree);
    row->addWidget(new QLabel(tr("Step (secs)"), rowWidget));
    row->addWidget(txtStepAmt_);
    return rowWidget;
}

QWidget* StationWindow::buildOptionsRow() {
    auto* rowWidget = new QWidget(this);
    auto* row = new QHBoxLayout(rowWidget);
    row->setContentsMargins(0, 0, 0, 0);
    auto* formatBox = new QGroupBox(QStringLiteral("Recording Format"), rowWidget);
    formatBox->setObjectName("frRec");
    auto* formats = new QHBoxLayout(formatBox);
    Option2_ = new QRadioButton(QStringLiteral("Normal Conditions"), formatBox);
    Option2_->setObjectName("Option2");
    Option3_ = new QRadioButton(QStringLiteral("Other Conditions"), formatBox);
    Option3_->setObjectName("Option3");
    Option3_->setToolTip(QStringLiteral("IE: Conference, Group, Hard-to-hear Audio, Heavy Accent"));
    formats->addWidget(Option2_);
    formats->addWidget(Option3_);
    connect(Option2_, &QRadioButton::clicked, this, [this] { Option_Click(false); });
    connect(Option3_, &QRadioButton::clicked, this, [this] { Option_Click(true); });
    formatBox_ = formatBox;

    auto* speakerBox = new QGroupBox(tr("Speaker"), rowWidget);
    speakerBox->setObjectName("frameSpeaker");
    auto* speakerRow = new QHBoxLayout(speakerBox);
    cboName_ = new QComboBox(speakerBox);
    cboName_->setObjectName("cboName");
    cboName_->setMinimumContentsLength(16);
    speakerRow->addWidget(cboName_);
    connect(cboName_, &QComboBox::activated, this, [this](int index) {
        const std::string name = cboName_->itemText(index).toStdString();
        routed([this, name] { parts_.dictation.naming.pickDictator(name); });
    });
    speakerBox_ = speakerBox;

    chkViewlOG_ = new QCheckBox(tr("View Event Log"), rowWidget);
    chkViewlOG_->setObjectName("chkViewlOG");
    connect(chkViewlOG_, &QCheckBox::toggled, this, [this](bool on) { chkViewlOG_Click(on); });
    row->addWidget(formatBox);
    row->addWidget(speakerBox);
    row->addStretch();
    row->addWidget(chkViewlOG_);
    return rowWidget;
}

void StationWindow::buildStatusBar() {
    statusPanel1_ = named(new QLabel(this), "StatusBar1Panel1");
    statusPanel2_ = named(new QLabel(this), "StatusBar1Panel2");
    auto* traceCorner = named(new QLabel(QStringLiteral(" "), this), "lblDebugPrint");
    traceCorner->setMinimumWidth(16);
    traceCorner->setToolTip(tr("Double click: support trace"));
    traceCorner->installEventFilter(this);
    statusBar()->addWidget(statusPanel1_, 1);
    statusBar()->addPermanentWidget(statusPanel2_);
    statusBar()->addPermanentWidget(traceCorner);
}

bool StationWindow::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::MouseButtonDblClick && watched->objectName() == "lblDebugPrint") {
        parts_.debugTrace.openForSupport(parts_.prompts,
                                         snapshotOf(parts_.dictation, parts_.config.record));
        debugWindow_->refresh();
        debugWindow_->showOverStation();
        return true;
    }
    return QMainWindow::eventFilter(watched, event);
}

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
    if (renderQueued_) return;
    renderQueued_ = true;
    const auto renderIfStillDue = [this] {
        if (renderQueued_) render();
    };
    const qint64 wait = somethingMoves() ? kMovingRenderMs - sinceRender_.elapsed() : 0;
    if (wait <= 0) {
        QMetaObject::invokeMethod(this, renderIfStillDue, Qt::QueuedConnection);
    } else {
        QTimer::singleShot(static_cast<int>(wait), this, renderIfStillDue);
    }
}

}  // namespace ovd::ui
