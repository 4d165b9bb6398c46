// MP3, MP2, WMA and Ogg Vorbis through the codec library: MP3 by LAME in a
// stream that opens with an Info frame, MPEG layer II in a plain .mp2 stream, WMA
// version 2 in an ASF file and Vorbis in Ogg pages. MP3 goes this way rather than through the
// sound-file library because LAME alone leaves the Info frame out when a frame is too small to hold
// it (32 kbit at 16 kHz): without it every reader hears the encoder's start-up and padding, a tenth
// of a second more than was dictated.

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <optional>
#include <vector>

#include "engine/asf_counts.h"
#include "engine/codec_backends.h"
#include "engine/ffmpeg_handles.h"
#include "engine/mp3_info_frame.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavformat/avio.h>
#include <libavutil/channel_layout.h>
#include <libavutil/dict.h>
#include <libavutil/error.h>
}

namespace ovd::engine {

namespace {

constexpr std::size_t kBlockFrames = 64 * 1024;
// Bit rates of MPEG audio: MPEG 1 above 24 kHz, the low-rate extensions below.
constexpr std::array<int, 14> kLayer2HighRateKbps = {32,  48,  56,  64,  80,  96,  112,
                                                     128, 160, 192, 224, 256, 320, 384};
constexpr std::array<int, 14> kLayer3HighRateKbps = {32,  40,  48,  56,  64,  80,  96,
                                                     112, 128, 160, 192, 224, 256, 320};
constexpr std::array<int, 14> kLowRateKbps = {8,  16, 24, 32,  40,  48,  56,
                                              64, 80, 96, 112, 128, 144, 160};
// The WMA encoder refuses anything slower.
constexpr int kWmaLowestKbps = 24;

struct Recipe {
    const char* encoder;
    const char* muxer;
};

Recipe recipeFor(FormatWord word) {
    switch (word) {
        case FormatWord::MP3:
            return {"libmp3lame", "mp3"};
        case FormatWord::MP2:
            return {"mp2", "mp2"};
        case FormatWord::OGG:
            return {"libvorbis", "ogg"};
        default:
            return {"wmav2", "asf"};
    }
}

// The Ogg options in the Vorbis encoder's terms: a quality (which the codec
// library takes in tenths), or a nominal rate held between two bounds; without a
// variable rate the bounds close on the nominal rate.
void applyOggEncoding(AVCodecContext* codec, const OggEncoding& ogg) {
    if (ogg.byQuality) {
        codec->flags |= AV_CODEC_FLAG_QSCALE;
        codec->global_quality = std::clamp(ogg.quality, 0, 10) * FF_QP2LAMBDA;
        codec->bit_rate = 0;
        return;
    }
    const std::int64_t nominal = std::max(ogg.nominalKbps, 8) * std::int64_t{1000};
    codec->bit_rate = nominal;
    if (ogg.variable) {
        codec->rc_min_rate = std::min<std::int64_t>(ogg.minKbps * std::int64_t{1000}, nominal);
        codec->rc_max_rate = std::max<std::int64_t>(ogg.maxKbps * std::int64_t{1000}, nominal);
    } else {
        codec->rc_min_rate = nominal;
        codec->rc_max_rate = nominal;
    }
}

struct OutputCloser {
    void operator()(AVFormatContext* context) const { avformat_free_context(context); }
};

// The nearest allowed rate; halfway between two, the higher.
template <std::size_t N>
int nearestKbps(int wanted, const std::array<int, N>& rates) {
    int best = rates.front();
    for (const int rate : rates) {
        if (std::abs(rate - wanted) <= std::abs(best - wanted)) best = rate;
    }
    return best;
}

// The bit rate sent to the encoder, in bit/s; 0 leaves the choice to it.
std::int64_t encoderBitRate(const TargetFormat& target, int sampleRate) {
    if (target.bitrateKbps <= 0 || target.word == FormatWord::OGG) return 0;
    const bool mpeg1 = sampleRate > 24000;
    int kbps = target.bitrateKbps;
    switch (target.word) {
        case FormatWord::MP3:
            kbps = nearestKbps(kbps, mpeg1 ? kLayer3HighRateKbps : kLowRateKbps);
            break;
        case FormatWord::MP2:
            kbps = nearestKbps(kbps, mpeg1 ? kLayer2HighRateKbps : kLowRateKbps);
            break;
        default:
            kbps = std::max(kbps, kWmaLowestKbps);
            break;
    }
    return static_cast<std::int64_t>(kbps) * 1000;
}

// What the MP3 options say about how the bits are spent, in the encoder's own
// options. A variable rate asks for a quality rather than a rate; an average
// rate keeps to the mean it is given whatever the format group's bit rate.
void applyMp3Encoding(AVCodecContext* codec, const Mp3Encoding& mp3, AVDictionary** options) {
    switch (mp3.rate) {
        case Mp3Encoding::Rate::Constant:
            break;
        case Mp3Encoding::Rate::Variable:
            codec->flags |= AV_CODEC_FLAG_QSCALE;
            codec->global_quality = std::clamp(mp3.variableQuality, 0, 9) * FF_QP2LAMBDA;
            codec->bit_rate = 0;
            break;
        case Mp3Encoding::Rate::Average:
            av_dict_set(options, "abr", "1", 0);
            codec->bit_rate = static_cast<std::int64_t>(std::clamp(mp3.averageKbps, 8, 320)) * 1000;
            break;
    }
    av_dict_set(options, "joint_stereo", mp3.jointStereo ? "1" : "0", 0);
    av_dict_set(options, "reservoir", mp3.bitReservoir ? "1" : "0", 0);
    if (mp3.quality >= 0) codec->compression_level = std::clamp(mp3.quality, 0, 9);
    if (mp3.lowPassHz > 0) codec->cutoff = mp3.lowPassHz;
}

bool supportsSampleFormat(AVSampleFormat format) {
    return format == AV_SAMPLE_FMT_S16 || format == AV_SAMPLE_FMT_S16P ||
           format == AV_SAMPLE_FMT_FLT || format == AV_SAMPLE_FMT_FLTP;
}

// Interleaved 16-bit frames into an encoder frame of whatever sample layout it takes.
void fillFrame(AVFrame* frame, const std::int16_t* samples, int frameCount, int channels) {
    const auto format = static_cast<AVSampleFormat>(frame->format);
    const bool planar = av_sample_fmt_is_planar(format) != 0;
    const bool floating = format == AV_SAMPLE_FMT_FLT || format == AV_SAMPLE_FMT_FLTP;
    for (int i = 0; i < frameCount; ++i) {
        for (int c = 0; c < channels; ++c) {
            const std::int16_t sample = samples[i * channels + c];
            const int plane = planar ? c : 0;
            const int index = planar ? i : i * channels + c;
            if (floating) {
                reinterpret_cast<float*>(frame->data[plane])[index] =
                    static_cast<float>(sample) / 32768.0f;
            } else {
                reinterpret_cast<std::int16_t*>(frame->data[plane])[index] = sample;
            }
        }
    }
}

constexpr int kIoBufferBytes = 64 * 1024;
// A decoder gives out the second half of a frame's sound only with the next
// frame: until the stream goes on, that much at its end counts as padding.
constexpr int kDecoderDelaySamples = 529;

struct IoCloser {
    void operator()(AVIOContext* io) const {
        av_freep(&io->buffer);
        avio_context_free(&io);
    }
};

// One encoding into a file descriptor: the whole file at once, or a file that
// grows a stretch at a time (growing), synced between stretches.
class FfmpegStream final : public EncodedStream {
  public:
    FfmpegStream(int fd, const std::string& path, const TargetFormat& target, const PcmFormat& pcm,
                 const FileTags& tags, bool growing)
        : fd_(fd), path_(path), target_(target), pcm_(pcm), tags_(tags), growing_(growing) {}

