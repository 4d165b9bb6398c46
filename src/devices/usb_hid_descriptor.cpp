#include "devices/usb_hid_descriptor.h"

namespace ovd::devices {

namespace {

// Short item types and tags of the descriptor grammar.
constexpr unsigned kMain = 0;
constexpr unsigned kGlobal = 1;
constexpr unsigned kLocal = 2;
constexpr unsigned kMainInput = 0x8;
constexpr unsigned kMainCollection = 0xA;
constexpr unsigned kGlobalUsagePage = 0x0;
constexpr unsigned kGlobalReportSize = 0x7;
constexpr unsigned kGlobalReportId = 0x8;
constexpr unsigned kGlobalReportCount = 0x9;
constexpr unsigned kLocalUsage = 0x0;
constexpr std::uint8_t kLongItem = 0xFE;
// Far beyond any pedal; keeps a hostile descriptor from asking for huge reads.
constexpr std::uint64_t kMaxInputBits = 8U * 4096U;

}  // namespace

HidDescriptorFacts readHidDescriptor(std::span<const std::uint8_t> descriptor) {
    HidDescriptorFacts facts;
    bool topLevelSeen = false;
    bool firstReportDone = false;
    std::uint32_t firstReportId = 0;
    std::uint32_t reportId = 0;
    std::uint32_t reportSize = 0;
    std::uint32_t reportCount = 0;
    std::uint32_t usagePage = 0;
    std::uint32_t firstUsage = 0;
    bool usageSeen = false;
    std::uint64_t inputBits = 0;

    std::size_t at = 0;
    while (at < descriptor.size()) {
        const std::uint8_t prefix = descriptor[at];
        if (prefix == kLongItem) {
            if (at + 1 >= descriptor.size()) break;
            at += 3U + descriptor[at + 1];
            continue;
        }
        const std::size_t size = (prefix & 0x3U) == 3U ? 4U : (prefix & 0x3U);
        if (at + 1 + size > descriptor.size()) break;
        std::uint32_t data = 0;
        for (std::size_t i = 0; i < size; ++i) {
            data |= static_cast<std::uint32_t>(descriptor[at + 1 + i]) << (8U * i);
        }
        const unsigned type = (prefix >> 2U) & 0x3U;
        const unsigned tag = prefix >> 4U;
        at += 1 + size;

        if (type == kGlobal) {
            if (tag == kGlobalUsagePage) usagePage = data;
            if (tag == kGlobalReportSize) reportSize = data;
            if (tag == kGlobalReportCount) reportCount = data;
            if (tag == kGlobalReportId) {
                if (!facts.reportIds) firstReportId = data;
                facts.reportIds = true;
                reportId = data;
                if (reportId != firstReportId && inputBits != 0) firstReportDone = true;
            }
        } else if (type == kLocal) {
            if (tag == kLocalUsage && !usageSeen) {
                firstUsage = data;
                usageSeen = true;
            }
        } else if (type == kMain) {
            if (tag == kMainCollection && !topLevelSeen) {
                topLevelSeen = true;
                facts.usagePage = usagePage;
                facts.usage = firstUsage;
            }
            if (tag == kMainInput && !firstReportDone && reportId == firstReportId) {
                inputBits += static_cast<std::uint64_t>(reportSize) * reportCount;
                if (inputBits > kMaxInputBits) inputBits = kMaxInputBits;
            }
        }
    }
    facts.inputBytes = static_cast<int>((inputBits + 7U) / 8U);
    return facts;
}

}  // namespace ovd::devices
