#include "ui/second_editor_window.h"

#include <QAction>
#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenuBar>
#include <QProgressBar>
#include <QPushButton>
#include <QSlider>
#include <QSpinBox>
#include <QStackedWidget>
#include <QStatusBar>
#include <QStyle>
#include <QToolBar>
#include <QVBoxLayout>

#include "second_editor/effect_menus.h"
#include "second_editor/second_editor.h"
#include "ui/convert_window.h"
#include "ui/format_windows.h"
#include "ui/qt_desktop_clipboard.h"
#include "ui/second_editor_dialogs.h"
#include "ui/spectral_view.h"
#include "ui/station_window.h"
#include "ui/waveform_view.h"

namespace ovd::ui {

namespace {

using second_editor::SecondEditor;
using Direction = SecondEditor::Direction;

constexpr const char* kToolbarKeys[] = {"New",     "Open",      "Save", "Delete",    "Copy",
                                        "Cut",     "Paste",     "Undo", "Redo",      "Zoomin",
                                        "Zoomout", "Forward",   "Stop", "PlayToEnd", "PlayLooped",
                                        "Pause",   "Properties"};

QStyle::StandardPixmap iconOf(const std::string& key) {
    if (key == "New") return QStyle::SP_FileIcon;
    if (key == "Open") return QStyle::SP_DialogOpenButton;
    if (key == "Save") return QStyle::SP_DialogSaveButton;
    if (key == "Delete") return QStyle::SP_TrashIcon;
    if (key == "Undo") return QStyle::SP_ArrowBack;
    if (key == "Redo") return QStyle::SP_ArrowForward;
    if (key == "Forward") return QStyle::SP_MediaPlay;
    if (key == "Stop") return QStyle::SP_MediaStop;
    if (key == "PlayToEnd") return QStyle::SP_MediaSeekForward;
    if (key == "PlayLooped") return QStyle::SP_BrowserReload;
    if (key == "Pause") return QStyle::SP_MediaPause;
    if (key == "Properties") return QStyle::SP_FileDialogInfoView;
    return QStyle::SP_CustomBase;
}

QDoubleSpinBox* secondsBox(const char* name) {
    auto* box = new QDoubleSpinBox;
    box->setObjectName(name);
    box->setDecimals(2);
    box->setSingleStep(0.1);
    box->setRange(0, 0);
    box->setKeyboardTracking(false);
    box->setSuffix(" s");
    return box;
}

void setSeconds(QDoubleSpinBox* box, double maximum, double value) {
    const QSignalBlocker quiet(box);
    if (box->maximum() != maximum) box->setMaximum(maximum);
    if (std::abs(box->value() - value) > 0.004) box->setValue(value);
}

}  // namespace

SecondEditorWindow::SecondEditorWindow(SecondEditor& editor, QWidget* parent)
    : QMainWindow(parent), editor_(editor), desktop_(std::make_unique<QtDesktopClipboard>()) {
    setObjectName("frmSecFile");
    setWindowTitle(QString::fromLatin1(second_editor::kWindowTitle));

    auto* centre = new QWidget;
    auto* column = new QVBoxLayout(centre);
    views_ = new QStackedWidget;
    waveform_ = new WaveformView(editor_.editor());
    waveform_->setObjectName("AudioEditor1");
    spectral_ = new SpectralView(editor_.editor());
    views_->addWidget(waveform_);
    views_->addWidget(spectral_);
    column->addWidget(views_, 1);
    column->addWidget(buildFields());
    auto* devices = new QHBoxLayout;
    inputPanel_ = buildDevicePanel(true);
    outputPanel_ = buildDevicePanel(false);
    devices->addWidget(inputPanel_);
    devices->addWidget(outputPanel_);
    column->addLayout(devices);
    setCentralWidget(centre);

    buildMenus();
    buildToolbar();
    progress_ = new QProgressBar;
    progress_->setObjectName("Progress");
    progress_->setRange(0, 100);
    progress_->setMaximumWidth(160);
    progress_->setVisible(false);
    status_ = new QLabel;
    status_->setObjectName("StatusBar1");
    statusBar()->addWidget(status_, 1);
    statusBar()->addPermanentWidget(progress_);

    editor_.onViewChanged = [this] { render(); };
    editor_.onProperties = [this] { FileInfoDialog(editor_, this).exec(); };
    editor_.onBackToLetter = [this] {
        if (onBackToLetter) onBackToLetter();
    };
    render();
}

SecondEditorWindow::~SecondEditorWindow() {
    editor_.onViewChanged = nullptr;
    editor_.onProperties = nullptr;
    editor_.onBackToLetter = nullptr;
}

QAction* SecondEditorWindow::add(QMenu* menu, const std::string& name, const QString& text,
                                 const std::function<void()>& routine) {
    QAction* entry = menu->addAction(text);
    entry->setObjectName(QString::fromStdString(name));
    connect(entry, &QAction::triggered, this, [routine] { routine(); });
    actions_[name] = entry;
    return entry;
}

QAction* SecondEditorWindow::action(const std::string& name) const {
    const auto found = actions_.find(name);
    return found == actions_.end() ? nullptr : found->second;
}

void SecondEditorWindow::buildMenus() {
    SecondEditor& e = editor_;
    QMenu* file = menuBar()->addMenu(tr("&File"));
    file->setObjectName("mnuFile");
    add(file, "mnuNew", tr("&New"), [&e] { e.newDocument(); });
    add(file, "mnuOpen", tr("&Open..."), [&e] { e.open(); });
    add(file, "mnuSave", tr("&Save"), [&e] { e.save(); });
    add(file, "mnuSaveAs", tr("Save &As..."), [&e] { e.saveAs(); });
    add(file, "mnuSaveSelect", tr("Save Se&lection..."), [&e] { e.saveSelection(); });
    // The Ogg Vorbis options come with the Ogg saving of the conversion window.
    add(file, "mnuOggOptions", tr("Ogg Vorbis Options..."), [this] {
        if (onOggOptions) onOggOptions();
    });
    file->addSeparator();
    add(file, "mnuExit", tr("E&xit"), [this] { close(); });

    QMenu* edit = menuBar()->addMenu(tr("&Edit"));
    edit->setObjectName("mnuEdit");
    add(edit, "mnuUndo", tr("&Undo"), [&e] { e.undo(); });
    add(edit, "mnuRedo", tr("&Redo"), [&e] { e.redo(); });
    edit->addSeparator();
    add(edit, "mnuCut", tr("Cu&t"), [&e] { e.cut(); });
    add(edit, "mnuCopy", tr("&Copy"), [&e] { e.copy(); });
    add(edit, "mnuPaste", tr("&Paste"), [&e] { e.paste(); });
    edit->addSeparator();
    add(edit, "mnuCopyWinClipboard", tr("Copy to Desktop Clipboard"),
        [this] { editor_.copyToDesktop(*desktop_); });
    add(edit, "mnuPasteWinClipboard", tr("Paste from Desktop Clipboard"),
        [this] { editor_.pasteFromDesktop(*desktop_); });
    add(edit, "mnuPasteFile", tr("Paste from File ..."), [&e] { e.pasteFile(); });
    edit->addSeparator();
    add(edit, "mnuMix", tr("Mix"), [&e] { e.mixClipboard(); });
    add(edit, "mnuMixFile", tr("Mix from File ..."), [&e] { e.mixFile(); });

    QMenu* view = menuBar()->addMenu(tr("&View"));
    view->setObjectName("mnuView");
    QAction* wave = add(view, "mnuViewWaveForm", tr("&Wave Form"), [this] { showSpectral(false); });
    QAction* spectral =
        add(view, "mnuViewSpectral", tr("&Spectral"), [this] { showSpectral(true); });
    wave->setCheckable(true);
    spectral->setCheckable(true);
    wave->setChecked(true);

    QMenu* operation = menuBar()->addMenu(tr("&Operation"));
    operation->setObjectName("mnuOperation");
    for (const auto& entry : second_editor::kOperationMenu) {
        const engine::Effect effect = entry.effect;
        add(operation, entry.control,
            QString::fromUtf8(engine::effectMenuText(effect).data(),
                              static_cast<qsizetype>(engine::effectMenuText(effect).size())),
            [&e, effect] { e.applyEffect(effect); });
    }
    QMenu* filters = menuBar()->addMenu(tr("F&ilters"));
    filters->setObjectName("mnuFilters");
    for (const auto& entry : second_editor::kFiltersMenu) {
        const engine::Effect effect = entry.effect;
        const std::string_view text = engine::effectMenuText(effect);
        add(filters, entry.control,
            QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())),
            [&e, effect] { e.applyEffect(effect); });
    }

    QMenu* tools = menuBar()->addMenu(tr("&Tools"));
    tools->setObjectName("mnuTools");
    add(tools, "mnuInfo", tr("&Info..."), [this] { FileInfoDialog(editor_, this).exec(); });
    add(tools, "mnuMarkers", tr("&Markers..."), [this] { MarkersDialog(editor_, this).exec(); });
    add(tools, "mnuConvert", tr("&Convert..."), [this] {
        if (onConvert) onConvert();
    });
}

