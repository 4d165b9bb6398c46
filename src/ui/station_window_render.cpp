// The main window following the dictation: every control brought in line with
// MainView, the faces, the window's place and the windows it opens.

#include <QCheckBox>
#include <QComboBox>
#include <QGuiApplication>
#include <QLabel>
#include <QLayout>
#include <QLineEdit>
#include <QMoveEvent>
#include <QPushButton>
#include <QRadioButton>
#include <QScreen>
#include <QSignalBlocker>
#include <QSlider>
#include <QStatusBar>
#include <QTimer>
#include <QToolBar>

#include "dictation/dictation.h"
#include "settings/config_file.h"
#include "station/device_choice.h"
#include "ui/about_box.h"
#include "ui/desk_unit_panel.h"
#include "ui/device_box.h"
#include "ui/event_log_window.h"
#include "ui/help_window.h"
#include "ui/letter_details_panel.h"
#include "ui/on_air_lamps.h"
#include "ui/station_menus.h"
#include "ui/station_window.h"
#include "ui/transport_bar.h"
#include "ui/waveform_view.h"
#include "ui/window_placement.h"

namespace ovd::ui {

namespace {

QString text(const std::string& value) { return QString::fromStdString(value); }

// Some widgets repaint on every setText or style sheet, even the same one: they
// are told only what changed.
template <typename Widget>
void showText(Widget* widget, const QString& value) {
    if (widget->text() != value) widget->setText(value);
}

void showStyle(QWidget* widget, const QString& styleSheet) {
    if (widget->styleSheet() != styleSheet) widget->setStyleSheet(styleSheet);
}

// The width each face opens at; the height is whatever its controls need.
int faceWidth(Face face) {
    switch (face) {
        case Face::Regular:
            return 860;
        case Face::Thin:
            return 700;
        case Face::SuperThin:
            return 700;
    }
    return 860;
}

}  // namespace

void StationWindow::render() {
    renderQueued_ = false;
    sinceRender_.restart();
    const dictation::MainView& v = parts_.dictation.view();
    waveform_->refresh();
    deviceBox_->follow();
    setWindowTitle(v.caption.empty() ? titleFor(parts_.config.record.HandsFreeEdition)
                                     : text(v.caption));
    renderStatus(v);
    renderTimes(v);
    renderButtons(v);
    renderOptions(v);
    if (v.busyPointer != busyPointerShown_) {
        busyPointerShown_ = v.busyPointer;
        if (v.busyPointer) {
            setCursor(Qt::WaitCursor);
        } else {
            unsetCursor();
        }
    }
    if (deskUnit_ != nullptr) deskUnit_->refresh();
    menus_->refresh(v);
}

void StationWindow::renderStatus(const dictation::MainView& v) {
    showText(statusLine_, text(v.statusLine));
    showStyle(statusLine_, v.statusLineWarning ? QStringLiteral("color: #ff0000;") : QString());
    showText(fileNameLabel_, text(v.lblReady));
    showText(modeLabel_, text(v.lblMode));
    showText(operationLabel_, text(v.operationName));
    busyLabel_->setVisible(v.lblBusyVisible);
    showText(fileNamePanel_, text(v.statusPanel1));
    showText(fileSizePanel_, text(v.statusPanel2));
}

void StationWindow::renderTimes(const dictation::MainView& v) {
    lamps_->show(v.onAirLamp1, v.onAirLamp2, text(v.lblOnAir), v.lblOnAirVisible);
    // Before the first position is known the displays show nothing measured yet.
    const auto orBlank = [](const std::string& value, const char* blank) {
        return value.empty() ? QString::fromLatin1(blank) : text(value);
    };
    showText(timeElapsed_, orBlank(v.timeElapsed, "00:00:00"));
    showText(timeRemaining_, orBlank(v.timeRemaining, "00:00:00"));
    showText(fileSize_, orBlank(v.fileSizeText, "-"));
    if (!positionSlider_->isSliderDown()) {
        const QSignalBlocker quiet(positionSlider_);
        positionSlider_->setValue(v.positionPercent);
    }
    positionSlider_->setEnabled(v.positionSliderEnabled);
}

void StationWindow::renderButtons(const dictation::MainView& v) {
    transportBar_->render(v.transportBar, v.transportLabelsVisible);
    transportBar_->showNoFile(!parts_.dictation.state().flgfileOpen1);
    endOfLetterButton_->setEnabled(v.endOfLetterEnabled);
    addToBeginningButton_->setEnabled(v.addToBeginningEnabled);
    insertButton_->setEnabled(v.insertEnabled);
    overwriteButton_->setEnabled(v.overwriteEnabled);
    lastThreeSecondsButton_->setEnabled(v.lastThreeSecondsEnabled);
    endInsertButton_->setVisible(v.endInsertVisible);
    endAppendButton_->setVisible(v.endAppendVisible);
    // While a file loads the frame stays in place, greyed, rather than leaving a
    // hole the window would close up around.
    audioFrame_->setEnabled(v.audioFrameEnabled && v.audioFrameVisible);
    if (!stepSecondsBox_->hasFocus()) showText(stepSecondsBox_, text(v.txtStepAmt));
}

void StationWindow::renderOptions(const dictation::MainView& v) {
    formatBox_->setEnabled(v.formatOptionsEnabled);
    {
        const QSignalBlocker quiet2(normalConditionsOption_);
        const QSignalBlocker quiet3(otherConditionsOption_);
        const bool other = parts_.config.record.RecordingFormats == "OPT3";
        normalConditionsOption_->setChecked(!other);
        otherConditionsOption_->setChecked(other);
    }
    speakerBox_->setEnabled(v.frameSpeakerEnabled);
    // The speaker list's tick shows or hides the box while the window is up.
    const bool speakerShown = partsOf(face_).speakerBox && parts_.config.record.AddNameToFile;
    if (speakerBox_->isHidden() == speakerShown) {
        speakerBox_->setVisible(speakerShown);
        optionsRow_->setVisible(partsOf(face_).formatBox || partsOf(face_).speakerBox);
    }
    if (detailsPanel_ != nullptr) detailsPanel_->refresh();
    const auto& names = parts_.dictation.naming.dictatorNames();
    if (speakerNames_->count() != static_cast<int>(names.size()) ||
        (speakerNames_->count() > 0 && speakerNames_->itemText(0) != text(names.front()))) {
        const QSignalBlocker quiet(speakerNames_);
        speakerNames_->clear();
        for (const std::string& name : names) speakerNames_->addItem(text(name));
    }
    const int speaker = speakerNames_->findText(text(v.cboName));
    if (speakerNames_->currentIndex() != speaker) {
        const QSignalBlocker quiet(speakerNames_);
        speakerNames_->setCurrentIndex(speaker);
    }
}

void StationWindow::Form_Load() {
    const settings::SettingsRecord& record = parts_.config.record;
    deviceChoice_->load();
    deviceBox_->fill();
    // With logging off there is no log to look at.
    viewLogCheck_->setChecked(false);
    viewLogCheck_->setEnabled(!record.NoLogging);
    viewLogCheck_->setToolTip(record.NoLogging ? tr("Logging is switched off") : QString());
    face_ = faceFromSetting(record.ScreenSize);
    applyFace();
    setOnTop(record.Ontopcheck.toNumber().value_or(0) == 1);
    render();
    placeWindow();
    show();
}

void StationWindow::setFace(Face face) {
    face_ = face;
    parts_.config.record.ScreenSize = faceSetting(face);
    parts_.config.WriteConfig();
    applyFace();
}

void StationWindow::applyFace() {
    const FaceParts parts = partsOf(face_);
    toolIcons_->setVisible(parts.toolIcons);
    statusRows_->setVisible(parts.statusLine);
    audioFrame_->setVisible(parts.waveform);
    positionSlider_->setVisible(parts.positionSlider);
    editRow_->setVisible(parts.editButtons);
    formatBox_->setVisible(parts.formatBox);
    speakerBox_->setVisible(parts.speakerBox && parts_.config.record.AddNameToFile);
    optionsRow_->setVisible(parts.formatBox || parts.speakerBox);
    deviceBox_->setVisible(parts.deviceBox);
    if (deskUnit_ != nullptr) deskUnit_->setVisible(parts.deskUnit);
    statusBar()->setVisible(parts.statusBar);
    // The window takes the size of the face once the layout has settled.
    QTimer::singleShot(0, this, [this] {
        centralWidget()->layout()->activate();
        layout()->activate();
        // Regular opens at its natural height; the thin faces as small as they go.
        const int height =
            face_ == Face::Regular ? sizeHint().height() : minimumSizeHint().height();
        resize(faceWidth(face_), height);
    });
}

void StationWindow::setOnTop(bool onTop) {
    settings::SettingsRecord& record = parts_.config.record;
    const bool stored = record.Ontopcheck.toNumber().value_or(0) == 1;
    if (stored != onTop) {
        record.Ontopcheck = onTop ? 1 : 0;
        parts_.config.WriteConfig();
    }
    if (windowFlags().testFlag(Qt::WindowStaysOnTopHint) == onTop) return;
    const bool wasVisible = isVisible();
    setWindowFlag(Qt::WindowStaysOnTopHint, onTop);
    if (wasVisible) show();  // changing a window's flags hides it
}

void StationWindow::placeWindow() {
    settings::SettingsRecord& record = parts_.config.record;
    const auto left = record.MainWindowLeft.toNumber();
    const auto top = record.MainWindowTop.toNumber();
    if (left && top) {
        // The place kept is the window's own corner, inside its frame: the one
        // corner known the same way when the window is placed and when it moves,
        // whether or not the desktop has put its frame round it yet.
        setGeometry(QRect(QPoint(static_cast<int>(*left), static_cast<int>(*top)), size()));
    } else if (const QScreen* screen = QGuiApplication::primaryScreen()) {
        // Never placed before: centred, and that place is kept from now on.
        const QRect area = screen->availableGeometry();
        const QSize size(faceWidth(face_), std::max(height(), minimumSizeHint().height()));
        setGeometry(
            QRect(area.center() - QPoint(size.width() / 2, size.height() / 2), this->size()));
        parts_.config.takeWindowPosition(geometry().x(), geometry().y());
    }
    placed_ = true;
}

void StationWindow::moveEvent(QMoveEvent* event) {
    QMainWindow::moveEvent(event);
    if (!placed_) return;
    // The corner inside the frame, which is what placeWindow() takes back at the next start.
    parts_.config.record.MainWindowLeft = geometry().x();
    parts_.config.record.MainWindowTop = geometry().y();
}

void StationWindow::showEventLog(bool checked) {
    if (viewLogCheck_->isChecked() != checked) {
        const QSignalBlocker quiet(viewLogCheck_);
        viewLogCheck_->setChecked(checked);
    }
    if (QAction* entry = menus_->action("mnuViewLog");
        entry != nullptr && entry->isChecked() != checked) {
        const QSignalBlocker quiet(entry);
        entry->setChecked(checked);
    }
    if (checked) {
        if (!eventLogWindow_->isVisible()) {
            keepAboveStation(*eventLogWindow_, this);
            placeOverStation(*eventLogWindow_, this);
        }
        eventLogWindow_->show();
        eventLogWindow_->raise();
    } else if (eventLogWindow_->isVisible()) {
        eventLogWindow_->hide();
    }
}

void StationWindow::showHelp() {
    const std::string dataFolder = parts_.config.dataFolder();
    const std::string helpFolder = parts_.programFolder + "/help";
    auto* help = new HelpWindow(loadHelpIndex(dataFolder, parts_.programFolder, parts_.prompts),
                                {dataFolder, helpFolder}, this);
    help->setAttribute(Qt::WA_DeleteOnClose);
    keepAboveStation(*help, this);
    placeOverStation(*help, this);
    help->show();
}

void StationWindow::showAbout() {
    const settings::SettingsRecord& record = parts_.config.record;
    AboutBox about(
        {titleFor(record.HandsFreeEdition).toStdString(),
         QCoreApplication::applicationVersion().toStdString(), parts_.config.dataFolder(),
         record.CaptureFilePath.toText(), parts_.soundSystem},
        this);
    about.exec();
}

void StationWindow::chooseRecordingFormat(bool otherConditions) {
    dictation::Dictation& d = parts_.dictation;
    settings::SettingsRecord& record = parts_.config.record;
    const std::string chosen = otherConditions ? "OPT3" : "OPT2";
    // During a take the options do nothing; the render puts the mark back.
    if (d.state().Recordingstatus || record.RecordingFormats == chosen) {
        render();
        return;
    }
    // The next file is made in the format now chosen; the one in hand keeps its own.
    record.RecordingFormats = chosen;
    parts_.config.WriteConfig();
    if (d.state().flgfileOpen1) {
        const std::string reason = std::string(" Calling Image2_Click from ") +
                                   (otherConditions ? "Option3_Click" : "Option2_Click");
        if (!d.state().RecordedOnce) {
            d.CaseStop();
            d.closeFile();
            parts_.eventLog.trace(reason);
        } else {
            const bool armed = d.state().RecordingstatusPaused;
            if (armed) {
                parts_.prompts.showMessage(
                    "Your current recording in progress will be saved now, using your previous "
                    "settings "
                    "--will be followed by opening up the next file number in an unrecorded state",
                    settings::kProductTitle);
            }
            d.CaseStop();
            d.closeFile();
            parts_.eventLog.trace(reason + (armed ? "-2" : "-1"));
        }
        d.newLetter();
    }
    render();
}

}  // namespace ovd::ui
