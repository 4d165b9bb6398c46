#pragma once
// The real station program in a child process, headless on the virtual sound
// backend, on a data folder of the test's own, with a serial pedal on a pty.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#ifdef OVD_AUTOSEND_PROGRAM
#include "delivery/companion_lock.h"
#endif
#include "platform/files.h"
#include "settings/config_file.h"
#include "support/loopback_peer.h"
#include "support/pseudo_terminal.h"
#include "support/temp_folder.h"

namespace ovd::testing {

// Serial pedal bytes: press of each pedal, and the release of all.
inline constexpr unsigned char kLeftPedal = 0x81;    // "STEPLIST"
inline constexpr unsigned char kMiddlePedal = 0x85;  // "RECSTOP"
inline constexpr unsigned char kRightPedal = 0x84;   // "EOLSTOP"
inline constexpr unsigned char kPedalsUp = 0x87;

// How often a text stands in another, say a line in the event log.
inline std::size_t occurrences(const std::string& text, const std::string& what) {
    std::size_t count = 0;
    for (auto at = text.find(what); at != std::string::npos; at = text.find(what, at + what.size()))
        ++count;
    return count;
}

struct ProcessEnd {
    bool exited = false;
    int status = -1;     // exit status, or the signal when it did not exit
    std::string errors;  // what it wrote to standard error
};

class StationProcess {
  public:
    StationProcess() {
        EXPECT_TRUE(platform::writeWholeFile(
            folder.file("DigitalRecorder.cfg"),
            platform::readWholeFile(OVD_TEST_ASSETS "/DigitalRecorder.cfg").value()));
        settings::ConfigFile config(folder.path());
        config.ReadConfig();
        config.record.UserSelectSerial = true;
        config.record.Port = 1;
        config.record.FormatType = "WAV";
        config.WriteConfig();
        EXPECT_TRUE(platform::writeWholeFile(folder.file("SerialPorts.ini"),
                                             "[Ports]\r\nCOM1=" + pty.slavePath() + "\r\n"));
    }
    ~StationProcess() {
        if (child_ > 0) {
            ::kill(child_, SIGKILL);
            ::waitpid(child_, nullptr, 0);
        }
#ifdef OVD_AUTOSEND_PROGRAM
        // A station killed here never stopped the companion it started.
        (void)delivery::stopCompanion(folder.path(), 5000);
#endif
    }
    StationProcess(const StationProcess&) = delete;
    StationProcess& operator=(const StationProcess&) = delete;

    // The settings before the start, as an installer or the user left them.
    template <typename Change>
    void changeSettings(Change change) {
        settings::ConfigFile config(folder.path());
        config.ReadConfig();
        change(config.record);
        config.WriteConfig();
    }

    void start(const std::vector<std::string>& extra = {}) { child_ = spawn(extra, -1); }
    // The same, with what it writes to standard error (every text it shows) in a file.
    void startWithErrorsTo(const std::string& path, const std::vector<std::string>& extra = {}) {
        const int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        child_ = spawn(extra, fd);
        ::close(fd);
    }

