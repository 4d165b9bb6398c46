#pragma once
// The main window over a whole dictation on the virtual clock: the real wave
// editors, the settings in a temporary folder, scripted prompts. Clicks go to the
// widgets; the dictation moves only when the test advances the clock.

#include <QAction>
#include <QLabel>
#include <QPushButton>
#include <QToolButton>
#include <memory>

#include "dictation/dictation_fixture.h"
#include "settings/debug_trace.h"
#include "ui/station_window.h"
#include "ui/transport_bar.h"

namespace ovd::ui::testing {

class StationWindowTest : public dictation::testing::DictationTest {
  protected:
    StationWindowTest() { config.WriteConfig(); }

    StationWindow& window() {
        if (!window_) {
            window_ = std::make_unique<StationWindow>(StationWindowParts{
                config, log, d(), editor1, editor21, trace, prompts, OVD_TEST_ASSETS, "virtual"});
        }
        return *window_;
    }
    void reopenWindow() { window_.reset(); }

    template <typename Widget = QWidget>
    Widget* child(const char* name) {
        auto* widget = window().findChild<Widget*>(QString::fromLatin1(name));
        EXPECT_NE(widget, nullptr) << name;
        return widget;
    }
    QString textOf(const char* name) { return child<QLabel>(name)->text(); }
    QToolButton* bar(TransportBar::Button which) {
        return window().findChild<TransportBar*>("MMControl1")->button(which);
    }
    // The clock runs, then the window looks at the dictation as its own timer would.
    void runAndRender(int milliseconds) {
        run(milliseconds);
        window().render();
    }

    settings::DebugTrace trace{loop};
    std::unique_ptr<StationWindow> window_;
};

}  // namespace ovd::ui::testing