    platform::Result<void> open() {
        if (platform::Result<void> prepared = prepare(); !prepared) return prepared;
        frame_.reset(av_frame_alloc());
        packet_.reset(av_packet_alloc());
        if (!frame_ || !packet_) return platform::failure("out of memory preparing " + path_);
        // A plain MP2 stream's writer puts no tag at its front: ours goes there first.
        // Without details the stream stays as it always was.
        if (target_.word == FormatWord::MP2 && !tidyDetails(tags_.details).empty()) {
            const std::vector<unsigned char> tag = id3v2Tag(tags_);
            if (!tag.empty()) avio_write(io_.get(), tag.data(), static_cast<int>(tag.size()));
        }
        const int code = avformat_write_header(output_.get(), nullptr);
        if (code < 0) return failure("can't write the header of", code);
        if (growing_ && target_.word == FormatWord::MP3) return findInfoFrame();
        if (growing_ && target_.word == FormatWord::WMA) return findAsfCounts();
        return platform::Result<void>::success();
    }

    platform::Result<void> write(const std::int16_t* samples, std::size_t frameCount) override {
        const auto width = static_cast<std::size_t>(pcm_.channels);
        queued_.insert(queued_.end(), samples, samples + frameCount * width);
        // The encoder takes whole frames: the rest waits for the next block.
        std::size_t sent = 0;
        while (queued_.size() - sent >= frameSize_ * width) {
            if (platform::Result<void> done = sendFrames(queued_.data() + sent, frameSize_); !done)
                return done;
            sent += frameSize_ * width;
        }
        queued_.erase(queued_.begin(), queued_.begin() + static_cast<std::ptrdiff_t>(sent));
        return platform::Result<void>::success();
    }

