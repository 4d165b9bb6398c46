// The end-of-letter hot key on the real station recording from its serial pedal:
// on a private Xvfb, pressed with xdotool while another X client has the focus;
// and headless, typed on the terminal the station runs in.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <thread>

#include "platform/files.h"
#include "station_process.h"
#include "support/pseudo_terminal.h"

namespace ovd {
namespace {

using namespace std::chrono_literals;
namespace fs = std::filesystem;

// A program started here and ended by its own PID.
class Child {
  public:
    Child() = default;
    explicit Child(pid_t pid) : pid_(pid) {}
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;
    ~Child() {
        if (pid_ <= 0) return;
        ::kill(pid_, SIGTERM);
        ::waitpid(pid_, nullptr, 0);
    }
    [[nodiscard]] bool running() const { return pid_ > 0; }

  private:
    pid_t pid_ = -1;
};

// Xvfb on the first free display; its number comes back through a pipe.
std::string startXvfb(std::unique_ptr<Child>& server) {
    int pipeFds[2];
    if (::pipe(pipeFds) != 0) return {};
    const pid_t pid = ::fork();
    if (pid == 0) {
        ::close(pipeFds[0]);
        const std::string fd = std::to_string(pipeFds[1]);
        ::execlp("Xvfb", "Xvfb", "-displayfd", fd.c_str(), "-nolisten", "tcp", "-screen", "0",
                 "640x480x24", static_cast<char*>(nullptr));
        ::_exit(127);
    }
    ::close(pipeFds[1]);
    server = std::make_unique<Child>(pid);
    std::string number;
    char c = 0;
    while (::read(pipeFds[0], &c, 1) == 1 && c != '\n') number += c;
    ::close(pipeFds[0]);
    return number.empty() ? std::string() : ":" + number;
}

std::unique_ptr<Child> startClient(const char* program) {
    const pid_t pid = ::fork();
    if (pid == 0) {
        ::execlp(program, program, static_cast<char*>(nullptr));
        ::_exit(127);
    }
    return std::make_unique<Child>(pid);
}

bool run(const std::string& command) { return std::system(command.c_str()) == 0; }

TEST(HotKeyStationTest, TheSystemKeyEndsTheLetterWhileAnotherProgramHasTheFocus) {
    if (!run("command -v Xvfb >/dev/null && command -v xdotool >/dev/null && "
             "command -v xlogo >/dev/null"))
        GTEST_SKIP() << "Xvfb, xdotool and xlogo are needed";
    std::unique_ptr<Child> server;
    const std::string display = startXvfb(server);
    ASSERT_FALSE(display.empty());
    ::setenv("DISPLAY", display.c_str(), 1);
    const std::unique_ptr<Child> other = startClient("xlogo");
    ASSERT_TRUE(run("xdotool search --sync --class xlogo windowfocus --sync >/dev/null"));

    testing::StationProcess station;
    station.display = display;
    const std::string destination = station.folder.file("Typist");
    station.changeSettings([&](settings::SettingsRecord& r) {
        r.CaptureFilePath = station.folder.file("Rec");
        r.AutoSend1 = true;
        r.SendToOne = destination;
        r.EOLHotKeysOn = true;
        r.HotKeyMode = "System";
        r.EOLHotKey = "F9";
        r.EOLHotKeyShift = "Nothing";
    });
    station.start();
    ASSERT_TRUE(station.logShows("Procedure - CASE NEW")) << station.eventLog();
    station.press(testing::kMiddlePedal, 1500ms);
    ASSERT_TRUE(station.logShows("File Stop: ")) << station.eventLog();

    ASSERT_TRUE(run("xdotool key F9"));
    bool delivered = false;
    for (int i = 0; i < 100 && !delivered; ++i) {
        std::error_code error;
        for (const auto& entry : fs::directory_iterator(destination, error))
            delivered = delivered || entry.is_regular_file();
        if (!delivered) std::this_thread::sleep_for(100ms);
    }
    EXPECT_TRUE(delivered) << station.eventLog();
    EXPECT_TRUE(station.logShows("EOL is Executing")) << station.eventLog();
    ::unsetenv("DISPLAY");
}

bool terminalIsRaw(const std::string& path) {
    const int fd = ::open(path.c_str(), O_RDWR | O_NOCTTY);
    termios settings{};
    const bool read = fd >= 0 && ::tcgetattr(fd, &settings) == 0;
    if (fd >= 0) ::close(fd);
    return read && (settings.c_lflag & (ICANON | ECHO)) == 0;
}

TEST(HotKeyStationTest, HeadlessTheLocalKeyIsTypedOnTheTerminalWhichIsGivenBackAtTheEnd) {
    testing::StationProcess station;
    testing::PseudoTerminal terminal;
    station.standardInput = terminal.slavePath();
    const std::string destination = station.folder.file("Typist");
    station.changeSettings([&](settings::SettingsRecord& r) {
        r.CaptureFilePath = station.folder.file("Rec");
        r.AutoSend1 = true;
        r.SendToOne = destination;
        r.EOLHotKeysOn = true;
        r.HotKeyMode = "Local";
        r.EOLHotKey = "F9";
        r.EOLHotKeyShift = "Nothing";
    });
    station.start();
    ASSERT_TRUE(station.logShows("Procedure - CASE NEW")) << station.eventLog();
    bool raw = false;
    for (int i = 0; i < 50 && !raw; ++i) {
        raw = terminalIsRaw(terminal.slavePath());
        if (!raw) std::this_thread::sleep_for(100ms);
    }
    ASSERT_TRUE(raw) << "keys are read one at a time, without echo";
    station.press(testing::kMiddlePedal, 1500ms);
    ASSERT_TRUE(station.logShows("File Stop: ")) << station.eventLog();

    terminal.send({0x1B, '[', '2', '0', '~'});  // F9 as a terminal sends it
    bool delivered = false;
    for (int i = 0; i < 100 && !delivered; ++i) {
        std::error_code error;
        for (const auto& entry : fs::directory_iterator(destination, error))
            delivered = delivered || entry.is_regular_file();
        if (!delivered) std::this_thread::sleep_for(100ms);
    }
    EXPECT_TRUE(delivered) << station.eventLog();

    const testing::StationProcess::TimedEnd end = station.terminateTimed();
    EXPECT_TRUE(end.end.exited && end.end.status == 0) << end.end.status;
    EXPECT_FALSE(terminalIsRaw(terminal.slavePath())) << "SIGTERM gives the terminal back";
}

}  // namespace
}  // namespace ovd