void SecondEditorWindow::buildToolbar() {
    QToolBar* bar = addToolBar(tr("Tools"));
    bar->setObjectName("Toolbar1");
    bar->setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
    for (const char* key : kToolbarKeys) {
        const auto which = SecondEditor::keyNamed(key);
        QAction* entry = bar->addAction(QString::fromLatin1(key));
        entry->setObjectName(QString::fromLatin1(key));
        if (iconOf(key) != QStyle::SP_CustomBase)
            entry->setIcon(style()->standardIcon(iconOf(key)));
        connect(entry, &QAction::triggered, this, [this, which] { editor_.toolbarButton(*which); });
        actions_[key] = entry;
    }
}

QWidget* SecondEditorWindow::buildFields() {
    auto* fields = new QWidget;
    auto* grid = new QGridLayout(fields);
    grid->setContentsMargins(0, 0, 0, 0);
    currentSeconds_ = new QLabel;
    currentSeconds_->setObjectName("totCurPos");
    totalSeconds_ = new QLabel;
    totalSeconds_->setObjectName("lblItot");
    selectionStart_ = secondsBox("txtSelStart");
    selectionEnd_ = secondsBox("txtSelEnd");
    selectionOnly_ = new QCheckBox(tr("Selection only"));
    selectionOnly_->setObjectName("chSelect");
    zoomStart_ = secondsBox("txtZHstart");
    zoomEnd_ = secondsBox("txtZHend");
    verticalZoom_ = new QSpinBox;
    verticalZoom_->setObjectName("txtZV");
    verticalZoom_->setRange(10, 1000);
    verticalZoom_->setSuffix(" %");
    verticalZoom_->setKeyboardTracking(false);
    recordButton_ =
        new QPushButton(style()->standardIcon(QStyle::SP_DialogYesButton), tr("Record"));
    recordButton_->setObjectName("cmdRecord");
    backButton_ = new QPushButton(QString::fromLatin1(second_editor::kBackToLetterCaption));
    backButton_->setObjectName("Command5");

    grid->addWidget(new QLabel(tr("Current Seconds")), 0, 0);
    grid->addWidget(currentSeconds_, 0, 1);
    grid->addWidget(new QLabel(tr("Totals Seconds")), 0, 2);
    grid->addWidget(totalSeconds_, 0, 3);
    grid->addWidget(recordButton_, 0, 4);
    grid->addWidget(backButton_, 0, 5);
    grid->addWidget(new QLabel(tr("Selection")), 1, 0);
    grid->addWidget(selectionStart_, 1, 1);
    grid->addWidget(selectionEnd_, 1, 2);
    grid->addWidget(selectionOnly_, 1, 3);
    grid->addWidget(new QLabel(tr("Zoom")), 2, 0);
    grid->addWidget(zoomStart_, 2, 1);
    grid->addWidget(zoomEnd_, 2, 2);
    grid->addWidget(verticalZoom_, 2, 3);

    const auto numeric = QOverload<double>::of(&QDoubleSpinBox::valueChanged);
    connect(selectionStart_, numeric, this, [this](double v) { editor_.setSelectionStart(v); });
    connect(selectionEnd_, numeric, this, [this](double v) { editor_.setSelectionEnd(v); });
    connect(selectionOnly_, &QCheckBox::toggled, this,
            [this](bool on) { editor_.setChSelect(on); });
    connect(zoomStart_, numeric, this,
            [this](double v) { editor_.setZoom(v, editor_.view().zoomEnd); });
    connect(zoomEnd_, numeric, this,
            [this](double v) { editor_.setZoom(editor_.view().zoomStart, v); });
    connect(verticalZoom_, QOverload<int>::of(&QSpinBox::valueChanged), this,
            [this](int v) { editor_.setVerticalZoom(v); });
    connect(recordButton_, &QPushButton::clicked, this, [this] { editor_.record(); });
    connect(backButton_, &QPushButton::clicked, this, [this] { editor_.backToLetter(); });
    return fields;
}

