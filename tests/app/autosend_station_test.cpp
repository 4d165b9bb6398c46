// The station and its companion sender as a user runs them: a serial pedal on a
// pty records a letter, end of letter stages it in FTPTemp, orvane-autosend sends
// it to a real server, and FTPTemp is left empty; with the server down the letter
// waits, the peer hears "ERREFTP_", and it goes exactly once when the server is back.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <vector>

#include "delivery/companion_lock.h"
#include "mail/parsed_message.h"
#include "platform/files.h"
#include "settings/email_sites_tables.h"
#include "station_process.h"
#include "support/loopback_peer.h"
#include "support/smtp_test_server.h"
#include "support/sshd_server.h"
#include "support/temp_folder.h"
#include "support/vsftpd_server.h"

namespace ovd {
namespace {

using namespace std::chrono_literals;
namespace fs = std::filesystem;

std::string contentOf(const std::string& path) {
    const auto content = platform::readWholeFile(path);
    return content ? *content : std::string("<none>");
}

std::vector<std::string> namesIn(const std::string& folder) {
    std::vector<std::string> names;
    std::error_code ignored;
    for (const auto& entry : fs::directory_iterator(folder, ignored))
        names.push_back(entry.path().filename().string());
    return names;
}

template <typename Done>
bool within(std::chrono::milliseconds timeout, Done done) {
    const auto until = std::chrono::steady_clock::now() + timeout;
    while (std::chrono::steady_clock::now() < until) {
        if (done()) return true;
        std::this_thread::sleep_for(100ms);
    }
    return done();
}

// Runs the companion program on the data folder; its standard error goes to `errors`.
pid_t startCompanion(const std::vector<std::string>& extra, const std::string& errors) {
    const pid_t pid = ::fork();
    if (pid == 0) {
        const int fd = ::open(errors.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        if (fd >= 0) ::dup2(fd, STDERR_FILENO);
        std::vector<std::string> words{"orvane-autosend"};
        words.insert(words.end(), extra.begin(), extra.end());
        std::vector<char*> argv;
        for (std::string& word : words) argv.push_back(word.data());
        argv.push_back(nullptr);
        ::execv(OVD_AUTOSEND_PROGRAM, argv.data());
        ::_exit(127);
    }
    return pid;
}

int exitStatusOf(pid_t pid) {
    int status = 0;
    if (::waitpid(pid, &status, 0) != pid || !WIFEXITED(status)) return -1;
    return WEXITSTATUS(status);
}

TEST(AutoSendProgramTest, OneCompanionPerDataFolderAndStopEndsItAtOnce) {
    testing::TempFolder data;
    ASSERT_TRUE(
        platform::writeWholeFile(data.file("DigitalRecorder.cfg"),
                                 *platform::readWholeFile(OVD_TEST_ASSETS "/DigitalRecorder.cfg")));
    const pid_t first = startCompanion({"--data-folder", data.path()}, data.file("first.err"));
    ASSERT_TRUE(within(10s, [&] { return delivery::runningCompanion(data.path()).has_value(); }));
    EXPECT_EQ(*delivery::runningCompanion(data.path()), first);

    const pid_t second = startCompanion({"--data-folder", data.path()}, data.file("second.err"));
    EXPECT_EQ(exitStatusOf(second), 0);
    EXPECT_NE(contentOf(data.file("second.err")).find("already runs"), std::string::npos);
    EXPECT_EQ(delivery::runningCompanion(data.path()), first) << "the first one goes on";

    const auto before = std::chrono::steady_clock::now();
    const pid_t stop =
        startCompanion({"--stop", "--data-folder", data.path()}, data.file("stop.err"));
    EXPECT_EQ(exitStatusOf(stop), 0) << contentOf(data.file("stop.err"));
    EXPECT_EQ(exitStatusOf(first), 0);
    EXPECT_LT(std::chrono::steady_clock::now() - before, 3s);
    EXPECT_FALSE(delivery::runningCompanion(data.path()));
    std::string log;
    for (const auto& entry : fs::directory_iterator(data.file("Event Logs")))
        log += contentOf(entry.path().string());
    EXPECT_NE(log.find("orvane-autosend ended on signal 15"), std::string::npos) << log;
}

class AutoSendStationTest : public ::testing::Test {
  protected:
    // FTP on, the peer link on, no destination folders; the default site as given.
    void setUp(const std::string& siteKeys) {
        station.changeSettings([&](settings::SettingsRecord& r) {
            r.CaptureFilePath = recordings;
            r.TCP = true;
            r.TCPIP = "127.0.0.1";
            r.TCPPort = peer.portText();
            r.TCPDelay = 0;
            r.AutoSend1 = r.AutoSend2 = r.AutoSend3 = false;
            r.AutoEmail = false;
            r.AutoFTP = true;
        });
        ASSERT_TRUE(platform::writeWholeFile(station.folder.file("DefaultInfo.ini"),
                                             "[DefaultFTPForCO]\r\n" + siteKeys));
        // A failed send is tried again every two seconds rather than every minute.
        ASSERT_TRUE(platform::writeWholeFile(station.folder.file("AutoSend.ini"),
                                             "[AutoSend]\r\nRescanSeconds=2\r\n"));
    }

    // E-mail on instead of FTP: our company, the default receiver, and the relay
    // on the given port, as the record windows leave them.
    void setUpMail(int relayPort) {
        station.changeSettings([&](settings::SettingsRecord& r) {
            r.AutoFTP = false;
            r.AutoEmail = true;
        });
        ASSERT_TRUE(platform::writeWholeFile(
            station.folder.file("OurCompanyInfo.ini"),
            "[Company]\r\nCompanyName=Northside Clinic\r\nName=Dr. Ann Smith\r\n"
            "Email1=ann@clinic.example\r\n[Key]\r\nEncryptKey=OurKey-2024\r\n"));
        settings::EmailReceiversTable receivers(station.folder.path());
        ASSERT_TRUE(receivers.saveReceiver(
            {"Pool Typing Services", "typist@pool.example", "TypeKey", "PT"}));
        pointMailAt(relayPort);
    }
    void pointMailAt(int relayPort) {
        ASSERT_TRUE(platform::writeWholeFile(
            station.folder.file("DefaultInfo.ini"),
            "[DefaultEmailForCO]\r\nDefaultEmail=ann@clinic.example\r\n"
            "DefaultRecEMail=typist@pool.example\r\nDefaultCameFrom=POPServer1\r\n"
            "ChkRelayMessages=1\r\nDefaultRelayServer=127.0.0.1\r\nDefaultRelayPort=" +
                std::to_string(relayPort) + "\r\nChkEncryptDecrypt=0\r\n"));
    }

    // Records a take with the middle pedal and ends the letter with the right one;
    // the letter's name as the station staged it.
    std::string dictateALetter(const std::string& staging = " File is ready to FTP") {
        const std::size_t from = station.eventLogBytes();
        station.press(testing::kMiddlePedal, 1500ms);
        EXPECT_TRUE(station.logShows("File Stop: ", from)) << station.eventLog();
        station.press(testing::kRightPedal, 300ms);
        EXPECT_TRUE(station.logShows(staging, from)) << station.eventLog();
        const std::string log = station.eventLog();
        const auto end = log.find(staging, from);
        const auto start = log.rfind(' ', end - 1) + 1;
        return log.substr(start, end - start);
    }

    void endStation() {
        station.terminate();
        // The station asks its companion to stop as it ends.
        EXPECT_TRUE(
            within(10s, [&] { return !delivery::runningCompanion(station.folder.path()); }));
    }

    testing::StationProcess station;
    testing::LoopbackPeer peer;
    std::string recordings = station.folder.file("Rec");
    std::string staged = recordings + "/FTPTemp";
};

TEST_F(AutoSendStationTest, ALetterReachesTheFtpServerAndFtpTempIsLeftEmpty) {
    testing::VsftpdServer server;
    ASSERT_TRUE(server.running()) << server.error();
    setUp("FTPServer=127.0.0.1\r\nFTPPort=" + std::to_string(server.port()) +
          "\r\nFTPUserName=anonymous\r\nFTPPassword=x@example.org\r\n"
          "FTPUFLMRemotePath=/incoming\r\n");
    station.start();
    ASSERT_TRUE(station.logShows("Procedure - CASE NEW")) << station.eventLog();
    const std::string letter = dictateALetter();
    ASSERT_FALSE(letter.empty());

    const std::string onServer = server.localPathOf("/incoming/" + letter);
    ASSERT_TRUE(within(30s, [&] { return namesIn(staged).empty() && fs::exists(onServer); }))
        << station.eventLog();
    EXPECT_EQ(contentOf(onServer), contentOf(recordings + "/" + letter));
    EXPECT_TRUE(station.logShows("FTP File " + letter + " Sucessfully Sent")) << station.eventLog();
    endStation();
}

TEST_F(AutoSendStationTest, ALetterGoesEncipheredToAnSftpSiteTheStationTrusts) {
    testing::SshdServer server;
    ASSERT_TRUE(server.running()) << server.error();
    setUp("FTPServer=sftp://127.0.0.1\r\nFTPPort=" + std::to_string(server.port()) +
          "\r\nFTPUserName=root\r\nFTPKeyFile=" + server.clientKeyFile() +
          "\r\nFTPEncryptOption=1\r\nFTPEncryptKey=SiteKey2026\r\n");
    fs::copy_file(server.knownHostsFile(), station.folder.file("sftp_known_hosts"));
    station.start();
    ASSERT_TRUE(station.logShows("Procedure - CASE NEW")) << station.eventLog();
    const std::string letter = dictateALetter();

    const std::string onServer = server.siteRoot() + "/" + letter + ".enc";
    ASSERT_TRUE(within(30s, [&] {
        return namesIn(staged) == std::vector<std::string>{".outgoing"} && fs::exists(onServer);
    })) << station.eventLog();
    // Key and vector: "SiteKey2026" and five zero bytes.
    const std::string hex =
        "536974654b657932303236"
        "0000000000";
    const std::string plain = station.folder.file("deciphered");
    ASSERT_EQ(std::system(("openssl enc -d -aes-128-cbc -K " + hex + " -iv " + hex + " -in '" +
                           onServer + "' -out '" + plain + "'")
                              .c_str()),
              0);
    EXPECT_EQ(contentOf(plain), contentOf(recordings + "/" + letter));
    endStation();
}

TEST_F(AutoSendStationTest, WithTheServerDownTheLetterWaitsThePeerHearsAndItGoesOnceWhenBack) {
    testing::VsftpdServer server;
    ASSERT_TRUE(server.running()) << server.error();
    setUp("FTPServer=127.0.0.1\r\nFTPPort=" + std::to_string(server.port()) +
          "\r\nFTPUserName=anonymous\r\nFTPPassword=x@example.org\r\n"
          "FTPUFLMRemotePath=/incoming\r\n");
    server.stop();
    station.start();
    ASSERT_TRUE(station.logShows("Procedure - CASE NEW")) << station.eventLog();
    const std::string letter = dictateALetter();

    ASSERT_TRUE(within(30s, [&] {
        for (const std::string& message : peer.received())
            if (message == "ERREFTP_" + letter + "\r\n") return true;
        return false;
    })) << station.eventLog();
    EXPECT_TRUE(fs::exists(staged + "/" + letter));
    EXPECT_TRUE(station.logShows("Sending via FTP : " + letter + " - FAILED: "));

    server.restart();
    ASSERT_TRUE(server.running()) << server.error();
    ASSERT_TRUE(within(30s, [&] { return !fs::exists(staged + "/" + letter); }))
        << station.eventLog();
    EXPECT_EQ(namesIn(server.localPathOf("/incoming")), std::vector<std::string>{letter});
    EXPECT_EQ(contentOf(server.localPathOf("/incoming/" + letter)),
              contentOf(recordings + "/" + letter));
    // Several looks later, still the one copy: nothing is sent twice.
    std::this_thread::sleep_for(3s);
    EXPECT_EQ(testing::occurrences(station.eventLog(), "FTP File " + letter + " Sucessfully Sent"),
              1U);
    endStation();
}

// The same letter by e-mail: the companion sends it to the default receiver
// through the relay; with the relay down it waits, the peer hears "ERREMAIL_",
// and the next look after a relay answers delivers exactly one message.
TEST_F(AutoSendStationTest, ALetterReachesTheMailboxOnceTheRelayAnswersAndEmailTempIsLeftEmpty) {
    int deadPort = 0;
    {
        testing::SmtpTestServer gone;
        ASSERT_TRUE(gone.running()) << gone.error();
        deadPort = gone.port();
    }
    setUp("");
    setUpMail(deadPort);
    const std::string mailStaged = recordings + "/EmailTemp";
    station.start();
    ASSERT_TRUE(station.logShows("Procedure - CASE NEW")) << station.eventLog();
    const std::string letter = dictateALetter(" File is ready to Email");
    ASSERT_FALSE(letter.empty());

    ASSERT_TRUE(within(30s, [&] {
        for (const std::string& message : peer.received())
            if (message == "ERREMAIL_" + letter + "\r\n") return true;
        return false;
    })) << station.eventLog();
    EXPECT_TRUE(fs::exists(mailStaged + "/" + letter));

    testing::SmtpTestServer relay;
    ASSERT_TRUE(relay.running()) << relay.error();
    pointMailAt(relay.port());
    ASSERT_TRUE(within(30s, [&] { return !fs::exists(mailStaged + "/" + letter); }))
        << station.eventLog();
    std::this_thread::sleep_for(3s);
    const std::vector<std::string> messages = relay.messages();
    ASSERT_EQ(messages.size(), 1U) << "one message, however many looks";
    const auto received = mail::testing::parseMessageFile(messages[0]);
    EXPECT_EQ(received.at("header.To"), "typist@pool.example");
    EXPECT_EQ(received.at("attachment.0.name"), letter);
    EXPECT_EQ(received.at("attachment.0.sha256"),
              mail::testing::sha256Of(recordings + "/" + letter));
    EXPECT_TRUE(namesIn(mailStaged).empty());
    endStation();
}

}  // namespace
}  // namespace ovd
