// Transfers off the loop's thread: progress and outcome come back on the loop,
// one transfer at a time, and a broken line leaves nothing half-delivered.

#include "ftp/ftp_session.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <thread>
#include <vector>

#include "ftp/curl_ftp_client.h"
#include "ftp/ftp_server_environment.h"
#include "support/real_time_event_loop.h"
#include "support/temp_folder.h"

namespace ovd::ftp {
namespace {

namespace fs = std::filesystem;
using ovd::testing::VsftpdServer;
using Steady = std::chrono::steady_clock;
using std::chrono::milliseconds;

// A line of this many bytes a second: a one-megabyte letter takes four seconds.
constexpr std::uint64_t kSlowLine = 256 * 1024;

ConnectionSettings slowLineTo(const VsftpdServer& server) {
    ConnectionSettings settings;
    settings.hostName = "127.0.0.1";
    settings.port = server.port();
    settings.userName = VsftpdServer::kUser;
    settings.password = VsftpdServer::kPassword;
    settings.maxBytesPerSecond = kSlowLine;
    return settings;
}

std::string letterOf(std::size_t size) {
    std::string bytes(size, '\0');
    for (std::size_t index = 0; index < size; ++index)
        bytes[index] = static_cast<char>(index % 253);
    return bytes;
}

struct Report {
    Steady::time_point when;
    std::uint64_t done;
    std::thread::id thread;
};

class FtpSessionTest : public ::testing::Test {
  protected:
    void connectTo(const VsftpdServer& server) {
        ASSERT_TRUE(server.running()) << server.error();
        auto client = std::make_unique<CurlFtpClient>();
        ASSERT_TRUE(client->connect(slowLineTo(server)).ok());
        ASSERT_TRUE(client->setCurrentDirectory(VsftpdServer::kWritableFolder).ok());
        session_ = std::make_unique<FtpSession>(loop_, std::move(client));
    }

    std::string writeLetter(const std::string& name, std::size_t size) {
        std::ofstream(local_.file(name), std::ios::binary) << letterOf(size);
        return local_.file(name);
    }

    ovd::testing::RealTimeEventLoop loop_;
    ovd::testing::TempFolder local_;
    std::unique_ptr<FtpSession> session_;
    std::vector<Report> reports_;
    std::optional<platform::Result<void>> outcome_;

