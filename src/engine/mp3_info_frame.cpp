#include "engine/mp3_info_frame.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace ovd::engine {

namespace {

constexpr std::size_t kTocEntries = 100;
constexpr std::size_t kEncoderTagBytes = 36;
// Offsets in the encoder's tag.
constexpr std::size_t kDelayAndPadding = 21;
constexpr std::size_t kMusicLength = 28;
constexpr std::size_t kMusicCrc = 32;
constexpr std::size_t kTagCrc = 34;
// The tag's own CRC covers at most this much of the frame.
constexpr std::size_t kTagCrcSpan = 190;

constexpr std::array<int, 15> kMpeg1Kbps = {0,   32,  40,  48,  56,  64,  80, 96,
                                            112, 128, 160, 192, 224, 256, 320};
constexpr std::array<int, 15> kMpeg2Kbps = {0,  8,  16, 24,  32,  40,  48, 56,
                                            64, 80, 96, 112, 128, 144, 160};
constexpr std::array<int, 3> kMpeg1Rates = {44100, 48000, 32000};

constexpr std::array<std::uint16_t, 256> makeCrcTable() {
    std::array<std::uint16_t, 256> table{};
    for (unsigned byte = 0; byte < 256; ++byte) {
        unsigned crc = byte;
        for (int bit = 0; bit < 8; ++bit) crc = (crc & 1) ? (crc >> 1) ^ 0xA001u : crc >> 1;
        table[byte] = static_cast<std::uint16_t>(crc);
    }
    return table;
}
constexpr std::array<std::uint16_t, 256> kCrcTable = makeCrcTable();

std::uint32_t readU32(const std::uint8_t* at) {
    return (std::uint32_t{at[0]} << 24) | (std::uint32_t{at[1]} << 16) |
           (std::uint32_t{at[2]} << 8) | at[3];
}
void writeU32(std::uint8_t* at, std::uint32_t value) {
    for (int i = 0; i < 4; ++i) at[i] = static_cast<std::uint8_t>(value >> (24 - 8 * i));
}
void writeU16(std::uint8_t* at, std::uint16_t value) {
    at[0] = static_cast<std::uint8_t>(value >> 8);
    at[1] = static_cast<std::uint8_t>(value);
}

// Length of the ID3v2 tag a file starts with; 0 when there is none.
std::size_t id3v2Length(const std::uint8_t* head, std::size_t size) {
    if (size < 10 || std::memcmp(head, "ID3", 3) != 0) return 0;
    std::size_t body = 0;
    for (int i = 6; i < 10; ++i) body = (body << 7) | (head[i] & 0x7F);
    const bool footer = (head[5] & 0x10) != 0;
    return 10 + body + (footer ? 10 : 0);
}

struct Layer3Header {
    std::size_t frameBytes = 0;
    std::size_t sideInfoBytes = 0;
};

std::optional<Layer3Header> parseHeader(std::uint32_t header) {
    if ((header >> 21) != 0x7FF) return std::nullopt;
    const unsigned version = (header >> 19) & 3;  // 3: MPEG 1, 2: MPEG 2, 0: MPEG 2.5
    const unsigned layer = (header >> 17) & 3;    // 1: layer III
    const unsigned bitrate = (header >> 12) & 0xF;
    const unsigned rate = (header >> 10) & 3;
    if (version == 1 || layer != 1 || bitrate == 0 || bitrate == 15 || rate == 3)
        return std::nullopt;
    const bool mpeg1 = version == 3;
    const int sampleRate = kMpeg1Rates[rate] / (mpeg1 ? 1 : version == 2 ? 2 : 4);
    const int kbps = (mpeg1 ? kMpeg1Kbps : kMpeg2Kbps)[bitrate];
    const bool mono = ((header >> 6) & 3) == 3;
    Layer3Header parsed;
    parsed.frameBytes = static_cast<std::size_t>((mpeg1 ? 144 : 72) * kbps * 1000 / sampleRate) +
                        ((header >> 9) & 1);
    parsed.sideInfoBytes = mpeg1 ? (mono ? 17 : 32) : (mono ? 9 : 17);
    return parsed;
}

}  // namespace

