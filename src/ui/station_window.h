#pragma once
// frmDialog, the station's main window. It renders the dictation's MainView and
// routes every click to the dictation's entry points, nothing more: the transport
// bar, the tool icons, the insert and overwrite buttons, the position slider, the
// format options, the speaker, the devices and volumes, the menus and the
// right-click menu. It comes in three faces, stored in ScreenSize, remembers where
// it stood, and stays on top when Ontopcheck says so.
//
// The widgets carry the names of the controls they stand for (objectName), so a
// test or a support session can find "Command2" or "MMControl1Record".

#include <QElapsedTimer>
#include <QMainWindow>
#include <functional>
#include <memory>
#include <string>

#include "ui/window_faces.h"

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;
class QSlider;
class QTimer;
class QToolBar;
class QVBoxLayout;

namespace ovd::devices {
class HandsFree;
}
namespace ovd::housekeeping {
class Housekeeping;
}
namespace ovd::dictation {
class Dictation;
struct MainView;
}  // namespace ovd::dictation
namespace ovd::engine {
class AudioEditor;
class WaveEditor;
}  // namespace ovd::engine
namespace ovd::platform {
class Prompts;
}
namespace ovd::settings {
class ConfigFile;
class DebugTrace;
class EventLog;
}  // namespace ovd::settings

namespace ovd::station {
class DeviceChoice;
}
namespace ovd::ui {

class DebugWindow;
class DeskUnitPanel;
class DeviceBox;
class EventLogWindow;
class LetterDetailsPanel;
class LevelMeter;
class OnAirLamps;
class StationMenus;
class TransportBar;
class WaveformView;

struct StationWindowParts {
    settings::ConfigFile& config;
    settings::EventLog& eventLog;
    dictation::Dictation& dictation;
    // AudioEditor1: the file under dictation; the waveform, the devices, the level.
    engine::WaveEditor& recordingEditor;
    // AudioEditor21: the scratch take; the level during an insert or overwrite.
    engine::AudioEditor& scratchEditor;
    settings::DebugTrace& debugTrace;
    platform::Prompts& prompts;
    std::string programFolder;                // the shipped help pages
    std::string soundSystem;                  // named in the about box
    devices::HandsFree* handsFree = nullptr;  // the pedal menus; greyed without
    // The scheduled deletion and drive scan windows; greyed without.
    housekeeping::Housekeeping* housekeeping = nullptr;
};

class StationWindow : public QMainWindow {
  public:
    explicit StationWindow(StationWindowParts parts);
    ~StationWindow() override;
    StationWindow(const StationWindow&) = delete;
    StationWindow& operator=(const StationWindow&) = delete;

    // The title the station runs under, by edition.
    static QString titleFor(bool handsFreeEdition);

    // The desk unit on screen goes below the controls; the window owns it from then on.
    void addDeskUnit(DeskUnitPanel* panel);

    // Once the station has read its settings: the devices and volumes, the event log
    // box, the face, the window's place, always-on-top; then the window shows.
    void Form_Load();

    // Brings every control in line with MainView. The window renders by itself
    // whenever the dictation says its view changed; a control is touched only
    // when what it shows is different, so nothing repaints that did not change.
    void render();
    // Switches the face and stores it.
    void setFace(Face face);
    [[nodiscard]] Face face() const { return face_; }
    // Always-on-top, stored in Ontopcheck.
    void setOnTop(bool onTop);
    // The event log window shown or hidden, with the check box and the menu entry.
    void showEventLog(bool checked);  // chkViewlOG_Click
    void showHelp();
    void showAbout();

    // File > Exit: the station's own way out.
    std::function<void()> onExit;
    // Scan/Convert: the recovery window; the entry is greyed while this is unset.
    std::function<void()> onScanConvert;
    // The companion sender's entry: its caption says whether a click starts or stops it;
    // greyed while unset.
    std::function<void()> onAutoSend;
    std::function<std::string()> autoSendCaption;
    // Tools > Insert Recording: the second editor's window; greyed while unset.
    std::function<void()> onSecondEditor;
    // The device lists failed too often: the station ends.
    std::function<void()> onRestartNeeded;

    [[nodiscard]] station::DeviceChoice& deviceChoice() { return *deviceChoice_; }
    // The device box shows the volumes the device choice now holds.
    void showDeviceChoice();
    // Which file-save settings window the menu opens: a double click on "File
    // Name:" switches to the other one for the rest of the run.
    [[nodiscard]] bool tabbedFileSaves() const { return tabbedFileSaves_; }
    [[nodiscard]] EventLogWindow& eventLogWindow() { return *eventLogWindow_; }
    [[nodiscard]] WaveformView& waveform() { return *waveform_; }
    [[nodiscard]] LevelMeter& levelMeter() { return *levelMeter_; }

