#pragma once
// The header of a 16-bit PCM wave file, laid out as the sound-file library
// writes it: RIFF, a plain fmt chunk, the comment in a LIST/INFO/ICMT chunk when
// there is one, then the data chunk. The work files and the saves that copy
// frames straight from them use it, so a file saved either way is the same file.

#include <cstdint>
#include <string>
#include <vector>

#include "engine/audio_backend.h"

namespace ovd::engine {

// Header bytes for dataBytes of frames in format; the data follow at once. A
// wave header can't count past 4 GiB: a longer file says as much as fits and
// stays readable up to there.
std::vector<std::uint8_t> pcmWaveHeader(const PcmFormat& format, const std::string& comment,
                                        std::uint64_t dataBytes);

}  // namespace ovd::engine
