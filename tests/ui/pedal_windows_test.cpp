// The pedal assignment dialogs and the button template on the offscreen platform:
// each dialog shows its own title and extras and hands its clicks to the settings;
// the template names each button as printed and prints into a PDF file.

#include <gtest/gtest.h>

#include <QCheckBox>
#include <QFile>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QSlider>
#include <cstdlib>

#include "support/scripted_prompts.h"
#include "support/temp_folder.h"
#include "ui/pedal_assignments_dialog.h"
#include "ui/print_button_window.h"

namespace ovd::ui {
namespace {

using devices::PedalDialog;

class PedalWindowsTest : public ::testing::Test {
  protected:
    ovd::testing::TempFolder folder;
    settings::ConfigFile config{folder.path()};
    ovd::testing::ScriptedPrompts prompts;

    void SetUp() override {
        using R = settings::SettingsRecord;
        using Field = std::string R::*;
        const Field pedals[4][3] = {{&R::LEFTQDUPEDAL, &R::MIDQDUPEDAL, &R::RIGHTQDUPEDAL},
                                    {&R::LEFTUSBPEDAL, &R::MIDUSBPEDAL, &R::RIGHTUSBPEDAL},
                                    {&R::LEFTSERPEDAL, &R::MIDSERPEDAL, &R::RIGHTSERPEDAL},
                                    {&R::LEFTGAMEPEDAL, &R::MIDGAMEPEDAL, &R::RIGHTGAMEPEDAL}};
        for (const auto& device : pedals) {
            config.record.*device[0] = "STEPLIST";
            config.record.*device[1] = "RECSTOP";
            config.record.*device[2] = "EOLSTOP";
        }
    }
};

TEST_F(PedalWindowsTest, DeskUnitDialogHasItsHeadingAndTakesClicks) {
    PedalAssignmentsDialog dialog(PedalDialog::DeskUnit, config, prompts, nullptr);
    EXPECT_EQ(dialog.windowTitle(), "QDU Pedal Functions");
    EXPECT_FALSE(dialog.findChildren<QLabel*>().isEmpty());
    bool heading = false;
    for (QLabel* label : dialog.findChildren<QLabel*>())
        heading = heading || label->text() == "QDU PEDAL ASSIGNMENTS";
    EXPECT_TRUE(heading);
    EXPECT_EQ(dialog.twoPedalCheck(), nullptr);
    EXPECT_EQ(dialog.stopSpeedSlider(), nullptr);
    dialog.option(5, 0)->click();  // left pedal: step forward
    EXPECT_EQ(config.record.LEFTQDUPEDAL, "STEPFWD");
    EXPECT_TRUE(dialog.option(5, 0)->isChecked());
    EXPECT_FALSE(dialog.option(0, 0)->isChecked()) << "one function per pedal";
    EXPECT_EQ(dialog.rowMark(0)->text(), "") << "nobody steps back now";
    EXPECT_FALSE(dialog.rowMark(5)->text().isEmpty());
}

TEST_F(PedalWindowsTest, UsbDialogShowsTheUnusedStopSpeedSlider) {
    PedalAssignmentsDialog dialog(PedalDialog::Usb, config, prompts, nullptr);
    EXPECT_EQ(dialog.windowTitle(), "USB Pedal Functions");
    ASSERT_NE(dialog.stopSpeedSlider(), nullptr);
    EXPECT_EQ(dialog.stopSpeedSlider()->maximum(), 2);
    dialog.stopSpeedSlider()->setValue(2);
    const settings::SettingsRecord before = config.record;
    dialog.okButton()->click();
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
    EXPECT_EQ(config.record.LEFTUSBPEDAL, before.LEFTUSBPEDAL) << "the slider changes nothing";
}

TEST_F(PedalWindowsTest, SerialDialogHidesTheMiddlePedalOfATwoPedalUnit) {
    PedalAssignmentsDialog dialog(PedalDialog::Serial, config, prompts, nullptr);
    dialog.show();
    EXPECT_EQ(dialog.windowTitle(), "Serial 3 Pedal Functions");
    ASSERT_NE(dialog.twoPedalCheck(), nullptr);
    EXPECT_TRUE(dialog.middleFrame()->isVisible());
    dialog.twoPedalCheck()->click();
    EXPECT_FALSE(dialog.middleFrame()->isVisible());
    EXPECT_TRUE(config.record.TwoPedalsSER);
    EXPECT_EQ(config.record.MIDSERPEDAL, "");
    dialog.okButton()->click();
    EXPECT_TRUE(prompts.transcript().empty());
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
}

TEST_F(PedalWindowsTest, GameDialogStaysOpenUntilEveryPedalHasAFunction) {
    PedalAssignmentsDialog dialog(PedalDialog::Game, config, prompts, nullptr);
    dialog.show();
    EXPECT_EQ(dialog.windowTitle(), "Game Pedal Functions");
    dialog.option(1, 2)->click();  // the right pedal takes record from the middle one
    dialog.okButton()->click();
    EXPECT_EQ(prompts.texts(), std::vector<std::string>{"MIDDLE GAME PEDAL has not been defined."});
    EXPECT_TRUE(dialog.isVisible());
    dialog.cancelButton()->click();
    EXPECT_FALSE(dialog.isVisible());
    EXPECT_EQ(config.record.RIGHTGAMEPEDAL, "RECSTOP") << "Cancel keeps the click in memory";
}

TEST_F(PedalWindowsTest, TheButtonTemplateNamesEachButtonAndPrintsToPdf) {
    const char* actions[] = {"New",       "RenameFile", "SendToThree", "SENDEMAIL",
                             "SendToTwo", "SENDFTP",    "MSG3",        "EraseFile"};
    const char* printed[] = {"New",    "Rename",  "SendToThree", "SENDEMAIL",
                             "Dest 2", "SENDFTP", "MSG3",        "Delete"};
    std::string settings::SettingsRecord::*buttons[] = {
        &settings::SettingsRecord::BUT1, &settings::SettingsRecord::BUT2,
        &settings::SettingsRecord::BUT3, &settings::SettingsRecord::BUT4,
        &settings::SettingsRecord::BUT5, &settings::SettingsRecord::BUT6,
        &settings::SettingsRecord::BUT7, &settings::SettingsRecord::BUT8};
    for (int i = 0; i < 8; ++i) config.record.*buttons[i] = actions[i];
    PrintButtonWindow window(config.record, nullptr);
    for (int i = 0; i < 8; ++i) EXPECT_EQ(window.buttonLabel(i)->text(), printed[i]) << i;

    // OVD_TEMPLATE_PDF keeps the file, for the README's picture.
    const char* keep = std::getenv("OVD_TEMPLATE_PDF");
    const QString pdf = keep != nullptr ? QString::fromLocal8Bit(keep)
                                        : QString::fromStdString(folder.file("template.pdf"));
    ASSERT_TRUE(window.printToPdf(pdf));
    QFile file(pdf);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_TRUE(file.read(5).startsWith("%PDF"));
}

}  // namespace
}  // namespace ovd::ui
