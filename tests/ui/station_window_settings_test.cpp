// What the window keeps in the settings: its face, its place, always-on-top, the
// recording format; and the switches that open the log and trace windows.

#include <QApplication>
#include <QCheckBox>
#include <QMouseEvent>
#include <QPlainTextEdit>
#include <QRadioButton>
#include <QScreen>
#include <QStatusBar>
#include <QToolBar>

#include "ui/event_log_window.h"
#include "ui/station_window_fixture.h"

namespace ovd::ui::testing {
namespace {

TEST_F(StationWindowTest, EachFaceShowsItsPartsAndIsStored) {
    window().Form_Load();
    EXPECT_EQ(window().face(), Face::Regular);
    EXPECT_TRUE(child("frameDevices")->isVisible());

    window().setFace(Face::Thin);
    EXPECT_EQ(config.record.ScreenSize, "Thin");
    EXPECT_FALSE(child("frameDevices")->isVisible());
    EXPECT_FALSE(child("Command2")->isVisible());
    EXPECT_TRUE(child("AudioEditor1")->isVisible());
    EXPECT_TRUE(child("MMControl1")->isVisible());

    window().setFace(Face::SuperThin);
    EXPECT_FALSE(child("AudioEditor1")->isVisible());
    EXPECT_FALSE(child<QToolBar>("toolIcons")->isVisible());
    EXPECT_TRUE(child("MMControl1")->isVisible()) << "the bar is in every face";
    EXPECT_TRUE(child("lblOnAir")->isVisible()) << "so are the lamps";
    EXPECT_TRUE(child("cmdEOL")->isVisible());

    // The next start comes up in the face left.
    config.ReadConfig();
    reopenWindow();
    window().Form_Load();
    EXPECT_EQ(window().face(), Face::SuperThin);
    EXPECT_FALSE(child("AudioEditor1")->isVisible());
}

TEST_F(StationWindowTest, AnUnknownFaceReadsAsRegular) {
    config.record.ScreenSize = "Wide";
    window().Form_Load();
    EXPECT_EQ(window().face(), Face::Regular);
}

TEST_F(StationWindowTest, NeverPlacedItIsCentredAndThatPlaceIsKept) {
    window().Form_Load();
    ASSERT_TRUE(config.record.MainWindowLeft.toNumber().has_value());
    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    EXPECT_NEAR(*config.record.MainWindowLeft.toNumber() + window().width() / 2.0,
                screen.center().x(), window().width() / 2.0);

    window().move(40, 60);
    // The corner kept is the one inside the frame.
    EXPECT_EQ(config.record.MainWindowLeft.toNumber().value_or(-1), window().geometry().x());
    EXPECT_EQ(config.record.MainWindowTop.toNumber().value_or(-1), window().geometry().y());
    config.WriteConfig();

    config.ReadConfig();
    reopenWindow();
    window().Form_Load();
    EXPECT_EQ(window().pos(), QPoint(40, 60));
}

TEST_F(StationWindowTest, AlwaysOnTopFollowsOntopcheckAndIsStoredFromTheMenu) {
    config.record.Ontopcheck = 1;
    window().Form_Load();
    EXPECT_TRUE(window().windowFlags().testFlag(Qt::WindowStaysOnTopHint));
    auto* onTop = window().findChild<QAction*>("mnuOnTop");
    ASSERT_NE(onTop, nullptr);
    window().render();
    ++arrangeView().revision;
    window().render();
    EXPECT_TRUE(onTop->isChecked());
    onTop->trigger();
    EXPECT_FALSE(window().windowFlags().testFlag(Qt::WindowStaysOnTopHint));
    EXPECT_EQ(config.record.Ontopcheck.toNumber().value_or(-1), 0);
}

TEST_F(StationWindowTest, TheTitleFollowsTheEdition) {
    config.record.HandsFreeEdition = false;
    rebuild();
    window().Form_Load();
    EXPECT_TRUE(window().windowTitle().startsWith("Orvane Station Recorder Desk"));
    config.record.HandsFreeEdition = true;
    d().newLetter();
    window().render();
    EXPECT_TRUE(window().windowTitle().startsWith("Orvane Voice Desk - "));
}

TEST_F(StationWindowTest, TheFormatOptionsDoNothingDuringATake) {
    window().Form_Load();
    d().newLetter();
    d().recordTake();
    window().render();
    auto* other = child<QRadioButton>("Option3");
    EXPECT_FALSE(other->isEnabled());
    other->click();  // greyed: nothing
    EXPECT_EQ(config.record.RecordingFormats, "OPT2");
}

TEST_F(StationWindowTest, ChangingTheFormatOnAnUnrecordedFileStartsAFreshOne) {
    config.record.FormatType2 = "WAV";
    config.record.Frequency2 = "16000";
    config.record.Channel2 = "MONO";
    config.record.FileBit2 = "16";
    window().Form_Load();
    d().newLetter();
    const std::string first = state().Filename;
    child<QRadioButton>("Option3")->click();
    EXPECT_EQ(config.record.RecordingFormats, "OPT3");
    EXPECT_TRUE(logged(" Calling Image2_Click from Option3_Click"));
    EXPECT_TRUE(state().flgfileOpen1);
    EXPECT_TRUE(child<QRadioButton>("Option3")->isChecked());
    EXPECT_FALSE(platform::fileExists(first)) << "the unrecorded file is given back";
}

TEST_F(StationWindowTest, TheLogBoxShowsTheDaysLogAndClosingTheWindowUnticksIt) {
    log.trace("File Record: letter one");
    window().Form_Load();
    auto* box = child<QCheckBox>("chkViewlOG");
    ASSERT_TRUE(box->isEnabled());
    box->click();
    EventLogWindow& logWindow = window().eventLogWindow();
    EXPECT_TRUE(logWindow.isVisible());
    EXPECT_NE(logWindow.logText()->toPlainText().indexOf("File Record: letter one"), -1);
    log.trace("File Play: letter one");
    logWindow.refresh();
    EXPECT_NE(logWindow.logText()->toPlainText().indexOf("File Play: letter one"), -1)
        << "the window follows the log";
    logWindow.close();
    EXPECT_FALSE(box->isChecked());
}

TEST_F(StationWindowTest, WithLoggingOffTheLogBoxIsGreyed) {
    config.record.NoLogging = true;
    window().Form_Load();
    EXPECT_FALSE(child<QCheckBox>("chkViewlOG")->isEnabled());
}

TEST_F(StationWindowTest, ADoubleClickOnTheSupportMarkDumpsTheGlobals) {
    window().Form_Load();
    d().newLetter();
    QWidget* mark = child("lblDebugPrint");
    QMouseEvent doubleClick(QEvent::MouseButtonDblClick, QPointF(2, 2),
                            mark->mapToGlobal(QPointF(2, 2)), Qt::LeftButton, Qt::LeftButton,
                            Qt::NoModifier);
    QApplication::sendEvent(mark, &doubleClick);
    EXPECT_EQ(prompts.texts().back(), "Button clicked!");
    EXPECT_TRUE(trace.DebugOn);
    bool timers = false;
    bool file = false;
    for (const std::string& line : trace.lines()) {
        timers = timers || line.ends_with("] Timmers");
        file = file || line.find("Filename = " + state().Filename) != std::string::npos;
    }
    EXPECT_TRUE(timers);
    EXPECT_TRUE(file) << "the dictation's own globals are in the dump";
    EXPECT_TRUE(window().findChild<QWidget*>("frmDebug")->isVisible());
}

}  // namespace
}  // namespace ovd::ui::testing
