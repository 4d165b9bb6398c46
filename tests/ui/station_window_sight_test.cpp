// The station's windows in sight: boxes and dialogs above an always-on-top main
// window (and above another station's), the log, help and trace windows opening
// over the station, the log shown from the start of its lines, the window back
// where it was left, the position slider moving the times, and a greyed Record
// that says why.

#include <QApplication>
#include <QImage>
#include <QMessageBox>
#include <QMouseEvent>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QSlider>

#include "ui/event_log_window.h"
#include "ui/qt_prompts.h"
#include "ui/station_window_fixture.h"
#include "ui_test_helpers.h"

namespace ovd::ui::testing {
namespace {

bool staysOnTop(const QWidget& widget) {
    return widget.windowFlags().testFlag(Qt::WindowStaysOnTopHint);
}

// Shows a message through the prompts and reports whether the box stayed on top.
bool boxStaysOnTop(QtPrompts& prompts) {
    bool onTop = false;
    const bool answered = answering<QMessageBox>(
        [&onTop](QMessageBox& box) {
            onTop = staysOnTop(box);
            box.done(QMessageBox::Ok);
        },
        [&prompts] { prompts.showMessage("The file is saved.", "Orvane Voice Desk"); });
    EXPECT_TRUE(answered);
    return onTop;
}

TEST_F(StationWindowTest, BoxesStayAboveTheWindowWhenItIsKeptOnTop) {
    window().Form_Load();
    QtPrompts boxes(&window());
    EXPECT_FALSE(boxStaysOnTop(boxes)) << "an ordinary window needs no such box";
    window().setOnTop(true);
    ASSERT_TRUE(staysOnTop(window()));
    EXPECT_TRUE(boxStaysOnTop(boxes));

    // A box shown with no window of its own (the second start's message) must not
    // disappear behind the running station's always-on-top window.
    QtPrompts alone;
    EXPECT_TRUE(boxStaysOnTop(alone));
}

TEST_F(StationWindowTest, TheLogHelpAndTraceWindowsOpenOverTheStation) {
    config.record.MainWindowLeft = 40;
    config.record.MainWindowTop = 30;
    window().Form_Load();
    window().setOnTop(true);
    ASSERT_TRUE(runUntil([this] { return window().isVisible(); }));
    const QRect station = window().frameGeometry();

    const auto expectOver = [&station](const QWidget* opened, const char* name) {
        ASSERT_NE(opened, nullptr) << name;
        ASSERT_TRUE(runUntil([opened] { return opened->isVisible(); })) << name;
        EXPECT_TRUE(station.contains(opened->frameGeometry().center()))
            << name << " opened at " << opened->frameGeometry().x() << ","
            << opened->frameGeometry().y();
        EXPECT_TRUE(staysOnTop(*opened)) << name << " stays above the station";
    };
    window().showEventLog(true);
    expectOver(&window().eventLogWindow(), "event log");
    window().showHelp();
    expectOver(window().findChild<QWidget*>("frmHelp"), "help");
    QWidget* mark = child("lblDebugPrint");
    QMouseEvent doubleClick(QEvent::MouseButtonDblClick, QPointF(2, 2),
                            mark->mapToGlobal(QPointF(2, 2)), Qt::LeftButton, Qt::LeftButton,
                            Qt::NoModifier);
    QApplication::sendEvent(mark, &doubleClick);
    expectOver(window().findChild<QWidget*>("frmDebug"), "trace");
}

TEST_F(StationWindowTest, TheEventLogOpensAtTheStartOfItsLongLines) {
    for (int i = 0; i < 60; ++i) {
        log.AddEventLine(
            "A long line of the day's log that runs well past the right edge of the window, " +
            std::string(200, '-') + " line " + std::to_string(i));
    }
    window().Form_Load();
    window().showEventLog(true);
    auto* text = window().eventLogWindow().findChild<QPlainTextEdit*>("Text1");
    ASSERT_NE(text, nullptr);
    ASSERT_TRUE(
        runUntil([text] { return text->isVisible() && text->verticalScrollBar()->maximum() > 0; }));
    runUntil([] { return false; }, std::chrono::milliseconds(200));
    EXPECT_GT(text->horizontalScrollBar()->maximum(), 0) << "the lines are wider than the window";
    EXPECT_EQ(text->horizontalScrollBar()->value(), 0) << "not scrolled sideways";
    EXPECT_EQ(text->verticalScrollBar()->value(), text->verticalScrollBar()->maximum())
        << "the newest lines are in sight";
}

TEST_F(StationWindowTest, TheWindowComesBackWhereItWasLeft) {
    config.record.MainWindowLeft = 120;
    config.record.MainWindowTop = 90;
    window().Form_Load();
    EXPECT_EQ(window().geometry().topLeft(), QPoint(120, 90));
    EXPECT_EQ(config.record.MainWindowTop.toNumber().value_or(-1), 90)
        << "showing it moved nothing";

    window().setGeometry(QRect(QPoint(150, 100), window().size()));
    for (int start = 0; start < 3; ++start) {
        SCOPED_TRACE(start);
        config.WriteConfig();
        config.ReadConfig();
        reopenWindow();
        window().Form_Load();
        EXPECT_EQ(window().geometry().topLeft(), QPoint(150, 100))
            << "no creeping from start to start";
        EXPECT_EQ(config.record.MainWindowLeft.toNumber().value_or(-1), 150);
        EXPECT_EQ(config.record.MainWindowTop.toNumber().value_or(-1), 100);
    }
}

TEST_F(StationWindowTest, DraggingThePositionSliderMovesTheSliderAndTheTimes) {
    window().Form_Load();
    dictate(4000);
    // A minute later a second is overwritten: the file keeps its four seconds.
    run(60000);
    editor1.setCursorPosition(dictation::testing::kRate);
    d().timCurPos_Timer();
    d().overwriteAtCursor();
    run(1000);
    d().stop();
    runAndRender(100);
    ASSERT_EQ(editor1.Length(), 4 * dictation::testing::kRate);
    auto* slider = child<QSlider>("ctSlide1");
    ASSERT_TRUE(slider->isEnabled());

    slider->setSliderDown(true);  // pressed
    for (const int value : {90, 70, 50}) slider->setSliderPosition(value);
    runAndRender(40);
    EXPECT_EQ(slider->value(), 50) << "the handle stays where the hand holds it";
    EXPECT_EQ(textOf("NCTTimeDisplay21"), "00:00:02") << "the times follow the drag";
    slider->setSliderDown(false);  // let go
    runAndRender(200);

    EXPECT_EQ(editor1.CursorPosition(), 2 * dictation::testing::kRate);
    EXPECT_EQ(slider->value(), 50);
    EXPECT_EQ(view().positionPercent, 50);
    EXPECT_EQ(textOf("NCTTimeDisplay21"), "00:00:02");
    EXPECT_EQ(textOf("Label24"), "00:00:02");
}

// How much of the symbol shows: the strongest opacity of its pixels.
int strongestAlpha(const QIcon& icon, QIcon::Mode mode) {
    const QImage image =
        icon.pixmap(QSize(28, 28), mode).toImage().convertToFormat(QImage::Format_ARGB32);
    int strongest = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            strongest = std::max(strongest, qAlpha(image.pixel(x, y)));
    }
    return strongest;
}

TEST_F(StationWindowTest, ATransportButtonThatCannotActLooksSoWithoutItsCaption) {
    window().Form_Load();
    for (int i = 0; i < TransportBar::kButtons; ++i) {
        QToolButton* button = bar(static_cast<TransportBar::Button>(i));
        SCOPED_TRACE(button->objectName().toStdString());
        EXPECT_FALSE(button->isEnabled()) << "no file";
        const int shown = strongestAlpha(button->icon(), QIcon::Normal);
        const int greyed = strongestAlpha(button->icon(), QIcon::Disabled);
        ASSERT_GT(shown, 200);
        EXPECT_LT(greyed, shown / 2) << "a greyed symbol is faded, not merely a shade lighter";
    }
}

TEST_F(StationWindowTest, AGreyedRecordSaysThereIsNoFile) {
    window().Form_Load();
    QToolButton* record = bar(TransportBar::Record);
    EXPECT_FALSE(record->isEnabled());
    EXPECT_TRUE(record->toolTip().contains("no file")) << record->toolTip().toStdString();
    child<QAction>("Image2")->trigger();
    window().render();
    EXPECT_TRUE(record->isEnabled());
    EXPECT_FALSE(record->toolTip().contains("no file"));
}

}  // namespace
}  // namespace ovd::ui::testing
