#pragma once
// A site of the FTP windows on the shared vsftpd: a transcriber record pointing at
// a folder of the test's own on the server, local folders, the loop and the boxes.

#include <gtest/gtest.h>

#include <fstream>
#include <memory>
#include <sstream>
#include <string>

#include "ftp/curl_ftp_client.h"
#include "ftp/ftp_server_environment.h"
#include "ftp/ftp_session.h"
#include "ftp/site_window.h"
#include "support/real_time_event_loop.h"
#include "support/scripted_prompts.h"
#include "support/temp_folder.h"

namespace ovd::ftp::testing {

inline std::string readBytes(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream content;
    content << file.rdbuf();
    return content.str();
}

inline void writeBytes(const std::string& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

inline std::string letterBytes(std::size_t size) {
    std::string bytes(size, '\0');
    for (std::size_t index = 0; index < size; ++index) {
        bytes[index] = static_cast<char>((index * 13 + index / 97) & 0xff);
    }
    return bytes;
}

class FtpWindowFixture : public ::testing::Test {
  protected:
    void SetUp() override {
        ASSERT_TRUE(server().running()) << server().error();
        remoteFolder_ = std::string(ovd::testing::VsftpdServer::kWritableFolder) + "/" +
                        ::testing::UnitTest::GetInstance()->current_test_info()->name();
        CurlFtpClient client;
        ASSERT_TRUE(client.connect(siteSettings()).ok());
        ASSERT_TRUE(client.createDirectory(remoteFolder_).ok());
        site_.record.set("CompanyName", "Transcribe Right");
        site_.record.set("FTPServer", "127.0.0.1");
        site_.record.set("FTPPort", std::to_string(server().port()));
        site_.record.set("FTPUserName", ovd::testing::VsftpdServer::kUser);
        site_.record.set("FTPPassword", ovd::testing::VsftpdServer::kPassword);
        site_.record.set("FTPMode", "Passive");
        site_.ourCompany = "Orvane Medical";
        site_.ourKey = "OURKEY";
        site_.dataFolder = local_.path();
        site_.programFolder = local_.path();
        session_ = std::make_unique<FtpSession>(loop_, std::make_unique<CurlFtpClient>());
    }

    static ovd::testing::VsftpdServer& server() { return sharedServer(); }
    static ConnectionSettings siteSettings() {
        ConnectionSettings settings;
        settings.hostName = "127.0.0.1";
        settings.port = server().port();
        settings.userName = ovd::testing::VsftpdServer::kUser;
        settings.password = ovd::testing::VsftpdServer::kPassword;
        return settings;
    }
    [[nodiscard]] std::string onServer(const std::string& name) const {
        return server().localPathOf(remoteFolder_ + "/" + name);
    }
    // A file the transcriber left on the site.
    void putOnServer(const std::string& name, const std::string& bytes) const {
        writeBytes(onServer(name), bytes);
    }
    void makeWindow() {
        window_ = std::make_unique<FtpSiteWindow>(loop_, prompts_, *session_, site_);
        window_->onChange = [this] {
            if (statuses_.empty() || statuses_.back() != window_->view().status) {
                statuses_.push_back(window_->view().status);
            }
        };
    }
    bool runUntil(const std::function<bool()>& done) {
        return loop_.runUntil(done, std::chrono::seconds(20));
    }
    void connectWindow() {
        bool finished = false;
        bool connected = false;
        window_->connect([&](bool ok) {
            finished = true;
            connected = ok;
        });
        ASSERT_TRUE(runUntil([&] { return finished; }));
        ASSERT_TRUE(connected) << window_->view().status;
    }
    [[nodiscard]] bool sawStatus(const std::string& text) const {
        for (const std::string& status : statuses_) {
            if (status == text) return true;
        }
        return false;
    }

    ovd::testing::RealTimeEventLoop loop_;
    ovd::testing::ScriptedPrompts prompts_;
    ovd::testing::TempFolder local_;
    std::string remoteFolder_;
    SiteContext site_;
    std::unique_ptr<FtpSession> session_;
    std::unique_ptr<FtpSiteWindow> window_;
    std::vector<std::string> statuses_;
};

}  // namespace ovd::ftp::testing
