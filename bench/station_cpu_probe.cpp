// Starts the real station on a data folder of its own, holds the record pedal
// down on a pty standing for a serial foot pedal, and prints the share of a core
// the station used over the take, from the kernel's count of its user and system
// time. Run by bench/gui_cpu.sh, which gives it a display and a sound server;
// the figure is printed, never judged.
//
//   station_cpu_probe STATION ASSETS SECONDS LABEL [station options...]

#include <fcntl.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "platform/files.h"
#include "settings/config_file.h"

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

// Serial pedal bytes: the middle pedal ("RECSTOP") held records; all up stops.
constexpr unsigned char kMiddlePedal = 0x85;
constexpr unsigned char kPedalsUp = 0x87;

class Pty {
  public:
    Pty() {
        master_ = ::posix_openpt(O_RDWR | O_NOCTTY);
        if (master_ >= 0 && ::grantpt(master_) == 0 && ::unlockpt(master_) == 0)
            slave_ = ::ptsname(master_);
    }
    ~Pty() {
        if (master_ >= 0) ::close(master_);
    }
    Pty(const Pty&) = delete;
    Pty& operator=(const Pty&) = delete;
    [[nodiscard]] const std::string& slavePath() const { return slave_; }
    bool send(unsigned char byte) const { return ::write(master_, &byte, 1) == 1; }

  private:
    int master_ = -1;
    std::string slave_;
};

std::string eventLogOf(const std::string& folder) {
    const std::string logs = folder + "/Event Logs";
    if (!std::filesystem::exists(logs)) return {};
    for (const auto& entry : std::filesystem::directory_iterator(logs)) {
        return ovd::platform::readWholeFile(entry.path().string()).valueOr("");
    }
    return {};
}

bool waitForLog(const std::string& folder, const std::string& text, std::chrono::seconds deadline) {
    const auto end = Clock::now() + deadline;
    while (Clock::now() < end) {
        if (eventLogOf(folder).find(text) != std::string::npos) return true;
        std::this_thread::sleep_for(100ms);
    }
    return false;
}

// utime + stime of the process, in clock ticks; -1 when it can't be read.
long long cpuTicks(pid_t pid) {
    const auto stat = ovd::platform::readWholeFile("/proc/" + std::to_string(pid) + "/stat");
    if (!stat) return -1;
    // The command name may hold spaces: the fields are counted from its closing bracket.
    const auto close = stat->rfind(')');
    if (close == std::string::npos) return -1;
    std::istringstream fields(stat->substr(close + 2));
    std::string field;
    long long utime = 0;
    for (int index = 3; fields >> field; ++index) {
        if (index == 14) utime = std::stoll(field);
        if (index == 15) return utime + std::stoll(field);
    }
    return -1;
}

pid_t startStation(const std::string& program, const std::string& folder,
                   const std::vector<std::string>& options) {
    const std::string errors = folder + "/station.err";
    const pid_t pid = ::fork();
    if (pid == 0) {
        const int fd = ::open(errors.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        if (fd >= 0) {
            ::dup2(fd, STDOUT_FILENO);
            ::dup2(fd, STDERR_FILENO);
        }
        std::vector<std::string> words{"orvane-voice-desk", "--data-folder", folder};
        words.insert(words.end(), options.begin(), options.end());
        std::vector<char*> argv;
        for (std::string& word : words) argv.push_back(word.data());
        argv.push_back(nullptr);
        ::execv(program.c_str(), argv.data());
        ::_exit(127);
    }
    return pid;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 5) {
        std::cerr << "usage: station_cpu_probe STATION ASSETS SECONDS LABEL [station options...]\n";
        return 2;
    }
    const std::string program = argv[1];
    const std::string assets = argv[2];
    const int seconds = std::atoi(argv[3]);
    const std::string label = argv[4];
    const std::vector<std::string> options(argv + 5, argv + argc);

    char folderTemplate[] = "/tmp/ovd_cpu_probe_XXXXXX";
    if (::mkdtemp(folderTemplate) == nullptr) {
        std::perror("mkdtemp");
        return 1;
    }
    const std::string folder = folderTemplate;
    Pty pedal;
    {
        const auto settings = ovd::platform::readWholeFile(assets + "/DigitalRecorder.cfg");
        if (!settings) {
            std::cerr << settings.error() << "\n";
            return 1;
        }
        if (auto written =
                ovd::platform::writeWholeFile(folder + "/DigitalRecorder.cfg", *settings);
            !written) {
            std::cerr << written.error() << "\n";
            return 1;
        }
        ovd::settings::ConfigFile config(folder);
        config.ReadConfig();
        config.record.UserSelectSerial = true;
        config.record.Port = 1;
        config.record.FormatType = "WAV";
        config.WriteConfig();
        if (auto written = ovd::platform::writeWholeFile(
                folder + "/SerialPorts.ini", "[Ports]\r\nCOM1=" + pedal.slavePath() + "\r\n");
            !written) {
            std::cerr << written.error() << "\n";
            return 1;
        }
    }

    const pid_t station = startStation(program, folder, options);
    int status = 1;
    if (!waitForLog(folder, "Procedure - CASE NEW", 30s)) {
        std::cerr << label << ": the station opened no file; its log:\n"
                  << eventLogOf(folder) << '\n';
    } else {
        // The window settles (faces, devices) before the take starts.
        std::this_thread::sleep_for(2s);
        pedal.send(kMiddlePedal);
        if (!waitForLog(folder, "File Record: ", 10s)) {
            std::cerr << label << ": the pedal started no take; its log:\n"
                      << eventLogOf(folder) << '\n';
        } else {
            std::this_thread::sleep_for(2s);
            const long ticksPerSecond = ::sysconf(_SC_CLK_TCK);
            const long long before = cpuTicks(station);
            std::this_thread::sleep_for(std::chrono::seconds(seconds));
            const long long after = cpuTicks(station);
            if (before >= 0 && after >= 0 && ticksPerSecond > 0) {
                const double percent = 100.0 * static_cast<double>(after - before) /
                                       static_cast<double>(ticksPerSecond) / seconds;
                char figure[32];
                std::snprintf(figure, sizeof figure, "%.1f", percent);
                std::cout << label << " CPU while recording: " << figure << " % of a core"
                          << std::endl;
                status = 0;
            } else {
                std::cerr << label << ": the station ended during the take\n";
            }
        }
        pedal.send(kPedalsUp);
        std::this_thread::sleep_for(1s);
    }
    ::kill(station, SIGTERM);
    const auto deadline = Clock::now() + 15s;
    while (::waitpid(station, nullptr, WNOHANG) == 0) {
        if (Clock::now() > deadline) {
            ::kill(station, SIGKILL);
            ::waitpid(station, nullptr, 0);
            break;
        }
        std::this_thread::sleep_for(50ms);
    }
    std::error_code ignored;
    std::filesystem::remove_all(folder, ignored);
    return status;
}
