// The transport bar and the tool icons drive a real dictation through the core,
// and after every click the window shows exactly what MainView says.

#include <QMenu>
#include <QSlider>

#include "ui/level_meter.h"
#include "ui/station_window_fixture.h"
#include "ui/waveform_view.h"

namespace ovd::ui::testing {
namespace {

using Button = TransportBar::Button;

class TransportTest : public StationWindowTest {
  protected:
    // Every text and enabled state the window shows, against the view model.
    void expectWindowMatchesView(const char* after) {
        SCOPED_TRACE(after);
        const dictation::MainView& v = view();
        EXPECT_EQ(window().windowTitle().toStdString(), v.caption);
        EXPECT_EQ(textOf("Label40").toStdString(), v.statusLine);
        EXPECT_EQ(textOf("lblReady").toStdString(), v.lblReady);
        EXPECT_EQ(textOf("NCTTimeDisplay21").toStdString(), v.timeElapsed);
        EXPECT_EQ(textOf("Label24").toStdString(),
                  v.timeRemaining.empty() ? "00:00:00" : v.timeRemaining);
        EXPECT_EQ(textOf("StatusBar1Panel1").toStdString(), v.statusPanel1);
        EXPECT_EQ(textOf("lblOnAir").toStdString(), v.lblOnAirVisible ? v.lblOnAir : "");
        const dictation::TransportBar& b = v.transportBar;
        const std::array<bool, TransportBar::kButtons> enabled = {b.Prev, b.Next, b.Play, b.Pause,
                                                                  b.Back, b.Step, b.Stop, b.Record};
        for (int i = 0; i < TransportBar::kButtons; ++i) {
            EXPECT_EQ(bar(static_cast<Button>(i))->isEnabled(),
                      enabled[static_cast<std::size_t>(i)])
                << bar(static_cast<Button>(i))->objectName().toStdString();
        }
        EXPECT_EQ(child<QPushButton>("cmdEOL")->isEnabled(), v.endOfLetterEnabled);
        EXPECT_EQ(child<QPushButton>("Command1")->isEnabled(), v.addToBeginningEnabled);
        EXPECT_EQ(child<QPushButton>("Command2")->isEnabled(), v.insertEnabled);
        EXPECT_EQ(child<QPushButton>("cmdOVR")->isEnabled(), v.overwriteEnabled);
        EXPECT_EQ(child<QSlider>("ctSlide1")->isEnabled(), v.positionSliderEnabled);
        EXPECT_EQ(child<QSlider>("ctSlide1")->value(), v.positionPercent);
        EXPECT_EQ(child<QWidget>("frRec")->isEnabled(), v.formatOptionsEnabled);
    }
};

TEST_F(TransportTest, NewRecordStopPlayThroughTheWindow) {
    window().Form_Load();
    expectWindowMatchesView("start");
    for (int i = 0; i < TransportBar::kButtons; ++i)
        EXPECT_FALSE(bar(static_cast<Button>(i))->isEnabled());

    child<QAction>("Image2")->trigger();  // the New icon
    ASSERT_TRUE(state().flgfileOpen1);
    expectWindowMatchesView("new");
    EXPECT_TRUE(bar(Button::Record)->isEnabled());
    EXPECT_EQ(textOf("lblOnAir"), "STAND BY");

    bar(Button::Record)->click();
    EXPECT_TRUE(state().Recordingstatus);
    runAndRender(3000);
    expectWindowMatchesView("recording");
    EXPECT_EQ(textOf("lblOnAir"), "ON AIR");
    EXPECT_EQ(textOf("NCTTimeDisplay21"), "00:00:03");
    EXPECT_FALSE(child<QWidget>("frRec")->isEnabled()) << "the format is locked during a take";

    // Play is greyed during a take, and a click on it changes nothing.
    bar(Button::Play)->click();
    EXPECT_TRUE(state().Recordingstatus);
    EXPECT_FALSE(state().flgPlay);

    bar(Button::Stop)->click();
    EXPECT_FALSE(state().Recordingstatus);
    EXPECT_EQ(editor1.Length(), 3 * dictation::testing::kRate);
    runAndRender(100);
    expectWindowMatchesView("stopped");
    EXPECT_TRUE(child<QPushButton>("cmdEOL")->isEnabled()) << "a recorded file waits at its end";

    bar(Button::Prev)->click();
    expectWindowMatchesView("at the beginning");
    bar(Button::Play)->click();
    EXPECT_TRUE(state().flgPlay);
    runAndRender(1000);
    expectWindowMatchesView("playing");
    EXPECT_NE(window().windowTitle().indexOf("File is Playing"), -1);
    EXPECT_GT(child<QSlider>("ctSlide1")->value(), 0);

    runAndRender(2500);  // the end of the file stops the play
    EXPECT_FALSE(state().flgPlay);
    expectWindowMatchesView("played to the end");
}

TEST_F(TransportTest, TheWaveformShowsTheTakeAndTheMeterItsLevel) {
    window().Form_Load();
    child<QAction>("Image2")->trigger();
    bar(Button::Record)->click();
    runAndRender(2000);
    EXPECT_GT(window().levelMeter().level(), 0) << "the microphone is heard";
    bar(Button::Stop)->click();
    window().waveform().markChanged();
    window().render();
    const auto& columns = window().waveform().columns();
    ASSERT_FALSE(columns.empty());
    // The ramp of the virtual microphone rises through the take: the last column
    // holds louder samples than the first.
    EXPECT_GT(columns.back().second, columns.front().second);
}

TEST_F(TransportTest, TheRightClickMenuOffersTheThreeTakesAtTheEnds) {
    window();
    auto* menu = window().findChild<QMenu*>("mnuPopUp");
    ASSERT_NE(menu, nullptr);
    QStringList texts;
    for (QAction* entry : menu->actions()) texts << entry->text();
    EXPECT_EQ(texts, (QStringList{"Insert Beginning of File", "Append End of File",
                                  "Play Last Three Seconds Continue Recording"}));
}

TEST_F(TransportTest, ReopenListsTheRecentFilesOrANoneGreyed) {
    window().Form_Load();
    auto* reopen = window().findChild<QMenu*>("mnuReopen");
    ASSERT_NE(reopen, nullptr);
    ASSERT_FALSE(reopen->actions().isEmpty());
    EXPECT_EQ(reopen->actions().front()->text(), "None");
    EXPECT_FALSE(reopen->actions().front()->isEnabled());

    dictate(2000);
    d().closeFile();  // closed and saved: it joins the recent files
    window().render();
    ASSERT_FALSE(view().Reopen.empty());
    EXPECT_NE(
        reopen->actions().front()->text().indexOf(QString::fromStdString(view().Reopen.front())),
        -1);
    reopen->actions().front()->trigger();
    EXPECT_TRUE(state().flgfileOpen1) << "a pick opens the file";
    EXPECT_EQ(state().Filename, view().Reopen.front());
}

TEST_F(TransportTest, EntriesOfLaterWindowsAreThereButGreyed) {
    window();
    for (const char* name : {"mnuQDUCon", "mnAutoSend"}) {
        auto* entry = window().findChild<QAction*>(name);
        ASSERT_NE(entry, nullptr) << name;
        EXPECT_FALSE(entry->isEnabled()) << name;
    }
    // The pedal dialogs and the button template are there.
    for (const char* name :
         {"mnuConfigUSBFootPedals", "mnuConfigSERFootPedals", "mnuConfigGAMEFootPedals",
          "mnuConfigFootPedals", "mnuPrintButton", "mnuHotKeys"}) {
        auto* entry = window().findChild<QAction*>(name);
        ASSERT_NE(entry, nullptr) << name;
        EXPECT_TRUE(entry->isEnabled()) << name;
    }
    auto* scan = window().findChild<QAction*>("mnuScanConvert");
    window().render();
    EXPECT_FALSE(scan->isEnabled()) << "no recovery window is wired";
    bool opened = false;
    window().onScanConvert = [&opened] { opened = true; };
    ++arrangeView().revision;
    window().render();
    ASSERT_TRUE(scan->isEnabled());
    scan->trigger();
    EXPECT_TRUE(opened);
}

}  // namespace
}  // namespace ovd::ui::testing
