#pragma once
// Audio files in and out: reading any recording format into 16-bit frames, and
// writing frames in a chosen format, resampled and remixed as the format needs.
// WAV, RAW, VOX and GSM ("DSP") are written by the sound-file library; MP3, MP2
// WMA and Ogg Vorbis by the codec library. Reading tries the sound-file library first.
// Nothing of either library shows here.

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "engine/audio_backend.h"
#include "engine/audio_format.h"
#include "engine/file_tags.h"
#include "platform/result.h"

namespace ovd::engine {

// Audio read front to back: a document being saved, or a file being converted.
class PcmSource {
  public:
    virtual ~PcmSource() = default;
    [[nodiscard]] virtual PcmFormat format() const = 0;
    [[nodiscard]] virtual SampleCount frames() const = 0;
    // Reads up to frameCount interleaved frames; 0 at the end.
    virtual std::size_t read(std::int16_t* out, std::size_t frameCount) = 0;
};

class AudioFileReader : public PcmSource {
  public:
    // Opens any file of the recording formats. RAW and VOX files carry no header:
    // their layout is taken from hint (rate, channels, encoding).
    static platform::Result<std::unique_ptr<AudioFileReader>> open(
        const std::string& path, const TargetFormat* hint = nullptr);
    // "WAV", "MP3"... as found in the file.
    [[nodiscard]] virtual std::string formatName() const = 0;
};

// Called with the fraction done (0 to 1); returning false cancels.
using ProgressCallback = std::function<bool(double fraction)>;

// Writes the whole source to path in the target format, with the comment and the
// details where the format has fields for them. A cancelled or failed write removes the file.
platform::Result<void> encodeFile(PcmSource& source, const std::string& path,
                                  const TargetFormat& target, const FileTags& tags,
                                  const ProgressCallback& progress = {});

// Length of an audio file in milliseconds, or -1 when it can't be read. RAW and
// VOX files need the hint, as for AudioFileReader::open.
std::int64_t fileLengthMilliseconds(const std::string& path, const TargetFormat* hint = nullptr);

}  // namespace ovd::engine
