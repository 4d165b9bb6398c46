// The desk unit on screen drives a real dictation the way the unit's link does:
// the switch records and stops, and the buttons say which was pressed.

#include "ui/desk_unit_panel.h"

#include <QLabel>
#include <QPushButton>
#include <QRadioButton>

#include "devices/switch_model.h"
#include "dictation/dictation_fixture.h"
#include "ui/quiet_letters.h"

namespace ovd::ui {
namespace {

class DeskUnitPanelTest : public dictation::testing::DictationTest {
  protected:
    testing::QuietLetters letters;
    devices::ButtonMessages messages;
    devices::SwitchModel model{{d(), editor1, config, log, prompts, peer, messages, letters}};

    template <typename Widget>
    Widget* find(DeskUnitPanel& panel, const char* name) {
        auto* widget = panel.findChild<Widget*>(QString::fromLatin1(name));
        EXPECT_NE(widget, nullptr) << name;
        return widget;
    }
};

TEST_F(DeskUnitPanelTest, TheSwitchRecordsAndStopsAndFollowsTheModel) {
    d().newLetter();
    DeskUnitPanel panel(model, view(), config.record);
    find<QRadioButton>(panel, "switch0")->click();  // DICTATE
    EXPECT_TRUE(state().Recordingstatus);
    EXPECT_TRUE(find<QRadioButton>(panel, "switch0")->isChecked());
    run(2000);
    find<QRadioButton>(panel, "switch2")->click();  // STOP
    EXPECT_FALSE(state().Recordingstatus);
    EXPECT_EQ(editor1.Length(), 2 * dictation::testing::kRate);
    EXPECT_TRUE(find<QRadioButton>(panel, "switch2")->isChecked());
    EXPECT_FALSE(find<QRadioButton>(panel, "switch0")->isChecked()) << "one position at a time";
    EXPECT_EQ(find<QLabel>(panel, "Lbl4Pos")->text().toStdString(), dictation::kSwitchStop);
}

TEST_F(DeskUnitPanelTest, AButtonShowsItsActionAndTellsWhichWasPressed) {
    config.record.BUT5 = "AudioSRC";
    config.record.QDUDisconnected = false;
    DeskUnitPanel panel(model, view(), config.record);
    auto* button = find<QPushButton>(panel, "button5");
    EXPECT_EQ(button->text().toStdString(), "5: Audio Src");
    button->pressed();
    EXPECT_EQ(view().statusLine, "Last Button Pressed on QDU Unit was 5 : Audio Src");
    EXPECT_TRUE(model.BUTHit(5));
    button->released();
    EXPECT_FALSE(model.BUTHit(5));
}

}  // namespace
}  // namespace ovd::ui
