// WAV at 8, 24 and 32 bits, VOX, RAW and GSM ("DSP") written a stretch at a
// time by the sound-file library, through the saver's descriptor. The library
// writes the same bytes as for a whole encoding as long as it is given whole
// units of the format: VOX packs two samples to a byte and GSM codes 320 samples
// to a block, so a part unit waits for the next stretch or for the end. The
// library reaches the file only through the calls below, which go quiet when an
// unfinished file is let go: its close would otherwise complete the file behind
// the saver's back.

#include <sndfile.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <vector>

#include "engine/codec_backends.h"
#include "engine/sndfile_formats.h"
#include "platform/files.h"

namespace ovd::engine {

namespace {

constexpr std::size_t kGsmBlockFrames = 320;  // one 65-byte block of GSM in a wave file

std::size_t unitFrames(FormatWord word) {
    switch (word) {
        case FormatWord::VOX:
            return 2;
        case FormatWord::DSP:
            return kGsmBlockFrames;
        default:
            return 1;
    }
}

class SndfileStream final : public EncodedStream {
  public:
    SndfileStream(int fd, const std::string& path, const TargetFormat& target,
                  const PcmFormat& format)
        : fd_(fd),
          path_(path),
          target_(target),
          format_(format),
          unitFrames_(unitFrames(target.word)) {}

    ~SndfileStream() override {
        if (!file_) return;
        quiet_ = true;
        sf_close(file_);
    }

    SndfileStream(const SndfileStream&) = delete;
    SndfileStream& operator=(const SndfileStream&) = delete;

    platform::Result<void> open(const std::string& comment) {
        SF_INFO info{};
        info.samplerate = format_.sampleRate;
        info.channels = format_.channels;
        info.format = sndfileFormatOf(target_);
        if (info.format == 0 || !sf_format_check(&info)) {
            return platform::failure("can't write " + formatWordText(target_.word) + " at " +
                                     std::to_string(format_.sampleRate) + " Hz, " +
                                     std::to_string(format_.channels) + " channels");
        }
        SF_VIRTUAL_IO io{&fileLength, &seek, &read, &write, &tell};
        file_ = sf_open_virtual(&io, SFM_WRITE, &info, this);
        if (!file_) return platform::failure("can't write " + path_ + ": " + sf_strerror(nullptr));
        if (!comment.empty() && sndfileCarriesComment(target_.word) &&
            sf_set_string(file_, SF_STR_COMMENT, comment.c_str()) != 0) {
            return platform::failure("can't write the comment into " + path_ + ": " +
                                     sf_strerror(file_));
        }
        // A header from the start: a reader that opens the file before the first
        // stretch finds an empty file of its format, not a torn one.
        return updateHeader();
    }

    platform::Result<void> write(const std::int16_t* frames, std::size_t frameCount) override {
        const auto width = static_cast<std::size_t>(format_.channels);
        held_.insert(held_.end(), frames, frames + frameCount * width);
        const std::size_t whole = held_.size() / width / unitFrames_ * unitFrames_;
        if (platform::Result<void> written = give(held_.data(), whole); !written) return written;
        held_.erase(held_.begin(), held_.begin() + static_cast<std::ptrdiff_t>(whole * width));
        return platform::Result<void>::success();
    }

    [[nodiscard]] bool emptyFileIsPlayable() const override { return true; }

    platform::Result<void> sync() override {
        // The frames reach the disk before the header that counts them; a
        // headerless file has no counts, and the encoder's sync makes it durable.
        if (target_.word == FormatWord::RAW || target_.word == FormatWord::VOX)
            return platform::Result<void>::success();
        if (::fdatasync(fd_) != 0) return platform::systemFailure("can't sync " + path_, errno);
        return updateHeader();
    }

    platform::Result<void> finish() override {
        const auto width = static_cast<std::size_t>(format_.channels);
        if (platform::Result<void> written = give(held_.data(), held_.size() / width); !written)
            return written;
        held_.clear();
        const int closed = sf_close(file_);
        file_ = nullptr;
        if (failed_) return platform::failure(writeError_);
        if (closed != 0)
            return platform::failure("can't finish " + path_ + ": " + sf_error_number(closed));
        return platform::Result<void>::success();
    }

  private:
    platform::Result<void> give(const std::int16_t* frames, std::size_t frameCount) {
        if (frameCount == 0) return platform::Result<void>::success();
        const auto count = static_cast<sf_count_t>(frameCount);
        if (sf_writef_short(file_, frames, count) != count || failed_) {
            return platform::failure(failed_ ? writeError_
                                             : "can't write " + path_ + ": " + sf_strerror(file_));
        }
        return platform::Result<void>::success();
    }

    platform::Result<void> updateHeader() {
        // Headerless files have no header to bring up to date: the library leaves them be.
        sf_command(file_, SFC_UPDATE_HEADER_NOW, nullptr, 0);
        if (failed_) return platform::failure(writeError_);
        return platform::Result<void>::success();
    }

    static SndfileStream& self(void* user) { return *static_cast<SndfileStream*>(user); }

    static sf_count_t fileLength(void* user) {
        struct stat status {};
        return ::fstat(self(user).fd_, &status) == 0 ? status.st_size : -1;
    }

    static sf_count_t seek(sf_count_t offset, int whence, void* user) {
        SndfileStream& stream = self(user);
        if (stream.quiet_) return stream.position_;
        const off_t at = ::lseek(stream.fd_, offset, whence);
        if (at >= 0) stream.position_ = at;
        return at;
    }

    static sf_count_t read(void* data, sf_count_t count, void* user) {
        SndfileStream& stream = self(user);
        if (stream.quiet_) return 0;
        const ssize_t got = ::read(stream.fd_, data, static_cast<std::size_t>(count));
        if (got > 0) stream.position_ += got;
        return got < 0 ? 0 : got;
    }

    static sf_count_t write(const void* data, sf_count_t count, void* user) {
        SndfileStream& stream = self(user);
        // Let go unfinished: the file stays as the last sync left it.
        if (stream.quiet_) return count;
        const auto* bytes = static_cast<const char*>(data);
        sf_count_t done = 0;
        while (done < count) {
            const ssize_t n =
                ::write(stream.fd_, bytes + done, static_cast<std::size_t>(count - done));
            if (n < 0 && errno == EINTR) continue;
            if (n <= 0) {
                stream.failed_ = true;
                stream.writeError_ =
                    platform::systemFailure("can't write " + stream.path_, errno).reason;
                break;
            }
            done += n;
        }
        stream.position_ += done;
        return done;
    }

    static sf_count_t tell(void* user) { return self(user).position_; }

    const int fd_;
    const std::string path_;
    const TargetFormat target_;
    const PcmFormat format_;
    const std::size_t unitFrames_;
    SNDFILE* file_ = nullptr;
    std::vector<std::int16_t> held_;  // less than a unit of the format, waiting for more
    sf_count_t position_ = 0;
    bool quiet_ = false;
    bool failed_ = false;
    std::string writeError_;
};

}  // namespace

platform::Result<std::unique_ptr<EncodedStream>> openSndfileStream(int fd, const std::string& path,
                                                                   const TargetFormat& target,
                                                                   const PcmFormat& format,
                                                                   const FileTags& tags) {
    auto stream = std::make_unique<SndfileStream>(fd, path, target, format);
    // The letter's details of these formats travel in the text file beside them.
    if (platform::Result<void> opened = stream->open(tags.comment); !opened) return opened.failed();
    return std::unique_ptr<EncodedStream>(std::move(stream));
}

}  // namespace ovd::engine
