// Figures for a 100 MB upload and download through our FTP client against the
// curl command line on the same private vsftpd in the same run, then the same
// through our SFTP client on a private sshd, with the resident memory (it should
// stay flat: the file goes through in chunks).
// Run: build/release/bench/ftp_bench

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <random>
#include <string>
#include <vector>

#include "bench_figures.h"
#include "ftp/curl_ftp_client.h"
#include "ftp/curl_sftp_client.h"
#include "support/sshd_server.h"
#include "support/temp_folder.h"
#include "support/vsftpd_server.h"

namespace {

using namespace ovd::bench;
constexpr std::size_t kFileBytes = 100U * 1024U * 1024U;

void printLine(const char* what, double ours, double theirs) {
    const double megabytes = static_cast<double>(kFileBytes) / (1024.0 * 1024.0);
    std::printf("%-9s ours %7.1f MB/s   curl command %7.1f MB/s   ratio %.2f\n", what,
                megabytes / ours, megabytes / theirs, theirs / ours);
}

int sftpFigures(const std::string& source, const ovd::testing::TempFolder& scratch) {
    ovd::testing::SshdServer server;
    if (!server.running()) {
        std::fprintf(stderr, "sshd: %s\n", server.error().c_str());
        return 1;
    }
    ovd::ftp::CurlSftpClient client;
    ovd::ftp::ConnectionSettings settings;
    settings.hostName = "127.0.0.1";
    settings.port = server.port();
    settings.security = ovd::ftp::Security::Sftp;
    settings.userName = ovd::testing::SshdServer::kUser;
    settings.privateKeyFile = server.clientKeyFile();
    settings.knownHostsFile = server.knownHostsFile();
    if (const auto connected = client.connect(settings); !connected.ok()) {
        std::fprintf(stderr, "can't connect: %s\n", connected.error().c_str());
        return 1;
    }
    const long residentBefore = statusKilobytes("VmRSS:");
    const std::string base = "sftp://127.0.0.1:" + std::to_string(server.port()) + "/~/";
    const std::string login = " -u root: --key '" + server.clientKeyFile() + "' ";
    constexpr int kRuns = 3;
    double ourUpload = 1e9;
    double curlUpload = 1e9;
    double ourDownload = 1e9;
    double curlDownload = 1e9;
    for (int run = 0; run < kRuns; ++run) {
        auto start = Clock::now();
        const auto uploaded = client.upload(source, "ours.bin", nullptr);
        ourUpload = std::min(ourUpload, secondsSince(start));
        const double theirUpload =
            timedCommand("curl -s" + login + "-T '" + source + "' " + base + "theirs.bin");
        start = Clock::now();
        const auto downloaded = client.download("ours.bin", scratch.file("ours.sftp"), nullptr);
        ourDownload = std::min(ourDownload, secondsSince(start));
        const double theirDownload = timedCommand(
            "curl -s" + login + "-o '" + scratch.file("theirs.sftp") + "' " + base + "theirs.bin");
        if (!uploaded.ok() || !downloaded.ok() || theirUpload < 0 || theirDownload < 0) {
            std::fprintf(stderr, "%s %s\n", uploaded.error().c_str(), downloaded.error().c_str());
            return 1;
        }
        curlUpload = std::min(curlUpload, theirUpload);
        curlDownload = std::min(curlDownload, theirDownload);
    }
    std::printf("100 MB over loopback SFTP (sshd, internal-sftp), best of three\n");
    printLine("upload", ourUpload, curlUpload);
    printLine("download", ourDownload, curlDownload);
    std::printf("resident memory: %ld kB before the SFTP runs, %ld kB most of the whole run\n",
                residentBefore, statusKilobytes("VmHWM:"));
    return 0;
}

}  // namespace

int main() {
    ovd::testing::VsftpdServer server;
    if (!server.running()) {
        std::fprintf(stderr, "vsftpd: %s\n", server.error().c_str());
        return 1;
    }
    ovd::testing::TempFolder scratch;
    const std::string source = scratch.file("letter.bin");
    writeRandomFile(source, kFileBytes);
    const std::string base = "ftp://127.0.0.1:" + std::to_string(server.port()) + "/incoming/";

    ovd::ftp::CurlFtpClient client;
    ovd::ftp::ConnectionSettings settings;
    settings.hostName = "127.0.0.1";
    settings.port = server.port();
    settings.userName = ovd::testing::VsftpdServer::kUser;
    settings.password = ovd::testing::VsftpdServer::kPassword;
    if (!client.connect(settings).ok() ||
        !client.setCurrentDirectory(ovd::testing::VsftpdServer::kWritableFolder).ok()) {
        std::fprintf(stderr, "can't connect\n");
        return 1;
    }
    const long residentBefore = statusKilobytes("VmRSS:");

    // The best of three runs each: the machine is shared, and a slow run says
    // more about the neighbours than about the client.
    constexpr int kRuns = 3;
    double ourUpload = 1e9;
    double curlUpload = 1e9;
    double ourDownload = 1e9;
    double curlDownload = 1e9;
    for (int run = 0; run < kRuns; ++run) {
        auto start = Clock::now();
        const auto uploaded = client.upload(source, "ours.bin", nullptr);
        ourUpload = std::min(ourUpload, secondsSince(start));
        const double theirUpload =
            timedCommand("curl -s -T '" + source + "' " + base + "theirs.bin");

        start = Clock::now();
        const auto downloaded = client.download("ours.bin", scratch.file("ours.back"), nullptr);
        ourDownload = std::min(ourDownload, secondsSince(start));
        const double theirDownload =
            timedCommand("curl -s -o '" + scratch.file("theirs.back") + "' " + base + "theirs.bin");
        if (!uploaded.ok() || !downloaded.ok() || theirUpload < 0 || theirDownload < 0) {
            std::fprintf(stderr, "%s %s\n", uploaded.error().c_str(), downloaded.error().c_str());
            return 1;
        }
        curlUpload = std::min(curlUpload, theirUpload);
        curlDownload = std::min(curlDownload, theirDownload);
    }
    std::printf("100 MB over loopback FTP (vsftpd, passive, binary), best of three\n");
    printLine("upload", ourUpload, curlUpload);
    printLine("download", ourDownload, curlDownload);
    std::printf("resident memory: %ld kB before, %ld kB most (the file is %zu kB)\n",
                residentBefore, statusKilobytes("VmHWM:"), kFileBytes / 1024);
    return sftpFigures(source, scratch);
}
