#pragma once
// A saved file that grows: the periodic save of a take that only got longer adds
// the new audio to the file the last save wrote, instead of encoding the whole
// take again. After sync() the file holds everything complete so far and reads
// back as a whole file of that length; what the codec and the rate converter
// still hold back (up to a fifth of a second of MP3, a packet of WMA, a GSM
// block) goes in at finish(). Every format is written this way.

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "engine/codecs.h"
#include "engine/file_tags.h"

namespace ovd::engine {

class EncodedStream;
class Resampler;

class StreamEncoder {
  public:
    // Starts the file in fd (open for reading and writing, empty); the encoder owns
    // the descriptor from here on, and closes it when it can't start. It never
    // locks it: the lock the saver holds on the target guards the file. Fails with
    // the reason when the file can't be started this way.
    static platform::Result<std::unique_ptr<StreamEncoder>> open(int fd, const std::string& path,
                                                                 const TargetFormat& target,
                                                                 const PcmFormat& source,
                                                                 const FileTags& tags);
    // Closes the descriptor; an unfinished file stays as the last sync left it.
    ~StreamEncoder();
    StreamEncoder(const StreamEncoder&) = delete;
    StreamEncoder& operator=(const StreamEncoder&) = delete;

    // Frames in the source's format.
    platform::Result<void> write(const std::int16_t* frames, std::size_t frameCount);
    // True when the source's frames go into the file as they are: a wave file at
    // the source's own rate and channels.
    [[nodiscard]] bool copiesSourceFrames() const;
    // Where copiesSourceFrames(): frameCount source frames put at the end of the
    // file by `copy`, which writes them to the descriptor it is given.
    platform::Result<void> appendCopied(SampleCount frameCount,
                                        const std::function<platform::Result<void>(int fd)>& copy);
    // Everything complete so far is in the file and on the disk, and the file's
    // header says how long it is.
    platform::Result<void> sync();
    // The rest goes in; the file is the one a whole encoding would have written.
    platform::Result<void> finish();
    // After a failed write: cuts the file back to what the last sync left.
    void rollBack();
    // Whether fd is open on this same file, whatever its name has become since.
    [[nodiscard]] bool sameFileAs(int fd) const;

  private:
    StreamEncoder(int fd, const PcmFormat& source, const PcmFormat& encoded);
    platform::Result<void> writeEncoded(const std::int16_t* frames, std::size_t frameCount);
    platform::Result<void> persist();

    int fd_;
    PcmFormat source_;
    PcmFormat encoded_;
    std::unique_ptr<EncodedStream> stream_;
    std::unique_ptr<Resampler> resampler_;  // null when the rate stays
    std::vector<std::int16_t> remixed_;
    std::vector<std::int16_t> converted_;
    SampleCount sourceFrames_ = 0;
    SampleCount encodedFrames_ = 0;
    std::int64_t syncedBytes_ = 0;
    bool finished_ = false;
};

}  // namespace ovd::engine
