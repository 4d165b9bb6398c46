#include "engine/asf_counts.h"

#include <array>
#include <cstring>

namespace ovd::engine {

namespace {

using Guid = std::array<std::uint8_t, 16>;

// As the GUIDs lie in the file.
constexpr Guid kHeaderObject = {0x30, 0x26, 0xB2, 0x75, 0x8E, 0x66, 0xCF, 0x11,
                                0xA6, 0xD9, 0x00, 0xAA, 0x00, 0x62, 0xCE, 0x6C};
constexpr Guid kFileProperties = {0xA1, 0xDC, 0xAB, 0x8C, 0x47, 0xA9, 0xCF, 0x11,
                                  0x8E, 0xE4, 0x00, 0xC0, 0x0C, 0x20, 0x53, 0x65};
constexpr Guid kDataObject = {0x36, 0x26, 0xB2, 0x75, 0x8E, 0x66, 0xCF, 0x11,
                              0xA6, 0xD9, 0x00, 0xAA, 0x00, 0x62, 0xCE, 0x6C};

constexpr std::size_t kHeaderObjectBytes = 30;
constexpr std::size_t kFilePropertiesBytes = 104;
// Offsets inside the file properties object.
constexpr std::size_t kFileSizeAt = 40;
constexpr std::size_t kPacketCountAt = 56;
constexpr std::size_t kPlayDurationAt = 64;
constexpr std::size_t kSendDurationAt = 72;
constexpr std::size_t kPrerollAt = 80;
constexpr std::size_t kMinPacketAt = 92;
constexpr std::size_t kMaxPacketAt = 96;
// Offsets inside the data object.
constexpr std::size_t kDataSizeAt = 16;
constexpr std::size_t kDataPacketsAt = 40;
constexpr std::uint64_t kTicksPerMs = 10'000;  // the header counts time in 100 ns

std::uint64_t readLittle(const std::uint8_t* at, std::size_t bytes) {
    std::uint64_t value = 0;
    for (std::size_t i = bytes; i-- > 0;) value = value << 8 | at[i];
    return value;
}

std::vector<std::uint8_t> little64(std::uint64_t value) {
    std::vector<std::uint8_t> bytes(8);
    for (std::uint8_t& byte : bytes) {
        byte = static_cast<std::uint8_t>(value & 0xFF);
        value >>= 8;
    }
    return bytes;
}

bool isGuid(const std::uint8_t* at, const Guid& guid) {
    return std::memcmp(at, guid.data(), guid.size()) == 0;
}

// Bytes of a field whose length a two-bit type gives: none, a byte, a word, a double word.
std::size_t fieldBytes(unsigned type) { return type == 3 ? 4 : type; }

}  // namespace

std::optional<AsfCounts> AsfCounts::find(const std::uint8_t* head, std::size_t size) {
    if (size < kHeaderObjectBytes || !isGuid(head, kHeaderObject)) return std::nullopt;
    const std::uint64_t headerBytes = readLittle(head + 16, 8);
    if (headerBytes + kDataObjectBytes > size) return std::nullopt;
    std::optional<std::uint64_t> properties;
    for (std::uint64_t at = kHeaderObjectBytes; at + 24 <= headerBytes;) {
        const std::uint64_t objectBytes = readLittle(head + at + 16, 8);
        if (objectBytes < 24 || at + objectBytes > headerBytes) return std::nullopt;
        if (isGuid(head + at, kFileProperties) && objectBytes >= kFilePropertiesBytes)
            properties = at;
        at += objectBytes;
    }
    if (!properties || !isGuid(head + headerBytes, kDataObject)) return std::nullopt;
    const std::uint8_t* fields = head + *properties;
    const auto packetBytes = static_cast<std::uint32_t>(readLittle(fields + kMinPacketAt, 4));
    if (packetBytes == 0 || packetBytes != readLittle(fields + kMaxPacketAt, 4))
        return std::nullopt;
    return AsfCounts(*properties, headerBytes, packetBytes, readLittle(fields + kPrerollAt, 8));
}

std::vector<AsfCounts::Patch> AsfCounts::describing(
    std::uint64_t fileBytes, std::uint64_t packets,
    const std::vector<std::uint8_t>& lastPacket) const {
    const std::uint64_t endMs = packets == 0 ? 0 : asfPacketEndMs(lastPacket).value_or(0);
    const std::uint64_t sendTicks = endMs * kTicksPerMs;
    return {
        {filePropertiesAt_ + kFileSizeAt, little64(fileBytes)},
        {filePropertiesAt_ + kPacketCountAt, little64(packets)},
        {filePropertiesAt_ + kPlayDurationAt, little64(sendTicks + prerollMs_ * kTicksPerMs)},
        {filePropertiesAt_ + kSendDurationAt, little64(sendTicks)},
        {dataAt_ + kDataSizeAt, little64(kDataObjectBytes + packets * packetBytes_)},
        {dataAt_ + kDataPacketsAt, little64(packets)},
    };
}

std::optional<std::uint64_t> asfPacketEndMs(const std::vector<std::uint8_t>& packet) {
    if (packet.empty()) return std::nullopt;
    std::size_t at = 0;
    if (packet[0] & 0x80) at = 1 + (packet[0] & 0x0F);  // error correction data
    if (at + 2 > packet.size()) return std::nullopt;
    const unsigned flags = packet[at];
    at += 2;  // the length type flags and the property flags
    at +=
        fieldBytes((flags >> 5) & 3) + fieldBytes((flags >> 1) & 3) + fieldBytes((flags >> 3) & 3);
    if (at + 6 > packet.size()) return std::nullopt;
    return readLittle(packet.data() + at, 4) + readLittle(packet.data() + at + 4, 2);
}

}  // namespace ovd::engine
