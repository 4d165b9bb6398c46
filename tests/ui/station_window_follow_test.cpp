// The window follows the dictation by being told, not by looking: a change the
// dictation announces is on the screen as soon as the loop is free, a station at
// rest paints nothing, and the waveform followed through a take is the waveform
// of the take read whole.

#include <QApplication>
#include <QElapsedTimer>
#include <QImage>

#include "ui/level_meter.h"
#include "ui/station_window_fixture.h"
#include "ui/ui_test_helpers.h"
#include "ui/waveform_view.h"

namespace ovd::ui::testing {
namespace {

using Button = TransportBar::Button;

// Counts the paints of a widget and everything in it.
class PaintCounter : public QObject {
  public:
    explicit PaintCounter(QWidget& top) {
        top.installEventFilter(this);
        for (QWidget* child : top.findChildren<QWidget*>()) child->installEventFilter(this);
    }
    int paints = 0;
    QStringList painted;

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::Paint) {
            ++paints;
            if (!painted.contains(watched->objectName())) painted << watched->objectName();
        }
        return false;
    }
};

// Lets every pending repaint and queued render happen, for this long in real time.
void settle(int milliseconds) {
    QElapsedTimer clock;
    clock.start();
    while (clock.elapsed() < milliseconds) QApplication::processEvents(QEventLoop::AllEvents, 10);
}

using StationWindowFollowTest = StationWindowTest;

TEST_F(StationWindowFollowTest, WhatTheDictationAnnouncesIsOnTheScreenOnceTheLoopIsFree) {
    window().Form_Load();
    settle(100);

    // Commands that come from no control of the window (a pedal, a peer, the desk
    // unit), then one turn of the loop and the events it posted: no timer ticks.
    const auto oneTurn = [this] {
        loop.runPending();
        QApplication::sendPostedEvents();
    };
    d().newLetter();
    oneTurn();
    EXPECT_EQ(textOf("lblReady").toStdString(), view().lblReady);
    EXPECT_EQ(textOf("Label40").toStdString(), view().statusLine);
    EXPECT_TRUE(bar(Button::Record)->isEnabled()) << "the new file can be recorded into";

    d().closeFile();
    oneTurn();
    EXPECT_FALSE(bar(Button::Record)->isEnabled()) << "no file: nothing to record into";
    EXPECT_EQ(textOf("Label40").toStdString(), view().statusLine);

    // During a take the times move on without a click, a few times a second.
    d().newLetter();
    d().recordTake();
    const auto within = [this](const std::function<bool()>& shown) {
        return runUntil(
            [&] {
                loop.runPending();
                return shown();
            },
            std::chrono::seconds(2));
    };
    run(2000);
    EXPECT_TRUE(within([this] { return textOf("NCTTimeDisplay21") == "00:00:02"; }))
        << textOf("NCTTimeDisplay21").toStdString();
    EXPECT_EQ(textOf("lblOnAir"), "ON AIR");
    d().stop();
    EXPECT_TRUE(within([this] { return textOf("lblOnAir") != "ON AIR"; }));
}

TEST_F(StationWindowFollowTest, AStationAtRestPaintsNothing) {
    window().Form_Load();
    d().newLetter();
    loop.runPending();
    settle(300);
    ASSERT_FALSE(window().waveform().following())
        << "nothing moves: the waveform does not look by itself";

    PaintCounter counter(window());
    // Three seconds of the dictation's own timers, and the window given time to act on them.
    for (int step = 0; step < 30; ++step) {
        run(100);
        QApplication::processEvents();
    }
    settle(500);
    // Announcements that change nothing shown: the step box emptied and put back
    // as it was, a stop with nothing running.
    d().stepAmountChanged("");
    d().stop();
    loop.runPending();
    window().render();
    settle(200);
    EXPECT_EQ(counter.paints, 0) << counter.painted.join(", ").toStdString();
}

TEST_F(StationWindowFollowTest, TheWaveformFollowedThroughATakeIsTheTakeReadWhole) {
    window().Form_Load();
    WaveformView& followed = window().waveform();
    followed.resize(602, 100);
    d().newLetter();
    d().recordTake();
    // Past the length at which a stretch is longer than the part of it looked at.
    for (int look = 0; look < 720; ++look) {
        run(WaveformView::kMovingLookMs);
        followed.refresh();
    }
    ASSERT_GT(editor1.Length(), 2048 * 512);
    EXPECT_TRUE(followed.following()) << "a take that records is followed";

    WaveformView whole(editor1);
    whole.resize(followed.size());
    whole.setEnabled(followed.isEnabled());
    whole.refresh();
    EXPECT_EQ(whole.columns(), followed.columns());
    const QImage followedPicture = followed.grab().toImage();
    EXPECT_TRUE(followedPicture == whole.grab().toImage()) << "the two pictures differ";

    d().stop();
    followed.refresh();
    EXPECT_FALSE(followed.following()) << "a stopped take is not looked at again";
}

TEST(LevelMeterPaceTest, TheMeterRepaintsAtTheEyesPaceHoweverFastTheSoundComesIn) {
    LevelMeter meter;
    meter.resize(160, 14);
    meter.show();
    QApplication::processEvents();
    PaintCounter counter(meter);
    // A second of blocks of sound every 2 ms, loud and soft in turn.
    QElapsedTimer clock;
    clock.start();
    int block = 0;
    while (clock.elapsed() < 1000) {
        meter.setLevel(++block % 2 == 0 ? 80 : 30 + block % 40);
        QApplication::processEvents(QEventLoop::AllEvents, 2);
    }
    EXPECT_GT(block, 100);
    EXPECT_GT(meter.level(), 0) << "the sound shows";
    EXPECT_GT(counter.paints, 0);
    EXPECT_LE(counter.paints, 30) << "about twenty pictures a second, not one a block";

    // Quiet: the bar falls to nothing and stops moving.
    EXPECT_TRUE(runUntil([&] { return meter.level() == 0; }, std::chrono::seconds(3)));
    settle(100);  // the picture of the empty bar
    const int afterFall = counter.paints;
    settle(300);
    EXPECT_EQ(counter.paints, afterFall);
}

}  // namespace
}  // namespace ovd::ui::testing
