// Reading what the sound-file library can't: MP2 and WMA dictations, and any
// other file the codec library can take apart, decoded to 16-bit frames at the
// file's own rate.

#include <algorithm>
#include <cctype>
#include <vector>

#include "engine/codec_backends.h"
#include "engine/ffmpeg_handles.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/channel_layout.h>
#include <libswresample/swresample.h>
}

namespace ovd::engine {

namespace {

struct InputCloser {
    void operator()(AVFormatContext* context) const { avformat_close_input(&context); }
};
struct ResamplerCloser {
    void operator()(SwrContext* context) const { swr_free(&context); }
};

std::string upperFirstName(const char* names) {
    std::string text(names ? names : "");
    text = text.substr(0, text.find(','));
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return text;
}

// The format word of what was found; other audio is named by its container.
std::string formatNameOf(AVCodecID codec, const AVInputFormat* container) {
    switch (codec) {
        case AV_CODEC_ID_MP2:
            return "MP2";
        case AV_CODEC_ID_MP3:
            return "MP3";
        case AV_CODEC_ID_WMAV1:
        case AV_CODEC_ID_WMAV2:
            return "WMA";
        case AV_CODEC_ID_GSM_MS:
            return "DSP";
        default:
            break;
    }
    return upperFirstName(container ? container->name : nullptr);
}

class FfmpegReader : public AudioFileReader {
  public:
    platform::Result<void> open(const std::string& path) {
        AVFormatContext* input = nullptr;
        int code = avformat_open_input(&input, path.c_str(), nullptr, nullptr);
        if (code < 0) return failure(path, code);
        input_.reset(input);
        code = avformat_find_stream_info(input_.get(), nullptr);
        if (code < 0) return failure(path, code);
        const AVCodec* codec = nullptr;
        stream_ = av_find_best_stream(input_.get(), AVMEDIA_TYPE_AUDIO, -1, -1, &codec, 0);
        if (stream_ < 0 || !codec)
            return failure(path, stream_ < 0 ? stream_ : AVERROR_DECODER_NOT_FOUND);
        const AVStream* stream = input_->streams[stream_];
        decoder_.reset(avcodec_alloc_context3(codec));
        if (!decoder_) return failure(path, AVERROR(ENOMEM));
        code = avcodec_parameters_to_context(decoder_.get(), stream->codecpar);
        if (code >= 0) code = avcodec_open2(decoder_.get(), codec, nullptr);
        if (code < 0) return failure(path, code);
        if (decoder_->sample_rate <= 0 || decoder_->ch_layout.nb_channels < 1) {
            return platform::failure("can't read " + path + ": no usable audio in it");
        }
        // A document has one or two channels; anything wider is mixed down to two.
        format_ = {decoder_->sample_rate, std::min(decoder_->ch_layout.nb_channels, 2)};
        frames_ = lengthInFrames(*stream);
        name_ = formatNameOf(decoder_->codec_id, input_->iformat);
        frame_.reset(av_frame_alloc());
        packet_.reset(av_packet_alloc());
        if (!frame_ || !packet_) return failure(path, AVERROR(ENOMEM));
        return platform::Result<void>::success();
    }

    [[nodiscard]] PcmFormat format() const override { return format_; }
    [[nodiscard]] SampleCount frames() const override { return frames_; }
    [[nodiscard]] std::string formatName() const override { return name_; }

    std::size_t read(std::int16_t* out, std::size_t frameCount) override {
        const auto channels = static_cast<std::size_t>(format_.channels);
        std::size_t done = 0;
        while (done < frameCount) {
            if (pendingStart_ >= pending_.size()) {
                pending_.clear();
                pendingStart_ = 0;
                if (!decodeMore()) break;
                continue;
            }
            const std::size_t take =
                std::min((pending_.size() - pendingStart_) / channels, frameCount - done);
            std::copy_n(pending_.begin() + static_cast<std::ptrdiff_t>(pendingStart_),
                        take * channels, out + done * channels);
            pendingStart_ += take * channels;
            done += take;
        }
        return done;
    }

  private:
    static platform::Result<void> failure(const std::string& path, int code) {
        return platform::failure("can't read " + path + ": " + ffmpegErrorText(code));
    }

    [[nodiscard]] SampleCount lengthInFrames(const AVStream& stream) const {
        const AVRational perFrame{1, format_.sampleRate};
        if (stream.duration != AV_NOPTS_VALUE && stream.duration > 0) {
            return av_rescale_q(stream.duration, stream.time_base, perFrame);
        }
        if (input_->duration != AV_NOPTS_VALUE && input_->duration > 0) {
            return av_rescale_q(input_->duration, AVRational{1, AV_TIME_BASE}, perFrame);
        }
        return 0;
    }