std::uint16_t mp3Crc16(std::uint16_t crc, const std::uint8_t* data, std::size_t size) {
    for (std::size_t i = 0; i < size; ++i) {
        crc = static_cast<std::uint16_t>((crc >> 8) ^ kCrcTable[(crc ^ data[i]) & 0xFF]);
    }
    return crc;
}

std::optional<Mp3InfoFrame> Mp3InfoFrame::find(const std::uint8_t* head, std::size_t size) {
    const std::size_t start = id3v2Length(head, size);
    if (start + 4 > size) return std::nullopt;
    const auto header = parseHeader(readU32(head + start));
    if (!header || start + header->frameBytes > size) return std::nullopt;
    const std::uint8_t* frame = head + start;
    const std::size_t tag = 4 + header->sideInfoBytes;
    if (tag + 8 > header->frameBytes) return std::nullopt;
    if (std::memcmp(frame + tag, "Info", 4) != 0 && std::memcmp(frame + tag, "Xing", 4) != 0)
        return std::nullopt;
    const std::uint32_t flags = readU32(frame + tag + 4);
    // Frames, bytes and the table of contents, in that order, then the quality
    // when flagged: the layout the encoder's tag is found behind.
    if ((flags & 7) != 7) return std::nullopt;
    const std::size_t encoderTag = tag + 8 + 4 + 4 + kTocEntries + ((flags & 8) ? 4 : 0);
    if (encoderTag + kEncoderTagBytes > header->frameBytes) return std::nullopt;
    return Mp3InfoFrame(start, std::vector<std::uint8_t>(frame, frame + header->frameBytes), tag,
                        encoderTag);
}

std::vector<std::uint8_t> Mp3InfoFrame::describing(const Mp3Tally& tally) const {
    std::vector<std::uint8_t> frame = frame_;
    std::uint8_t* tag = frame.data() + tag_;
    // "Info" marks a stream of one bit rate, where the table of contents is a straight line.
    std::memcpy(tag, tally.constantBitRate ? "Info" : "Xing", 4);
    const std::uint64_t total = frame.size() + tally.bytes;
    const auto total32 = static_cast<std::uint32_t>(std::min<std::uint64_t>(total, 0xFFFFFFFFu));
    writeU32(tag + 8, tally.frames);
    writeU32(tag + 12, total32);
    std::uint8_t* toc = tag + 16;
    const std::size_t starts = tally.frameStarts.size();
    for (std::size_t i = 0; i < kTocEntries; ++i) {
        const std::uint64_t into = starts > 0 ? tally.frameStarts[i * starts / kTocEntries]
                                              : tally.bytes * i / kTocEntries;
        const std::uint64_t position = frame.size() + into;
        toc[i] = static_cast<std::uint8_t>(
            std::min<std::uint64_t>(255, total ? 256 * position / total : 0));
    }
    toc[0] = 0;
    std::uint8_t* encoder = frame.data() + encoderTag_;
    // Twelve bits each.
    const int start = std::clamp(tally.startPadding, 0, 4095);
    const int end = std::clamp(tally.endPadding, 0, 4095);
    encoder[kDelayAndPadding] = static_cast<std::uint8_t>(start >> 4);
    encoder[kDelayAndPadding + 1] = static_cast<std::uint8_t>(((start & 0xF) << 4) | (end >> 8));
    encoder[kDelayAndPadding + 2] = static_cast<std::uint8_t>(end);
    writeU32(encoder + kMusicLength, total32);
    writeU16(encoder + kMusicCrc, tally.crc);
    const std::size_t covered = std::min(kTagCrcSpan, encoderTag_ + kTagCrc);
    writeU16(encoder + kTagCrc, mp3Crc16(0, frame.data(), covered));
    return frame;
}

}  // namespace ovd::engine
