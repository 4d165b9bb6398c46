#pragma once
// Audio on the desktop's clipboard travels as the bytes of a wave file: what
// other programs put there and take from there.

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "engine/codecs.h"

namespace ovd::engine {

// The bytes of a 16-bit PCM wave file holding all of the source's frames.
std::string waveFileBytes(PcmSource& source);

struct WaveAudio {
    PcmFormat format;
    std::vector<std::int16_t> samples;  // interleaved
};

// The audio of a wave file's bytes: PCM of 8, 16, 24 or 32 bits or 32-bit float,
// one or two channels, brought to 16 bits. Anything else is refused with the
// reason, so text or a picture on the clipboard never becomes noise.
platform::Result<WaveAudio> parseWaveFileBytes(std::string_view bytes);

}  // namespace ovd::engine