QGroupBox* SecondEditorWindow::buildDevicePanel(bool input) {
    const Direction direction = input ? Direction::Input : Direction::Output;
    const QString in = input ? "Input" : "Output";
    const QString shortIn = input ? "Inp" : "Out";
    auto* box = new QGroupBox(input ? tr("Record") : tr("Play"));
    box->setObjectName(input ? "frameInput" : "frameOutput");
    auto* devices = new QComboBox;
    devices->setObjectName("cmbDev" + in);
    auto* lines = new QComboBox;
    lines->setObjectName("cmbSrc" + in);
    auto* volume = new QSlider(Qt::Horizontal);
    volume->setObjectName("sldrVolume" + shortIn);
    volume->setRange(0, 65535);
    auto* balance = new QSlider(Qt::Horizontal);
    balance->setObjectName("sldrVolBalance" + shortIn);
    balance->setRange(-100, 100);
    auto* selected = new QCheckBox(input ? tr("Record from this line") : tr("Play on this line"));
    selected->setObjectName("chSelect" + in);
    auto* form = new QGridLayout(box);
    form->addWidget(devices, 0, 0, 1, 2);
    form->addWidget(lines, 1, 0, 1, 2);
    form->addWidget(new QLabel(tr("Volume")), 2, 0);
    form->addWidget(volume, 2, 1);
    form->addWidget(new QLabel(tr("Balance")), 3, 0);
    form->addWidget(balance, 3, 1);
    form->addWidget(selected, 4, 0, 1, 2);

    connect(devices, QOverload<int>::of(&QComboBox::activated), this,
            [this, direction](int i) { editor_.chooseDevice(direction, i); });
    connect(lines, QOverload<int>::of(&QComboBox::activated), this,
            [this, direction](int i) { editor_.chooseLine(direction, i); });
    connect(volume, &QSlider::valueChanged, this, [this, direction](int v) {
        if (!rendering_) editor_.setVolume(direction, v);
    });
    connect(balance, &QSlider::valueChanged, this, [this, direction](int v) {
        if (!rendering_) editor_.setBalance(direction, v);
    });
    connect(selected, &QCheckBox::toggled, this, [this, direction](bool on) {
        if (!rendering_) editor_.selectLine(direction, on);
    });
    return box;
}

