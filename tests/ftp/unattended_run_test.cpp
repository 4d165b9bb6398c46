// The unattended run against a real server: the upload rule with its file spec,
// encryption and move-after; the download rule with the empty-file refusal,
// deciphering and delete-after; a run that can't connect; a run cancelled.

#include "ftp/unattended_run.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "crypto/file_crypt.h"
#include "crypto/transport.h"
#include "ftp/ftp_window_texts.h"
#include "ftp_window_fixture.h"

namespace ovd::ftp {
namespace {

namespace fs = std::filesystem;
using testing::FtpWindowFixture;
using testing::letterBytes;
using testing::readBytes;
using testing::writeBytes;

class UnattendedRunTest : public FtpWindowFixture {
  protected:
    void SetUp() override {
        FtpWindowFixture::SetUp();
        for (const char* folder : {"upload", "moved", "download"}) {
            fs::create_directory(local_.file(folder));
        }
    }
    void uploadRule(const std::string& spec, bool moveAfter) {
        site_.record.set("FTPUFLMOption", "True");
        site_.record.set("FTPUFLMUploadFrom", local_.file("upload"));
        site_.record.set("FTPUFLMRemotePath", remoteFolder_);
        site_.record.set("FTPUFLMFileSpec", spec);
        site_.record.set("FTPUFLMMoveLocalAfterUploadOption", moveAfter ? "True" : "False");
        site_.record.set("FTPUFLMMoveTO", local_.file("moved"));
    }
    void downloadRule(const std::string& spec, bool deleteAfter) {
        site_.record.set("FTPDFRSOption", "True");
        site_.record.set("FTPDFRSRemotePath", remoteFolder_);
        site_.record.set("FTPDFRSDownloadTo", local_.file("download"));
        site_.record.set("FTPDFRSFileSpec", spec);
        site_.record.set("FTPDFRSDelete", deleteAfter ? "True" : "False");
    }
    RunOutcome runOnce() {
        makeWindow();
        UnattendedFtpRun run(*window_, *session_, prompts_,
                             [this](const std::string& wave) { played_.push_back(wave); });
        std::optional<RunOutcome> outcome;
        EXPECT_TRUE(run.start([&](const RunOutcome& ended) { outcome = ended; }));
        EXPECT_TRUE(runUntil([&] { return outcome.has_value(); }));
        return outcome.value_or(RunOutcome{});
    }
    std::vector<std::string> played_;
};

TEST_F(UnattendedRunTest, TheUploadRuleSendsMatchingFilesAndMovesThemAway) {
    const std::string letter = letterBytes(kChunkBytes * 2);
    writeBytes(local_.file("upload/one.wav"), letter);
    writeBytes(local_.file("upload/notes.txt"), "not a letter");
    uploadRule("*.wav", /*moveAfter=*/true);

    const RunOutcome outcome = runOnce();
    EXPECT_TRUE(outcome.complete) << window_->view().FTPError;
    EXPECT_EQ(outcome.uploaded, (std::vector<std::string>{"one.wav"}));
    EXPECT_TRUE(readBytes(onServer("one.wav")) == letter);
    EXPECT_FALSE(fs::exists(onServer("notes.txt")));
    EXPECT_TRUE(readBytes(local_.file("moved/one.wav")) == letter);
    EXPECT_FALSE(fs::exists(local_.file("upload/one.wav")));
    EXPECT_TRUE(fs::exists(local_.file("upload/notes.txt")));
    EXPECT_EQ(played_, (std::vector<std::string>{local_.file("complete.wav")}));
    // The run connected by itself and goes away when done.
    EXPECT_FALSE(window_->view().connected);
}

TEST_F(UnattendedRunTest,
       AnEncipheringSiteGetsLettersUnderTheirTransportNameAndNothingTwiceEnciphered) {
    writeBytes(local_.file("upload/letter.wav"), "dictated words");
    writeBytes(local_.file("upload/sent.wav.enc"), "locked before");
    uploadRule("", /*moveAfter=*/false);
    site_.record.set("FTPEncryptOption", "True");
    site_.record.set("FTPEncryptKey", "SITEKEY");

    const RunOutcome outcome = runOnce();
    EXPECT_TRUE(outcome.complete) << window_->view().FTPError;
    const std::string transportName = "letter.wav_Orvane_to_Transc.enc";
    ASSERT_TRUE(fs::exists(onServer(transportName)));
    EXPECT_NE(readBytes(onServer(transportName)), "dictated words");
    // Deciphered with the site's key, it is the letter.
    writeBytes(local_.file("ENC_check.wav"), readBytes(onServer(transportName)));
    const auto plain = crypto::DecryptFile(local_.file("ENC_check.wav"),
                                           crypto::ftpSendingKeyText("SITEKEY"), prompts_);
    ASSERT_FALSE(plain.DecryptFailed);
    EXPECT_EQ(readBytes(plain.outputPath), "dictated words");
    EXPECT_TRUE(fs::exists(local_.file("upload/letter.wav")));
    EXPECT_TRUE(fs::is_empty(site_.ftpTempFolder()));
    // A file enciphered before is told about, even unattended, and goes up as it is.
    EXPECT_EQ(readBytes(onServer("sent.wav.enc")), "locked before");
    ASSERT_FALSE(prompts_.texts().empty());
    EXPECT_EQ(prompts_.texts().front().rfind("sent.wav.enc has already been encrypted.", 0), 0u);
}

TEST_F(UnattendedRunTest, TheDownloadRuleRefusesEmptyFilesDeciphersAndDeletesWhatCameDown) {
    site_.record.set("RECEncryptKey", "THEIRKEY");
    const std::string typed = letterBytes(kChunkBytes + 5);
    putOnServer("typed.doc", typed);
    putOnServer("empty.doc", "");
    // A transcript enciphered for this station by the transcriber.
    writeBytes(local_.file("reply.doc"), "the typed reply");
    const auto enciphered = crypto::EncryptFile(
        local_.file("reply.doc"),
        crypto::ftpReceivingKeyText("THEIRKEY", site_.ourCompany, site_.ourKey), prompts_);
    ASSERT_TRUE(enciphered.ok());
    putOnServer("reply.doc.enc", readBytes(*enciphered));
    downloadRule("*.*", /*deleteAfter=*/true);

    const RunOutcome outcome = runOnce();
    EXPECT_TRUE(outcome.complete) << window_->view().FTPError;
    EXPECT_TRUE(readBytes(local_.file("download/typed.doc")) == typed);
    EXPECT_EQ(readBytes(local_.file("download/reply.doc")), "the typed reply");
    EXPECT_FALSE(fs::exists(local_.file("download/ENC_reply.doc")));
    EXPECT_FALSE(fs::exists(local_.file("download/empty.doc")));
    EXPECT_TRUE(sawStatus("File must not be zero length to download. - File 'NOT' Downloaded"));
    // What came down left the site; the refused empty file did not.
    EXPECT_FALSE(fs::exists(onServer("typed.doc")));
    EXPECT_FALSE(fs::exists(onServer("reply.doc.enc")));
    EXPECT_TRUE(fs::exists(onServer("empty.doc")));
}

TEST_F(UnattendedRunTest, AWrongKeyKeepsTheEncipheredFileAndNothingIsDeletedWithoutTheOption) {
    site_.record.set("RECEncryptKey", "THEIRKEY");
    putOnServer("reply.doc.enc", letterBytes(64));
    downloadRule("", /*deleteAfter=*/false);

    const RunOutcome outcome = runOnce();
    EXPECT_TRUE(readBytes(local_.file("download/ENC_reply.doc")) == letterBytes(64));
    EXPECT_FALSE(fs::exists(local_.file("download/reply.doc")));
    EXPECT_TRUE(fs::exists(onServer("reply.doc.enc")));
    EXPECT_EQ(outcome.downloaded, (std::vector<std::string>{"reply.doc.enc"}));
}

TEST_F(UnattendedRunTest, ARunThatCannotConnectMovesNothingAndSaysWhy) {
    writeBytes(local_.file("upload/one.wav"), "kept");
    uploadRule("", /*moveAfter=*/true);
    auto gone = std::make_unique<ovd::testing::VsftpdServer>();
    site_.record.set("FTPPort", std::to_string(gone->port()));
    gone.reset();

    const RunOutcome outcome = runOnce();
    EXPECT_FALSE(outcome.complete);
    EXPECT_TRUE(fs::exists(local_.file("upload/one.wav")));
    EXPECT_TRUE(fs::is_empty(local_.file("moved")));
    EXPECT_EQ(window_->view().FTPError, "Could not establish connection.");
    EXPECT_EQ(window_->view().status.rfind(
                  "Could not establish connection.\r\nCan NOT Connect to FTP Server", 0),
              0u);
    // Failures of unattended runs are not shown in boxes.
    EXPECT_TRUE(prompts_.transcript().empty());
}

TEST_F(UnattendedRunTest, ACancelledRunSaysUserCanceledAndLeavesTheFileWhereItWas) {
    writeBytes(local_.file("upload/long.wav"), letterBytes(1024 * 1024));
    uploadRule("", /*moveAfter=*/true);

    makeWindow();
    // A slow line keeps the upload going long enough to be cancelled.
    ConnectionSettings slowLine = window_->connection();
    slowLine.maxBytesPerSecond = 256 * 1024;
    window_->setConnection(slowLine);
    UnattendedFtpRun run(*window_, *session_, prompts_, nullptr);
    std::optional<RunOutcome> outcome;
    ASSERT_TRUE(run.start([&](const RunOutcome& ended) { outcome = ended; }));
    EXPECT_FALSE(run.start(nullptr));
    ASSERT_TRUE(runUntil([&] { return window_->view().percent > 0; }));
    run.cancel();
    ASSERT_TRUE(runUntil([&] { return outcome.has_value(); }));
    EXPECT_TRUE(outcome->canceled);
    EXPECT_EQ(window_->view().status, "User canceled");
    EXPECT_TRUE(fs::exists(local_.file("upload/long.wav")));
    EXPECT_TRUE(fs::is_empty(local_.file("moved")));
    EXPECT_FALSE(fs::exists(onServer("long.wav")));
}

}  // namespace
}  // namespace ovd::ftp
