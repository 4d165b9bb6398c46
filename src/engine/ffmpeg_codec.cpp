// MP3, MP2 and WMA through the codec library: MP3 by LAME in a stream that
// opens with an Info frame, MPEG layer II in a plain .mp2 stream, and WMA
// version 2 in an ASF file. MP3 goes this way rather than through the sound-file
// library because LAME alone leaves the Info frame out when a frame is too small
// to hold it (32 kbit at 16 kHz): without it every reader hears the encoder's
// start-up and padding, a tenth of a second more than was dictated.

#include <algorithm>
#include <array>
#include <cstdlib>
#include <vector>

#include "engine/codec_backends.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/channel_layout.h>
#include <libavutil/dict.h>
#include <libavutil/error.h>
}

namespace ovd::engine {

namespace {

constexpr std::size_t kBlockFrames = 64 * 1024;
// Bit rates of MPEG audio: MPEG 1 above 24 kHz, the low-rate extensions below.
constexpr std::array<int, 14> kLayer2HighRateKbps = {32, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320, 384};
constexpr std::array<int, 14> kLayer3HighRateKbps = {32, 40, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320};
constexpr std::array<int, 14> kLowRateKbps = {8, 16, 24, 32, 40, 48, 56, 64, 80, 96, 112, 128, 144, 160};
// The WMA encoder refuses anything slower.
constexpr int kWmaLowestKbps = 24;

struct Recipe {
    const char* encoder;
    const char* muxer;
};

Recipe recipeFor(FormatWord word) {
    switch (word) {
        case FormatWord::MP3: return {"libmp3lame", "mp3"};
        case FormatWord::MP2: return {"mp2", "mp2"};
        default: return {"wmav2", "asf"};
    }
}

struct OutputCloser {
    void operator()(AVFormatContext* context) const {
        if (context->pb) avio_closep(&context->pb);
        avformat_free_context(context);
    }
};
struct CodecCloser {
    void operator()(AVCodecContext* context) const { avcodec_free_context(&context); }
};
struct FrameCloser {
    void operator()(AVFrame* frame) const { av_frame_free(&frame); }
};
struct PacketCloser {
    void operator()(AVPacket* packet) const { av_packet_free(&packet); }
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
    if (target.bitrateKbps <= 0) return 0;
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

bool supportsSampleFormat(AVSampleFormat format) {
    return format == AV_SAMPLE_FMT_S16 || format == AV_SAMPLE_FMT_S16P || format == AV_SAMPLE_FMT_FLT ||
           format == AV_SAMPLE_FMT_FLTP;
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
                reinterpret_cast<float*>(frame->data[plane])[index] = static_cast<float>(sample) / 32768.0f;
            } else {
                reinterpret_cast<std::int16_t*>(frame->data[plane])[index] = sample;
            }
        }
    }
}

class Encoder {
public:
    Encoder(const EncodeJob& job, const std::string& path) : job_(job), path_(path) {}

    EngineResult run() {
        if (EngineResult opened = open(); !opened) return opened;
        if (EngineResult fed = feed(); !fed) return fed;
        if (EngineResult drained = send(nullptr); !drained) return drained;
        const int code = av_write_trailer(output_.get());
        if (code < 0) return failure("can't finish", code);
        avio_closep(&output_->pb);
        return EngineResult::success();
    }

private:
    EngineResult failure(const std::string& what, int code) const {
        return EngineResult::failure(what + " " + path_ + ": " + ffmpegErrorText(code));
    }

    EngineResult open() {
        const Recipe recipe = recipeFor(job_.target.word);
        const AVCodec* codec = avcodec_find_encoder_by_name(recipe.encoder);
        if (!codec) return EngineResult::failure("the codec library has no " + formatWordText(job_.target.word) + " encoder");
        AVFormatContext* output = nullptr;
        int code = avformat_alloc_output_context2(&output, nullptr, recipe.muxer, path_.c_str());
        if (code < 0 || !output) return failure("can't prepare", code);
        output_.reset(output);

        const PcmFormat pcm = job_.pcm.format();
        codec_.reset(avcodec_alloc_context3(codec));
        if (!codec_) return EngineResult::failure("out of memory preparing " + path_);
        codec_->sample_fmt = AV_SAMPLE_FMT_NONE;
        for (const AVSampleFormat* format = codec->sample_fmts; format && *format != AV_SAMPLE_FMT_NONE; ++format) {
            if (supportsSampleFormat(*format)) {
                codec_->sample_fmt = *format;
                break;
            }
        }
        if (codec_->sample_fmt == AV_SAMPLE_FMT_NONE) {
            return EngineResult::failure("the " + formatWordText(job_.target.word) + " encoder takes no usable sample format");
        }
        codec_->sample_rate = pcm.sampleRate;
        av_channel_layout_default(&codec_->ch_layout, pcm.channels);
        codec_->bit_rate = encoderBitRate(job_.target, pcm.sampleRate);
        codec_->time_base = AVRational{1, pcm.sampleRate};
        if (output_->oformat->flags & AVFMT_GLOBALHEADER) codec_->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
        code = avcodec_open2(codec_.get(), codec, nullptr);
        if (code < 0) return failure("can't start the " + formatWordText(job_.target.word) + " encoder for", code);

        stream_ = avformat_new_stream(output_.get(), nullptr);
        if (!stream_) return EngineResult::failure("out of memory preparing " + path_);
        code = avcodec_parameters_from_context(stream_->codecpar, codec_.get());
        if (code < 0) return failure("can't prepare", code);
        stream_->time_base = codec_->time_base;
        // MP3 keeps it in its ID3 tag, ASF in its description; a plain MP2 stream has nowhere.
        if (!job_.comment.empty()) av_dict_set(&output_->metadata, "comment", job_.comment.c_str(), 0);

        code = avio_open(&output_->pb, path_.c_str(), AVIO_FLAG_WRITE);
        if (code < 0) return failure("can't write", code);
        code = avformat_write_header(output_.get(), nullptr);
        if (code < 0) return failure("can't write the header of", code);

        frame_.reset(av_frame_alloc());
        packet_.reset(av_packet_alloc());
        if (!frame_ || !packet_) return EngineResult::failure("out of memory preparing " + path_);
        return EngineResult::success();
    }

