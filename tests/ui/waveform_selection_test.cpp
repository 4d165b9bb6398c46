// Selecting on the waveform: a drag marks a stretch that the Edit menu's Cut then
// takes out, a click drops it, and nothing is selected while a take runs.

#include <QApplication>
#include <QMouseEvent>

#include "ui/station_window_fixture.h"
#include "ui/waveform_view.h"

namespace ovd::ui::testing {
namespace {

class WaveformSelectionTest : public StationWindowTest {
  protected:
    WaveformView& waveform() {
        WaveformView& view = window().waveform();
        view.resize(402, 100);  // 400 columns of pixels: one per 1/400 of the letter
        return view;
    }

    void mouse(QEvent::Type type, int x) {
        const QPointF at(x, 50);
        const Qt::MouseButton button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
        QMouseEvent event(type, at, waveform().mapToGlobal(at), button,
                          type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton,
                          Qt::NoModifier);
        QApplication::sendEvent(&waveform(), &event);
    }
    void drag(int fromX, int toX) {
        mouse(QEvent::MouseButtonPress, fromX);
        mouse(QEvent::MouseMove, (fromX + toX) / 2);
        mouse(QEvent::MouseMove, toX);
        mouse(QEvent::MouseButtonRelease, toX);
    }
};

TEST_F(WaveformSelectionTest, ADragSelectsAStretchThatCutTakesOut) {
    window().Form_Load();
    dictate(8000);
    window().render();
    const engine::SampleCount length = editor1.Length();
    ASSERT_EQ(length, 8 * dictation::testing::kRate);

    // Right to left, a quarter of the letter from its middle.
    drag(201, 101);
    EXPECT_TRUE(editor1.SelectionActive());
    EXPECT_EQ(editor1.SelectionStart(), length / 4);
    EXPECT_EQ(editor1.SelectionEnd(), length / 2);

    // A click drops the selection: Cut then leaves the letter alone.
    mouse(QEvent::MouseButtonPress, 300);
    mouse(QEvent::MouseButtonRelease, 301);
    EXPECT_FALSE(editor1.SelectionActive());
    child<QAction>("mnuCut")->trigger();
    EXPECT_EQ(editor1.Length(), length);

    drag(101, 201);
    child<QAction>("mnuCut")->trigger();
    EXPECT_EQ(editor1.Length(), length - length / 4);
}

TEST_F(WaveformSelectionTest, NothingIsSelectedWhileATakeRuns) {
    window().Form_Load();
    dictate(4000);
    d().recordTake();
    runAndRender(1000);
    drag(50, 150);
    EXPECT_FALSE(editor1.SelectionActive());
    d().stop();
}

}  // namespace
}  // namespace ovd::ui::testing