    platform::Result<void> sync() override {
        // An Ogg muxer holds packets until a page is full: the page goes out now,
        // so what is saved so far reads back.
        if (target_.word == FormatWord::OGG) {
            const int code = av_write_frame(output_.get(), nullptr);
            if (code < 0) return failure("can't write", code);
        }
        avio_flush(io_.get());
        if (io_->error < 0) return failure("can't write", io_->error);
        if (!info_ && !asf_) return platform::Result<void>::success();
        // The frames reach the disk before the counts that take them in: a crash
        // between the two leaves the file as the last save wrote it.
        if (::fdatasync(fd_) != 0) return failure("can't sync", AVERROR(errno));
        if (asf_) return rewriteAsfCounts();
        Mp3Tally tally = tally_;
        // The encoder's start-up as the muxer counts it: what it reports less the decoder's delay.
        tally.startPadding = std::max(codec_->initial_padding - kDecoderDelaySamples, 0);
        tally.endPadding = kDecoderDelaySamples;
        tally.frameStarts = frameStarts_;
        const std::vector<std::uint8_t> frame = info_->describing(tally);
        const auto written =
            ::pwrite(fd_, frame.data(), frame.size(), static_cast<off_t>(info_->offset()));
        if (written != static_cast<ssize_t>(frame.size())) {
            return failure("can't write the Info frame of", AVERROR(written < 0 ? errno : EIO));
        }
        return platform::Result<void>::success();
    }

    platform::Result<void> finish() override {
        const auto width = static_cast<std::size_t>(pcm_.channels);
        if (!queued_.empty()) {
            const bool takesAnySize =
                (codec_->codec->capabilities &
                 (AV_CODEC_CAP_VARIABLE_FRAME_SIZE | AV_CODEC_CAP_SMALL_LAST_FRAME)) != 0;
            // An encoder that takes whole frames only gets a last one ending in silence.
            if (!takesAnySize) queued_.resize(frameSize_ * width, 0);
            if (platform::Result<void> sent = sendFrames(queued_.data(), queued_.size() / width);
                !sent)
                return sent;
            queued_.clear();
        }
        if (platform::Result<void> drained = send(nullptr); !drained) return drained;
        const int code = av_write_trailer(output_.get());
        if (code < 0) return failure("can't finish", code);
        avio_flush(io_.get());
        if (io_->error < 0) return failure("can't write", io_->error);
        return platform::Result<void>::success();
    }

