// The drive scan window and the scan at start: the days and the calendar following
// each other, the folder choices with their texts, the record on disk, and a scan
// that deletes nothing when its record gives no age.

#include "housekeeping/drive_scan_form.h"
#include "housekeeping_fixture.h"

namespace ovd::housekeeping::testing {
namespace {

using platform::Answer;

class DriveScanTest : public HousekeepingTest {
  protected:
    DriveScanForm form{{loop, config, prompts, data.path()}};
    Day today = localDayOf(loop.now());
    std::string defaultFolder = data.file("Recordings");
};

TEST_F(DriveScanTest, WithNoRecordTheDefaultsAreShownAndTheSaveWritesThem) {
    form.Form_Load();
    EXPECT_EQ(form.folder, defaultFolder);
    EXPECT_FALSE(form.morning);
    EXPECT_EQ(form.daysText, "");
    EXPECT_EQ(form.calendarDay, today);
    EXPECT_FALSE(platform::fileExists(scanSettingsPath(data.path())));

    form.setDaysText("14");
    ASSERT_TRUE(form.Command2());
    EXPECT_EQ(platform::readWholeFile(scanSettingsPath(data.path())).value(),
              "\"\",\"" + defaultFolder + "\",\"Monday\",7,0,\"PM\",,14\r\n");
}

TEST_F(DriveScanTest, TheDaysAndTheCalendarFollowEachOther) {
    form.Form_Load();
    form.setDaysText("10");
    EXPECT_EQ(form.calendarDay, today - std::chrono::days(10));
    form.setCalendarDay(today - std::chrono::days(45));
    EXPECT_EQ(form.daysText, "45");
    form.setDaysText("abc");
    EXPECT_EQ(form.calendarDay, today - std::chrono::days(45)) << "no number moves nothing";
    form.setCalendarDay(today + std::chrono::days(3));
    EXPECT_EQ(form.daysText, "0") << "a day to come is taken as today";
}

TEST_F(DriveScanTest, TheDefaultFolderComesBackOnlyWhenTheUserIsSure) {
    form.Form_Load();
    form.folder = "/elsewhere";
    prompts.answerNext(Answer::No);
    form.Command4();
    EXPECT_EQ(form.folder, "/elsewhere");
    prompts.answerNext(Answer::Yes);
    form.Command4();
    EXPECT_EQ(form.folder, defaultFolder);
    EXPECT_TRUE(platform::folderExists(defaultFolder)) << "made when missing";
    EXPECT_EQ(prompts.texts(), (std::vector<std::string>{kAreYouSure, kAreYouSure}));
}

TEST_F(DriveScanTest, TheFolderBrowserCancelledEmptyOrChosen) {
    form.Form_Load();
    prompts.answerNextText(std::nullopt);
    form.Command5();
    EXPECT_EQ(prompts.texts().back(), kUserCancelled);
    EXPECT_EQ(form.folder, defaultFolder);

    const std::string chosen = data.file("Old Letters");
    prompts.answerNextText(chosen);
    form.Command5();
    EXPECT_EQ(form.folder, chosen);
    EXPECT_TRUE(platform::folderExists(chosen));
    EXPECT_EQ(stored().LastFolderOpened, chosen);

    prompts.answerNextText("");
    form.Command5();
    EXPECT_EQ(form.folder, defaultFolder);
}

TEST_F(DriveScanTest, TheScanAtStartCleansTheRecordsFolderWhenAutomaticDeletionIsOn) {
    const std::string folder = data.file("Dest");
    datedFile(folder + "/old.wav", daysBefore(2026, 3, 2, 20));
    datedFile(folder + "/recent.wav", daysBefore(2026, 3, 2, 2));
    datedFile(folder + "/open.wav", daysBefore(2026, 3, 2, 20));
    inHand.files = {folder + "/open.wav"};
    ScanSettings record;
    record.DestPath = folder;
    record.DeleteDays = 7;
    ASSERT_TRUE(SaveScanSettings(data.path(), record));

    config.record.AutoFileDeltion = false;
    house.runAtStart();
    EXPECT_TRUE(platform::fileExists(folder + "/old.wav"));

    config.record.AutoFileDeltion = true;
    house.runAtStart();
    EXPECT_FALSE(platform::fileExists(folder + "/old.wav"));
    EXPECT_TRUE(platform::fileExists(folder + "/recent.wav"));
    EXPECT_TRUE(platform::fileExists(folder + "/open.wav"));
    EXPECT_TRUE(logged("Drive Scan deleted " + folder + "/old.wav"));
}

TEST_F(DriveScanTest, ARecordWithNoAgeOrOfGarbageDeletesNothing) {
    datedFile(recordings + "/old.wav", daysBefore(2026, 3, 2, 400));
    config.record.AutoFileDeltion = true;

    house.runAtStart();  // no FileScan.cfg at all
    ASSERT_TRUE(platform::writeWholeFile(scanSettingsPath(data.path()), "\"\",,,,,,,\r\n"));
    house.runAtStart();  // an empty number of days
    ASSERT_TRUE(platform::writeWholeFile(scanSettingsPath(data.path()), "\x01\x02garbage,0"));
    house.runAtStart();

    EXPECT_TRUE(platform::fileExists(recordings + "/old.wav"));
    EXPECT_TRUE(logged("Drive Scan: no number of days set"));
    EXPECT_TRUE(logged("Drive Scan: " + scanSettingsPath(data.path()) +
                       " can't be read (it holds 2 fields where 8 belong); nothing deleted"));
    form.Form_Load();
    EXPECT_EQ(form.folder, defaultFolder) << "the window shows the defaults";
    EXPECT_FALSE(form.damage.empty());
}

TEST_F(DriveScanTest, TheDataFolderItselfIsNeverScanned) {
    datedFile(data.file("Passwords.db"), daysBefore(2026, 3, 2, 400));
    ScanSettings record;
    record.DestPath = data.path();
    record.DeleteDays = 0;
    ASSERT_TRUE(SaveScanSettings(data.path(), record));
    config.record.AutoFileDeltion = true;
    house.runAtStart();
    EXPECT_TRUE(platform::fileExists(data.file("Passwords.db")));
    EXPECT_TRUE(platform::fileExists(config.path()));
}

}  // namespace
}  // namespace ovd::housekeeping::testing