    // Puts the next decoded samples into pending_; false at the end or on damage.
    bool decodeMore() {
        while (!finished_) {
            const int code = avcodec_receive_frame(decoder_.get(), frame_.get());
            if (code >= 0) {
                const bool converted = convertFrame();
                av_frame_unref(frame_.get());
                if (!converted) return false;
                if (!pending_.empty()) return true;
                continue;
            }
            if (code == AVERROR_EOF) {
                finished_ = true;
                drainConverter();
                return !pending_.empty();
            }
            if (code != AVERROR(EAGAIN)) return false;
            if (!sendNextPacket()) return false;
        }
        return false;
    }

    bool sendNextPacket() {
        while (true) {
            const int code = av_read_frame(input_.get(), packet_.get());
            if (code < 0) {
                // The end of the file, or damage: either way the decoder gives out what it holds.
                return avcodec_send_packet(decoder_.get(), nullptr) >= 0;
            }
            if (packet_->stream_index != stream_) {
                av_packet_unref(packet_.get());
                continue;
            }
            const int sent = avcodec_send_packet(decoder_.get(), packet_.get());
            av_packet_unref(packet_.get());
            // A damaged packet is skipped, as a player would; the rest still plays.
            return sent >= 0 || sent == AVERROR_INVALIDDATA;
        }
    }

    bool convertFrame() {
        if (!converter_ && !startConverter()) return false;
        const auto channels = static_cast<std::size_t>(format_.channels);
        const int room = swr_get_out_samples(converter_.get(), frame_->nb_samples) + 16;
        const std::size_t before = pending_.size();
        pending_.resize(before + static_cast<std::size_t>(room) * channels);
        auto* target = reinterpret_cast<std::uint8_t*>(pending_.data() + before);
        const int made = swr_convert(converter_.get(), &target, room,
                                     const_cast<const std::uint8_t**>(frame_->extended_data),
                                     frame_->nb_samples);
        pending_.resize(before + static_cast<std::size_t>(std::max(made, 0)) * channels);
        return made >= 0;
    }

    void drainConverter() {
        if (!converter_) return;
        const auto channels = static_cast<std::size_t>(format_.channels);
        const int room = swr_get_out_samples(converter_.get(), 0) + 16;
        pending_.resize(static_cast<std::size_t>(room) * channels);
        auto* target = reinterpret_cast<std::uint8_t*>(pending_.data());
        const int made = swr_convert(converter_.get(), &target, room, nullptr, 0);
        pending_.resize(static_cast<std::size_t>(std::max(made, 0)) * channels);
        pendingStart_ = 0;
    }

    bool startConverter() {
        AVChannelLayout in{};
        if (frame_->ch_layout.order == AV_CHANNEL_ORDER_UNSPEC) {
            av_channel_layout_default(&in, frame_->ch_layout.nb_channels);
        } else if (av_channel_layout_copy(&in, &frame_->ch_layout) < 0) {
            return false;
        }
        AVChannelLayout out{};
        av_channel_layout_default(&out, format_.channels);
        SwrContext* context = nullptr;
        int code = swr_alloc_set_opts2(&context, &out, AV_SAMPLE_FMT_S16, format_.sampleRate, &in,
                                       static_cast<AVSampleFormat>(frame_->format),
                                       frame_->sample_rate, 0, nullptr);
        av_channel_layout_uninit(&in);
        av_channel_layout_uninit(&out);
        converter_.reset(context);
        if (code >= 0) code = swr_init(context);
        return code >= 0;
    }

    std::unique_ptr<AVFormatContext, InputCloser> input_;
    CodecHandle decoder_;
    FrameHandle frame_;
    PacketHandle packet_;
    std::unique_ptr<SwrContext, ResamplerCloser> converter_;
    int stream_ = -1;
    PcmFormat format_;
    SampleCount frames_ = 0;
    std::string name_;
    std::vector<std::int16_t> pending_;
    std::size_t pendingStart_ = 0;
    bool finished_ = false;
};

}  // namespace

platform::Result<std::unique_ptr<AudioFileReader>> openWithFfmpeg(const std::string& path) {
    auto reader = std::make_unique<FfmpegReader>();
    if (platform::Result<void> opened = reader->open(path); !opened) return opened.failed();
    return std::unique_ptr<AudioFileReader>(std::move(reader));
}

}  // namespace ovd::engine