  private:
    platform::Result<void> failure(const std::string& what, int code) const {
        return platform::failure(what + " " + path_ + ": " + ffmpegErrorText(code));
    }

    static int writeToFile(void* opaque, std::uint8_t* data, int size) {
        const int fd = static_cast<FfmpegStream*>(opaque)->fd_;
        int done = 0;
        while (done < size) {
            const ssize_t n = ::write(fd, data + done, static_cast<std::size_t>(size - done));
            if (n < 0 && errno == EINTR) continue;
            if (n <= 0) return AVERROR(n < 0 ? errno : EIO);
            done += static_cast<int>(n);
        }
        return done;
    }

    static std::int64_t seekInFile(void* opaque, std::int64_t offset, int whence) {
        const int fd = static_cast<FfmpegStream*>(opaque)->fd_;
        whence &= ~AVSEEK_FORCE;
        if (whence == AVSEEK_SIZE) {
            struct stat status {};
            return ::fstat(fd, &status) == 0 ? static_cast<std::int64_t>(status.st_size)
                                             : AVERROR(errno);
        }
        const off_t at = ::lseek(fd, static_cast<off_t>(offset), whence);
        return at < 0 ? AVERROR(errno) : static_cast<std::int64_t>(at);
    }

    platform::Result<void> prepare() {
        const Recipe recipe = recipeFor(target_.word);
        const AVCodec* codec = avcodec_find_encoder_by_name(recipe.encoder);
        if (!codec)
            return platform::failure("the codec library has no " + formatWordText(target_.word) +
                                     " encoder");
        AVFormatContext* output = nullptr;
        int code = avformat_alloc_output_context2(&output, nullptr, recipe.muxer, path_.c_str());
        if (code < 0 || !output) return failure("can't prepare", code);
        output_.reset(output);

        codec_.reset(avcodec_alloc_context3(codec));
        if (!codec_) return platform::failure("out of memory preparing " + path_);
        codec_->sample_fmt = AV_SAMPLE_FMT_NONE;
        for (const AVSampleFormat* format = codec->sample_fmts;
             format && *format != AV_SAMPLE_FMT_NONE; ++format) {
            if (supportsSampleFormat(*format)) {
                codec_->sample_fmt = *format;
                break;
            }
        }
        if (codec_->sample_fmt == AV_SAMPLE_FMT_NONE) {
            return platform::failure("the " + formatWordText(target_.word) +
                                     " encoder takes no usable sample format");
        }
        codec_->sample_rate = pcm_.sampleRate;
        av_channel_layout_default(&codec_->ch_layout, pcm_.channels);
        codec_->bit_rate = encoderBitRate(target_, pcm_.sampleRate);
        codec_->time_base = AVRational{1, pcm_.sampleRate};
        if (output_->oformat->flags & AVFMT_GLOBALHEADER)
            codec_->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
        AVDictionary* options = nullptr;
        if (target_.word == FormatWord::MP3) applyMp3Encoding(codec_.get(), target_.mp3, &options);
        if (target_.word == FormatWord::OGG) applyOggEncoding(codec_.get(), target_.ogg);
        code = avcodec_open2(codec_.get(), codec, &options);
        av_dict_free(&options);
        if (code < 0)
            return failure("can't start the " + formatWordText(target_.word) + " encoder for",
                           code);
        frameSize_ = static_cast<std::size_t>(codec_->frame_size > 0 ? codec_->frame_size : 1152);

        stream_ = avformat_new_stream(output_.get(), nullptr);
        if (!stream_) return platform::failure("out of memory preparing " + path_);
        code = avcodec_parameters_from_context(stream_->codecpar, codec_.get());
        if (code < 0) return failure("can't prepare", code);
        stream_->time_base = codec_->time_base;
        // MP3 keeps them in its ID3 tag, ASF in its description; MP2 in the tag put in front.
        if (target_.word != FormatWord::MP2) {
            if (!tags_.comment.empty())
                av_dict_set(&output_->metadata, "comment", tags_.comment.c_str(), 0);
            for (const FileTag& tag : tidyDetails(tags_.details))
                av_dict_set(&output_->metadata, tag.key.c_str(), tag.value.c_str(), 0);
        }

        // Written through our own descriptor, which carries the caller's lock (or
        // stays open for the next stretch of a growing file).
        auto* buffer = static_cast<std::uint8_t*>(av_malloc(kIoBufferBytes));
        if (!buffer) return platform::failure("out of memory preparing " + path_);
        io_.reset(avio_alloc_context(buffer, kIoBufferBytes, 1, this, nullptr, &writeToFile,
                                     &seekInFile));
        if (!io_) {
            av_free(buffer);
            return platform::failure("out of memory preparing " + path_);
        }
        output_->pb = io_.get();
        output_->flags |= AVFMT_FLAG_CUSTOM_IO;
        return platform::Result<void>::success();
    }

