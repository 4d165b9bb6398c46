// The companion sender against a real FTP server: what it sends, when, and what
// it leaves behind when a send fails.

#include "autosend/companion.h"

#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <thread>

#include "autosend/companion_fixture.h"
#include "autosend/shared_servers.h"
#include "support/vsftpd_server.h"

namespace ovd::autosend::testing {
namespace {

namespace fs = std::filesystem;
using ovd::testing::VsftpdServer;

class CompanionTest : public CompanionFixture {
  protected:
    CompanionTest() { useSite(server().port()); }
    static VsftpdServer& server() { return sharedFtpServer(); }
    static std::string onServer(const std::string& name) {
        return server().localPathOf(std::string("/incoming/") + name);
    }
    void TearDown() override {
        std::error_code ignored;
        for (const auto& entry : fs::directory_iterator(onServer(""), ignored))
            fs::remove(entry.path(), ignored);
    }
};

TEST_F(CompanionTest, SendsEveryStagedFileOfTheFolderTreeAndDeletesItOnceSent) {
    ASSERT_TRUE(server().running()) << server().error();
    const std::string first = letterBytes(200'000, 'a');
    const std::string second = letterBytes(65'536, 'b');
    const std::string firstPath = stage("AB0001.WAV", first);
    const std::string secondPath = stage("Smith Co/AB0002.WAV", second);
    const std::string ours = stage(".AB0003.WAV.part", "not a letter");

    startCompanion();
    ASSERT_TRUE(runUntil(
        [&] { return !platform::fileExists(firstPath) && !platform::fileExists(secondPath); }));
    EXPECT_EQ(contentOf(onServer("AB0001.WAV")), first);
    EXPECT_EQ(contentOf(onServer("AB0002.WAV")), second);
    EXPECT_TRUE(platform::fileExists(ours)) << "a dot name is nobody's letter";
    EXPECT_TRUE(logHas("Sending via FTP : AB0001.WAV"));
    EXPECT_TRUE(logHas("FTP File AB0002.WAV Sucessfully Sent"));
    EXPECT_TRUE(peer.received().empty()) << "a clean send tells the peer nothing";

    // A letter staged while the companion waits goes at once, not at the next rescan.
    const std::string third = letterBytes(1000, 'c');
    const std::string thirdPath = stage("AB0004.WAV", third);
    ASSERT_TRUE(runUntil([&] { return !platform::fileExists(thirdPath); }, 10s));
    EXPECT_EQ(contentOf(onServer("AB0004.WAV")), third);
}

TEST_F(CompanionTest, AFileStillBeingWrittenIsNotSentUntilItIsWhole) {
    const std::string whole = letterBytes(40'000, 'w');
    const std::string path = staging() + "/AB0005.WAV";
    ASSERT_TRUE(platform::createFolder(staging()));
    startCompanion();
    {
        std::ofstream out(path, std::ios::binary);
        for (std::size_t at = 0; at < whole.size(); at += 4000) {
            out.write(whole.data() + at, 4000);
            out.flush();
            loop.runFor(100ms);
            EXPECT_FALSE(platform::fileExists(onServer("AB0005.WAV"))) << "sent after " << at;
        }
    }
    ASSERT_TRUE(runUntil([&] { return !platform::fileExists(path); }));
    EXPECT_EQ(contentOf(onServer("AB0005.WAV")), whole);
}

TEST_F(CompanionTest, ASiteThatWantsFilesEncipheredGetsTheEncipheredLetter) {
    useSite(server().port(), "FTPEncryptOption", "1");
    ASSERT_TRUE(
        records.defaults().WriteKey(settings::kDefaultFtpSection, "FTPEncryptKey", "K3yOfTheSite"));
    const std::string letter = letterBytes(100'001, 'e');
    const std::string path = stage("AB0006.WAV", letter);
    startCompanion();
    ASSERT_TRUE(runUntil([&] { return !platform::fileExists(path); }));
    const std::string sent = onServer("AB0006.WAV.enc");
    ASSERT_TRUE(platform::fileExists(sent));
    EXPECT_FALSE(platform::fileExists(onServer("AB0006.WAV")));
    // Key and vector: the key text's first 16 bytes, zero-padded.
    const std::string hex =
        "4b33794f6654686553697465"
        "00000000";
    const std::string plain = folder.file("deciphered");
    const std::string command = "openssl enc -d -aes-128-cbc -K " + hex + " -iv " + hex + " -in '" +
                                sent + "' -out '" + plain + "'";
    ASSERT_EQ(std::system(command.c_str()), 0);
    EXPECT_EQ(contentOf(plain), letter);
    EXPECT_TRUE(stagedFilesIn(staging() + "/" + kWorkFolder).empty());
}

TEST_F(CompanionTest, AFailedSendLeavesTheFileStagedAndTellsThePeerAndThePopUp) {
    useSite(ovd::testing::unusedLoopbackPort());
    const std::string path = stage("AB0007.WAV", letterBytes(5000, 'f'));
    startCompanion();
    std::vector<std::string> messages;
    ASSERT_TRUE(runUntil([&] { return !(messages = peer.received()).empty(); }));
    ASSERT_EQ(messages.size(), 1U);
    EXPECT_EQ(messages[0], "ERREFTP_AB0007.WAV\r\n");
    ASSERT_TRUE(runUntil([&] { return !companion->sending(); }));
    EXPECT_TRUE(platform::fileExists(path));
    EXPECT_TRUE(logHas("Sending via FTP : AB0007.WAV - FAILED: Could not establish connection."));
    bool popUp = false;
    for (const auto& shown : prompts.transcript()) {
        popUp |= shown.kind == "notice" &&
                 shown.text.find("Sending via FTP - FAILED: Could not establish connection.") !=
                     std::string::npos;
    }
    EXPECT_TRUE(popUp);
}

TEST_F(CompanionTest, AnUploadCutOffMidwayIsSentWholeOnceAndOnlyOnceTheServerIsBack) {
    VsftpdServer slow({.maxBytesPerSecond = 256 * 1024});
    ASSERT_TRUE(slow.running()) << slow.error();
    useSite(slow.port());
    const std::string letter = letterBytes(768 * 1024, 's');
    const std::string path = stage("AB0008.WAV", letter);
    const std::string partial = slow.localPathOf("/incoming/.AB0008.WAV.part");
    startCompanion({}, 1s);
    ASSERT_TRUE(runUntil([&] {
        const auto size = platform::fileSize(partial);
        return size && *size > 0;
    }));
    slow.stop();
    ASSERT_TRUE(runUntil([&] { return logHas("Sending via FTP : AB0008.WAV - FAILED"); }, 60s));
    EXPECT_TRUE(platform::fileExists(path));
    EXPECT_FALSE(platform::fileExists(slow.localPathOf("/incoming/AB0008.WAV")));

    slow.restart();
    ASSERT_TRUE(slow.running()) << slow.error();
    ASSERT_TRUE(runUntil([&] { return !platform::fileExists(path); }, 30s));
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(slow.localPathOf("/incoming")))
        names.push_back(entry.path().filename().string());
    EXPECT_EQ(names, std::vector<std::string>{"AB0008.WAV"});
    EXPECT_EQ(contentOf(slow.localPathOf("/incoming/AB0008.WAV")), letter);
}

TEST_F(CompanionTest, StoppingDuringAnUploadEndsItAtOnceAndLeavesTheLetterStaged) {
    VsftpdServer slow({.maxBytesPerSecond = 128 * 1024});
    ASSERT_TRUE(slow.running()) << slow.error();
    useSite(slow.port());
    const std::string path = stage("AB0010.WAV", letterBytes(1024 * 1024, 't'));
    startCompanion();
    ASSERT_TRUE(runUntil([&] {
        const auto size = platform::fileSize(slow.localPathOf("/incoming/.AB0010.WAV.part"));
        return size && *size > 0;
    }));
    const auto before = std::chrono::steady_clock::now();
    companion->stop();
    // The server still drains seconds of data it was sent; the stop does not wait for it.
    EXPECT_LT(std::chrono::steady_clock::now() - before, 3s);
    EXPECT_TRUE(platform::fileExists(path));
    EXPECT_FALSE(platform::fileExists(slow.localPathOf("/incoming/AB0010.WAV")));
    EXPECT_TRUE(logHas("stopped during a transfer; the file stays staged"));
}

TEST_F(CompanionTest, StagedMailGoesThroughTheMailSenderOrWaitsForOne) {
    changeSettings([](settings::SettingsRecord& record) {
        record.AutoFTP = false;
        record.AutoEmail = true;
    });
    const std::string path = stage("AB0009.WAV", "letter", "EmailTemp");
    startCompanion();
    ASSERT_TRUE(runUntil([&] { return logHas(kEmailNotAvailable); }));
    EXPECT_TRUE(platform::fileExists(path));
    companion.reset();

    std::vector<std::string> handed;
    startCompanion(
        [&handed](const std::string& staged) -> platform::Result<void> {
            handed.push_back(staged);
            if (handed.size() == 1) return platform::failure("Relay refused");
            return {};
        },
        1s);
    std::vector<std::string> messages;
    ASSERT_TRUE(runUntil([&] { return !(messages = peer.received()).empty(); }));
    EXPECT_EQ(messages, std::vector<std::string>{"ERREMAIL_AB0009.WAV\r\n"});
    EXPECT_TRUE(logHas("Sending via Email ERROR: Relay refused FAILED--"));
    ASSERT_TRUE(runUntil([&] { return !platform::fileExists(path); }));
    EXPECT_EQ(handed, std::vector<std::string>(2, path));
    EXPECT_TRUE(logHas("Email File AB0009.WAV Sucessfully Sent"));
}

// An e-mail goes out beside the loop: a stop asked for while the relay takes its
// time is heard at once, cuts the send short, and the letter stays staged.
TEST_F(CompanionTest, StoppingDuringAnEmailEndsItAtOnceAndLeavesTheLetterStaged) {
    changeSettings([](settings::SettingsRecord& record) {
        record.AutoFTP = false;
        record.AutoEmail = true;
    });
    const std::string path = stage("AB0010.WAV", "letter", "EmailTemp");
    std::atomic<bool> started{false};
    std::atomic<bool> cancelled{false};
    startCompanion(
        [&](const std::string&) -> platform::Result<void> {
            started = true;
            const auto until = std::chrono::steady_clock::now() + 20s;
            while (!cancelled && std::chrono::steady_clock::now() < until)
                std::this_thread::sleep_for(10ms);
            return platform::failure("cut short");
        },
        60s, [&cancelled] { cancelled = true; });
    ASSERT_TRUE(runUntil([&] { return started.load(); }));
    EXPECT_TRUE(companion->sending()) << "the loop runs on while the e-mail goes out";

    const auto before = std::chrono::steady_clock::now();
    companion.reset();
    EXPECT_LT(std::chrono::steady_clock::now() - before, 2s);
    EXPECT_TRUE(cancelled);
    EXPECT_TRUE(platform::fileExists(path));
}

}  // namespace
}  // namespace ovd::autosend::testing
