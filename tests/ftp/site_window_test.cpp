// The FTP window worked by hand against a real server: what it says when it can't
// connect, the refusals of commands in the wrong state, the remote commands with
// their texts, and files going up and down while a second transfer is refused.

#include "ftp/site_window.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "ftp/ftp_texts.h"
#include "ftp/ftp_window_texts.h"
#include "ftp_window_fixture.h"
#include "support/temp_folder.h"

namespace ovd::ftp {
namespace {

namespace fs = std::filesystem;
using platform::Answer;
using testing::FtpWindowFixture;
using testing::letterBytes;
using testing::readBytes;
using testing::writeBytes;

class FtpSiteWindowTest : public FtpWindowFixture {};

TEST_F(FtpSiteWindowTest, AFailedConnectIsToldAndEveryRemoteCommandRefused) {
    // Nobody listens on the port of a server that has gone.
    auto gone = std::make_unique<ovd::testing::VsftpdServer>();
    site_.record.set("FTPPort", std::to_string(gone->port()));
    gone.reset();
    makeWindow();

    bool finished = false;
    bool connected = true;
    window_->connect([&](bool ok) {
        finished = true;
        connected = ok;
    });
    ASSERT_TRUE(runUntil([&] { return finished; }));
    EXPECT_FALSE(connected);
    const FtpWindowView& view = window_->view();
    EXPECT_EQ(
        view.status.rfind("Could not establish connection.\r\nCan NOT Connect to FTP Server", 0),
        0u)
        << view.status;
    EXPECT_EQ(view.session, "no Session");
    EXPECT_TRUE(view.FTPFailed);
    EXPECT_EQ(view.FTPError, "Could not establish connection.");

    prompts_.clear();
    window_->command(kCreateDirectoryButton);
    window_->selectRemote({"a.wav"});
    window_->command(kDeleteKey);
    window_->command(kDisconnectKey);
    EXPECT_EQ(prompts_.texts(), (std::vector<std::string>{
                                    "Not Connected.", "Not Connected.",
                                    "Not connected to an FTP Server...You must connect first."}));
}

TEST_F(FtpSiteWindowTest, RemoteCommandsDoWhatTheySayAndSayWhatTheyDid) {
    putOnServer("old name.wav", "spoken");
    makeWindow();
    connectWindow();
    EXPECT_EQ(window_->view().status.rfind("Connected to 127.0.0.1 as anonymous at ", 0), 0u);
    EXPECT_EQ(window_->view().session, "Session is Established");
    ASSERT_FALSE(window_->view().remoteRows.empty());
    EXPECT_EQ(window_->view().remoteRows.front().name, "..");

    prompts_.clear();
    window_->command(kConnectButton);
    SiteContext other = site_;
    other.record.set("FTPServer", "192.0.2.1");
    EXPECT_FALSE(window_->changeSite(other));
    EXPECT_EQ(
        prompts_.texts(),
        (std::vector<std::string>{"Already connected to an FTP Server...You must disconnect first.",
                                  "To Change settings please disconnect from FTP Server"}));

    // Into the test's folder through the list, as a double click does.
    for (const std::string& part : {std::string("incoming"), remoteFolder_.substr(10)}) {
        window_->refreshRemote();
        window_->openRemote(part);
    }
    ASSERT_EQ(window_->view().remoteFolder, remoteFolder_);

    prompts_.clear();
    prompts_.answerNextText("Letters");
    window_->command(kCreateDirectoryKey);
    prompts_.answerNextText("new name.wav");
    window_->selectRemote({"old name.wav"});
    window_->command(kRenameButton);
    EXPECT_TRUE(fs::is_directory(onServer("Letters")));
    EXPECT_TRUE(fs::exists(onServer("new name.wav")));
    EXPECT_FALSE(fs::exists(onServer("old name.wav")));

    // A "No" keeps the file; a "Yes" takes the folder and the file.
    prompts_.answerNext(Answer::No);
    window_->selectRemote({"new name.wav"});
    window_->command(kDeleteButton);
    EXPECT_TRUE(fs::exists(onServer("new name.wav")));
    prompts_.answerNext(Answer::Yes);
    prompts_.answerNext(Answer::Ok);
    prompts_.answerNext(Answer::Yes);
    window_->selectRemote({"Letters", "new name.wav"});
    window_->command(kDeleteKey);
    EXPECT_FALSE(fs::exists(onServer("Letters")));
    EXPECT_FALSE(fs::exists(onServer("new name.wav")));
    EXPECT_EQ(prompts_.texts(), (std::vector<std::string>{
                                    "Please enter a name for this directory:",
                                    "Directory Letters was successfully created.",
                                    "Please enter a new name for this file:",
                                    "The file old name.wav was successfuly renamed to new name.wav",
                                    "Are you sure you want to delete new name.wav",
                                    "Are you sure you want to delete Letters",
                                    "Directory Letters was successfully removed.",
                                    "Are you sure you want to delete new name.wav",
                                    "The file new name.wav was successfully deleted."}));
    EXPECT_EQ(prompts_.transcript()[4].title, "Delete?");
    EXPECT_EQ(prompts_.transcript()[4].defaultAnswer, Answer::No);

    // A folder that is not empty can't go: the server's own words are shown.
    ASSERT_TRUE(fs::create_directory(onServer("Full")));
    writeBytes(onServer("Full/kept.wav"), "kept");
    window_->refreshRemote();
    prompts_.answerNext(Answer::Yes);
    window_->selectRemote({"Full"});
    window_->command(kDeleteKey);
    EXPECT_EQ(window_->view().status.rfind("FTP ERROR: RemoveFTPDirectory", 0), 0u)
        << window_->view().status;
    EXPECT_NE(window_->view().status.find("550"), std::string::npos);
}

TEST_F(FtpSiteWindowTest, SelectedFilesGoUpAndComeDownWhileASecondTransferIsRefused) {
    const std::string big = letterBytes(3 * kChunkBytes + 17);
    ovd::testing::TempFolder outgoing;
    writeBytes(outgoing.file("first letter.wav"), big);
    writeBytes(outgoing.file("second.wav"), "short letter");
    makeWindow();
    window_->setLocalFolder(outgoing.path());
    EXPECT_EQ(window_->view().localFiles,
              (std::vector<std::string>{"first letter.wav", "second.wav"}));
    connectWindow();
    window_->openRemote("incoming");
    window_->openRemote(remoteFolder_.substr(10));

    bool transferring = false;
    window_->onTransferring = [&](bool on) { transferring = on; };
    window_->selectLocal({"first letter.wav", "second.wav"});
    window_->command(kUploadButton);
    EXPECT_TRUE(transferring);
    window_->selectRemote({"first letter.wav"});
    window_->command(kDownloadKey);
    EXPECT_EQ(window_->view().status, kTransferRunningText);
    ASSERT_TRUE(runUntil([&] { return !transferring; }));
    EXPECT_FALSE(window_->view().FTPFailed) << window_->view().FTPError;
    EXPECT_TRUE(readBytes(onServer("first letter.wav")) == big);
    EXPECT_EQ(readBytes(onServer("second.wav")), "short letter");
    EXPECT_TRUE(sawStatus(uploadStatusText(big.size(), big.size())));

    ovd::testing::TempFolder incoming;
    window_->setLocalFolder(incoming.path());
    window_->selectRemote({"first letter.wav"});
    window_->command(kDownloadButton);
    ASSERT_TRUE(runUntil([&] { return !transferring; }));
    EXPECT_TRUE(readBytes(incoming.file("first letter.wav")) == big);
    EXPECT_EQ(window_->view().localFiles, (std::vector<std::string>{"first letter.wav"}));
    EXPECT_TRUE(sawStatus(downloadStatusText(big.size(), big.size())));
}

}  // namespace
}  // namespace ovd::ftp