    // Another station process on the same data folder, run to its end.
    ProcessEnd runSecond(const std::vector<std::string>& extra) {
        const std::string errors = folder.file("second.err");
        const int fd = ::open(errors.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        const pid_t second = spawn(extra, fd);
        ::close(fd);
        ProcessEnd end = waitFor(second);
        end.errors = platform::readWholeFile(errors).valueOr("");
        return end;
    }

    ProcessEnd terminate(int signal = SIGTERM) {
        ::kill(child_, signal);
        const ProcessEnd end = waitFor(child_);
        child_ = -1;
        return end;
    }

    // SIGTERM and the time the station took to end after it.
    struct TimedEnd {
        ProcessEnd end;
        std::chrono::milliseconds took{0};
    };
    TimedEnd terminateTimed() {
        const auto before = std::chrono::steady_clock::now();
        ProcessEnd end = terminate(SIGTERM);
        return {end, std::chrono::duration_cast<std::chrono::milliseconds>(
                         std::chrono::steady_clock::now() - before)};
    }

    // The share of one core the station used over the period, in percent, from
    // the kernel's count of its user and system time.
    [[nodiscard]] double cpuPercentOver(std::chrono::milliseconds period) const {
        const long ticksPerSecond = ::sysconf(_SC_CLK_TCK);
        const long long before = cpuTicks();
        std::this_thread::sleep_for(period);
        const long long after = cpuTicks();
        if (before < 0 || after < 0 || ticksPerSecond <= 0) return -1;
        return 100.0 * static_cast<double>(after - before) / static_cast<double>(ticksPerSecond) /
               (static_cast<double>(period.count()) / 1000.0);
    }

    [[nodiscard]] std::uintmax_t eventLogBytes() const { return eventLog().size(); }

    [[nodiscard]] pid_t pid() const { return child_; }

    [[nodiscard]] std::string eventLog() const {
        if (!std::filesystem::exists(folder.file("Event Logs"))) return "";
        for (const auto& entry : std::filesystem::directory_iterator(folder.file("Event Logs"))) {
            return platform::readWholeFile(entry.path().string()).valueOr("");
        }
        return "";
    }

    // True once the log holds the text after from; the station writes it within a second.
    [[nodiscard]] bool logShows(const std::string& text, std::size_t from = 0) const {
        using namespace std::chrono_literals;
        for (int i = 0; i < 150; ++i) {
            if (eventLog().find(text, from) != std::string::npos) return true;
            std::this_thread::sleep_for(100ms);
        }
        return false;
    }

    // Holds a pedal down for the time, then lets go.
    void press(unsigned char pedal, std::chrono::milliseconds held) {
        pty.send(pedal);
        std::this_thread::sleep_for(held);
        pty.send(kPedalsUp);
    }

    TempFolder folder;
    PseudoTerminal pty;
    std::string workingDirectory;  // where the station starts; empty: the test's own
    std::string display;           // the X display the station sees; empty: none
    std::string standardInput;     // a terminal for the station's keys; empty: the test's own

  private:
    // utime + stime of the child, or -1 when it can't be read.
    [[nodiscard]] long long cpuTicks() const {
        const auto stat = platform::readWholeFile("/proc/" + std::to_string(child_) + "/stat");
        if (!stat) return -1;
        // The command name may hold spaces: the fields are counted from its closing bracket.
        const auto close = stat->rfind(')');
        if (close == std::string::npos) return -1;
        std::istringstream fields(stat->substr(close + 2));
        std::string field;
        long long utime = 0, stime = 0;
        for (int index = 3; fields >> field; ++index) {
            if (index == 14) utime = std::stoll(field);
            if (index == 15) {
                stime = std::stoll(field);
                return utime + stime;
            }
        }
        return -1;
    }

    pid_t spawn(const std::vector<std::string>& given, int errorFd) {
        // Each station hears the peer's orders on a port of its own unless the test
        // names one, so stations of tests run side by side never take each other's.
        std::vector<std::string> extra = given;
        if (std::find(extra.begin(), extra.end(), "--order-port") == extra.end()) {
            extra.push_back("--order-port");
            extra.push_back(std::to_string(unusedLoopbackPort()));
        }
        const pid_t pid = ::fork();
        if (pid == 0) {
            if (errorFd >= 0) ::dup2(errorFd, STDERR_FILENO);
            if (!workingDirectory.empty() && ::chdir(workingDirectory.c_str()) != 0) ::_exit(126);
            ::unsetenv("DISPLAY");
            ::unsetenv("WAYLAND_DISPLAY");
            if (!display.empty()) ::setenv("DISPLAY", display.c_str(), 1);
            if (!standardInput.empty()) {
                const int in = ::open(standardInput.c_str(), O_RDWR | O_NOCTTY);
                if (in < 0 || ::dup2(in, STDIN_FILENO) < 0) ::_exit(125);
                ::close(in);
            }
            std::vector<std::string> words{"orvane-voice-desk", "--headless", "--data-folder",
                                           folder.path(),       "--audio",    "virtual"};
            words.insert(words.end(), extra.begin(), extra.end());
            std::vector<char*> argv;
            for (std::string& word : words) argv.push_back(word.data());
            argv.push_back(nullptr);
            ::execv(OVD_STATION_PROGRAM, argv.data());
            ::_exit(127);
        }
        return pid;
    }

    static ProcessEnd waitFor(pid_t pid) {
        int status = 0;
        ProcessEnd end;
        if (::waitpid(pid, &status, 0) != pid) return end;
        end.exited = WIFEXITED(status);
        end.status = end.exited ? WEXITSTATUS(status) : WTERMSIG(status);
        return end;
    }

    pid_t child_ = -1;
};

}  // namespace ovd::testing
