#include "devices/hid_device_watch.h"

#include <fcntl.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <vector>

namespace ovd::devices {

namespace {

// A report number and the longest report a table row may name, with room to spare
// so that a longer report is seen as such.
constexpr std::size_t kReadBytes = 128;
constexpr std::string_view kHidrawPrefix = "hidraw";

std::string deviceLabel(const HidDeviceRow& row, int number) {
    return "Dictation device " + row.name + " (hidraw" + std::to_string(number) + ")";
}

}  // namespace

HidDeviceWatch::HidDeviceWatch(platform::EventLoop& loop, const HidDeviceTable& table,
                               HidrawRoots roots)
    : loop_(loop), table_(table), roots_(std::move(roots)) {}

HidDeviceWatch::~HidDeviceWatch() { stop(); }

void HidDeviceWatch::tell(const std::string& text) const {
    if (note) note(text);
}

void HidDeviceWatch::start() {
    if (running()) return;
    inotifyFd_ = ::inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    if (inotifyFd_ >= 0) {
        if (::inotify_add_watch(inotifyFd_, roots_.dev.c_str(),
                                IN_CREATE | IN_DELETE | IN_ATTRIB | IN_MOVED_TO) < 0) {
            tell("Dictation devices: " + roots_.dev + " can't be watched (" + std::strerror(errno) +
                 "); devices plugged in later need a restart");
        }
        inotifyWatch_ =
            loop_.watchFd(inotifyFd_, platform::FdEvent::Readable, [this] { inotifyReady(); });
    }
    rescan();
}

void HidDeviceWatch::stop() {
    while (!devices_.empty()) {
        Device& device = devices_.begin()->second;
        loop_.unwatchFd(device.watch);
        ::close(device.fd);
        devices_.erase(devices_.begin());
    }
    if (inotifyFd_ >= 0) {
        loop_.unwatchFd(inotifyWatch_);
        ::close(inotifyFd_);
        inotifyFd_ = -1;
    }
    refused_.clear();
}

void HidDeviceWatch::rescan() {
    std::set<std::uint32_t> vendors;
    for (const HidDeviceRow& row : table_.rows) vendors.insert(row.vendor);
    for (const std::uint32_t vendor : vendors) {
        for (const HidrawDevice& found : findHidrawDevices(roots_, vendor)) {
            if (isOpen(found.number)) continue;
            const HidDeviceRow* row =
                table_.find(vendor, found.product, found.facts.usagePage, found.facts.usage);
            if (row == nullptr) continue;
            if (leaveAlone && leaveAlone(*row, found)) continue;
            open(found, *row);
        }
    }
}

void HidDeviceWatch::open(const HidrawDevice& found, const HidDeviceRow& row) {
    const std::string path = roots_.dev + "/hidraw" + std::to_string(found.number);
    const int fd = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0) {
        // udev may give the rights a moment after the node appears: the change of
        // rights brings us back here, so the refusal is told only once.
        if (refused_.insert(found.number).second) {
            tell(deviceLabel(row, found.number) + " can't be opened: " + path + ": " +
                 std::strerror(errno) + " (is the station's udev rule installed?)");
        }
        return;
    }
    refused_.erase(found.number);
    Device device{found.number, &row, HidControlDecoder(row), found.facts.reportIds, fd, 0, {}};
    const int number = found.number;
    device.watch =
        loop_.watchFd(fd, platform::FdEvent::Readable, [this, number] { readReady(number); });
    devices_.emplace(number, std::move(device));
    tell(deviceLabel(row, number) + " is read as " +
         (row.controls.front().isPedal() ? "foot pedals" : "dictation buttons"));
}

void HidDeviceWatch::readReady(int number) {
    std::array<std::uint8_t, kReadBytes> buffer{};
    for (;;) {
        auto it = devices_.find(number);
        if (it == devices_.end()) return;
        Device& device = it->second;
        const ssize_t got = ::read(device.fd, buffer.data(), buffer.size());
        if (got == 0) {
            lose(number, "the device closed");
            return;
        }
        if (got < 0) {
            if (errno == EINTR) continue;
            if (errno == EAGAIN || errno == EWOULDBLOCK) return;
            lose(number, std::strerror(errno));
            return;
        }
        std::span<const std::uint8_t> report(buffer.data(), static_cast<std::size_t>(got));
        if (device.reportIds) report = report.subspan(1);
        if (!device.decoder.lengthFits(report.size())) {
            // One line per length: a device that keeps sending it must not flood the log.
            if (device.wrongLengthsTold.insert(report.size()).second) {
                tell(deviceLabel(*device.row, number) + ": a report of " +
                     std::to_string(report.size()) + " bytes where " +
                     std::to_string(device.row->reportBytes) + " were expected; ignored");
            }
            continue;
        }
        const std::vector<HidControlDecoder::Change> changes = device.decoder.decode(report);
        for (const HidControlDecoder::Change& change : changes) {
            // A command run from the change may pump events and let the device go.
            auto again = devices_.find(number);
            if (again == devices_.end()) return;
            if (onChange) onChange(again->second, change);
        }
    }
}

void HidDeviceWatch::lose(int number, const std::string& reason) {
    auto it = devices_.find(number);
    if (it == devices_.end()) return;
    Device device = std::move(it->second);
    devices_.erase(it);
    loop_.unwatchFd(device.watch);
    ::close(device.fd);
    tell(deviceLabel(*device.row, number) + " went away (" + reason +
         "); it is read again when it comes back");
    // Whatever it held is let go, so that no pedal stays down for ever.
    for (const HidControlDecoder::Change& change : device.decoder.releaseAll()) {
        if (onChange) onChange(device, change);
    }
}

void HidDeviceWatch::inotifyReady() {
    alignas(inotify_event) std::array<char, 4096> buffer{};
    bool changed = false;
    std::vector<int> removed;
    for (;;) {
        const ssize_t got = ::read(inotifyFd_, buffer.data(), buffer.size());
        if (got <= 0) break;
        for (ssize_t at = 0; at < got;) {
            const auto* event = reinterpret_cast<const inotify_event*>(buffer.data() + at);
            at += static_cast<ssize_t>(sizeof(inotify_event) + event->len);
            const std::string name = event->len > 0 ? std::string(event->name) : std::string();
            if (name.rfind(kHidrawPrefix, 0) != 0) continue;
            changed = true;
            if ((event->mask & IN_DELETE) != 0) {
                int number = 0;
                const auto [end, error] = std::from_chars(name.data() + kHidrawPrefix.size(),
                                                          name.data() + name.size(), number);
                if (error == std::errc{} && end == name.data() + name.size())
                    removed.push_back(number);
            }
        }
    }
    for (const int number : removed) {
        refused_.erase(number);
        lose(number, "its node was removed");
    }
    if (changed) rescan();
}

}  // namespace ovd::devices
