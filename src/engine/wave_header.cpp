#include "engine/wave_header.h"

#include <algorithm>

namespace ovd::engine {

namespace {

void putU32(std::vector<std::uint8_t>& out, std::uint32_t value) {
    for (int i = 0; i < 4; ++i) out.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
}
void putU16(std::vector<std::uint8_t>& out, std::uint16_t value) {
    out.push_back(static_cast<std::uint8_t>(value));
    out.push_back(static_cast<std::uint8_t>(value >> 8));
}
void putTag(std::vector<std::uint8_t>& out, const char* tag) {
    out.insert(out.end(), tag, tag + 4);
}

}  // namespace

std::vector<std::uint8_t> pcmWaveHeader(const PcmFormat& format, const std::string& comment,
                                        std::uint64_t dataBytes) {
    // The comment is stored with its terminating zero and padded to an even
    // length, the pad counted in the chunk's size, as the sound-file library does.
    const std::size_t commentBytes = comment.empty() ? 0 : (comment.size() + 2) & ~std::size_t{1};
    const std::size_t listBytes = comment.empty() ? 0 : 8 + 4 + 8 + commentBytes;
    const auto data = static_cast<std::uint32_t>(
        std::min<std::uint64_t>(dataBytes, 0xFFFFFFFFu - 36 - listBytes));

    std::vector<std::uint8_t> out;
    out.reserve(44 + listBytes);
    putTag(out, "RIFF");
    putU32(out, static_cast<std::uint32_t>(36 + listBytes) + data);
    putTag(out, "WAVE");
    putTag(out, "fmt ");
    putU32(out, 16);
    putU16(out, 1);  // PCM
    putU16(out, static_cast<std::uint16_t>(format.channels));
    putU32(out, static_cast<std::uint32_t>(format.sampleRate));
    const auto blockAlign = static_cast<std::uint16_t>(format.channels * 2);
    putU32(out, static_cast<std::uint32_t>(format.sampleRate) * blockAlign);
    putU16(out, blockAlign);
    putU16(out, 16);
    if (!comment.empty()) {
        putTag(out, "LIST");
        putU32(out, static_cast<std::uint32_t>(listBytes - 8));
        putTag(out, "INFO");
        putTag(out, "ICMT");
        putU32(out, static_cast<std::uint32_t>(commentBytes));
        out.insert(out.end(), comment.begin(), comment.end());
        out.resize(out.size() + commentBytes - comment.size(), 0);
    }
    putTag(out, "data");
    putU32(out, data);
    return out;
}

}  // namespace ovd::engine
