// The schedule counts minutes on the loop's clock: a run comes after the set
// minutes, never over a run or a transfer that is still going, and a scheduled run
// really moves the files of the rules.

#include "ftp/ftp_schedule.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <thread>

#include "ftp/curl_ftp_client.h"
#include "ftp/ftp_server_environment.h"
#include "ftp/unattended_run.h"
#include "ftp_window_fixture.h"
#include "support/scripted_prompts.h"
#include "support/temp_folder.h"
#include "support/virtual_event_loop.h"

namespace ovd::ftp {
namespace {

using std::chrono::minutes;
using std::chrono::seconds;

TEST(FtpScheduleTest, RunsAfterTheSetMinutesAndNeverOverARunningTransfer) {
    ovd::testing::VirtualEventLoop loop;
    int runs = 0;
    std::function<void()> endRun;
    FtpSchedule schedule(loop, [&](std::function<void()> ended) {
        ++runs;
        endRun = std::move(ended);
    });
    schedule.arm(3);
    loop.advance(minutes(3) - seconds(1));
    EXPECT_EQ(runs, 0);
    loop.advance(seconds(1));
    EXPECT_EQ(runs, 1);

    // A run that goes on for a quarter of an hour is not joined by another.
    loop.advance(minutes(15));
    EXPECT_EQ(runs, 1);
    endRun();
    loop.advance(minutes(3));
    EXPECT_EQ(runs, 2);
    endRun();

    // A transfer by hand holds the count; afterwards it starts where it was.
    loop.advance(minutes(1));
    schedule.hold();
    loop.advance(minutes(10));
    EXPECT_EQ(runs, 2);
    schedule.release();
    loop.advance(minutes(2));
    EXPECT_EQ(runs, 3);
    endRun();

    schedule.disarm();
    loop.advance(minutes(30));
    EXPECT_EQ(runs, 3);
    // A schedule of no minutes runs every minute rather than all the time.
    schedule.arm(0);
    loop.advance(minutes(1));
    EXPECT_EQ(runs, 4);
}

TEST(FtpScheduleTest, AScheduledRunUploadsByRuleAfterItsMinutesOfVirtualTime) {
    auto& server = testing::sharedServer();
    ASSERT_TRUE(server.running()) << server.error();
    const std::string remote = std::string(ovd::testing::VsftpdServer::kWritableFolder) + "/sched";
    {
        CurlFtpClient client;
        ConnectionSettings settings;
        settings.hostName = "127.0.0.1";
        settings.port = server.port();
        settings.userName = ovd::testing::VsftpdServer::kUser;
        settings.password = ovd::testing::VsftpdServer::kPassword;
        ASSERT_TRUE(client.connect(settings).ok());
        ASSERT_TRUE(client.createDirectory(remote).ok());
    }
    ovd::testing::TempFolder local;
    std::filesystem::create_directory(local.file("out"));
    testing::writeBytes(local.file("out/letter.wav"), "scheduled letter");

    SiteContext site;
    site.record.set("CompanyName", "Transcribe Right");
    site.record.set("FTPServer", "127.0.0.1");
    site.record.set("FTPPort", std::to_string(server.port()));
    site.record.set("FTPUserName", ovd::testing::VsftpdServer::kUser);
    site.record.set("FTPPassword", ovd::testing::VsftpdServer::kPassword);
    site.record.set("FTPUFLMOption", "True");
    site.record.set("FTPUFLMUploadFrom", local.file("out"));
    site.record.set("FTPUFLMRemotePath", remote);
    site.dataFolder = local.path();

    ovd::testing::VirtualEventLoop loop;
    ovd::testing::ScriptedPrompts prompts;
    FtpSession session(loop, std::make_unique<CurlFtpClient>());
    FtpSiteWindow window(loop, prompts, session, site);
    UnattendedFtpRun run(window, session, prompts, nullptr);
    int finished = 0;
    FtpSchedule schedule(loop, [&](std::function<void()> ended) {
        run.start([&finished, ended](const RunOutcome&) {
            ++finished;
            ended();
        });
    });
    schedule.arm(5);
    loop.advance(minutes(4));
    EXPECT_FALSE(run.running());
    loop.advance(minutes(1));
    EXPECT_TRUE(run.running());
    // The transfer itself runs in real time on its own thread.
    const auto deadline = std::chrono::steady_clock::now() + seconds(20);
    while (finished == 0 && std::chrono::steady_clock::now() < deadline) {
        loop.runPending();
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    ASSERT_EQ(finished, 1) << window.view().status;
    EXPECT_EQ(testing::readBytes(server.localPathOf(remote + "/letter.wav")), "scheduled letter");
    EXPECT_FALSE(window.view().connected);
    EXPECT_TRUE(schedule.armed());
}

}  // namespace
}  // namespace ovd::ftp
