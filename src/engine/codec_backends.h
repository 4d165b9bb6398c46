#pragma once
// Inside the codecs: the two libraries behind encodeFile and AudioFileReader,
// and writing into a target file the caller has already locked. Nothing of
// either library shows here.

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "engine/codecs.h"
#include "engine/file_tags.h"
#include "platform/locked_file.h"

namespace ovd::engine {

// One encoding: audio already at the rate and channels the format is written at.
struct EncodeJob {
    PcmSource& pcm;
    const TargetFormat& target;
    const FileTags& tags;
    // Called after every block written; false means the user gave up.
    std::function<bool()> keepGoing;
};

inline constexpr const char* kCancelledText = "cancelled";

// WAV, VOX, RAW and DSP, written through fd (open, locked and empty).
platform::Result<void> encodeWithSndfile(const EncodeJob& job, int fd, const std::string& path);
// MP3, MP2, WMA and Ogg Vorbis, written through fd (open, locked and empty).
platform::Result<void> encodeWithFfmpeg(const EncodeJob& job, int fd, const std::string& path);

// A file written a block at a time, from audio already at the rate and channels
// it is written at. It writes through a descriptor it does not own.
class EncodedStream {
  public:
    virtual ~EncodedStream() = default;
    virtual platform::Result<void> write(const std::int16_t* frames, std::size_t frameCount) = 0;
    // Frames given in the file's own layout are put at the end of the file by
    // `copy`, through the descriptor it is handed; only where copiesFrames().
    [[nodiscard]] virtual bool copiesFrames() const { return false; }
    // Whether a file with no audio at all still opens in a player.
    [[nodiscard]] virtual bool emptyFileIsPlayable() const { return copiesFrames(); }
    virtual platform::Result<void> appendCopied(
        SampleCount frameCount, const std::function<platform::Result<void>(int fd)>& copy);
    // Everything complete so far is in the file, and the file's header says so.
    virtual platform::Result<void> sync() = 0;
    // What the codec still held goes in; the file is whole.
    virtual platform::Result<void> finish() = 0;
};

// 16-bit PCM in a wave file with the comment and details in its LIST chunk.
platform::Result<std::unique_ptr<EncodedStream>> openWaveStream(int fd, const std::string& path,
                                                                const PcmFormat& format,
                                                                const FileTags& tags);
// WAV at 8, 24 or 32 bits, VOX, RAW or GSM through the sound-file library,
// with the comment where the format has a field for it.
platform::Result<std::unique_ptr<EncodedStream>> openSndfileStream(int fd, const std::string& path,
                                                                   const TargetFormat& target,
                                                                   const PcmFormat& format,
                                                                   const FileTags& tags);
// MP3, MP2, WMA or Ogg Vorbis through the codec library; an Ogg stream puts out
// its page at every sync. An MP3 stream rewrites its Info frame at
// every sync, so readers that trust it find every frame written so far.
platform::Result<std::unique_ptr<EncodedStream>> openFfmpegStream(int fd, const std::string& path,
                                                                  const TargetFormat& target,
                                                                  const PcmFormat& format,
                                                                  const FileTags& tags);

// The rate and channels a format is written at, for audio given in `source`:
// what the user chose, brought to what the codec can carry.
PcmFormat encodedPcmFormat(const TargetFormat& target, const PcmFormat& source);

// Files with a header the sound-file library knows (WAV, MP3, GSM in WAV...).
platform::Result<std::unique_ptr<AudioFileReader>> openWithSndfile(const std::string& path);
// Headerless files: VOX ADPCM or RAW samples laid out as `layout` says.
platform::Result<std::unique_ptr<AudioFileReader>> openHeaderless(const std::string& path,
                                                                  FormatWord kind,
                                                                  const TargetFormat& layout);
// Everything the codec library can demultiplex (MP2, WMA...).
platform::Result<std::unique_ptr<AudioFileReader>> openWithFfmpeg(const std::string& path);

// The codec library's words for one of its error codes.
std::string ffmpegErrorText(int code);

// Writes the source into an open file descriptor the caller has locked with
// a LockedFile; the lock stays the caller's. On failure or cancel the file is
// emptied and unlinked from path before this returns.
platform::Result<void> encodeIntoLockedFile(PcmSource& source, int fd, const std::string& path,
                                            const TargetFormat& target, const FileTags& tags,
                                            const ProgressCallback& progress);

// Opens path for writing and takes an exclusive lock at once; the failure says
// whether it can't be opened or somebody else holds it.
platform::Result<platform::LockedFile> openLockedForWriting(const std::string& path);

}  // namespace ovd::engine
