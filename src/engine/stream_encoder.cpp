#include "engine/stream_encoder.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <bit>
#include <cerrno>
#include <cstring>

#include "engine/codec_backends.h"
#include "engine/resampler.h"
#include "engine/wave_header.h"
#include "platform/files.h"

namespace ovd::engine {

using platform::writeAll;

namespace {

// 16-bit frames behind a header that is brought up to date at every sync.
class WaveStream final : public EncodedStream {
  public:
    static_assert(std::endian::native == std::endian::little,
                  "wave data are written as the samples lie in memory");

    WaveStream(int fd, const std::string& path, const PcmFormat& format, const FileTags& tags)
        : fd_(fd),
          path_(path),
          format_(format),
          tags_(tags),
          frameBytes_(static_cast<std::size_t>(format.channels) * sizeof(std::int16_t)) {}

    platform::Result<void> open() {
        const std::vector<std::uint8_t> header = pcmWaveHeader(format_, tags_, 0);
        if (auto written = writeAll(fd_, header.data(), header.size()); !written)
            return platform::failure("can't write " + path_ + ": " + written.error());
        return platform::Result<void>::success();
    }

    platform::Result<void> write(const std::int16_t* frames, std::size_t frameCount) override {
        if (auto written = writeAll(fd_, frames, frameCount * frameBytes_); !written)
            return platform::failure("can't write " + path_ + ": " + written.error());
        dataBytes_ += frameCount * frameBytes_;
        return platform::Result<void>::success();
    }

    [[nodiscard]] bool copiesFrames() const override { return true; }

    platform::Result<void> appendCopied(
        SampleCount frameCount,
        const std::function<platform::Result<void>(int fd)>& copy) override {
        if (platform::Result<void> copied = copy(fd_); !copied) return copied;
        dataBytes_ += static_cast<std::uint64_t>(frameCount) * frameBytes_;
        // The disk starts on this stretch while the next one is copied, so the
        // sync that completes the save waits for the last stretch only.
        (void)::sync_file_range(fd_, 0, 0, SYNC_FILE_RANGE_WRITE);
        return platform::Result<void>::success();
    }

    platform::Result<void> sync() override {
        // The frames reach the disk before the header that counts them.
        if (::fdatasync(fd_) != 0) return platform::systemFailure("can't sync " + path_, errno);
        const std::vector<std::uint8_t> header = pcmWaveHeader(format_, tags_, dataBytes_);
        if (::pwrite(fd_, header.data(), header.size(), 0) != static_cast<ssize_t>(header.size())) {
            return platform::systemFailure("can't write the header of " + path_, errno);
        }
        return platform::Result<void>::success();
    }

    platform::Result<void> finish() override { return sync(); }