void SecondEditorWindow::showSpectral(bool spectral) {
    views_->setCurrentIndex(spectral ? 1 : 0);
    actions_["mnuViewWaveForm"]->setChecked(!spectral);
    actions_["mnuViewSpectral"]->setChecked(spectral);
    render();
}

bool SecondEditorWindow::spectralShown() const { return views_->currentIndex() == 1; }

void SecondEditorWindow::renderDevices(QGroupBox* box, const second_editor::DevicePanel& panel) {
    const auto combos = box->findChildren<QComboBox*>();
    const auto fill = [](QComboBox* combo, const std::vector<std::string>& names, int current) {
        QStringList wanted;
        for (const std::string& n : names) wanted << QString::fromStdString(n);
        QStringList shown;
        for (int i = 0; i < combo->count(); ++i) shown << combo->itemText(i);
        if (shown != wanted) {
            combo->clear();
            combo->addItems(wanted);
        }
        if (combo->currentIndex() != current) combo->setCurrentIndex(current);
    };
    fill(combos.value(0), panel.devices, panel.device);
    fill(combos.value(1), panel.lines, panel.line);
    const auto sliders = box->findChildren<QSlider*>();
    if (sliders.value(0)->value() != panel.volume) sliders.value(0)->setValue(panel.volume);
    if (sliders.value(1)->value() != panel.balance) sliders.value(1)->setValue(panel.balance);
    auto* selected = box->findChild<QCheckBox*>();
    if (selected->isChecked() != panel.selected) selected->setChecked(panel.selected);
}

