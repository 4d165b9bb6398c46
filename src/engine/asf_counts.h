#pragma once
// The counts at the head of an ASF (WMA) file: the file's length, how many data
// packets follow, and how long they play. The muxer writes them only when the
// file is complete, so a file that grows by whole packets has them rewritten at
// every sync, and reads as a complete file of the packets written so far.

#include <cstdint>
#include <optional>
#include <vector>

namespace ovd::engine {

class AsfCounts {
  public:
    // Finds the file properties and the data object in the first bytes of a file
    // (its whole header and the data object's own); none when they are not there
    // or the packets are not all of one size.
    static std::optional<AsfCounts> find(const std::uint8_t* head, std::size_t size);

    [[nodiscard]] std::uint32_t packetBytes() const { return packetBytes_; }
    // Where the first data packet starts.
    [[nodiscard]] std::uint64_t packetsStart() const { return dataAt_ + kDataObjectBytes; }

    // A field of the header, rewritten in place: its offset in the file and its bytes.
    struct Patch {
        std::uint64_t offset;
        std::vector<std::uint8_t> bytes;
    };
    // The fields for a file of fileBytes that ends with `packets` whole packets,
    // the last of which is lastPacket.
    [[nodiscard]] std::vector<Patch> describing(std::uint64_t fileBytes, std::uint64_t packets,
                                                const std::vector<std::uint8_t>& lastPacket) const;

    static constexpr std::uint64_t kDataObjectBytes = 50;

  private:
    AsfCounts(std::uint64_t filePropertiesAt, std::uint64_t dataAt, std::uint32_t packetBytes,
              std::uint64_t prerollMs)
        : filePropertiesAt_(filePropertiesAt),
          dataAt_(dataAt),
          packetBytes_(packetBytes),
          prerollMs_(prerollMs) {}

    std::uint64_t filePropertiesAt_;
    std::uint64_t dataAt_;
    std::uint32_t packetBytes_;
    std::uint64_t prerollMs_;
};

// The time (ms, without the preroll) by which a data packet has begun every
// payload it holds: its send time and duration; none when it is no packet.
std::optional<std::uint64_t> asfPacketEndMs(const std::vector<std::uint8_t>& packet);

}  // namespace ovd::engine