    ProgressCallback recordProgress() {
        return [this](std::uint64_t done, std::uint64_t) {
            reports_.push_back({Steady::now(), done, std::this_thread::get_id()});
        };
    }
    FtpSession::DoneCallback recordOutcome() {
        return [this](const platform::Result<void>& result) { outcome_ = result; };
    }
};

TEST_F(FtpSessionTest, ASlowUploadReportsOftenOnTheLoopAndRefusesASecondTransfer) {
    connectTo(testing::sharedServer());
    const std::size_t size = kSlowLine * 3 / 2;
    const std::string letter = writeLetter("slow.wav", size);
    ASSERT_TRUE(session_->startUpload(letter, "slow.wav", recordProgress(), recordOutcome()).ok());
    EXPECT_TRUE(session_->busy());
    EXPECT_EQ(session_->client(), nullptr);

    const auto refused =
        session_->startDownload("slow.wav", local_.file("b.wav"), nullptr, recordOutcome());
    EXPECT_EQ(refused.error(), kTransferRunningText);

    ASSERT_TRUE(loop_.runUntil([&] { return outcome_.has_value(); }, milliseconds(20000)));
    ASSERT_TRUE(outcome_->ok()) << outcome_->error();
    EXPECT_FALSE(session_->busy());
    EXPECT_NE(session_->client(), nullptr);
    EXPECT_EQ(fs::file_size(testing::sharedServer().localPathOf("/incoming/slow.wav")), size);

    ASSERT_FALSE(reports_.empty());
    EXPECT_EQ(reports_.back().done, size);
    for (const auto& report : reports_) EXPECT_EQ(report.thread, std::this_thread::get_id());
    // The bar moves at least five times a second all the way.
    for (std::size_t index = 1; index < reports_.size(); ++index) {
        EXPECT_LE(reports_[index].when - reports_[index - 1].when, milliseconds(200))
            << "between reports " << index - 1 << " and " << index;
        EXPECT_GE(reports_[index].done, reports_[index - 1].done);
    }

    // Once the first has ended, the next transfer is taken.
    outcome_.reset();
    ASSERT_TRUE(
        session_->startDownload("slow.wav", local_.file("back.wav"), nullptr, recordOutcome())
            .ok());
    ASSERT_TRUE(loop_.runUntil([&] { return outcome_.has_value(); }, milliseconds(20000)));
    EXPECT_TRUE(outcome_->ok()) << outcome_->error();
    EXPECT_EQ(fs::file_size(local_.file("back.wav")), size);
}

TEST_F(FtpSessionTest, AServerKilledMidUploadLeavesNothingUnderTheFinalName) {
    VsftpdServer server;
    connectTo(server);
    const std::size_t size = kSlowLine * 4;
    const std::string letter = writeLetter("letter.wav", size);
    ASSERT_TRUE(
        session_->startUpload(letter, "letter.wav", recordProgress(), recordOutcome()).ok());
    ASSERT_TRUE(
        loop_.runUntil([&] { return !reports_.empty() && reports_.back().done > kSlowLine; },
                       milliseconds(10000)));
    server.stop();
    ASSERT_TRUE(loop_.runUntil([&] { return outcome_.has_value(); }, milliseconds(40000)));

    ASSERT_FALSE(outcome_->ok());
    EXPECT_EQ(outcome_->error().rfind("InternetWriteFile error code: ", 0), 0U)
        << outcome_->error();
    EXPECT_FALSE(fs::exists(server.localPathOf("/incoming/letter.wav")));
    // The letter is still here, whole, to be sent again.
    EXPECT_EQ(fs::file_size(letter), size);
}

TEST_F(FtpSessionTest, AServerKilledMidDownloadLeavesNoLetterUnderItsName) {
    VsftpdServer server({.maxBytesPerSecond = kSlowLine});
    connectTo(server);
    const std::size_t size = kSlowLine * 16;
    std::ofstream(server.localPathOf("/incoming/letter.wav"), std::ios::binary) << letterOf(size);
    const std::string local = local_.file("letter.wav");
    ASSERT_TRUE(
        session_->startDownload("letter.wav", local, recordProgress(), recordOutcome()).ok());
    ASSERT_TRUE(
        loop_.runUntil([&] { return !reports_.empty() && reports_.back().done > kSlowLine; },
                       milliseconds(10000)));
    server.stop();
    ASSERT_TRUE(loop_.runUntil([&] { return outcome_.has_value(); }, milliseconds(40000)));

    ASSERT_FALSE(outcome_->ok());
    EXPECT_EQ(outcome_->error().rfind("InternetReadFile error code: ", 0), 0U) << outcome_->error();
    EXPECT_FALSE(fs::exists(local));
}

TEST_F(FtpSessionTest, EndingTheSessionMidTransferCancelsItAndReportsNothingMore) {
    connectTo(testing::sharedServer());
    const std::string letter = writeLetter("long.wav", kSlowLine * 8);
    ASSERT_TRUE(session_->startUpload(letter, "long.wav", recordProgress(), recordOutcome()).ok());
    ASSERT_TRUE(loop_.runUntil([&] { return !reports_.empty(); }, milliseconds(10000)));
    const auto before = Steady::now();
    session_.reset();
    EXPECT_LT(Steady::now() - before, milliseconds(2000));
    const std::size_t reported = reports_.size();
    loop_.runFor(milliseconds(300));
    EXPECT_EQ(reports_.size(), reported);
    EXPECT_FALSE(outcome_.has_value());
    EXPECT_FALSE(fs::exists(testing::sharedServer().localPathOf("/incoming/long.wav")));
}

TEST_F(FtpSessionTest, ACancelStopsTheTransferEvenRightAfterItsStart) {
    connectTo(testing::sharedServer());
    const std::string letter = writeLetter("cancelled.wav", kSlowLine * 8);
    ASSERT_TRUE(session_->startQuietUpload(letter, "cancelled.wav", recordOutcome()).ok());
    session_->cancel();
    ASSERT_TRUE(loop_.runUntil([&] { return outcome_.has_value(); }, milliseconds(3000)));
    EXPECT_FALSE(outcome_->ok());
    EXPECT_FALSE(fs::exists(testing::sharedServer().localPathOf("/incoming/cancelled.wav")));

    // The next transfer is not stopped by the last one's cancel.
    outcome_.reset();
    ASSERT_TRUE(
        session_->startQuietUpload(writeLetter("short.wav", 1000), "short.wav", recordOutcome())
            .ok());
    ASSERT_TRUE(loop_.runUntil([&] { return outcome_.has_value(); }, milliseconds(5000)));
    EXPECT_TRUE(outcome_->ok()) << outcome_->error();
}

}  // namespace
}  // namespace ovd::ftp
