// The FTP windows on the offscreen platform against a real vsftpd: the automatic
// window's unattended run with its upload and download rules, the manual window's
// connection and stored choices, the setup window's save, and the main window's
// FTP entries.

#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QTimer>
#include <QTreeWidget>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>
#include <thread>

#include "ftp/curl_ftp_client.h"
#include "ftp/ftp_setup_form.h"
#include "settings/ini_store.h"
#include "settings/transcriber_records.h"
#include "support/scripted_prompts.h"
#include "support/temp_folder.h"
#include "support/vsftpd_server.h"
#include "ui/ftp_setup_window.h"
#include "ui/ftp_transfer_window.h"
#include "ui/station_window_fixture.h"

namespace ovd::ui {
namespace {

namespace fs = std::filesystem;
using ovd::testing::VsftpdServer;

std::string readBytes(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream content;
    content << file.rdbuf();
    return content.str();
}

void writeBytes(const std::string& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

// Turns the Qt loop until the condition holds; the transfers run on their own thread.
bool processUntil(const std::function<bool()>& done) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (!done()) {
        if (std::chrono::steady_clock::now() > deadline) return false;
        QApplication::processEvents(QEventLoop::AllEvents, 20);
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return true;
}

VsftpdServer& server() {
    static VsftpdServer shared;
    return shared;
}

class FtpWindowsTest : public ::testing::Test {
  protected:
    void SetUp() override {
        ASSERT_TRUE(server().running()) << server().error();
        remote_ = std::string(VsftpdServer::kWritableFolder) + "/" +
                  ::testing::UnitTest::GetInstance()->current_test_info()->name();
        ftp::CurlFtpClient client;
        ftp::ConnectionSettings settings;
        settings.hostName = "127.0.0.1";
        settings.port = server().port();
        settings.userName = VsftpdServer::kUser;
        settings.password = VsftpdServer::kPassword;
        ASSERT_TRUE(client.connect(settings).ok());
        ASSERT_TRUE(client.createDirectory(remote_).ok());
        for (const char* folder : {"upload", "moved", "download"}) {
            fs::create_directory(data_.file(folder));
        }
        site_.set("CompanyName", "Transcribe Right");
        site_.set("Name", "Pat Typist");
        site_.set("FTPServer", "127.0.0.1");
        site_.set("FTPPort", std::to_string(server().port()));
        site_.set("FTPUserName", VsftpdServer::kUser);
        site_.set("FTPPassword", VsftpdServer::kPassword);
    }
    void saveSiteAsDefault() {
        ASSERT_TRUE(settings::TranscriberStore(records_).save(site_).ok());
        ftp::FtpSetupForm form(records_, prompts_);
        ASSERT_TRUE(form.GetInfoForCrypt("Transcribe Right"));
        ASSERT_TRUE(form.makeDefaultSite());
    }
    [[nodiscard]] std::string onServer(const std::string& name) const {
        return server().localPathOf(remote_ + "/" + name);
    }

    ovd::testing::TempFolder data_;
    settings::CompanyRecords records_{data_.path()};
    ovd::testing::ScriptedPrompts prompts_;
    settings::TranscriberRecord site_;
    std::string remote_;
};

TEST_F(FtpWindowsTest, TheUnattendedRunMovesFilesByItsRulesFromTheWindow) {
    site_.set("FTPUFLMOption", "True");
    site_.set("FTPUFLMUploadFrom", data_.file("upload"));
    site_.set("FTPUFLMRemotePath", remote_);
    site_.set("FTPUFLMMoveLocalAfterUploadOption", "True");
    site_.set("FTPUFLMMoveTO", data_.file("moved"));
    site_.set("FTPDFRSOption", "True");
    site_.set("FTPDFRSRemotePath", remote_);
    site_.set("FTPDFRSDownloadTo", data_.file("download"));
    site_.set("FTPDFRSFileSpec", "*.doc");
    site_.set("FTPDFRSDelete", "True");
    saveSiteAsDefault();
    writeBytes(data_.file("upload/letter.wav"), "dictated letter");
    writeBytes(onServer("typed.doc"), "typed letter");

    FtpTransferWindow window(FtpWindowFace::Automatic, data_.path(), data_.path(), prompts_);
    window.show();
    EXPECT_EQ(window.objectName(), "FTPfrmAutoFTP");
    EXPECT_EQ(window.findChild<QComboBox*>("cboCompany")->currentText(), "Transcribe Right");
    EXPECT_EQ(window.findChild<QListWidget*>("FileUPL")->count(), 1);

    auto* run = window.findChild<QPushButton*>("cmdAuto");
    run->click();
    EXPECT_EQ(run->text(), "Cancel");
    ASSERT_TRUE(processUntil([&] { return !window.unattended()->running(); }))
        << window.findChild<QLabel*>("lblStatus")->text().toStdString();

    EXPECT_EQ(readBytes(onServer("letter.wav")), "dictated letter");
    EXPECT_EQ(readBytes(data_.file("moved/letter.wav")), "dictated letter");
    EXPECT_FALSE(fs::exists(data_.file("upload/letter.wav")));
    EXPECT_EQ(readBytes(data_.file("download/typed.doc")), "typed letter");
    EXPECT_FALSE(fs::exists(onServer("typed.doc")));
    EXPECT_FALSE(fs::exists(data_.file("download/letter.wav")));
    EXPECT_EQ(run->text(), "Run Unattended");
    EXPECT_EQ(window.findChild<QListWidget*>("FileUPL")->count(), 0);
    EXPECT_EQ(window.findChild<QLabel*>("lblSession")->text(), "no Session");
}

TEST_F(FtpWindowsTest, TheManualWindowConnectsListsAndKeepsItsModeForNextTime) {
    saveSiteAsDefault();
    writeBytes(onServer("waiting.wav"), "waiting");
    {
        FtpTransferWindow window(FtpWindowFace::Manual, data_.path(), data_.path(), prompts_);
        window.show();
        EXPECT_EQ(window.objectName(), "FTPfrmFTP");
        EXPECT_TRUE(window.findChild<QRadioButton*>("optPassive")->isChecked());
        window.findChild<QRadioButton*>("optActive")->click();
        EXPECT_FALSE(window.site().connection().passiveMode);

        window.findChild<QPushButton*>("ID_BUTFTPConnect")->click();
        auto* list = window.findChild<QTreeWidget*>("lv");
        ASSERT_TRUE(processUntil([&] { return list->topLevelItemCount() > 0; }))
            << window.findChild<QLabel*>("lblStatus")->text().toStdString();
        EXPECT_EQ(window.findChild<QLabel*>("lblSession")->text(), "Session is Established");
        // Into the test's folder by double clicks, in active mode all the way.
        const auto shown = [list](const std::string& name) {
            return list->findItems(QString::fromStdString(name), Qt::MatchExactly).size() == 1;
        };
        Q_EMIT list->itemDoubleClicked(list->findItems("incoming", Qt::MatchExactly).front(), 0);
        ASSERT_TRUE(processUntil([&] { return shown(remote_.substr(10)); }));
        Q_EMIT list->itemDoubleClicked(
            list->findItems(QString::fromStdString(remote_.substr(10)), Qt::MatchExactly).front(),
            0);
        ASSERT_TRUE(processUntil([&] { return shown("waiting.wav"); }));
        EXPECT_EQ(list->topLevelItem(0)->text(0), "..");
    }
    settings::IniStore stored(data_.file("OrvaneTransport.ini"));
    EXPECT_EQ(stored.ReadKey("FTPSettings", "ManActive"), "True");
    EXPECT_EQ(stored.ReadKey("FTPSettings", "ManPassive"), "False");
    FtpTransferWindow again(FtpWindowFace::Manual, data_.path(), data_.path(), prompts_);
    EXPECT_TRUE(again.findChild<QRadioButton*>("optActive")->isChecked());
}

TEST_F(FtpWindowsTest, TheSetupWindowWritesTheSiteOfTheChosenTranscriber) {
    ASSERT_TRUE(settings::TranscriberStore(records_).save(site_).ok());
    FtpSetupWindow window(FtpWindowFace::Automatic, data_.path(), prompts_);
    auto* companies = window.findChild<QComboBox*>("cboCompany");
    ASSERT_EQ(companies->count(), 1);
    window.chooseCompany(companies->itemText(0));
    EXPECT_EQ(window.findChild<QLineEdit*>("txtServer")->text(), "127.0.0.1");
    window.findChild<QLineEdit*>("txtServer")->setText("ftp.example.com");
    window.findChild<QLineEdit*>("txtASched")->setText("15");
    window.findChild<QRadioButton*>("optActive")->setChecked(true);
    window.findChild<QPushButton*>("cmdSave")->click();
    const auto saved = settings::TranscriberStore(records_).load("Transcribe Right");
    ASSERT_TRUE(saved.ok());
    EXPECT_EQ(saved->get("FTPServer"), "ftp.example.com");
    EXPECT_EQ(saved->get("FTPAutoSchedulerMinutes"), "15");
    EXPECT_EQ(saved->get("FTPMode"), "Active");
    EXPECT_EQ(saved->get("Name"), "Pat Typist");
    EXPECT_EQ(prompts_.texts().back(), "Transcribers information has been saved");
}

class FtpMenuTest : public testing::StationWindowTest {};

TEST_F(FtpMenuTest, TheFtpEntriesAreEnabledAndConfigureOpensTheSetupWindow) {
    window().render();
    for (const char* name : {"mnFTP", "mnFTPTransfer", "mnAutoFTP"}) {
        auto* entry = window().findChild<QAction*>(name);
        ASSERT_NE(entry, nullptr) << name;
        EXPECT_TRUE(entry->isEnabled()) << name;
    }
    QString opened;
    QTimer::singleShot(0, [&opened] {
        if (auto* modal = qobject_cast<QDialog*>(QApplication::activeModalWidget())) {
            opened = modal->objectName();
            modal->reject();
        }
    });
    window().findChild<QAction*>("mnFTP")->trigger();
    EXPECT_EQ(opened, "FTPfrmAutoFTPSetup");

    // The transfer window does not hold the station up: it opens beside it.
    window().findChild<QAction*>("mnFTPTransfer")->trigger();
    auto* transfer = window().findChild<QDialog*>("FTPfrmFTP");
    ASSERT_NE(transfer, nullptr);
    EXPECT_FALSE(transfer->isModal());
    transfer->close();
}

}  // namespace
}  // namespace ovd::ui
