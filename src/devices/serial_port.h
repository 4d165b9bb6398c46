#pragma once
// The serial port the pedal hangs on: a tty opened raw at 1200 baud, 8 data bits,
// no parity, one stop bit and no flow control. The pedal draws its power from RTS
// and DTR, and dropping both for a moment resets it. Bytes are taken from the tty
// on the station's loop into the port's own receive buffer, and the receive
// callback runs whenever new ones came in; the handler then reads them one by one.
// The buffer is bounded and keeps the newest bytes when a noisy line overfills it.
//
// COM1 to COM8 are device paths named in SerialPorts.ini in the data folder, so a
// USB adapter or a pty can stand for a port.

#include <cstdint>
#include <deque>
#include <functional>
#include <optional>
#include <string>

#include "devices/serial_pedal_decoder.h"
#include "platform/event_loop.h"
#include "platform/locked_file.h"
#include "platform/result.h"

namespace ovd::devices {

inline constexpr const char* kSerialPortsFileName = "SerialPorts.ini";
inline constexpr const char* kSerialPortsSection = "Ports";

// The device path of COM<port>: the "COM<port>" key of SerialPorts.ini when it is
// set, else /dev/ttyS<port - 1>. A port outside 1 to 8 names no device.
[[nodiscard]] std::string serialDevicePath(const std::string& dataFolder, int port);

// What can go wrong with the port, in the kinds the port menus answer to.
enum class SerialFault {
    NotAvailable,  // no such device
    NotOpen,       // an operation on a port that is not open
    InUse,         // busy, no permission, or any other refusal
};

struct SerialError {
    SerialFault kind = SerialFault::InUse;
    std::string text;  // the system's own words, for the log
};

class SerialPort : public SerialByteSource {
  public:
    explicit SerialPort(platform::EventLoop& loop);
    ~SerialPort() override;
    SerialPort(const SerialPort&) = delete;
    SerialPort& operator=(const SerialPort&) = delete;

    void setOnReceive(std::function<void()> onReceive) { onReceive_ = std::move(onReceive); }
    // The device went away under the open port (unplugged, or its other end gone).
    // The port is still open when this runs; the callback may close it.
    void setOnLost(std::function<void()> onLost) { onLost_ = std::move(onLost); }

    // Opens the device for this process alone; a refusal is the system's words for
    // the log. Opening an open port is refused as in use.
    platform::Result<void> open(const std::string& devicePath);
    // The kind of the last refused open. Only the port menus answer to the kind,
    // right after the open in this room; the words travel in the Result.
    [[nodiscard]] SerialFault lastOpenFault() const { return lastOpenFault_; }
    // Nothing happens on a closed port.
    void close();
    [[nodiscard]] bool isOpen() const { return file_.held(); }
    [[nodiscard]] const std::string& devicePath() const { return devicePath_; }

    // RTS and DTR together. A port that refuses the lines (a pty does) is used as
    // it is: a pedal that needs no power from them still works.
    void setRtsDtr(bool raised);
    // The pedal's reset and power-up: lines off, a short wait, on, the same wait.
    // The loop runs other events during the waits, but the port's own input is not
    // read until the reset is over: it must not be cut into by a press.
    void resetPedal();

    std::optional<std::uint8_t> readByte() override;
    [[nodiscard]] bool CDHolding() override;
    [[nodiscard]] bool DSRHolding() override;
    [[nodiscard]] bool CTSHolding() override;

    // Bytes taken from the tty and not yet read.
    [[nodiscard]] std::size_t waiting() const { return buffer_.size(); }

  private:
    // Remembers the kind of a refused open and hands on its words.
    platform::Failure refuse(const SerialError& error);
    // Takes what the tty holds into the buffer; true when something new came.
    bool fillBuffer();
    void watchLine();
    void onReadable();
    [[nodiscard]] bool modemLine(int bit) const;

    platform::EventLoop& loop_;
    std::function<void()> onReceive_;
    std::function<void()> onLost_;
    bool lost_ = false;
    SerialFault lastOpenFault_ = SerialFault::NotAvailable;
    platform::LockedFile file_;
    std::string devicePath_;
    std::optional<platform::EventLoop::Handle> watch_;
    std::deque<std::uint8_t> buffer_;
};

}  // namespace ovd::devices