void SecondEditorWindow::render() {
    if (rendering_) return;
    rendering_ = true;
    const second_editor::SecondEditorView& v = editor_.view();
    const QString caption = QString::fromStdString(v.caption) + (v.changed ? " *" : "");
    if (windowTitle() != caption) setWindowTitle(caption);
    currentSeconds_->setText(QString::number(v.currentSeconds, 'f', 2));
    totalSeconds_->setText(QString::number(v.totalSeconds, 'f', 2));
    setSeconds(selectionStart_, v.totalSeconds, v.selectionStart);
    setSeconds(selectionEnd_, v.totalSeconds, v.selectionEnd);
    setSeconds(zoomStart_, v.totalSeconds, v.zoomStart);
    setSeconds(zoomEnd_, v.totalSeconds, v.zoomEnd);
    {
        const QSignalBlocker quiet(selectionOnly_);
        selectionOnly_->setChecked(v.chSelect);
        const QSignalBlocker quietZoom(verticalZoom_);
        verticalZoom_->setValue(v.verticalZoom);
    }
    status_->setText(QString::fromStdString(v.status));
    progress_->setVisible(v.busy);
    progress_->setValue(v.progress);
    const bool moving = v.state != 0;
    recordButton_->setEnabled(!v.busy && v.state == 0);
    for (const char* name : {"mnuSave", "mnuSaveAs", "mnuSaveSelect", "mnuCut", "mnuCopy",
                             "mnuCopyWinClipboard", "mnuMix", "mnuMixFile"})
        actions_[name]->setEnabled(v.documentOpen && !v.busy);
    for (const auto& entry : second_editor::kOperationMenu)
        actions_[entry.control]->setEnabled(v.documentOpen && !v.busy && !moving);
    for (const auto& entry : second_editor::kFiltersMenu)
        actions_[entry.control]->setEnabled(v.documentOpen && !v.busy && !moving);
    actions_["mnuConvert"]->setEnabled(static_cast<bool>(onConvert));
    actions_["mnuOggOptions"]->setEnabled(static_cast<bool>(onOggOptions));
    renderDevices(inputPanel_, v.input);
    renderDevices(outputPanel_, v.output);
    if (v.revision != shownRevision_) {
        shownRevision_ = v.revision;
        waveform_->markChanged();
    }
    waveform_->refresh();
    if (spectralShown()) {
        const int rate = editor_.editor().SamplesPerSecond();
        spectral_->show(static_cast<engine::SampleCount>(v.zoomStart * rate),
                        static_cast<engine::SampleCount>(v.zoomEnd * rate), v.revision);
        spectral_->update();  // the selection and the cursor over it
    }
    rendering_ = false;
}

void SecondEditorWindow::closeEvent(QCloseEvent* event) {
    if (!editor_.close()) {
        event->ignore();
        return;
    }
    event->accept();
}

void attachSecondEditorWindow(StationWindow& station, second_editor::SecondEditor& editor,
                              const std::string& dataFolder) {
    station.onSecondEditor = [&station, &editor, dataFolder] {
        auto* window = station.findChild<SecondEditorWindow*>("frmSecFile");
        if (!window) {
            window = new SecondEditorWindow(editor, &station);
            window->setWindowFlag(Qt::Window);
            window->onBackToLetter = [&station] {
                station.show();
                station.raise();
                station.activateWindow();
            };
            window->onOggOptions = [window, dataFolder] {
                (void)askOggOptions(dataFolder, window);
            };
            window->onConvert = [window, &editor] {
                const engine::WaveEditor& e = editor.editor();
                askConvertSampleType(
                    e.SamplesPerSecond(), e.Channels(),
                    [&editor](int rate, int channels) { editor.convertSampleType(rate, channels); },
                    window);
            };
        }
        window->show();
        window->raise();
        window->activateWindow();
    };
}

}  // namespace ovd::ui
