#include "devices/game_pedals.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <optional>

#include "settings/ini_store.h"

namespace ovd::devices {

namespace {

constexpr std::size_t kReadBytes = 64 * JoystickEventStream::kRecordBytes;

// N of "jsN", or nothing for any other name.
std::optional<int> joystickNumber(const std::string& name) {
    if (name.size() < 3 || name.compare(0, 2, "js") != 0) return std::nullopt;
    int number = 0;
    for (std::size_t i = 2; i < name.size(); ++i) {
        if (name[i] < '0' || name[i] > '9' || number > 9999) return std::nullopt;
        number = number * 10 + (name[i] - '0');
    }
    return number;
}

}  // namespace

std::string gamePortDevicePath(const std::string& dataFolder, const std::string& inputFolder) {
    const settings::IniStore store(dataFolder + "/" + kGamePortFileName);
    if (auto named = store.readValue(kGamePortSection, kGamePortKey); named && !named->empty())
        return *named;
    std::optional<int> first;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(inputFolder, error)) {
        const std::optional<int> number = joystickNumber(entry.path().filename().string());
        if (number && (!first || *number < *first)) first = number;
    }
    return inputFolder + "/js" + std::to_string(first.value_or(0));
}

GamePedals::GamePedals(settings::ConfigFile& config, platform::EventLoop& loop,
                       PedalEventSink& sink, const dictation::DictationState& state,
                       PedalMenuChecks& menu, std::string inputFolder)
    : Timer48(loop, "Timer48", kGamePollMs),
      config_(config),
      loop_(loop),
      menu_(menu),
      inputFolder_(std::move(inputFolder)),
      decoder_(config.record, state, sink) {
    decoder_.PedalsBusy = [this] { return PedalsBusy && PedalsBusy(); };
    Timer48.setOnTick([this] { settle(); });
}

GamePedals::~GamePedals() { closeDevice(); }

void GamePedals::tell(const std::string& text) const {
    if (note) note(text);
}

platform::Result<void> GamePedals::openDevice() {
    devicePath_ = gamePortDevicePath(config_.dataFolder(), inputFolder_);
    const int fd = ::open(devicePath_.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0) return platform::systemFailure(devicePath_, errno);
    fd_ = fd;
    stream_.clear();
    decoder_.reset();
    watch_ = loop_.watchFd(fd_, platform::FdEvent::Readable, [this] { readReady(); });
    return platform::Result<void>::success();
}

void GamePedals::closeDevice() {
    if (fd_ < 0) return;
    loop_.unwatchFd(watch_);
    ::close(fd_);
    fd_ = -1;
}

void GamePedals::OpenGamePedals() {
    config_.record.UserSelectGame = true;
    Timer48.setEnabled(false);
    if (isOpen()) return;
    // An absent joystick stops the polling; no message, but the log says why.
    if (platform::Result<void> opened = openDevice(); !opened) {
        tell(std::string(kGamePortNotice) + "not available: " + opened.error());
        return;
    }
    tell(std::string(kGamePortNotice) + "reading " + devicePath_);
}

void GamePedals::CloseGamePedals() {
    Timer48.setEnabled(false);
    closeDevice();
}

void GamePedals::readReady() {
    std::array<std::uint8_t, kReadBytes> buffer{};
    for (;;) {
        const ssize_t got = ::read(fd_, buffer.data(), buffer.size());
        if (got > 0) {
            stream_.feed(
                std::span<const std::uint8_t>(buffer.data(), static_cast<std::size_t>(got)),
                [this](std::uint32_t) { settle(); });
            if (fd_ < 0) return;  // closed by a command the edge ran
            continue;
        }
        if (got == 0) {
            deviceLost("the device closed");
            return;
        }
        if (errno == EINTR) continue;
        if (errno == EAGAIN || errno == EWOULDBLOCK) return;
        deviceLost(std::strerror(errno));
        return;
    }
}

void GamePedals::settle() {
    // An edge can pump events and bring the next read in here; that read's value is
    // taken by the timer once this one is done.
    if (settling_) {
        Timer48.setEnabled(true);
        return;
    }
    settling_ = true;
    const bool taken = decoder_.tick(stream_.buttons());
    settling_ = false;
    Timer48.setEnabled(isOpen() && (!taken || stream_.buttons() != decoder_.lastButtonValue()));
}

void GamePedals::deviceLost(const std::string& reason) {
    // Polling stops for good, as for an unplugged joystick; what is recorded stays
    // and the station goes on with its other controls.
    tell(std::string(kGamePortNotice) + "lost: " + devicePath_ + " (" + reason +
         "); the joystick is no longer read until game port pedals are switched on again");
    CloseGamePedals();
}

void GamePedals::toggleGamePedals() {
    if (!menu_.gameChecked) {
        menu_.gameChecked = true;
        menu_.usbChecked = false;
        if (uncheckSerialMenu) uncheckSerialMenu();
        config_.record.UserSelectGame = true;
        if (showConfigDialog) showConfigDialog();
        OpenGamePedals();
    } else {
        menu_.gameChecked = false;
        config_.record.UserSelectGame = false;
        CloseGamePedals();
    }
    (void)config_.WriteConfig();
}

}  // namespace ovd::devices
