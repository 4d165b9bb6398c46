// The scheduled deletion and drive scan windows on the offscreen platform: each is
// set through its widgets as a user would, saved, and its record read from disk.

#include <gtest/gtest.h>

#include <QCalendarWidget>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QToolButton>

#include "housekeeping/housekeeping.h"
#include "platform/files.h"
#include "settings/config_file.h"
#include "settings/event_log.h"
#include "support/scripted_prompts.h"
#include "support/temp_folder.h"
#include "support/virtual_event_loop.h"
#include "ui/drive_scan_window.h"
#include "ui/records_windows.h"
#include "ui/weekly_delete_window.h"

namespace ovd::ui {
namespace {

class HousekeepingWindowsTest : public ::testing::Test {
  protected:
    HousekeepingWindowsTest() {
        EXPECT_TRUE(platform::writeWholeFile(
            data.file("DigitalRecorder.cfg"),
            platform::readWholeFile(OVD_TEST_ASSETS "/DigitalRecorder.cfg").value()));
        config.ReadConfig();
        config.record.CaptureFilePath = data.file("Recordings");
        config.WriteConfig();
    }
    template <typename Widget>
    static Widget* find(QWidget& window, const char* name) {
        auto* found = window.findChild<Widget*>(name);
        EXPECT_NE(found, nullptr) << name;
        return found;
    }
    static void type(QLineEdit* edit, const QString& text) {
        edit->setText(text);
        Q_EMIT edit->textEdited(text);
    }

    ::ovd::testing::TempFolder data;
    ::ovd::testing::VirtualEventLoop loop{::ovd::testing::localTime(2026, 3, 2, 9, 0, 0)};
    settings::ConfigFile config{data.path()};
    settings::EventLog log{loop, data.path(), config.record};
    ::ovd::testing::ScriptedPrompts prompts;
    housekeeping::Housekeeping house{{loop, config, log, data.path(), {}}};
};

TEST_F(HousekeepingWindowsTest, TheWeeklyDeleteWindowSavesTheScheduleAndKeepsTheAgeInMemory) {
    WeeklyDeleteWindow window(house);
    EXPECT_EQ(find<QLabel>(window, "LBLPath")->text().toStdString(), data.file("Recordings"));
    EXPECT_EQ(window.clock()->text(), "03/02/2026 09:00:00 AM");

    find<QComboBox>(window, "Combo1")->setCurrentText("Thursday");
    find<QComboBox>(window, "Combo2")->setCurrentText("12");
    find<QComboBox>(window, "Combo3")->setCurrentText("30");
    find<QRadioButton>(window, "Option1")->setChecked(true);
    type(window.days(), "500");
    EXPECT_EQ(window.days()->text(), "120");
    find<QToolButton>(window, "UpDown1Down")->click();
    EXPECT_EQ(window.days()->text(), "119");
    find<QPushButton>(window, "Command2")->click();

    settings::ConfigFile disk(data.path());
    disk.ReadConfig();
    EXPECT_EQ(disk.record.DeleteDay, 4);
    EXPECT_EQ(disk.record.DeleteHour, 12);
    EXPECT_EQ(disk.record.DeleteMinute, 30);
    EXPECT_EQ(disk.record.DeleteAMPM, "AM");
    EXPECT_EQ(house.purge.PurgeDays(), 119);
    EXPECT_TRUE(house.purge.timCurTime.Enabled());
    loop.advance(std::chrono::seconds(2));
    EXPECT_EQ(window.clock()->text(), "03/02/2026 09:00:02 AM");
}

TEST_F(HousekeepingWindowsTest, TheDriveScanWindowWritesFileScanCfg) {
    DriveScanWindow window(house, prompts);
    QCalendarWidget* calendar = window.calendar();
    EXPECT_EQ(calendar->selectedDate(), QDate(2026, 3, 2));

    type(window.days(), "10");
    EXPECT_EQ(calendar->selectedDate(), QDate(2026, 2, 20));
    calendar->setSelectedDate(QDate(2026, 2, 1));
    EXPECT_EQ(window.days()->text(), "29");

    const std::string chosen = data.file("Old Letters");
    prompts.answerNextText(chosen);
    find<QPushButton>(window, "Command5")->click();
    EXPECT_EQ(window.folder()->text().toStdString(), chosen);
    find<QComboBox>(window, "Combo1")->setCurrentText("Saturday");
    find<QComboBox>(window, "Combo2")->setCurrentText("6");
    find<QComboBox>(window, "Combo3")->setCurrentText("05");
    find<QRadioButton>(window, "Option1")->setChecked(true);
    find<QPushButton>(window, "Command2")->click();

    EXPECT_EQ(platform::readWholeFile(data.file("FileScan.cfg")).value(),
              "\"\",\"" + chosen + "\",\"Saturday\",6,5,\"AM\",,29\r\n");
}

TEST_F(HousekeepingWindowsTest, TheDriveScanWindowAndTheTranscribersRefuseEachOther) {
    ASSERT_TRUE(house.windows.openTranscribers(prompts));
    showDriveScanWindow(house, prompts, nullptr);  // refused: returns at once
    house.windows.transcribersClosed();
    ASSERT_TRUE(house.windows.openDriveScan(prompts));
    showRecordsWindow(RecordsWindow::Transcribers, nullptr, data.path(), prompts, config.record,
                      &house.windows);
    EXPECT_EQ(prompts.texts(),
              (std::vector<std::string>{housekeeping::kDriveScanWithTranscribers,
                                        std::string(housekeeping::kDriveScanWithTranscribers) +
                                            housekeeping::kTranscribersWillClose}));
}

}  // namespace
}  // namespace ovd::ui
