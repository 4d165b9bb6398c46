#pragma once
// The header of a 16-bit PCM wave file, laid out as the sound-file library
// writes it: RIFF, a plain fmt chunk, the comment (ICMT) and the letter's details
// in a LIST/INFO chunk when there are any, then the data chunk. The work files and the saves that
// copy frames straight from them use it, so a file saved either way is the same file.

#include <cstdint>
#include <string>
#include <vector>

#include "engine/audio_backend.h"
#include "engine/audio_format.h"
#include "engine/file_tags.h"

namespace ovd::engine {

// Header bytes for dataBytes of frames in format; the data follow at once. A
// wave header can't count past 4 GiB: a longer file says as much as fits and
// stays readable up to there.
std::vector<std::uint8_t> pcmWaveHeader(const PcmFormat& format, const FileTags& tags,
                                        std::uint64_t dataBytes);

// Whether a wave file of this format is written with this header (16-bit PCM)
// rather than by the sound-file library.
[[nodiscard]] bool waveWrittenByUs(const TargetFormat& target);

}  // namespace ovd::engine
