// The delivery half of the file-save settings and the folders: destination
// folders that are stored as soon as they are chosen, the e-mail and FTP ticks
// with their checks at the save, the warnings of two ticks, the recordings folder.

#include <sys/mount.h>
#include <unistd.h>

#include "configuration/file_saves_texts.h"
#include "file_saves_fixture.h"
#include "settings/company_records.h"
#include "settings/delivery_defaults.h"
#include "settings/delivery_startup_checks.h"
#include "settings/email_receivers_form.h"
#include "settings/email_sites_tables.h"

namespace ovd::configuration::testing {
namespace {

using platform::Answer;

TEST_F(FileSavesTest, DestinationFoldersAreStoredTheMomentTheyAreChosen) {
    const std::string chosen = folder.file("first");
    prompts.answerNextText(chosen);        // destination 1
    prompts.answerNextText(std::nullopt);  // destination 2: cancelled with none set
    FileSavesForm& f = open();
    f.setDestination(1, true);
    EXPECT_EQ(prompts.transcript().back().title, kChooseDestinationTitle);
    EXPECT_EQ(stored().SendToOne, chosen);
    EXPECT_TRUE(platform::folderExists(chosen));
    EXPECT_EQ(f.controls().destinations[0].folder, chosen);

    f.setDestination(2, true);
    EXPECT_FALSE(f.controls().destinations[1].on);
    EXPECT_TRUE(shown(kDestinationCanceled));

    f.setDestination(1, false);
    EXPECT_EQ(stored().SendToOne, "");
    EXPECT_EQ(f.controls().destinations[0].folder, "");
}

TEST_F(FileSavesTest, ACancelledChoiceKeepsAFolderAlreadySet) {
    config.record.SendToTwo = folder.file("second");
    prompts.answerNextText(std::nullopt);
    FileSavesForm& f = open();
    f.setDestination(2, true);
    EXPECT_TRUE(f.controls().destinations[1].on);
    EXPECT_TRUE(shown(kDestinationCanceled));
    ASSERT_EQ(f.save(), SaveOutcome::Saved);
    EXPECT_TRUE(stored().AutoSend2);
    EXPECT_EQ(stored().SendToTwo, folder.file("second"));
}

TEST_F(FileSavesTest, ADestinationThatCantBeCreatedIsRefused) {
    ASSERT_TRUE(platform::writeWholeFile(folder.file("plain"), "x"));
    prompts.answerNextText(folder.file("plain") + "/sub");
    FileSavesForm& f = open();
    f.setDestination(1, true);
    EXPECT_FALSE(f.controls().destinations[0].on);
    ASSERT_EQ(prompts.texts().size(), 2U);
    EXPECT_EQ(prompts.texts()[1].rfind(kFolderCantBeMade, 0), 0U) << prompts.texts()[1];
    EXPECT_NE(prompts.texts()[1].find("Not a directory"), std::string::npos);
    EXPECT_EQ(stored().SendToOne, "");
}

TEST_F(FileSavesTest, EmailAndFtpTicksExcludeEachOther) {
    FileSavesForm& f = open();
    f.setAutoEmail(true);
    EXPECT_TRUE(f.controls().emailMenuEnabled);
    EXPECT_TRUE(shown(kEmailMenuAvailable));
    f.setAutoFtp(true);
    EXPECT_TRUE(shown(kFtpMenuAvailable));
    EXPECT_TRUE(f.controls().autoFtp);
    EXPECT_FALSE(f.controls().autoEmail);
    EXPECT_FALSE(f.controls().emailGroupEnabled);
    f.setAutoEmail(true);
    EXPECT_FALSE(f.controls().autoFtp);
    EXPECT_FALSE(f.controls().ftpMenuEnabled);
}

TEST_F(FileSavesTest, TheTwoWarningsComeOnTickingOnly) {
    config.record.AutoRewind = true;
    config.record.AutoInsert = true;
    config.record.FileSaveAtStop = true;
    FileSavesForm& f = open();
    EXPECT_TRUE(prompts.texts().empty());  // nothing while loading
    EXPECT_TRUE(f.controls().autoInsert);
    f.setAutoRewind(false);
    EXPECT_FALSE(f.controls().autoInsert);
    f.setAutoRewind(true);
    EXPECT_TRUE(f.controls().autoInsert);
    EXPECT_FALSE(f.controls().autoOverwrite);
    f.setSaveAtStop(false);
    f.setSaveAtStop(true);
    EXPECT_EQ(prompts.texts(), (std::vector<std::string>{kAutoRewindWarning, kSaveAtStopWarning}));
    f.setAutoRewind(false);
    ASSERT_EQ(f.save(), SaveOutcome::Saved);
    EXPECT_FALSE(stored().AutoRewind);
    EXPECT_FALSE(stored().AutoInsert);
}

class EmailAtSaveTest : public FileSavesTest {
  protected:
    void emailSetUp() {
        settings::CompanyRecords records(folder.path());
        ASSERT_TRUE(records.defaults().WriteKey(settings::kDefaultEmailSection, "DefaultEmail",
                                                std::string("me@example.org")));
    }
    void receiverEntered() {
        settings::EmailReceiversTable table(folder.path());
        ASSERT_TRUE(table.saveReceiver({"Typing Co", "typing@example.org", "", "", false}));
    }
    void defaultReceiver() {
        settings::CompanyRecords records(folder.path());
        ASSERT_TRUE(records.defaults().WriteKey(settings::kDefaultEmailSection, "DefaultRecEMail",
                                                std::string("typing@example.org")));
    }
    SaveOutcome saveWithEmail(std::optional<Answer> answer) {
        FileSavesForm& f = open();
        f.setAutoEmail(true);
        prompts.clear();
        if (answer) prompts.answerNext(*answer);
        return f.save();
    }
};

TEST_F(EmailAtSaveTest, EmailNotSetUpIsAskedAbout) {
    EXPECT_EQ(saveWithEmail(Answer::No), SaveOutcome::Saved);
    EXPECT_EQ(prompts.texts(), (std::vector<std::string>{settings::kEmailNotSetUpQuestion,
                                                         settings::kEmailDeactivatedMessage}));
    EXPECT_FALSE(stored().AutoEmail);

    EXPECT_EQ(saveWithEmail(Answer::Yes), SaveOutcome::SetupOpened);
    EXPECT_EQ(emailSetups, 1);
    EXPECT_EQ(closes, 1);  // only the first save closed the window
}

TEST_F(EmailAtSaveTest, NoReceiverIsAskedAbout) {
    emailSetUp();
    EXPECT_EQ(saveWithEmail(Answer::No), SaveOutcome::Saved);
    EXPECT_EQ(prompts.texts(), (std::vector<std::string>{kNoReceiverQuestion,
                                                         settings::kNoReceiverDeactivatedMessage}));
    EXPECT_FALSE(stored().AutoEmail);
    EXPECT_FALSE(form->controls().autoEmail);
}

TEST_F(EmailAtSaveTest, AReceiverButNoDefaultOneIsAskedAbout) {
    emailSetUp();
    receiverEntered();
    EXPECT_EQ(saveWithEmail(Answer::Yes), SaveOutcome::SetupOpened);
    EXPECT_EQ(prompts.texts(), std::vector<std::string>{settings::kNoDefaultReceiverQuestion});
    EXPECT_EQ(emailSetups, 1);
    defaultReceiver();
    EXPECT_EQ(saveWithEmail(std::nullopt), SaveOutcome::Saved);
    EXPECT_TRUE(prompts.texts().empty());
    EXPECT_TRUE(stored().AutoEmail);
}

TEST_F(EmailAtSaveTest, TheChosenCompanyNamesTheEmailDelivery) {
    emailSetUp();
    receiverEntered();
    FileSavesForm& f = open();
    EXPECT_EQ(f.controls().receiverCompanies, std::vector<std::string>{"Typing Co"});
    f.setAutoEmail(true);
    f.chooseReceiverCompany("Typing Co");
    ASSERT_EQ(f.save(), SaveOutcome::Saved);
    EXPECT_TRUE(stored().AutoEmail);
    EXPECT_EQ(stored().AutoEmailName, "Typing Co");
}

TEST_F(EmailAtSaveTest, TheChosenCompanyBecomesTheDefaultReceiverWithItsKey) {
    emailSetUp();
    defaultReceiver();  // typing@example.org until now
    settings::EmailReceiversTable table(folder.path());
    ASSERT_TRUE(table.saveReceiver({"Scribe Ltd", "scribe@example.org", "RXKEY7", "", false}));
    FileSavesForm& f = open();
    f.setAutoEmail(true);
    f.chooseReceiverCompany("Scribe Ltd");
    ASSERT_EQ(f.save(), SaveOutcome::Saved);
    const auto defaults = platform::readWholeFile(folder.file(settings::kDefaultsFileName));
    ASSERT_TRUE(defaults);
    const auto document = settings::IniDocument::parse(*defaults);
    EXPECT_EQ(document.value(settings::kDefaultEmailSection, "DefaultRecEMail"),
              "scribe@example.org");
    EXPECT_EQ(document.value(settings::kDefaultEmailSection, "RECEncryptKey"), "RXKEY7");
    EXPECT_EQ(settings::LoadDefaultEmail(settings::CompanyRecords(folder.path())).DefaultRecEMail,
              "scribe@example.org");
}

TEST_F(FileSavesTest, FtpWithoutADefaultSiteIsAskedAbout) {
    FileSavesForm& f = open();
    f.setAutoFtp(true);
    prompts.clear();
    prompts.answerNext(Answer::No);
    ASSERT_EQ(f.save(), SaveOutcome::Saved);
    EXPECT_EQ(prompts.texts(), (std::vector<std::string>{settings::kNoDefaultFtpQuestion,
                                                         settings::kFtpDeactivatedMessage}));
    EXPECT_FALSE(stored().AutoFTP);

    settings::CompanyRecords records(folder.path());
    ASSERT_TRUE(records.defaults().WriteKey(settings::kDefaultFtpSection, "FTPServer",
                                            std::string("ftp.example.org")));
    FileSavesForm& again = open();
    again.setAutoFtp(true);
    ASSERT_EQ(again.save(), SaveOutcome::Saved);
    EXPECT_TRUE(stored().AutoFTP);
}

TEST_F(FileSavesTest, TheRecordingsFolderChoice) {
    FileSavesForm& f = open();
    const std::string chosen = folder.file("elsewhere/deeper");
    prompts.answerNextText(chosen);
    f.changeRecordingsFolder();
    EXPECT_TRUE(platform::folderExists(chosen));
    EXPECT_EQ(f.controls().recordingsFolder, chosen);

    prompts.answerNextText(std::nullopt);
    f.changeRecordingsFolder();
    EXPECT_TRUE(shown(kRecordingsFolderCancelled));
    EXPECT_EQ(f.controls().recordingsFolder, chosen);
    ASSERT_EQ(f.save(), SaveOutcome::Saved);
    EXPECT_EQ(stored().CaptureFilePath.toText(), chosen);

    FileSavesForm& again = open();
    prompts.answerNext(Answer::Yes);
    again.restoreRecordingsFolder();
    EXPECT_TRUE(shown(kAreYouSure));
    EXPECT_EQ(stored().CaptureFilePath.toText(), folder.file("Recordings"));
    EXPECT_TRUE(platform::folderExists(folder.file("Recordings")));
}

TEST_F(FileSavesTest, ARecordingsFolderOnAReadOnlyDiskIsRefused) {
    if (::geteuid() != 0) GTEST_SKIP() << "mounting needs root";
    const std::string mounted = folder.file("readonly");
    ASSERT_TRUE(platform::createFolder(mounted));
    ASSERT_EQ(::mount("tmpfs", mounted.c_str(), "tmpfs", MS_RDONLY, "size=64k"), 0);
    struct Unmount {
        std::string path;
        ~Unmount() { ::umount(path.c_str()); }
    } unmount{mounted};

    FileSavesForm& f = open();
    for (const std::string& chosen : {mounted, mounted + "/sub"}) {
        SCOPED_TRACE(chosen);
        prompts.clear();
        prompts.answerNextText(chosen);
        f.changeRecordingsFolder();
        ASSERT_EQ(prompts.texts().size(), 2U);
        EXPECT_NE(prompts.texts()[1].find(chosen), std::string::npos);
        EXPECT_NE(prompts.texts()[1].find("Read-only file system"), std::string::npos);
        EXPECT_EQ(f.controls().recordingsFolder, folder.file("Rec"));
    }
    ASSERT_EQ(f.save(), SaveOutcome::Saved);
    EXPECT_EQ(stored().CaptureFilePath.toText(), folder.file("Rec"));
}

}  // namespace
}  // namespace ovd::configuration::testing