  private:
    const int fd_;
    const std::string path_;
    const PcmFormat format_;
    const FileTags tags_;
    const std::size_t frameBytes_;
    std::uint64_t dataBytes_ = 0;
};

}  // namespace

platform::Result<void> EncodedStream::appendCopied(
    SampleCount, const std::function<platform::Result<void>(int)>&) {
    return platform::failure("this format can't take frames as they are");
}

platform::Result<std::unique_ptr<EncodedStream>> openWaveStream(int fd, const std::string& path,
                                                                const PcmFormat& format,
                                                                const FileTags& tags) {
    auto stream = std::make_unique<WaveStream>(fd, path, format, tags);
    if (platform::Result<void> opened = stream->open(); !opened) return opened.failed();
    return std::unique_ptr<EncodedStream>(std::move(stream));
}

namespace {

bool writtenByUs(const TargetFormat& target) { return waveWrittenByUs(target); }

bool writtenByTheSoundFileLibrary(const TargetFormat& target) {
    return (target.word == FormatWord::WAV && !writtenByUs(target)) ||
           target.word == FormatWord::VOX || target.word == FormatWord::RAW ||
           target.word == FormatWord::DSP;
}

}  // namespace

StreamEncoder::StreamEncoder(int fd, const PcmFormat& source, const PcmFormat& encoded)
    : fd_(fd), source_(source), encoded_(encoded) {}

StreamEncoder::~StreamEncoder() {
    stream_.reset();
    ::close(fd_);
}

platform::Result<std::unique_ptr<StreamEncoder>> StreamEncoder::open(int fd,
                                                                     const std::string& path,
                                                                     const TargetFormat& target,
                                                                     const PcmFormat& source,
                                                                     const FileTags& tags) {
    const PcmFormat encoded = encodedPcmFormat(target, source);
    std::unique_ptr<StreamEncoder> encoder(new StreamEncoder(fd, source, encoded));
    if (source.sampleRate <= 0 || source.channels < 1) {
        return platform::failure("a " + formatWordText(target.word) +
                                 " file can't be written a stretch at a time");
    }
    if (source.sampleRate != encoded.sampleRate) {
        auto resampler = Resampler::create(source.sampleRate, encoded.sampleRate, encoded.channels);
        if (!resampler) return resampler.failed();
        encoder->resampler_ = std::move(*resampler);
    }
    auto stream = writtenByUs(target) ? openWaveStream(fd, path, encoded, tags)
                  : writtenByTheSoundFileLibrary(target)
                      ? openSndfileStream(fd, path, target, encoded, tags)
                      : openFfmpegStream(fd, path, target, encoded, tags);
    if (!stream) return stream.failed();
    encoder->stream_ = std::move(*stream);
    return encoder;
}

bool StreamEncoder::copiesSourceFrames() const {
    return stream_->copiesFrames() && source_ == encoded_;
}

platform::Result<void> StreamEncoder::appendCopied(
    SampleCount frameCount, const std::function<platform::Result<void>(int)>& copy) {
    if (!copiesSourceFrames()) return platform::failure("the file takes converted frames only");
    if (platform::Result<void> copied = stream_->appendCopied(frameCount, copy); !copied)
        return copied;
    sourceFrames_ += frameCount;
    encodedFrames_ += frameCount;
    return platform::Result<void>::success();
}

platform::Result<void> StreamEncoder::writeEncoded(const std::int16_t* frames,
                                                   std::size_t frameCount) {
    encodedFrames_ += static_cast<SampleCount>(frameCount);
    return stream_->write(frames, frameCount);
}

platform::Result<void> StreamEncoder::write(const std::int16_t* frames, std::size_t frameCount) {
    sourceFrames_ += static_cast<SampleCount>(frameCount);
    const std::int16_t* remixed = frames;
    if (source_.channels != encoded_.channels) {
        remixed_.resize(frameCount * static_cast<std::size_t>(encoded_.channels));
        remixChannels(frames, frameCount, source_.channels, encoded_.channels, remixed_.data());
        remixed = remixed_.data();
    }
    if (!resampler_) return writeEncoded(remixed, frameCount);
    converted_.clear();
    if (platform::Result<void> converted = resampler_->convert(remixed, frameCount, converted_);
        !converted)
        return converted;
    return writeEncoded(converted_.data(),
                        converted_.size() / static_cast<std::size_t>(encoded_.channels));
}

platform::Result<void> StreamEncoder::sync() {
    if (platform::Result<void> synced = stream_->sync(); !synced) return synced;
    return persist();
}

platform::Result<void> StreamEncoder::persist() {
    // A dictation counts as saved once it would survive a power cut. Its audio
    // and length are what must survive; the times of the file may lag.
    struct stat status {};
    if (::fdatasync(fd_) != 0 || ::fstat(fd_, &status) != 0)
        return platform::systemFailure("can't sync the saved file", errno);
    syncedBytes_ = status.st_size;
    return platform::Result<void>::success();
}

platform::Result<void> StreamEncoder::finish() {
    if (finished_) return platform::Result<void>::success();
    finished_ = true;
    if (resampler_) {
        converted_.clear();
        if (platform::Result<void> tail = resampler_->convert(nullptr, 0, converted_); !tail)
            return tail;
        // A converted take lasts exactly as long as the original: the converter's
        // rounding at the end is cut off or filled with silence.
        const auto width = static_cast<std::size_t>(encoded_.channels);
        const auto expected = static_cast<SampleCount>(
            static_cast<long double>(sourceFrames_) * encoded_.sampleRate / source_.sampleRate +
            0.5L);
        const SampleCount missing = std::max<SampleCount>(expected - encodedFrames_, 0);
        converted_.resize(static_cast<std::size_t>(missing) * width, 0);
        if (platform::Result<void> written =
                writeEncoded(converted_.data(), converted_.size() / width);
            !written)
            return written;
    }
    if (encodedFrames_ == 0 && !stream_->emptyFileIsPlayable()) {
        // A coded file with no frame at all is one no player opens: a letter the
        // author emptied is saved as a millisecond of silence instead.
        converted_.assign(static_cast<std::size_t>(encoded_.sampleRate / 1000 * encoded_.channels),
                          0);
        const auto frames = converted_.size() / static_cast<std::size_t>(encoded_.channels);
        if (platform::Result<void> written = writeEncoded(converted_.data(), frames); !written)
            return written;
    }
    if (platform::Result<void> finished = stream_->finish(); !finished) return finished;
    return persist();
}

void StreamEncoder::rollBack() {
    if (::ftruncate(fd_, syncedBytes_) != 0 || ::lseek(fd_, syncedBytes_, SEEK_SET) < 0) {
        // Nothing more to do: the file keeps the extra bytes behind what its header counts.
    }
}

bool StreamEncoder::sameFileAs(int fd) const {
    struct stat mine {};
    struct stat theirs {};
    return ::fstat(fd_, &mine) == 0 && ::fstat(fd, &theirs) == 0 && mine.st_dev == theirs.st_dev &&
           mine.st_ino == theirs.st_ino;
}

}  // namespace ovd::engine
