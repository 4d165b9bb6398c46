// The SFTP client against a private sshd: the operations the FTP client has, the
// host key check with its first-use confirmation, and a login that is refused.

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>

#include "ftp/client_for_site.h"
#include "ftp/curl_sftp_client.h"
#include "ftp/ftp_session.h"
#include "ftp/sftp_host_keys.h"
#include "ftp/site_window.h"
#include "platform/files.h"
#include "support/real_time_event_loop.h"
#include "support/scripted_prompts.h"
#include "support/sshd_server.h"
#include "support/temp_folder.h"

namespace ovd::ftp {
namespace {

namespace fs = std::filesystem;
using ovd::testing::SshdServer;
using ovd::testing::TempFolder;

// One sshd for every test of the program, started with the first that needs it.
SshdServer& server() {
    static const std::unique_ptr<SshdServer> shared = std::make_unique<SshdServer>();
    return *shared;
}

std::string bytesOf(std::size_t size, char seed) {
    std::string bytes(size, '\0');
    for (std::size_t i = 0; i < size; ++i) bytes[i] = static_cast<char>(seed + (i * 13) % 241);
    return bytes;
}

std::string contentOf(const std::string& path) {
    const auto content = platform::readWholeFile(path);
    return content ? *content : std::string("<none>");
}

class SftpClientTest : public ::testing::Test {
  protected:
    void SetUp() override { ASSERT_TRUE(server().running()) << server().error(); }
    void TearDown() override {
        std::error_code ignored;
        for (const auto& entry : fs::directory_iterator(server().siteRoot(), ignored))
            fs::remove_all(entry.path(), ignored);
    }
    ConnectionSettings settings(const std::string& knownHosts) const {
        ConnectionSettings s;
        s.hostName = "127.0.0.1";
        s.port = server().port();
        s.security = Security::Sftp;
        s.userName = SshdServer::kUser;
        s.privateKeyFile = server().clientKeyFile();
        s.knownHostsFile = knownHosts;
        return s;
    }
    TempFolder local;
};

TEST_F(SftpClientTest, MovesRenamesAndDeletesFilesLikeTheFtpClient) {
    CurlSftpClient client;
    auto connected = client.connect(settings(server().knownHostsFile()));
    ASSERT_TRUE(connected) << connected.error() << server().log();
    EXPECT_EQ(client.currentDirectory(), fs::canonical(server().siteRoot()).string());

    const std::string letter = bytesOf(300'007, 'a');
    ASSERT_TRUE(platform::writeWholeFile(local.file("up.wav"), letter));
    std::uint64_t lastReport = 0;
    auto sent =
        client.upload(local.file("up.wav"), "Dr Smith 01.wav",
                      [&lastReport](std::uint64_t done, std::uint64_t) { lastReport = done; });
    ASSERT_TRUE(sent) << sent.error();
    EXPECT_EQ(lastReport, letter.size());
    EXPECT_EQ(contentOf(server().siteRoot() + "/Dr Smith 01.wav"), letter);

    // Sent again (its first end never heard): the server still holds one whole copy.
    const std::string second = bytesOf(1000, 'z');
    ASSERT_TRUE(platform::writeWholeFile(local.file("up.wav"), second));
    ASSERT_TRUE(client.upload(local.file("up.wav"), "Dr Smith 01.wav", {}));
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(server().siteRoot()))
        names.push_back(entry.path().filename().string());
    EXPECT_EQ(names, std::vector<std::string>{"Dr Smith 01.wav"});

    const auto listed = client.list("*.wav");
    ASSERT_TRUE(listed) << listed.error();
    ASSERT_EQ(listed->size(), 1U);
    EXPECT_EQ((*listed)[0].name, "Dr Smith 01.wav");
    EXPECT_EQ((*listed)[0].size, second.size());
    const auto size = client.remoteSize("Dr Smith 01.wav");
    ASSERT_TRUE(size) << size.error();
    EXPECT_EQ(*size, second.size());

    ASSERT_TRUE(client.download("Dr Smith 01.wav", local.file("down.wav"), {}));
    EXPECT_EQ(contentOf(local.file("down.wav")), second);

    ASSERT_TRUE(client.createDirectory("Done"));
    ASSERT_TRUE(client.rename("Dr Smith 01.wav", "Done/01.wav"));
    EXPECT_TRUE(fs::exists(server().siteRoot() + "/Done/01.wav"));
    ASSERT_TRUE(client.setCurrentDirectory("Done"));
    ASSERT_TRUE(client.deleteFile("01.wav"));
    ASSERT_TRUE(client.setCurrentDirectory(".."));
    ASSERT_TRUE(client.removeDirectory("Done"));
    EXPECT_FALSE(fs::exists(server().siteRoot() + "/Done"));

    const auto missing = client.deleteFile("nothing.wav");
    ASSERT_FALSE(missing);
    EXPECT_EQ(missing.error().rfind(kDeleteError, 0), 0U) << missing.error();
}

TEST_F(SftpClientTest, AnUnknownOrChangedHostKeyIsRefusedUntilTheUserTrustsIt) {
    const std::string knownHosts = local.file("sftp_known_hosts");
    CurlSftpClient client;
    const auto unknown = client.connect(settings(knownHosts));
    ASSERT_FALSE(unknown);
    EXPECT_EQ(unknown.error().rfind(kConnectError, 0), 0U) << unknown.error();

    // The fingerprint in the refusal is the one ssh-keygen gives for the server's key.
    const auto offered = offeredHostKey(settings(knownHosts));
    ASSERT_TRUE(offered) << offered.error();
    EXPECT_EQ(offered->type + " " + offered->base64, server().hostKeyLine());
    ASSERT_TRUE(platform::writeWholeFile(local.file("host.pub"), server().hostKeyLine() + "\n"));
    ASSERT_EQ(std::system(("ssh-keygen -lf '" + local.file("host.pub") + "' > '" +
                           local.file("fingerprint") + "'")
                              .c_str()),
              0);
    EXPECT_NE(contentOf(local.file("fingerprint")).find(offered->fingerprint + " "),
              std::string::npos);
    EXPECT_NE(unknown.error().find("not known yet: " + offered->type + " " + offered->fingerprint),
              std::string::npos)
        << unknown.error();

    ASSERT_TRUE(trustHostKey(knownHosts, "127.0.0.1", server().port(), *offered));
    const auto trusted = client.connect(settings(knownHosts));
    EXPECT_TRUE(trusted) << trusted.error();

    // Another key under the server's name: someone else answers there now.
    TempFolder other;
    ASSERT_EQ(std::system(("ssh-keygen -q -t ed25519 -N '' -f '" + other.file("k") + "'").c_str()),
              0);
    HostKey impostor = *offered;
    {
        const std::string line = contentOf(other.file("k.pub"));
        impostor.base64 = line.substr(line.find(' ') + 1, line.rfind(' ') - line.find(' ') - 1);
    }
    const std::string changedHosts = local.file("changed_known_hosts");
    ASSERT_TRUE(trustHostKey(changedHosts, "127.0.0.1", server().port(), impostor));
    const auto changed = client.connect(settings(changedHosts));
    ASSERT_FALSE(changed);
    EXPECT_NE(changed.error().find("has CHANGED"), std::string::npos) << changed.error();
}

TEST_F(SftpClientTest, AKeyTheServerDoesNotKnowIsRefusedAtTheLogin) {
    TempFolder other;
    ASSERT_EQ(
        std::system(
            ("ssh-keygen -q -t ecdsa -b 256 -m PEM -N '' -f '" + other.file("k") + "'").c_str()),
        0);
    ConnectionSettings s = settings(server().knownHostsFile());
    s.privateKeyFile = other.file("k");
    CurlSftpClient client;
    const auto refused = client.connect(s);
    ASSERT_FALSE(refused);
    EXPECT_NE(refused.error().find("error code: 67"), std::string::npos) << refused.error();
}

// The window asks once about a server it does not know, showing the key's
// fingerprint: No leaves it untrusted and unconnected, Yes trusts it and connects.
TEST_F(SftpClientTest, TheWindowAsksOnceAboutAnUnknownServerAndAYesConnects) {
    ovd::testing::RealTimeEventLoop loop;
    ovd::testing::ScriptedPrompts prompts;
    FtpSession session(loop, std::make_unique<AnySiteClient>());
    SiteContext site;
    site.record.set("CompanyName", "Transcribe Right");
    site.record.set("FTPServer", "sftp://127.0.0.1");
    site.record.set("FTPPort", std::to_string(server().port()));
    site.record.set("FTPUserName", SshdServer::kUser);
    site.record.set("FTPKeyFile", server().clientKeyFile());
    site.dataFolder = local.path();
    site.programFolder = local.path();
    FtpSiteWindow window(loop, prompts, session, site);
    const std::string knownHosts = local.file(kKnownHostsFileName);
    const auto connect = [&] {
        bool finished = false;
        bool connected = false;
        window.connect([&](bool ok) {
            finished = true;
            connected = ok;
        });
        EXPECT_TRUE(loop.runUntil([&] { return finished; }, std::chrono::seconds(20)));
        return connected;
    };

    prompts.answerNext(platform::Answer::No);
    EXPECT_FALSE(connect());
    ASSERT_EQ(prompts.texts().size(), 1u);
    EXPECT_NE(prompts.texts()[0].find("SHA256:"), std::string::npos) << prompts.texts()[0];
    EXPECT_FALSE(platform::fileExists(knownHosts)) << "nothing trusted on a No";

    prompts.clear();
    prompts.answerNext(platform::Answer::Yes);
    EXPECT_TRUE(connect()) << window.view().status;
    EXPECT_EQ(prompts.texts().size(), 1u);
    EXPECT_NE(contentOf(knownHosts).find(server().hostKeyLine()), std::string::npos)
        << contentOf(knownHosts);

    window.disconnect();
    prompts.clear();
    EXPECT_TRUE(connect()) << "a trusted server is not asked about again";
    EXPECT_TRUE(prompts.texts().empty());
}

}  // namespace
}  // namespace ovd::ftp
