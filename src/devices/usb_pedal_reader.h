#pragma once
// The USB pedal as the operating system shows it: a hidraw device of the pedal
// maker (vendor 0x05F3), found through sysfs and read on the station's loop. It
// offers both drivers' calls with the results the pedal logic expects: the stream
// driver (StartWatch, GetData, StopWatch) and the single-report driver
// (EnumeratePIE, SetupInterface, ReadData, CloseInterface, CleanupInterface).
//
// Reports come out as the pedal logic reads them: a report number in front (0
// for a device that numbers none), then the device's bytes.

#include <array>
#include <cstdint>
#include <deque>
#include <span>
#include <string>
#include <vector>

#include "devices/usb_hid_descriptor.h"
#include "platform/event_loop.h"

namespace ovd::devices {

inline constexpr std::uint32_t kPedalVendor = 0x05F3;

// ReadData results: a report, the device gone, and nothing there (any other value).
inline constexpr int kReadDataReport = 0;
inline constexpr int kReadDataGone = 307;
inline constexpr int kReadDataNothing = 304;

// Where the system's devices are seen; tests point both at a temporary folder.
struct HidrawRoots {
    std::string sysfs = "/sys";
    std::string dev = "/dev";
};

// One hidraw device of the vendor, as sysfs describes it.
struct HidrawDevice {
    int number = 0;  // N of hidrawN
    std::uint32_t product = 0;
    HidDescriptorFacts facts;
};

// The vendor's hidraw devices in the order of their numbers.
[[nodiscard]] std::vector<HidrawDevice> findHidrawDevices(const HidrawRoots& roots,
                                                          std::uint32_t vendor);

// The single-report driver's device list: four entries per device (product ID,
// usage, usage page, device handle), in groups from the start.
using PieList = std::array<std::int32_t, 101>;

class UsbPedalReader {
  public:
    explicit UsbPedalReader(platform::EventLoop& loop, HidrawRoots roots = {});
    ~UsbPedalReader();
    UsbPedalReader(const UsbPedalReader&) = delete;
    UsbPedalReader& operator=(const UsbPedalReader&) = delete;

    // Opens the vendor's device with that product ID, usage page and usage. 1 on
    // success, with a handle that is never 0; 0 when there is none.
    std::uint8_t StartWatch(std::uint32_t product, std::uint32_t usagePage, std::uint32_t usage,
                            std::int32_t& HIDHandle);
    // Whole reports received since the last call, as many as fit the buffer. 1 on
    // success (count may be 0); 0 with a wrong handle or a device gone.
    std::int16_t GetData(std::int32_t handle, std::span<std::uint8_t> buffer, int& count);
    // Not 0 when the handle was open and is now closed.
    std::uint8_t StopWatch(std::int32_t handle);

    // Lists the vendor's devices; 0 on success, not 0 when there is none.
    int EnumeratePIE(std::uint32_t vendor, PieList& list, int& count);
    // Opens the device with that handle (its hidraw number); 0 on success.
    int SetupInterface(std::int32_t handle);
    // The oldest report not yet read, in the buffer.
    int ReadData(std::int32_t handle, std::array<std::uint8_t, 3>& buffer);
    void CloseInterface(std::int32_t handle);
    void CleanupInterface(std::int32_t handle);

    [[nodiscard]] bool isOpen() const { return fd_ >= 0; }

  private:
    bool open(int number, const HidDescriptorFacts& facts);
    void close();
    void readReady();

    platform::EventLoop& loop_;
    HidrawRoots roots_;
    int fd_ = -1;
    std::int32_t handle_ = 0;
    bool gone_ = false;
    bool numberedReports_ = false;
    int readBytes_ = 0;
    platform::EventLoop::Handle watch_ = 0;
    bool watching_ = false;
    std::deque<std::vector<std::uint8_t>> reports_;
};

}  // namespace ovd::devices
