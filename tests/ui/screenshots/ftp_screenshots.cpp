// Pictures of the FTP windows for the README, connected to a private vsftpd on
// loopback so the remote list is a real one, on a real X display.
//
//   ftp_screenshots OUTPUT_FOLDER     (DISPLAY must name a running X server)

#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QPixmap>
#include <QPushButton>
#include <QTreeWidget>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <thread>

#include "ftp/ftp_setup_form.h"
#include "platform/files.h"
#include "screenshot_shots.h"
#include "settings/company_records.h"
#include "settings/transcriber_records.h"
#include "support/scripted_prompts.h"
#include "support/temp_folder.h"
#include "support/vsftpd_server.h"
#include "ui/ftp_setup_window.h"
#include "ui/ftp_transfer_window.h"

namespace {

using namespace ovd;

void settle(const std::function<bool()>& done) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (!done() && std::chrono::steady_clock::now() < deadline) {
        QApplication::processEvents(QEventLoop::AllEvents, 20);
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    for (int i = 0; i < 20; ++i) QApplication::processEvents();
}

void writeFile(const std::string& path, std::size_t size) {
    std::ofstream(path, std::ios::binary) << std::string(size, 'x');
}

}  // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    const auto folder = testing::screenshotFolder(argc, argv, "ftp_screenshots");
    if (!folder) return 2;
    const std::string& output = *folder;
    testing::VsftpdServer server;
    if (!server.running()) {
        std::cerr << server.error() << '\n';
        return 1;
    }
    testing::TempFolder data;
    testing::ScriptedPrompts prompts;
    const settings::CompanyRecords records(data.path());
    const std::string upload = data.file("Outgoing");
    std::filesystem::create_directory(upload);
    writeFile(platform::joinPath(upload, "Byrne_20241105_0930.wav"), 482'144);
    writeFile(platform::joinPath(upload, "Byrne_20241105_1012.wav"), 1'204'512);
    std::filesystem::create_directory(server.localPathOf("/incoming/Typed"));
    writeFile(server.localPathOf("/incoming/Byrne_20241104_1600.doc"), 24'576);
    writeFile(server.localPathOf("/incoming/Byrne_20241104_1645.doc.enc"), 31'760);

    settings::TranscriberRecord site;
    site.set("CompanyName", "Typing Pool Ltd");
    site.set("Name", "Mary Walsh");
    site.set("FTPDescription", "Typing Pool drop box");
    site.set("FTPServer", "127.0.0.1");
    site.set("FTPPort", std::to_string(server.port()));
    site.set("FTPUserName", testing::VsftpdServer::kUser);
    site.set("FTPPassword", testing::VsftpdServer::kPassword);
    site.set("FTPAutoScheduler", "True");
    site.set("FTPAutoSchedulerMinutes", "15");
    site.set("FTPUFLMOption", "True");
    site.set("FTPUFLMUploadFrom", upload);
    site.set("FTPUFLMRemotePath", "/incoming");
    site.set("FTPUFLMFileSpec", "*.wav");
    site.set("FTPDFRSOption", "True");
    site.set("FTPDFRSRemotePath", "/incoming");
    site.set("FTPDFRSDownloadTo", data.file("Typed"));
    site.set("FTPDFRSFileSpec", "*.doc*");
    if (!settings::TranscriberStore(records).save(site)) std::cerr << "can't save the site\n";
    ftp::FtpSetupForm form(records, prompts);
    if (!form.GetInfoForCrypt("Typing Pool Ltd") || !form.makeDefaultSite()) {
        std::cerr << "can't make the default site\n";
    }

    const auto connectAndOpen = [](ui::FtpTransferWindow& window) {
        window.show();
        window.findChild<QPushButton*>("ID_BUTFTPConnect")->click();
        auto* list = window.findChild<QTreeWidget*>("lv");
        settle([list] { return list->topLevelItemCount() > 0; });
        window.site().openRemote("incoming");
        settle([list] { return list->topLevelItemCount() > 3; });
    };
    {
        ui::FtpTransferWindow window(ui::FtpWindowFace::Manual, data.path(), data.path(), prompts);
        window.site().setLocalFolder(upload);
        connectAndOpen(window);
        testing::saveScreenshot(window, output, "ftp-transfer.png");
    }
    {
        ui::FtpTransferWindow window(ui::FtpWindowFace::Automatic, data.path(), data.path(),
                                     prompts);
        connectAndOpen(window);
        testing::saveScreenshot(window, output, "ftp-automatic.png");
    }
    {
        ui::FtpSetupWindow window(ui::FtpWindowFace::Automatic, data.path(), prompts);
        testing::saveScreenshot(window, output, "ftp-setup.png");
    }
    return 0;
}
