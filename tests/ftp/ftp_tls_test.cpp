// A site over explicit TLS: files move only when the server's certificate is
// the one trusted, and a plain login to it is turned away.

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "ftp/curl_ftp_client.h"
#include "support/temp_folder.h"
#include "support/vsftpd_server.h"

namespace ovd::ftp {
namespace {

namespace fs = std::filesystem;
using ovd::testing::VsftpdServer;

class FtpTlsTest : public ::testing::Test {
  protected:
    static void SetUpTestSuite() { server_ = new VsftpdServer({.explicitTls = true}); }
    static void TearDownTestSuite() {
        delete server_;
        server_ = nullptr;
    }
    void SetUp() override { ASSERT_TRUE(server_->running()) << server_->error(); }

    static ConnectionSettings tlsSettings() {
        ConnectionSettings settings;
        settings.hostName = "127.0.0.1";
        settings.port = server_->port();
        settings.userName = VsftpdServer::kUser;
        settings.password = VsftpdServer::kPassword;
        settings.security = Security::ExplicitTls;
        settings.pinnedCertificateFile = server_->certificateFile();
        return settings;
    }

    static VsftpdServer* server_;
    ovd::testing::TempFolder local_;
};

VsftpdServer* FtpTlsTest::server_ = nullptr;

TEST_F(FtpTlsTest, MovesFilesWhenThePinnedCertificateIsTheServers) {
    // Passive only: active mode over TLS fails inside libcurl 7.87-7.88 (its
    // active-FTPS regression), the version Debian bookworm ships.
    {
        CurlFtpClient client;
        const auto settings = tlsSettings();
        const auto connected = client.connect(settings);
        ASSERT_TRUE(connected.ok()) << connected.error();
        ASSERT_TRUE(client.setCurrentDirectory(VsftpdServer::kWritableFolder).ok());

        const std::string letter(3 * kChunkBytes + 17, 'x');
        std::ofstream(local_.file("up.wav"), std::ios::binary) << letter;
        const auto sent = client.upload(local_.file("up.wav"), "secure letter.wav", nullptr);
        ASSERT_TRUE(sent.ok()) << sent.error();
        EXPECT_EQ(fs::file_size(server_->localPathOf("/incoming/secure letter.wav")),
                  letter.size());

        const auto listed = client.list("*.wav");
        ASSERT_TRUE(listed.ok()) << listed.error();
        ASSERT_EQ(listed->size(), 1U);
        EXPECT_EQ(listed->front().size, letter.size());

        ASSERT_TRUE(client.download("secure letter.wav", local_.file("down.wav"), nullptr).ok());
        std::ifstream back(local_.file("down.wav"), std::ios::binary);
        std::ostringstream content;
        content << back.rdbuf();
        EXPECT_EQ(content.str(), letter);
        ASSERT_TRUE(client.deleteFile("secure letter.wav").ok());
    }
}

TEST_F(FtpTlsTest, AServerThatCannotBeTrustedOrAPlainLoginIsRefused) {
    // No pin: the server's own certificate is signed by no authority the system knows.
    auto settings = tlsSettings();
    settings.pinnedCertificateFile.clear();
    CurlFtpClient client;
    const auto unknown = client.connect(settings);
    EXPECT_EQ(unknown.error().rfind("Can NOT Connect to FTP Server error code: 60", 0), 0U)
        << unknown.error();

    // A certificate that changed: the pinned one is not the server's any more.
    const std::string other = local_.file("other.pem");
    const std::string command =
        "openssl req -x509 -newkey rsa:2048 -nodes -days 2 -subj /CN=127.0.0.1"
        " -addext subjectAltName=IP:127.0.0.1 -keyout '" +
        local_.file("other.key") + "' -out '" + other + "' >/dev/null 2>&1";
    ASSERT_EQ(std::system(command.c_str()), 0);
    settings.pinnedCertificateFile = other;
    const auto changed = client.connect(settings);
    EXPECT_EQ(changed.error().rfind("Can NOT Connect to FTP Server error code: 60", 0), 0U)
        << changed.error();
    EXPECT_FALSE(client.connected());

    settings = tlsSettings();
    settings.security = Security::Plain;
    const auto plain = client.connect(settings);
    EXPECT_EQ(plain.error().rfind("Can NOT Connect to FTP Server error code: 67", 0), 0U)
        << plain.error();
    EXPECT_NE(plain.error().find("Server: 530"), std::string::npos) << plain.error();
}

}  // namespace
}  // namespace ovd::ftp
