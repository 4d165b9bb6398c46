#pragma once
// An MP3 file as its frame headers tell it, read frame by frame from behind its
// ID3 tag: the first frame's Xing or Info tag apart, then every audio frame's
// bit rate and channel mode.

#include <array>
#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "platform/files.h"

namespace ovd::engine::testing {

constexpr std::array<std::array<int, 3>, 4> kRates = {
    {{11025, 12000, 8000}, {0, 0, 0}, {22050, 24000, 16000}, {44100, 48000, 32000}}};
constexpr std::array<int, 16> kMpeg1Kbps = {0,   32,  40,  48,  56,  64,  80,  96,
                                            112, 128, 160, 192, 224, 256, 320, 0};
constexpr std::array<int, 16> kMpeg2Kbps = {0,  8,  16, 24,  32,  40,  48,  56,
                                            64, 80, 96, 112, 128, 144, 160, 0};

inline std::uint32_t bigEndian(const std::string& bytes, std::size_t at) {
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < 4; ++i)
        value = (value << 8) | static_cast<std::uint8_t>(bytes[at + i]);
    return value;
}

// The file as its frame headers tell it, the first frame (Xing or Info) apart.
struct Mp3Layout {
    std::string tag;                 // "Xing" or "Info"
    std::uint32_t taggedFrames = 0;  // the frame count the tag gives
    std::uint32_t taggedBytes = 0;
    std::vector<int> kbps;  // of every audio frame
    std::set<int> modes;    // 0 stereo, 1 joint stereo, 2 dual, 3 mono
    int sampleRate = 0;
    std::size_t bytesAfterLastFrame = 0;
};

inline std::optional<Mp3Layout> layoutOf(const std::string& path) {
    const auto read = platform::readWholeFile(path);
    if (!read) return std::nullopt;
    const std::string bytes(*read);
    std::size_t at = 0;
    if (bytes.rfind("ID3", 0) == 0 && bytes.size() > 10) {
        at = 10 + ((std::size_t(bytes[6] & 0x7f) << 21) | (std::size_t(bytes[7] & 0x7f) << 14) |
                   (std::size_t(bytes[8] & 0x7f) << 7) | std::size_t(bytes[9] & 0x7f));
    }
    Mp3Layout layout;
    const std::size_t first = at;
    while (at + 4 <= bytes.size()) {
        const std::uint32_t header = bigEndian(bytes, at);
        if ((header >> 21) != 0x7FF) break;
        const auto version = (header >> 19) & 3;
        const int rate = kRates[version][(header >> 10) & 3];
        const int kbps = (version == 3 ? kMpeg1Kbps : kMpeg2Kbps)[(header >> 12) & 0xF];
        if (rate == 0 || kbps == 0) break;
        const std::size_t length =
            static_cast<std::size_t>((version == 3 ? 144 : 72) * kbps * 1000 / rate) +
            ((header >> 9) & 1);
        if (at + length > bytes.size()) break;
        const int mode = static_cast<int>((header >> 6) & 3);
        if (at == first) {
            const std::size_t side = version == 3 ? (mode == 3 ? 17 : 32) : (mode == 3 ? 9 : 17);
            layout.tag = bytes.substr(at + 4 + side, 4);
            layout.taggedFrames = bigEndian(bytes, at + 4 + side + 8);
            layout.taggedBytes = bigEndian(bytes, at + 4 + side + 12);
        } else {
            layout.kbps.push_back(kbps);
            layout.modes.insert(mode);
        }
        layout.sampleRate = rate;
        at += length;
    }
    // An ID3v1 tag may close the file; anything else is a frame cut short.
    layout.bytesAfterLastFrame = bytes.size() - at;
    if (layout.bytesAfterLastFrame == 128 && bytes.compare(at, 3, "TAG") == 0)
        layout.bytesAfterLastFrame = 0;
    return layout;
}

}  // namespace ovd::engine::testing
