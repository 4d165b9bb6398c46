#include "engine/wave_header.h"

#include <algorithm>
#include <cstring>
#include <utility>

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

std::vector<std::uint8_t> pcmWaveHeader(const PcmFormat& format, const FileTags& tags,
                                        std::uint64_t dataBytes) {
    // Each field is stored with its terminating zero and padded to an even length,
    // the pad counted in the field's size, as the sound-file library does.
    std::vector<std::pair<std::string, const std::string*>> fields;
    if (!tags.comment.empty()) fields.emplace_back("ICMT", &tags.comment);
    const LetterDetails details = tidyDetails(tags.details);
    for (const FileTag& tag : details) fields.emplace_back(riffInfoId(tag.key), &tag.value);
    const auto paddedSize = [](const std::string& value) {
        return (value.size() + 2) & ~std::size_t{1};
    };
    std::size_t fieldBytes = 0;
    for (const auto& field : fields) fieldBytes += 8 + paddedSize(*field.second);
    const std::size_t listBytes = fields.empty() ? 0 : 8 + 4 + fieldBytes;
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
    if (!fields.empty()) {
        write.tag("LIST");
        write.u32(static_cast<std::uint32_t>(listBytes - 8));
        write.tag("INFO");
        const std::uint8_t zeros[2] = {0, 0};
        for (const auto& [id, value] : fields) {
            const std::size_t bytes = paddedSize(*value);
            write.tag(id.c_str());
            write.u32(static_cast<std::uint32_t>(bytes));
            write.bytes(value->data(), value->size());
            write.bytes(zeros, bytes - value->size());
        }
    }
    write.tag("data");
    write.u32(data);
    return out;
}

bool waveWrittenByUs(const TargetFormat& target) {
    return target.word == FormatWord::WAV && target.bitsPerSample != 8 &&
           target.bitsPerSample != 24 && target.bitsPerSample != 32;
}

}  // namespace ovd::engine
