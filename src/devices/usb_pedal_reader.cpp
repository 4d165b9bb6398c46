#include "devices/usb_pedal_reader.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>

namespace ovd::devices {

namespace {

// Reports kept between two polls; a pedal sends a handful a second, so only a
// stalled station reaches this, and then the oldest go first.
constexpr std::size_t kKeptReports = 256;
// Read size for a device whose descriptor declares no input.
constexpr int kFallbackReportBytes = 64;
constexpr std::size_t kPieGroup = 4;

std::optional<int> hidrawNumber(const std::string& name) {
    constexpr std::string_view kPrefix = "hidraw";
    if (name.size() <= kPrefix.size() || name.compare(0, kPrefix.size(), kPrefix) != 0) {
        return std::nullopt;
    }
    int number = 0;
    const char* first = name.data() + kPrefix.size();
    const char* last = name.data() + name.size();
    const auto [end, error] = std::from_chars(first, last, number);
    if (error != std::errc{} || end != last) return std::nullopt;
    return number;
}

// "HID_ID=0003:000005F3:000000FF" gives vendor and product.
bool readHidId(const std::filesystem::path& uevent, std::uint32_t& vendor, std::uint32_t& product) {
    std::ifstream in(uevent);
    std::string line;
    while (std::getline(in, line)) {
        if (line.rfind("HID_ID=", 0) != 0) continue;
        const std::string id = line.substr(7);
        const auto firstColon = id.find(':');
        const auto secondColon = id.find(':', firstColon == std::string::npos ? 0 : firstColon + 1);
        if (firstColon == std::string::npos || secondColon == std::string::npos) return false;
        const std::string vendorText = id.substr(firstColon + 1, secondColon - firstColon - 1);
        std::string productText = id.substr(secondColon + 1);
        while (!productText.empty() && (productText.back() == '\r' || productText.back() == ' ')) {
            productText.pop_back();
        }
        const auto parse = [](const std::string& text, std::uint32_t& value) {
            const auto [end, error] =
                std::from_chars(text.data(), text.data() + text.size(), value, 16);
            return error == std::errc{} && end == text.data() + text.size() && !text.empty();
        };
        return parse(vendorText, vendor) && parse(productText, product);
    }
    return false;
}

std::vector<std::uint8_t> readBytes(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

}  // namespace

std::vector<HidrawDevice> findHidrawDevices(const HidrawRoots& roots, std::uint32_t vendor) {
    std::vector<HidrawDevice> devices;
    std::error_code error;
    const std::filesystem::path classFolder = std::filesystem::path(roots.sysfs) / "class/hidraw";
    for (const auto& entry : std::filesystem::directory_iterator(classFolder, error)) {
        const auto number = hidrawNumber(entry.path().filename().string());
        if (!number) continue;
        std::uint32_t deviceVendor = 0;
        HidrawDevice device;
        device.number = *number;
        if (!readHidId(entry.path() / "device/uevent", deviceVendor, device.product)) continue;
        if (deviceVendor != vendor) continue;
        const auto descriptor = readBytes(entry.path() / "device/report_descriptor");
        device.facts = readHidDescriptor(descriptor);
        devices.push_back(device);
    }
    std::sort(devices.begin(), devices.end(),
              [](const HidrawDevice& a, const HidrawDevice& b) { return a.number < b.number; });
    return devices;
}

UsbPedalReader::UsbPedalReader(platform::EventLoop& loop, HidrawRoots roots)
    : loop_(loop), roots_(std::move(roots)) {}

UsbPedalReader::~UsbPedalReader() { close(); }

bool UsbPedalReader::open(int number, const HidDescriptorFacts& facts) {
    close();
    const std::string path = roots_.dev + "/hidraw" + std::to_string(number);
    const int fd = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0) return false;
    fd_ = fd;
    gone_ = false;
    reports_.clear();
    numberedReports_ = facts.reportIds;
    readBytes_ =
        facts.inputBytes > 0 ? facts.inputBytes + (facts.reportIds ? 1 : 0) : kFallbackReportBytes;
    watch_ = loop_.watchFd(fd_, platform::FdEvent::Readable, [this] { readReady(); });
    watching_ = true;
    return true;
}

void UsbPedalReader::close() {
    if (watching_) loop_.unwatchFd(watch_);
    watching_ = false;
    if (fd_ >= 0) ::close(fd_);
    fd_ = -1;
}

void UsbPedalReader::readReady() {
    std::vector<std::uint8_t> buffer(static_cast<std::size_t>(readBytes_));
    for (;;) {
        const ssize_t got = ::read(fd_, buffer.data(), buffer.size());
        if (got > 0) {
            // A device that numbers no reports gets number 0 in front, so that every
            // report starts with its number as the pedal logic expects.
            const std::size_t offset = numberedReports_ ? 0 : 1;
            std::vector<std::uint8_t> report(offset + static_cast<std::size_t>(got), 0);
            std::copy_n(buffer.begin(), got, report.begin() + static_cast<std::ptrdiff_t>(offset));
            if (reports_.size() == kKeptReports) reports_.pop_front();
            reports_.push_back(std::move(report));
            continue;
        }
        if (got < 0 && errno == EINTR) continue;
        if (got < 0 && errno == EAGAIN) return;
        // End of file or a read error: the pedal was pulled out.
        gone_ = true;
        close();
        return;
    }
}

std::uint8_t UsbPedalReader::StartWatch(std::uint32_t product, std::uint32_t usagePage,
                                        std::uint32_t usage, std::int32_t& HIDHandle) {
    HIDHandle = 0;
    for (const HidrawDevice& device : findHidrawDevices(roots_, kPedalVendor)) {
        if (device.product != product || device.facts.usagePage != usagePage ||
            device.facts.usage != usage) {
            continue;
        }
        if (!open(device.number, device.facts)) return 0;
        handle_ = device.number + 1;
        HIDHandle = handle_;
        return 1;
    }
    return 0;
}

std::int16_t UsbPedalReader::GetData(std::int32_t handle, std::span<std::uint8_t> buffer,
                                     int& count) {
    count = 0;
    if (handle == 0 || handle != handle_ || fd_ < 0) return 0;
    std::size_t used = 0;
    while (!reports_.empty() && used + reports_.front().size() <= buffer.size()) {
        std::copy(reports_.front().begin(), reports_.front().end(), buffer.begin() + used);
        used += reports_.front().size();
        reports_.pop_front();
    }
    count = static_cast<int>(used);
    return 1;
}

std::uint8_t UsbPedalReader::StopWatch(std::int32_t handle) {
    if (handle == 0 || handle != handle_) return 0;
    close();
    handle_ = 0;
    return 1;
}

int UsbPedalReader::EnumeratePIE(std::uint32_t vendor, PieList& list, int& count) {
    list.fill(0);
    count = 0;
    const auto devices = findHidrawDevices(roots_, vendor);
    if (devices.empty()) return 1;
    for (const HidrawDevice& device : devices) {
        const std::size_t at = static_cast<std::size_t>(count) * kPieGroup;
        if (at + kPieGroup > list.size()) break;
        list[at] = static_cast<std::int32_t>(device.product);
        list[at + 1] = static_cast<std::int32_t>(device.facts.usage);
        list[at + 2] = static_cast<std::int32_t>(device.facts.usagePage);
        list[at + 3] = device.number;
        ++count;
    }
    return 0;
}

int UsbPedalReader::SetupInterface(std::int32_t handle) {
    for (const HidrawDevice& device : findHidrawDevices(roots_, kPedalVendor)) {
        if (device.number != handle) continue;
        if (!open(device.number, device.facts)) return 1;
        handle_ = handle;
        return 0;
    }
    return 1;
}

int UsbPedalReader::ReadData(std::int32_t handle, std::array<std::uint8_t, 3>& buffer) {
    if (handle != handle_ || (fd_ < 0 && !gone_)) return kReadDataNothing;
    if (reports_.empty()) return gone_ ? kReadDataGone : kReadDataNothing;
    buffer.fill(0);
    const auto& report = reports_.front();
    std::copy_n(report.begin(), std::min(report.size(), buffer.size()), buffer.begin());
    reports_.pop_front();
    return kReadDataReport;
}

void UsbPedalReader::CloseInterface(std::int32_t handle) {
    if (handle == handle_) close();
}

void UsbPedalReader::CleanupInterface(std::int32_t handle) {
    if (handle != handle_) return;
    close();
    gone_ = false;
    reports_.clear();
}

}  // namespace ovd::devices
