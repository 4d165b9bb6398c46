#include "devices/serial_port.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <utility>

#include "settings/ini_store.h"

namespace ovd::devices {

namespace {

// Long enough for the pedal to notice its power gone; the device needs some
// milliseconds, no more.
constexpr std::chrono::milliseconds kLineSettleTime{10};
// A serial control's receive buffer. A line that chatters keeps its newest bytes:
// a press that comes after noise is what the author means now.
constexpr std::size_t kReceiveBufferSize = 1024;
// What one receive event takes from the tty at most, so that a line flooded
// faster than it is read still lets the loop turn; the rest comes at the next event.
constexpr std::size_t kMostPerEvent = 4 * kReceiveBufferSize;

SerialError errorFromErrno(int error, const std::string& what) {
    SerialError result;
    switch (error) {
        case ENOENT:
        case ENODEV:
        case ENXIO:
        case ENOTDIR:
            result.kind = SerialFault::NotAvailable;
            break;
        default:
            result.kind = SerialFault::InUse;
            break;
    }
    result.text = what + ": " + std::strerror(error);
    return result;
}

bool configureRaw1200(int fd) {
    termios tty{};
    if (::tcgetattr(fd, &tty) != 0) return false;
    ::cfmakeraw(&tty);
    ::cfsetispeed(&tty, B1200);
    ::cfsetospeed(&tty, B1200);
    tty.c_cflag &= ~static_cast<tcflag_t>(CSIZE | PARENB | CSTOPB | CRTSCTS);
    tty.c_cflag |= CS8 | CLOCAL | CREAD;
    tty.c_iflag &= ~static_cast<tcflag_t>(IXON | IXOFF | IXANY);
    // With O_NONBLOCK this makes an empty read say "try again", so that a read of
    // nothing is told apart from a line that hung up.
    tty.c_cc[VMIN] = 1;
    tty.c_cc[VTIME] = 0;
    return ::tcsetattr(fd, TCSANOW, &tty) == 0;
}

}  // namespace

std::string serialDevicePath(const std::string& dataFolder, int port) {
    if (port < 1 || port > 8) return {};
    const settings::IniStore store(dataFolder + "/" + kSerialPortsFileName);
    const std::string key = "COM" + std::to_string(port);
    if (auto named = store.readValue(kSerialPortsSection, key); named && !named->empty()) {
        return *named;
    }
    return "/dev/ttyS" + std::to_string(port - 1);
}

SerialPort::SerialPort(platform::EventLoop& loop) : loop_(loop) {}

SerialPort::~SerialPort() { close(); }

platform::Failure SerialPort::refuse(const SerialError& error) {
    lastOpenFault_ = error.kind;
    return platform::failure(error.text);
}

platform::Result<void> SerialPort::open(const std::string& devicePath) {
    if (isOpen()) return refuse({SerialFault::InUse, devicePath + ": port already open"});
    if (devicePath.empty()) return refuse({SerialFault::NotAvailable, "no device for the port"});

    const int fd = ::open(devicePath.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0) return refuse(errorFromErrno(errno, devicePath));
    if (!::isatty(fd)) {
        ::close(fd);
        return refuse({SerialFault::NotAvailable, devicePath + ": not a serial device"});
    }
    // A port belongs to one program at a time, as a serial port always has. The
    // lock on a descriptor just opened is refused only because another holds it.
    auto locked = platform::LockedFile::lock(fd);
    if (!locked) return refuse({SerialFault::InUse, devicePath + ": " + std::strerror(EBUSY)});
    if (!configureRaw1200(locked->fd())) return refuse(errorFromErrno(errno, devicePath));
    file_ = std::move(*locked);
    devicePath_ = devicePath;
    buffer_.clear();
    lost_ = false;
    watchLine();
    return platform::Result<void>::success();
}

void SerialPort::watchLine() {
    watch_ = loop_.watchFd(file_.fd(), platform::FdEvent::Readable, [this] { onReadable(); });
}

void SerialPort::close() {
    if (!isOpen()) return;
    if (watch_) loop_.unwatchFd(*watch_);
    watch_.reset();
    file_.release();
    buffer_.clear();
}

void SerialPort::setRtsDtr(bool raised) {
    if (!isOpen()) return;
    int lines = TIOCM_RTS | TIOCM_DTR;
    // A refusal is no failure: see the header.
    (void)::ioctl(file_.fd(), raised ? TIOCMBIS : TIOCMBIC, &lines);
}

void SerialPort::resetPedal() {
    if (!isOpen()) return;
    // Not heard while the lines settle: what the pedal sends as it powers up stays
    // in the tty for the caller to drain, and the rest of the station goes on.
    if (watch_) loop_.unwatchFd(*watch_);
    watch_.reset();
    setRtsDtr(false);
    loop_.wait(kLineSettleTime);
    setRtsDtr(true);
    loop_.wait(kLineSettleTime);
    // Closed, or closed and opened again, by an event meanwhile: that open watches already.
    if (isOpen() && !watch_) watchLine();
}

bool SerialPort::fillBuffer() {
    if (!isOpen()) return false;
    bool gotSome = false;
    std::uint8_t chunk[256];
    for (std::size_t taken = 0; taken < kMostPerEvent;) {
        const ssize_t count = ::read(file_.fd(), chunk, sizeof chunk);
        if (count > 0) {
            buffer_.insert(buffer_.end(), chunk, chunk + count);
            if (buffer_.size() > kReceiveBufferSize) {
                buffer_.erase(buffer_.begin(),
                              buffer_.begin() +
                                  static_cast<std::ptrdiff_t>(buffer_.size() - kReceiveBufferSize));
            }
            taken += static_cast<std::size_t>(count);
            gotSome = true;
            continue;
        }
        if (count < 0 && errno == EINTR) continue;
        if (count < 0 && (errno == EAGAIN || errno == EWOULDBLOCK)) return gotSome;
        // End of file or a hard error: the device went away. Stop watching so the
        // loop doesn't spin on a line that stays readable; the port stays open
        // until closed.
        if (watch_) loop_.unwatchFd(*watch_);
        watch_.reset();
        lost_ = true;
        return gotSome;
    }
    return gotSome;
}

void SerialPort::onReadable() {
    if (fillBuffer() && onReceive_) onReceive_();
    if (lost_ && isOpen() && onLost_) {
        lost_ = false;
        onLost_();
    }
}

std::optional<std::uint8_t> SerialPort::readByte() {
    if (buffer_.empty()) fillBuffer();
    if (buffer_.empty()) return std::nullopt;
    const std::uint8_t byte = buffer_.front();
    buffer_.pop_front();
    return byte;
}

bool SerialPort::modemLine(int bit) const {
    if (!isOpen()) return false;
    int lines = 0;
    if (::ioctl(file_.fd(), TIOCMGET, &lines) != 0) return false;
    return (lines & bit) != 0;
}

bool SerialPort::CDHolding() { return modemLine(TIOCM_CAR); }
bool SerialPort::DSRHolding() { return modemLine(TIOCM_DSR); }
bool SerialPort::CTSHolding() { return modemLine(TIOCM_CTS); }

}  // namespace ovd::devices
