#pragma once
// The dictation devices of the table, found and read through hidraw while the
// station runs: at start every hidraw device that a table row names is opened,
// and the device folder is watched (inotify) so that a device plugged in later,
// or given its access rights by udev a moment after it appears, is opened then,
// and one pulled out is let go, without a restart.

#include <cstdint>
#include <functional>
#include <map>
#include <set>
#include <string>

#include "devices/hid_device_table.h"
#include "devices/usb_pedal_reader.h"
#include "platform/event_loop.h"

namespace ovd::devices {

class HidDeviceWatch {
  public:
    struct Device {
        int number = 0;  // N of hidrawN
        const HidDeviceRow* row = nullptr;
        HidControlDecoder decoder;
        bool reportIds = false;
        int fd = -1;
        platform::EventLoop::Handle watch = 0;
        std::set<std::size_t> wrongLengthsTold;
    };

    HidDeviceWatch(platform::EventLoop& loop, const HidDeviceTable& table, HidrawRoots roots);
    ~HidDeviceWatch();
    HidDeviceWatch(const HidDeviceWatch&) = delete;
    HidDeviceWatch& operator=(const HidDeviceWatch&) = delete;

    // Opens what is there and starts watching for what comes and goes.
    void start();
    void stop();
    // Looks for devices again; the watch does this by itself on every change.
    void rescan();

    [[nodiscard]] bool running() const { return inotifyFd_ >= 0; }
    [[nodiscard]] std::size_t openCount() const { return devices_.size(); }
    [[nodiscard]] bool isOpen(int number) const { return devices_.count(number) != 0; }

    // A control of a device went down or up.
    std::function<void(const Device&, const HidControlDecoder::Change&)> onChange;
    // A line for the event log.
    std::function<void(const std::string&)> note;
    // Devices the station reads another way (the maker's own pedal under the USB
    // pedal driver) are left to that way.
    std::function<bool(const HidDeviceRow&, const HidrawDevice&)> leaveAlone;

  private:
    void open(const HidrawDevice& found, const HidDeviceRow& row);
    void readReady(int number);
    void lose(int number, const std::string& reason);
    void inotifyReady();
    void tell(const std::string& text) const;

    platform::EventLoop& loop_;
    const HidDeviceTable& table_;
    HidrawRoots roots_;
    std::map<int, Device> devices_;
    // Nodes that could not be opened, told once until they change.
    std::set<int> refused_;
    int inotifyFd_ = -1;
    platform::EventLoop::Handle inotifyWatch_ = 0;
};

}  // namespace ovd::devices