    // Reads the source a block at a time and hands the encoder whole frames.
    EngineResult feed() {
        const int channels = job_.pcm.format().channels;
        const auto width = static_cast<std::size_t>(channels);
        const bool takesAnySize = (codec_->codec->capabilities &
                                   (AV_CODEC_CAP_VARIABLE_FRAME_SIZE | AV_CODEC_CAP_SMALL_LAST_FRAME)) != 0;
        const auto frameSize = static_cast<std::size_t>(codec_->frame_size > 0 ? codec_->frame_size : 1152);
        std::vector<std::int16_t> block(kBlockFrames * width);
        std::vector<std::int16_t> queued;
        std::size_t queuedStart = 0;  // in samples
        bool ended = false;
        while (!ended) {
            const std::size_t got = job_.pcm.read(block.data(), kBlockFrames);
            ended = got == 0;
            queued.erase(queued.begin(), queued.begin() + static_cast<std::ptrdiff_t>(queuedStart));
            queuedStart = 0;
            queued.insert(queued.end(), block.begin(), block.begin() + static_cast<std::ptrdiff_t>(got * width));
            if (ended && queued.size() % (frameSize * width) != 0 && !takesAnySize) {
                // The encoder takes whole frames only: the last one ends in silence.
                queued.resize((queued.size() / (frameSize * width) + 1) * frameSize * width, 0);
            }
            while (queued.size() - queuedStart >= (ended ? width : frameSize * width)) {
                const std::size_t frames = std::min(frameSize, (queued.size() - queuedStart) / width);
                if (EngineResult sent = sendFrames(queued.data() + queuedStart, frames, channels); !sent) return sent;
                queuedStart += frames * width;
            }
            if (!ended && !job_.keepGoing()) return EngineResult::failure(kCancelledText);
        }
        return EngineResult::success();
    }

    EngineResult sendFrames(const std::int16_t* samples, std::size_t frameCount, int channels) {
        av_frame_unref(frame_.get());
        frame_->format = codec_->sample_fmt;
        frame_->sample_rate = codec_->sample_rate;
        frame_->nb_samples = static_cast<int>(frameCount);
        int code = av_channel_layout_copy(&frame_->ch_layout, &codec_->ch_layout);
        if (code >= 0) code = av_frame_get_buffer(frame_.get(), 0);
        if (code < 0) return failure("out of memory writing", code);
        fillFrame(frame_.get(), samples, frame_->nb_samples, channels);
        frame_->pts = nextPts_;
        nextPts_ += frame_->nb_samples;
        return send(frame_.get());
    }

    // Gives the encoder a frame (null at the end) and writes every packet it has ready.
    EngineResult send(AVFrame* frame) {
        int code = avcodec_send_frame(codec_.get(), frame);
        if (code < 0) return failure("can't encode", code);
        while (true) {
            code = avcodec_receive_packet(codec_.get(), packet_.get());
            if (code == AVERROR(EAGAIN) || code == AVERROR_EOF) return EngineResult::success();
            if (code < 0) return failure("can't encode", code);
            av_packet_rescale_ts(packet_.get(), codec_->time_base, stream_->time_base);
            packet_->stream_index = stream_->index;
            code = av_interleaved_write_frame(output_.get(), packet_.get());
            if (code < 0) return failure("can't write", code);
        }
    }

    const EncodeJob& job_;
    const std::string& path_;
    std::unique_ptr<AVFormatContext, OutputCloser> output_;
    std::unique_ptr<AVCodecContext, CodecCloser> codec_;
    std::unique_ptr<AVFrame, FrameCloser> frame_;
    std::unique_ptr<AVPacket, PacketCloser> packet_;
    AVStream* stream_ = nullptr;
    std::int64_t nextPts_ = 0;
};

}  // namespace

std::string ffmpegErrorText(int code) {
    char text[AV_ERROR_MAX_STRING_SIZE] = {};
    av_strerror(code, text, sizeof text);
    return text;
}

EngineResult encodeWithFfmpeg(const EncodeJob& job, const std::string& path) {
    return Encoder(job, path).run();
}

}  // namespace ovd::engine
