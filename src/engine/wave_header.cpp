#include "engine/wave_header.h"

#include <algorithm>
#include <cstring>

namespace ovd::engine {

namespace {

// Writes little-endian fields and chunk tags one after the other.
class HeaderWriter {
  public:
    explicit HeaderWriter(std::vector<std::uint8_t>& out) : at_(out.data()) {}
    void u32(std::uint32_t value) {
        for (int i = 0; i < 4; ++i) *at_++ = static_cast<std::uint8_t>(value >> (8 * i));
    }
    void u16(std::uint16_t value) {
        *at_++ = static_cast<std::uint8_t>(value);
        *at_++ = static_cast<std::uint8_t>(value >> 8);
    }
    void bytes(const void* data, std::size_t size) {
        std::memcpy(at_, data, size);
        at_ += size;
    }
    void tag(const char* name) { bytes(name, 4); }

  private:
    std::uint8_t* at_;
};

}  // namespace

std::vector<std::uint8_t> pcmWaveHeader(const PcmFormat& format, const std::string& comment,
                                        std::uint64_t dataBytes) {
    // The comment is stored with its terminating zero and padded to an even
    // length, the pad counted in the chunk's size, as the sound-file library does.
    const std::size_t commentBytes = comment.empty() ? 0 : (comment.size() + 2) & ~std::size_t{1};
    const std::size_t listBytes = comment.empty() ? 0 : 8 + 4 + 8 + commentBytes;
    const auto data = static_cast<std::uint32_t>(
        std::min<std::uint64_t>(dataBytes, 0xFFFFFFFFu - 36 - listBytes));

    std::vector<std::uint8_t> out(44 + listBytes, 0);
    HeaderWriter write(out);
    write.tag("RIFF");
    write.u32(static_cast<std::uint32_t>(36 + listBytes) + data);
    write.tag("WAVE");
    write.tag("fmt ");
    write.u32(16);
    write.u16(1);  // PCM
    write.u16(static_cast<std::uint16_t>(format.channels));
    write.u32(static_cast<std::uint32_t>(format.sampleRate));
    const auto blockAlign = static_cast<std::uint16_t>(format.channels * 2);
    write.u32(static_cast<std::uint32_t>(format.sampleRate) * blockAlign);
    write.u16(blockAlign);
    write.u16(16);
    if (!comment.empty()) {
        write.tag("LIST");
        write.u32(static_cast<std::uint32_t>(listBytes - 8));
        write.tag("INFO");
        write.tag("ICMT");
        write.u32(static_cast<std::uint32_t>(commentBytes));
        write.bytes(comment.data(), comment.size());
        const std::uint8_t zeros[2] = {0, 0};
        write.bytes(zeros, commentBytes - comment.size());
    }
    write.tag("data");
    write.u32(data);
    return out;
}

}  // namespace ovd::engine
