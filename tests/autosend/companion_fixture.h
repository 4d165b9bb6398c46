#pragma once
// A companion sender on the real clock, on a data folder of the test's own, with
// the station's settings and the default site written as the station would, a
// loopback peer, and the event log in memory.

#include <gtest/gtest.h>

#include <fstream>
#include <memory>
#include <string>

#include "autosend/companion.h"
#include "delivery/peer_link.h"
#include "ftp/client_for_site.h"
#include "platform/files.h"
#include "settings/company_records.h"
#include "settings/config_file.h"
#include "settings/delivery_defaults.h"
#include "settings/event_log.h"
#include "support/loopback_peer.h"
#include "support/real_time_event_loop.h"
#include "support/scripted_prompts.h"
#include "support/temp_folder.h"

namespace ovd::autosend::testing {

using namespace std::chrono_literals;

// Bytes that tell one letter from another and a cut-off copy from a whole one.
inline std::string letterBytes(std::size_t size, char seed) {
    std::string bytes(size, '\0');
    for (std::size_t i = 0; i < size; ++i) bytes[i] = static_cast<char>(seed + (i * 7) % 251);
    return bytes;
}

inline std::string contentOf(const std::string& path) {
    const auto content = platform::readWholeFile(path);
    return content ? *content : std::string("<none>");
}

class CompanionFixture : public ::testing::Test {
  protected:
    CompanionFixture() {
        config.record.CaptureFilePath = folder.file("Recordings");
        config.record.AutoFTP = true;
        config.record.AutoEmail = false;
        config.record.TCP = true;
        config.record.TCPIP = "127.0.0.1";
        config.record.TCPPort = peer.portText();
        config.record.TCPDelay = 0;
        EXPECT_TRUE(config.WriteConfig());
    }
    ~CompanionFixture() override {
        if (companion) companion->stop();
        companion.reset();
    }

    void useSite(int port, const std::string& extraKey = {}, const std::string& extraValue = {}) {
        const settings::IniStore defaults = records.defaults();
        const auto write = [&defaults](const char* key, const std::string& value) {
            EXPECT_TRUE(defaults.WriteKey(settings::kDefaultFtpSection, key, value));
        };
        write("FTPServer", "127.0.0.1");
        write("FTPPort", std::to_string(port));
        write("FTPUserName", "anonymous");
        write("FTPPassword", "ovd@example.com");
        write("FTPUFLMRemotePath", "/incoming");
        if (!extraKey.empty()) write(extraKey.c_str(), extraValue);
    }

    void changeSettings(const std::function<void(settings::SettingsRecord&)>& change) {
        change(config.record);
        ASSERT_TRUE(config.WriteConfig());
    }

    [[nodiscard]] std::string staging(const std::string& kind = "FTPTemp") const {
        return folder.file("Recordings/" + kind);
    }
    std::string stage(const std::string& name, const std::string& bytes,
                      const std::string& kind = "FTPTemp") {
        const std::string path = staging(kind) + "/" + name;
        EXPECT_TRUE(platform::createFolder(platform::folderOf(path)));
        EXPECT_TRUE(platform::writeWholeFile(path, bytes));
        return path;
    }

    void startCompanion(EmailSend email = {}, std::chrono::milliseconds rescan = 60s,
                        std::function<void()> cancelEmail = {}) {
        companion = std::make_unique<Companion>(CompanionParts{
            .loop = loop,
            .dataFolder = folder.path(),
            .config = config,
            .log = log,
            .prompts = prompts,
            .peer = peerLink,
            .makeClient = &ftp::clientFor,
            .sendEmail = std::move(email),
            .cancelEmail = std::move(cancelEmail),
            .soundFolder = folder.path(),
            .settleTime = 300ms,
            .rescanInterval = rescan,
        });
        companion->start();
    }

    bool runUntil(const std::function<bool()>& done, std::chrono::milliseconds timeout = 15s) {
        return loop.runUntil(done, timeout);
    }

    [[nodiscard]] bool logHas(const std::string& text) const {
        return log.text().find(text) != std::string::npos;
    }

    ovd::testing::TempFolder folder;
    ovd::testing::RealTimeEventLoop loop;
    settings::ConfigFile config{folder.path()};
    settings::CompanyRecords records{folder.path()};
    settings::EventLog log{loop, folder.path(), config.record};
    ovd::testing::ScriptedPrompts prompts;
    ovd::testing::LoopbackPeer peer;
    delivery::PeerLink peerLink{{loop, config, log, prompts}};
    std::unique_ptr<Companion> companion;
};

}  // namespace ovd::autosend::testing