    // The bytes the muxer wrote before the first packet.
    platform::Result<std::vector<std::uint8_t>> readHead() {
        avio_flush(io_.get());
        if (io_->error < 0) return failure("can't write", io_->error).failed();
        const std::int64_t headerBytes = avio_tell(io_.get());
        std::vector<std::uint8_t> head(
            static_cast<std::size_t>(std::max<std::int64_t>(headerBytes, 0)));
        const ssize_t got = ::pread(fd_, head.data(), head.size(), 0);
        if (got != static_cast<ssize_t>(head.size())) {
            return failure("can't read back the header of", AVERROR(got < 0 ? errno : EIO))
                .failed();
        }
        return head;
    }

    // The Info frame the muxer put behind the ID3 tag, to be brought up to date at each sync.
    platform::Result<void> findInfoFrame() {
        auto head = readHead();
        if (!head) return head.failed();
        info_ = Mp3InfoFrame::find(head->data(), head->size());
        if (!info_)
            return platform::failure("no Info frame at the head of " + path_ +
                                     " to keep its length in");
        return platform::Result<void>::success();
    }

    // The counts the muxer leaves at nought until the end, to be brought up to date at each sync.
    platform::Result<void> findAsfCounts() {
        auto head = readHead();
        if (!head) return head.failed();
        asf_ = AsfCounts::find(head->data(), head->size());
        if (!asf_) return platform::failure("no ASF header at the head of " + path_);
        return platform::Result<void>::success();
    }

    // The muxer writes whole packets only, so the file ends on one.
    platform::Result<void> rewriteAsfCounts() {
        struct stat status {};
        if (::fstat(fd_, &status) != 0) return failure("can't sync", AVERROR(errno));
        const auto fileBytes = static_cast<std::uint64_t>(status.st_size);
        const std::uint64_t packets =
            (fileBytes - std::min(fileBytes, asf_->packetsStart())) / asf_->packetBytes();
        std::vector<std::uint8_t> last;
        if (packets > 0) {
            last.resize(asf_->packetBytes());
            const auto lastAt =
                static_cast<off_t>(asf_->packetsStart() + (packets - 1) * asf_->packetBytes());
            if (::pread(fd_, last.data(), last.size(), lastAt) != static_cast<ssize_t>(last.size()))
                return failure("can't read back", AVERROR(errno));
        }
        for (const AsfCounts::Patch& patch : asf_->describing(fileBytes, packets, last)) {
            if (::pwrite(fd_, patch.bytes.data(), patch.bytes.size(),
                         static_cast<off_t>(patch.offset)) !=
                static_cast<ssize_t>(patch.bytes.size()))
                return failure("can't write the header of", AVERROR(errno));
        }
        return platform::Result<void>::success();
    }

    platform::Result<void> sendFrames(const std::int16_t* samples, std::size_t frameCount) {
        av_frame_unref(frame_.get());
        frame_->format = codec_->sample_fmt;
        frame_->sample_rate = codec_->sample_rate;
        frame_->nb_samples = static_cast<int>(frameCount);
        int code = av_channel_layout_copy(&frame_->ch_layout, &codec_->ch_layout);
        if (code >= 0) code = av_frame_get_buffer(frame_.get(), 0);
        if (code < 0) return failure("out of memory writing", code);
        fillFrame(frame_.get(), samples, frame_->nb_samples, pcm_.channels);
        frame_->pts = nextPts_;
        nextPts_ += frame_->nb_samples;
        return send(frame_.get());
    }

