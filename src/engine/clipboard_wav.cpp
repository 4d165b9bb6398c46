#include "engine/clipboard_wav.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "engine/wave_header.h"

namespace ovd::engine {

namespace {

constexpr std::size_t kBlockFrames = 64 * 1024;
constexpr std::uint16_t kPcm = 1;
constexpr std::uint16_t kFloat = 3;
constexpr std::uint16_t kExtensible = 0xFFFE;
constexpr const char* kNotWave = "the clipboard holds no wave audio";

std::uint32_t little32(const unsigned char* at) {
    return std::uint32_t{at[0]} | std::uint32_t{at[1]} << 8 | std::uint32_t{at[2]} << 16 |
           std::uint32_t{at[3]} << 24;
}

std::uint16_t little16(const unsigned char* at) {
    return static_cast<std::uint16_t>(at[0] | at[1] << 8);
}

struct Layout {
    std::uint16_t encoding = 0;
    int channels = 0;
    int rate = 0;
    int bits = 0;
};

std::int16_t toSixteenBits(const unsigned char* at, const Layout& layout) {
    if (layout.encoding == kFloat) {
        float value = 0;
        const std::uint32_t raw = little32(at);
        std::memcpy(&value, &raw, sizeof value);
        if (!std::isfinite(value)) return 0;
        return static_cast<std::int16_t>(std::lrint(std::clamp(value, -1.0F, 1.0F) * 32767.0F));
    }
    switch (layout.bits) {
        case 8:
            return static_cast<std::int16_t>((at[0] - 128) * 256);
        case 16:
            return static_cast<std::int16_t>(little16(at));
        case 24:
            return static_cast<std::int16_t>(little16(at + 1));
        default:
            return static_cast<std::int16_t>(little16(at + 2));
    }
}

}  // namespace

std::string waveFileBytes(PcmSource& source) {
    const PcmFormat format = source.format();
    std::string data;
    std::vector<std::int16_t> block(kBlockFrames * static_cast<std::size_t>(format.channels));
    while (const std::size_t got = source.read(block.data(), kBlockFrames)) {
        // Wave files are little-endian, as this machine is.
        data.append(reinterpret_cast<const char*>(block.data()),
                    got * static_cast<std::size_t>(format.channels) * sizeof(std::int16_t));
    }
    const std::vector<std::uint8_t> header = pcmWaveHeader(format, "", data.size());
    return std::string(header.begin(), header.end()) + data;
}

platform::Result<WaveAudio> parseWaveFileBytes(std::string_view bytes) {
    const auto* begin = reinterpret_cast<const unsigned char*>(bytes.data());
    if (bytes.size() < 12 || std::memcmp(begin, "RIFF", 4) != 0 ||
        std::memcmp(begin + 8, "WAVE", 4) != 0)
        return platform::failure(kNotWave);
    Layout layout;
    const unsigned char* data = nullptr;
    std::size_t dataBytes = 0;
    std::size_t at = 12;
    while (at + 8 <= bytes.size()) {
        const unsigned char* chunk = begin + at;
        const std::size_t left = bytes.size() - at - 8;
        // A size beyond the end is what a file still being written says: take what is there.
        const std::size_t size = std::min<std::size_t>(little32(chunk + 4), left);
        if (std::memcmp(chunk, "fmt ", 4) == 0 && size >= 16) {
            layout.encoding = little16(chunk + 8);
            layout.channels = little16(chunk + 10);
            layout.rate = static_cast<int>(little32(chunk + 12));
            layout.bits = little16(chunk + 22);
            if (layout.encoding == kExtensible && size >= 26)
                layout.encoding = little16(chunk + 32);
        } else if (std::memcmp(chunk, "data", 4) == 0) {
            data = chunk + 8;
            dataBytes = size;
        }
        at += 8 + size + (size & 1);
    }
    if (layout.channels == 0) return platform::failure(std::string(kNotWave) + ": no format");
    if (!data) return platform::failure(std::string(kNotWave) + ": no audio data");
    const bool pcm = layout.encoding == kPcm && (layout.bits == 8 || layout.bits == 16 ||
                                                 layout.bits == 24 || layout.bits == 32);
    const bool floats = layout.encoding == kFloat && layout.bits == 32;
    if (!pcm && !floats)
        return platform::failure("the clipboard's audio is in an encoding the editor can't take");
    if (layout.channels > 2)
        return platform::failure("the clipboard's audio has more than two channels");
    if (layout.rate < 1000 || layout.rate > 384000)
        return platform::failure("the clipboard's audio has no usable sample rate");
    const std::size_t sampleBytes = static_cast<std::size_t>(layout.bits) / 8;
    const std::size_t frameBytes = sampleBytes * static_cast<std::size_t>(layout.channels);
    const std::size_t frames = dataBytes / frameBytes;
    if (frames == 0) return platform::failure("the clipboard's audio is empty");
    WaveAudio audio{{layout.rate, layout.channels}, {}};
    audio.samples.resize(frames * static_cast<std::size_t>(layout.channels));
    for (std::size_t i = 0; i < audio.samples.size(); ++i)
        audio.samples[i] = toSixteenBits(data + i * sampleBytes, layout);
    return audio;
}

}  // namespace ovd::engine
