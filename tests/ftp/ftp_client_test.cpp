// Every operation of the FTP client against a real vsftpd on loopback.

#include <gtest/gtest.h>
#include <pwd.h>
#include <sys/mount.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "ftp/curl_ftp_client.h"
#include "ftp/ftp_server_environment.h"
#include "support/temp_folder.h"

namespace ovd::ftp {
namespace {

namespace fs = std::filesystem;
using ovd::testing::VsftpdServer;

std::string pattern(std::size_t size) {
    std::string bytes(size, '\0');
    for (std::size_t index = 0; index < size; ++index) {
        bytes[index] = static_cast<char>((index * 7 + index / 251) & 0xff);
    }
    return bytes;
}

std::string readAll(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream content;
    content << file.rdbuf();
    return content.str();
}

void writeAll(const std::string& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

ConnectionSettings settingsFor(const VsftpdServer& server, bool passive = true) {
    ConnectionSettings settings;
    settings.hostName = "127.0.0.1";
    settings.port = server.port();
    settings.userName = VsftpdServer::kUser;
    settings.password = VsftpdServer::kPassword;
    settings.passiveMode = passive;
    return settings;
}

class FtpClientTest : public ::testing::Test {
  protected:
    void SetUp() override {
        ASSERT_TRUE(server().running()) << server().error();
        // Each test works in a folder of its own on the shared server.
        folder_ = std::string(VsftpdServer::kWritableFolder) + "/" +
                  ::testing::UnitTest::GetInstance()->current_test_info()->name();
        for (char& character : folder_) {
            if (character == '_') character = '-';
        }
        ASSERT_TRUE(client_.connect(settingsFor(server())).ok());
        ASSERT_TRUE(client_.createDirectory(folder_).ok());
        ASSERT_TRUE(client_.setCurrentDirectory(folder_).ok());
    }

    static VsftpdServer& server() { return testing::sharedServer(); }
    std::string onServer(const std::string& name) const {
        return server().localPathOf(folder_ + "/" + name);
    }

    CurlFtpClient client_;
    ovd::testing::TempFolder local_;
    std::string folder_;
};

TEST_F(FtpClientTest, UploadsAndDownloadsWholeFilesInBothModes) {
    // An exact number of chunks, one byte short of that, and a single short chunk.
    const std::uint64_t sizes[] = {4 * kChunkBytes, 4 * kChunkBytes - 1, 100};
    for (const bool passive : {true, false}) {
        ASSERT_TRUE(client_.connect(settingsFor(server(), passive)).ok());
        ASSERT_TRUE(client_.setCurrentDirectory(folder_).ok());
        for (const std::uint64_t size : sizes) {
            SCOPED_TRACE(::testing::Message() << "passive " << passive << ", " << size << " bytes");
            const std::string bytes = pattern(size);
            writeAll(local_.file("up.wav"), bytes);
            std::uint64_t lastDone = 0;
            std::uint64_t lastTotal = 0;
            ASSERT_TRUE(client_
                            .upload(local_.file("up.wav"), "letter.wav",
                                    [&](std::uint64_t done, std::uint64_t total) {
                                        EXPECT_GE(done, lastDone);
                                        lastDone = done;
                                        lastTotal = total;
                                    })
                            .ok());
            EXPECT_EQ(readAll(onServer("letter.wav")), bytes);
            EXPECT_EQ(lastDone, size);
            EXPECT_EQ(lastTotal, size);
            EXPECT_FALSE(fs::exists(onServer(temporaryUploadName("letter.wav"))));

            auto remote = client_.remoteSize("letter.wav");
            ASSERT_TRUE(remote.ok()) << remote.error();
            EXPECT_EQ(*remote, size);

            lastDone = 0;
            const auto fetched =
                client_.download("letter.wav", local_.file("down.wav"),
                                 [&](std::uint64_t done, std::uint64_t) { lastDone = done; });
            ASSERT_TRUE(fetched.ok()) << fetched.error();
            EXPECT_EQ(readAll(local_.file("down.wav")), bytes);
            EXPECT_EQ(lastDone, size);
            EXPECT_FALSE(fs::exists(local_.file("down.wav.part")));
        }
    }
}

TEST_F(FtpClientTest, NamesWithBlanksAndNonAsciiGoUpAndDownByTheirOwnName) {
    for (const std::string name : {"dr smith  letter 1.wav", "Brief für Müller.wav"}) {
        SCOPED_TRACE(name);
        writeAll(local_.file("x"), "spoken words");
        ASSERT_TRUE(client_.upload(local_.file("x"), name, nullptr).ok());
        EXPECT_EQ(readAll(onServer(name)), "spoken words");
        auto size = client_.remoteSize(name);
        ASSERT_TRUE(size.ok()) << size.error();
        EXPECT_EQ(*size, 12U);
        ASSERT_TRUE(client_.download(name, local_.file("y"), nullptr).ok());
        EXPECT_EQ(readAll(local_.file("y")), "spoken words");
    }
}

TEST_F(FtpClientTest, ListsTheCurrentFolderWithSizesAndMarks) {
    writeAll(local_.file("x"), pattern(1234));
    ASSERT_TRUE(client_.upload(local_.file("x"), "a b.wav", nullptr).ok());
    ASSERT_TRUE(client_.upload(local_.file("x"), "notes.txt", nullptr).ok());
    ASSERT_TRUE(client_.createDirectory("Done").ok());

    auto all = client_.list("");
    ASSERT_TRUE(all.ok()) << all.error();
    ASSERT_EQ(all->size(), 3U);
    std::map<std::string, cDirItem> byName;
    for (const auto& item : *all) byName[item.name] = item;
    ASSERT_EQ(byName.count("a b.wav"), 1U);
    EXPECT_EQ(byName["a b.wav"].size, 1234U);
    EXPECT_FALSE(byName["a b.wav"].directory);
    EXPECT_TRUE(byName["Done"].directory);
    const auto age = std::chrono::system_clock::now() - byName["notes.txt"].lastWrite;
    EXPECT_LT(std::chrono::abs(age), std::chrono::minutes(2));

    auto wavs = client_.list("*.wav");
    ASSERT_TRUE(wavs.ok());
    ASSERT_EQ(wavs->size(), 1U);
    EXPECT_EQ(wavs->front().name, "a b.wav");

    ASSERT_TRUE(client_.setCurrentDirectory("Done").ok());
    auto empty = client_.list("*.*");
    ASSERT_TRUE(empty.ok()) << empty.error();
    EXPECT_TRUE(empty->empty());
    ASSERT_TRUE(client_.setCurrentDirectory("..").ok());
    EXPECT_EQ(client_.currentDirectory(), folder_);
}

TEST_F(FtpClientTest, RenamesDeletesAndMakesAndRemovesFolders) {
    writeAll(local_.file("x"), "abc");
    ASSERT_TRUE(client_.upload(local_.file("x"), "old name.wav", nullptr).ok());
    ASSERT_TRUE(client_.rename("old name.wav", "new name.wav").ok());
    EXPECT_FALSE(fs::exists(onServer("old name.wav")));
    EXPECT_EQ(readAll(onServer("new name.wav")), "abc");

    ASSERT_TRUE(client_.deleteFile("new name.wav").ok());
    EXPECT_FALSE(fs::exists(onServer("new name.wav")));

    ASSERT_TRUE(client_.createDirectory("sub folder").ok());
    EXPECT_TRUE(fs::is_directory(onServer("sub folder")));
    ASSERT_TRUE(client_.removeDirectory("sub folder").ok());
    EXPECT_FALSE(fs::exists(onServer("sub folder")));

    // Each failure carries its operation's name and the server's own reply.
    const auto rename = client_.rename("absent.wav", "b.wav");
    EXPECT_NE(rename.error().find("RenameFTPFile error code: "), std::string::npos)
        << rename.error();
    EXPECT_NE(rename.error().find("Server: 550"), std::string::npos) << rename.error();
    const auto remove = client_.deleteFile("absent.wav");
    EXPECT_NE(remove.error().find("DeleteFTPFile error code: "), std::string::npos);
    EXPECT_NE(remove.error().find("Server: 550"), std::string::npos) << remove.error();
    const auto rmd = client_.removeDirectory("absent");
    EXPECT_NE(rmd.error().find("RemoveFTPDirectory"), std::string::npos);
    ASSERT_TRUE(client_.createDirectory("twice").ok());
    const auto mkd = client_.createDirectory("twice");
    EXPECT_NE(mkd.error().find("CreateFTPDirectory"), std::string::npos);
    EXPECT_NE(mkd.error().find("Server: 550"), std::string::npos) << mkd.error();
}

TEST_F(FtpClientTest, AZeroLengthRemoteFileIsNotDownloaded) {
    writeAll(local_.file("empty"), "");
    ASSERT_TRUE(client_.upload(local_.file("empty"), "empty.wav", nullptr).ok());
    EXPECT_TRUE(fs::exists(onServer("empty.wav")));
    auto size = client_.remoteSize("empty.wav");
    ASSERT_TRUE(size.ok()) << size.error();
    EXPECT_EQ(*size, 0U);

    const auto fetched = client_.download("empty.wav", local_.file("got.wav"), nullptr);
    EXPECT_FALSE(fetched.ok());
    EXPECT_FALSE(fs::exists(local_.file("got.wav")));
    EXPECT_FALSE(fs::exists(local_.file("got.wav.part")));
}

TEST_F(FtpClientTest, FailuresCarryTheServersOwnReply) {
    const auto missingFolder = client_.setCurrentDirectory("/no/such/folder");
    EXPECT_NE(missingFolder.error().find("FtpSetCurrentDirectory error code: "), std::string::npos);
    EXPECT_NE(missingFolder.error().find("Server: 550 Failed to change directory."),
              std::string::npos)
        << missingFolder.error();
    EXPECT_EQ(client_.currentDirectory(), folder_);

    const auto missingFile = client_.download("absent.wav", local_.file("a.wav"), nullptr);
    EXPECT_EQ(missingFile.error().rfind("FtpFindFirstFile error code: ", 0), 0U)
        << missingFile.error();
    EXPECT_FALSE(fs::exists(local_.file("a.wav")));

    // The site's root is not writable: the server refuses the file before any byte.
    writeAll(local_.file("x"), "abc");
    const auto refused = client_.upload(local_.file("x"), "/refused.wav", nullptr);
    EXPECT_EQ(refused.error().rfind("FtpOpenFile:PutFile error code: ", 0), 0U) << refused.error();
    EXPECT_NE(refused.error().find("Server: 553"), std::string::npos) << refused.error();

    CurlFtpClient stranger;
    auto settings = settingsFor(server());
    settings.userName = "transcriber";
    settings.password = "wrong";
    const auto login = stranger.connect(settings);
    EXPECT_EQ(login.error().rfind("Can NOT Connect to FTP Server error code: 67", 0), 0U)
        << login.error();
    EXPECT_NE(login.error().find("Server: 530 This FTP server is anonymous only."),
              std::string::npos)
        << login.error();
    EXPECT_FALSE(stranger.connected());

    // Nobody listens on the port of a server that has gone.
    settings = settingsFor(server());
    settings.port = 1;
    const auto nobody = stranger.connect(settings);
    EXPECT_EQ(nobody.error().rfind("Can NOT Connect to FTP Server error code: 7", 0), 0U)
        << nobody.error();
}

TEST_F(FtpClientTest, AFullRemoteDiskLeavesNothingUnderTheFinalName) {
    ASSERT_TRUE(client_.createDirectory("full").ok());
    const std::string smallDisk = onServer("full");
    const passwd* ftpUser = ::getpwnam("ftp");
    ASSERT_NE(ftpUser, nullptr);
    const std::string options = "size=256k,mode=0755,uid=" + std::to_string(ftpUser->pw_uid) +
                                ",gid=" + std::to_string(ftpUser->pw_gid);
    if (::mount("tmpfs", smallDisk.c_str(), "tmpfs", 0, options.c_str()) != 0) {
        GTEST_SKIP() << "a small tmpfs can't be mounted here (" << std::strerror(errno) << ")";
    }
    writeAll(local_.file("big.wav"), pattern(1024 * 1024));
    const auto sent = client_.upload(local_.file("big.wav"), "full/big.wav", nullptr);
    EXPECT_FALSE(fs::exists(smallDisk + "/big.wav"));
    ::umount2(smallDisk.c_str(), MNT_DETACH);

    EXPECT_EQ(sent.error().rfind("InternetWriteFile error code: ", 0), 0U) << sent.error();
    // The server may cut the data connection before curl reads its refusal.
    const bool refusalHeard = sent.error().find("Server: 451") != std::string::npos;
    const bool nothingHeard = sent.error().find("Server:") == std::string::npos;
    EXPECT_TRUE(refusalHeard || nothingHeard) << sent.error();
    EXPECT_EQ(fs::file_size(local_.file("big.wav")), 1024U * 1024U);
}

}  // namespace
}  // namespace ovd::ftp