  protected:
    void moveEvent(QMoveEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    // Building, in station_window.cpp.
    QWidget* buildStatusRows();
    QWidget* buildAudioFrame();
    // The lamps, the times and the level: in every face.
    QWidget* buildTimesRow();
    QWidget* buildTransportRow();
    QWidget* buildEditRow();
    QWidget* buildOptionsRow();
    void buildToolIcons();
    void buildStatusBar();
    void wireEngineEvents();
    void placeWindow();
    void applyFace();
    // After a click: the screen follows at once rather than when the loop is free.
    void routed(const std::function<void()>& entry);
    // The dictation's view changed: a render now, or, while a take records or a
    // file plays, no sooner than kMovingRenderMs after the last.
    void viewAnnounced();
    [[nodiscard]] bool somethingMoves() const;
    void renderStatus(const dictation::MainView& v);
    void renderTimes(const dictation::MainView& v);
    void renderButtons(const dictation::MainView& v);
    void renderOptions(const dictation::MainView& v);
    // The next file's recording format, normal or other conditions.
    void chooseRecordingFormat(bool otherConditions);  // Option2_Click, Option3_Click

    StationWindowParts parts_;
    Face face_ = Face::Regular;
    bool placed_ = false;
    bool renderQueued_ = false;
    QElapsedTimer sinceRender_;

    QWidget* statusRows_ = nullptr;
    QWidget* audioFrame_ = nullptr;  // frameAudio
    QWidget* editRow_ = nullptr;
    QWidget* formatBox_ = nullptr;   // frRec
    QWidget* speakerBox_ = nullptr;  // frameSpeaker
    QWidget* optionsRow_ = nullptr;
    LetterDetailsPanel* detailsPanel_ = nullptr;
    DeskUnitPanel* deskUnit_ = nullptr;
    QToolBar* toolIcons_ = nullptr;
    QVBoxLayout* column_ = nullptr;

    OnAirLamps* lamps_ = nullptr;        // Image5, lblOnAir, Image6
    QLabel* statusLine_ = nullptr;       // Label40
    QLabel* fileNameLabel_ = nullptr;    // lblReady
    QLabel* modeLabel_ = nullptr;        // lblMode
    QLabel* busyLabel_ = nullptr;        // lblBusy
    QLabel* operationLabel_ = nullptr;   // Label37
    QLabel* timeElapsed_ = nullptr;      // NCTTimeDisplay21
    QLabel* timeRemaining_ = nullptr;    // Label24
    QLabel* fileSize_ = nullptr;         // Label43
    QLabel* fileNamePanel_ = nullptr;    // StatusBar1 panel 1
    QLabel* fileSizePanel_ = nullptr;    // StatusBar1 panel 2
    QSlider* positionSlider_ = nullptr;  // ctSlide1
    WaveformView* waveform_ = nullptr;   // AudioEditor1
    LevelMeter* levelMeter_ = nullptr;
    TransportBar* transportBar_ = nullptr;            // MMControl1
    QPushButton* endOfLetterButton_ = nullptr;        // cmdEOL
    QPushButton* endInsertButton_ = nullptr;          // ButtonEx1
    QPushButton* endAppendButton_ = nullptr;          // ButtonEx2
    QPushButton* addToBeginningButton_ = nullptr;     // Command1
    QPushButton* insertButton_ = nullptr;             // Command2
    QPushButton* overwriteButton_ = nullptr;          // cmdOVR
    QPushButton* lastThreeSecondsButton_ = nullptr;   // Command3
    QLineEdit* stepSecondsBox_ = nullptr;             // txtStepAmt
    QRadioButton* normalConditionsOption_ = nullptr;  // Option2
    QRadioButton* otherConditionsOption_ = nullptr;   // Option3
    QComboBox* speakerNames_ = nullptr;               // cboName
    QCheckBox* viewLogCheck_ = nullptr;               // chkViewlOG
    DeviceBox* deviceBox_ = nullptr;                  // frameDevices
    bool busyPointerShown_ = false;
    bool tabbedFileSaves_ = false;

    std::unique_ptr<station::DeviceChoice> deviceChoice_;
    std::unique_ptr<StationMenus> menus_;
    EventLogWindow* eventLogWindow_ = nullptr;
    DebugWindow* debugWindow_ = nullptr;
};

}  // namespace ovd::ui
