#pragma once
// The table of dictation devices of other makers: which USB device (vendor,
// product, HID function) and which bit or key of its input report is which foot
// pedal or which microphone button. The table is data shipped with the station
// (dictation_devices.conf); a line that can't be read is reported and skipped,
// and the other lines still work.
//
// Also the per-device decoding: a report in, the controls that changed out.

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace ovd::devices {

inline constexpr const char* kDictationDevicesFileName = "dictation_devices.conf";

// Where a control shows in a report.
struct HidControl {
    enum class Kind { Bit, Key };
    // "LEFT", "MIDDLE", "RIGHT", or a command word of the switch model.
    std::string target;
    Kind kind = Kind::Bit;
    int byte = 0;          // Bit: the report byte (of the word's low byte for a 16-bit word)
    int bit = 0;           // Bit: 0..7, or 0..15 in a 16-bit word
    bool word16 = false;   // Bit: the bit is of a little-endian word at byte
    std::uint8_t key = 0;  // Key: the keyboard usage
    [[nodiscard]] bool isPedal() const;
};

struct HidDeviceRow {
    std::string name;
    std::uint32_t vendor = 0;
    std::optional<std::uint32_t> product;  // nothing: every product of the vendor
    std::optional<std::uint32_t> usagePage;
    std::optional<std::uint32_t> usage;
    int reportBytes = 0;
    std::vector<HidControl> controls;
    int line = 0;  // where it stands in the table, for the log

    [[nodiscard]] bool matches(std::uint32_t deviceVendor, std::uint32_t deviceProduct,
                               std::uint32_t deviceUsagePage, std::uint32_t deviceUsage) const;
};

struct HidDeviceTable {
    std::vector<HidDeviceRow> rows;
    // One text per line that could not be read: "line N: why".
    std::vector<std::string> problems;

    // The first row for this device and function, or nothing.
    [[nodiscard]] const HidDeviceRow* find(std::uint32_t vendor, std::uint32_t product,
                                           std::uint32_t usagePage, std::uint32_t usage) const;
};

// The command words a microphone button may give.
[[nodiscard]] bool isDeviceCommandWord(std::string_view word);

[[nodiscard]] HidDeviceTable parseHidDeviceTable(std::string_view text);
[[nodiscard]] HidDeviceTable readHidDeviceTable(const std::string& path);

// One device's reports into control changes. The state is what the last report
// of the right length held.
class HidControlDecoder {
  public:
    struct Change {
        std::size_t control;  // index into the row's controls
        bool down;
    };

    explicit HidControlDecoder(const HidDeviceRow& row) : row_(&row) {}

    // The controls that went down or up with this report, in the row's order.
    // A report of another length than the row's changes nothing and gives nothing:
    // the caller says so in the log.
    [[nodiscard]] std::vector<Change> decode(std::span<const std::uint8_t> report);
    [[nodiscard]] bool lengthFits(std::size_t bytes) const;
    // Every control let go at once: what a device that went away leaves behind.
    [[nodiscard]] std::vector<Change> releaseAll();
    [[nodiscard]] const HidDeviceRow& row() const { return *row_; }

  private:
    [[nodiscard]] bool held(const HidControl& control, std::span<const std::uint8_t> report) const;

    const HidDeviceRow* row_;
    std::vector<bool> down_;
};

}  // namespace ovd::devices