    // Gives the encoder a frame (null at the end) and writes every packet it has ready.
    platform::Result<void> send(AVFrame* frame) {
        int code = avcodec_send_frame(codec_.get(), frame);
        if (code < 0) return failure("can't encode", code);
        while (true) {
            code = avcodec_receive_packet(codec_.get(), packet_.get());
            if (code == AVERROR(EAGAIN) || code == AVERROR_EOF)
                return platform::Result<void>::success();
            if (code < 0) return failure("can't encode", code);
            if (info_) count(*packet_);
            av_packet_rescale_ts(packet_.get(), codec_->time_base, stream_->time_base);
            packet_->stream_index = stream_->index;
            code = av_write_frame(output_.get(), packet_.get());
            av_packet_unref(packet_.get());
            if (code < 0) return failure("can't write", code);
        }
    }

    void count(const AVPacket& packet) {
        const auto size = static_cast<std::size_t>(packet.size);
        ++tally_.frames;
        frameStarts_.push_back(tally_.bytes);
        tally_.bytes += size;
        tally_.crc = mp3Crc16(tally_.crc, packet.data, size);
        if (size >= 3) {
            const int bitrateIndex = packet.data[2] >> 4;
            if (firstBitrateIndex_ < 0) firstBitrateIndex_ = bitrateIndex;
            if (bitrateIndex != firstBitrateIndex_) tally_.constantBitRate = false;
        }
    }

    const int fd_;
    const std::string path_;
    const TargetFormat target_;
    const PcmFormat pcm_;
    const FileTags tags_;
    const bool growing_;
    std::unique_ptr<AVIOContext, IoCloser> io_;  // outlives the muxer that writes through it
    std::unique_ptr<AVFormatContext, OutputCloser> output_;
    CodecHandle codec_;
    FrameHandle frame_;
    PacketHandle packet_;
    AVStream* stream_ = nullptr;
    std::size_t frameSize_ = 1152;
    std::vector<std::int16_t> queued_;
    std::int64_t nextPts_ = 0;
    std::optional<Mp3InfoFrame> info_;
    std::optional<AsfCounts> asf_;
    Mp3Tally tally_;
    std::vector<std::uint64_t> frameStarts_;  // of every frame after the Info frame
    int firstBitrateIndex_ = -1;
};

}  // namespace

std::string ffmpegErrorText(int code) {
    char text[AV_ERROR_MAX_STRING_SIZE] = {};
    av_strerror(code, text, sizeof text);
    return text;
}

platform::Result<void> encodeWithFfmpeg(const EncodeJob& job, int fd, const std::string& path) {
    const PcmFormat pcm = job.pcm.format();
    FfmpegStream stream(fd, path, job.target, pcm, job.tags, false);
    if (platform::Result<void> opened = stream.open(); !opened) return opened;
    std::vector<std::int16_t> block(kBlockFrames * static_cast<std::size_t>(pcm.channels));
    while (const std::size_t got = job.pcm.read(block.data(), kBlockFrames)) {
        if (platform::Result<void> written = stream.write(block.data(), got); !written)
            return written;
        if (!job.keepGoing()) return platform::failure(kCancelledText);
    }
    return stream.finish();
}

platform::Result<std::unique_ptr<EncodedStream>> openFfmpegStream(int fd, const std::string& path,
                                                                  const TargetFormat& target,
                                                                  const PcmFormat& format,
                                                                  const FileTags& tags) {
    auto stream = std::make_unique<FfmpegStream>(fd, path, target, format, tags, true);
    if (platform::Result<void> opened = stream->open(); !opened) return opened.failed();
    return std::unique_ptr<EncodedStream>(std::move(stream));
}

}  // namespace ovd::engine
