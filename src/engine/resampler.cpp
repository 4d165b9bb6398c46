#include "engine/resampler.h"

#include <algorithm>

#include "engine/codec_backends.h"

extern "C" {
#include <libavutil/channel_layout.h>
#include <libavutil/samplefmt.h>
#include <libswresample/swresample.h>
}

namespace ovd::engine {

namespace {
constexpr std::size_t kReadFrames = 16 * 1024;
}  // namespace

struct Resampler::State {
    SwrContext* context = nullptr;
    int inputRate = 0;
    int outputRate = 0;
    int channels = 1;
    ~State() { swr_free(&context); }
};

Resampler::Resampler(std::unique_ptr<State> state) : state_(std::move(state)) {}
Resampler::~Resampler() = default;

platform::Result<std::unique_ptr<Resampler>> Resampler::create(int inputRate, int outputRate,
                                                               int channels) {
    auto state = std::make_unique<State>();
    state->inputRate = inputRate;
    state->outputRate = outputRate;
    state->channels = channels;
    AVChannelLayout layout{};
    av_channel_layout_default(&layout, channels);
    int code = swr_alloc_set_opts2(&state->context, &layout, AV_SAMPLE_FMT_S16, outputRate, &layout,
                                   AV_SAMPLE_FMT_S16, inputRate, 0, nullptr);
    av_channel_layout_uninit(&layout);
    if (code >= 0) code = swr_init(state->context);
    if (code < 0) {
        return platform::failure("can't convert " + std::to_string(inputRate) + " Hz to " +
                                 std::to_string(outputRate) + " Hz: " + ffmpegErrorText(code));
    }
    return std::unique_ptr<Resampler>(new Resampler(std::move(state)));
}

platform::Result<void> Resampler::convert(const std::int16_t* input, std::size_t frameCount,
                                          std::vector<std::int16_t>& out) {
    const auto channels = static_cast<std::size_t>(state_->channels);
    // Room for what this input gives plus what the converter still held back.
    const int room = swr_get_out_samples(state_->context, static_cast<int>(frameCount)) + 16;
    if (room <= 0) return platform::Result<void>::success();
    const std::size_t before = out.size();
    out.resize(before + static_cast<std::size_t>(room) * channels);
    auto* target = reinterpret_cast<std::uint8_t*>(out.data() + before);
    const auto* source = reinterpret_cast<const std::uint8_t*>(input);
    const int made = swr_convert(state_->context, &target, room, frameCount > 0 ? &source : nullptr,
                                 static_cast<int>(frameCount));
    if (made < 0) {
        out.resize(before);
        return platform::failure("rate conversion failed: " + ffmpegErrorText(made));
    }
    out.resize(before + static_cast<std::size_t>(made) * channels);
    return platform::Result<void>::success();
}

std::size_t remixChannels(const std::int16_t* input, std::size_t frameCount, int from, int to,
                          std::int16_t* out) {
    const auto inChannels = static_cast<std::size_t>(from);
    const auto outChannels = static_cast<std::size_t>(to);
    for (std::size_t frame = 0; frame < frameCount; ++frame) {
        const std::int16_t* in = input + frame * inChannels;
        std::int16_t* dest = out + frame * outChannels;
        if (inChannels == outChannels) {
            std::copy(in, in + inChannels, dest);
        } else if (outChannels == 1) {
            int sum = 0;
            for (std::size_t c = 0; c < inChannels; ++c) sum += in[c];
            dest[0] = static_cast<std::int16_t>(sum / from);
        } else {
            // Mono spread over every side; a wider source keeps its first sides.
            for (std::size_t c = 0; c < outChannels; ++c) dest[c] = in[std::min(c, inChannels - 1)];
        }
    }
    return frameCount * outChannels;
}

ConvertingSource::ConvertingSource(PcmSource& source, const PcmFormat& target,
                                   std::unique_ptr<Resampler> resampler)
    : source_(source), target_(target), resampler_(std::move(resampler)) {}

ConvertingSource::~ConvertingSource() = default;

platform::Result<std::unique_ptr<ConvertingSource>> ConvertingSource::create(
    PcmSource& source, const PcmFormat& target) {
    const PcmFormat from = source.format();
    if (from.sampleRate <= 0 || from.channels < 1 || target.sampleRate <= 0 ||
        target.channels < 1) {
        return platform::failure("unusable audio format: " + std::to_string(from.sampleRate) +
                                 " Hz, " + std::to_string(from.channels) + " channels");
    }
    std::unique_ptr<Resampler> resampler;
    if (from.sampleRate != target.sampleRate) {
        auto created = Resampler::create(from.sampleRate, target.sampleRate, target.channels);
        if (!created) return created.failed();
        resampler = std::move(*created);
    }
    return std::unique_ptr<ConvertingSource>(
        new ConvertingSource(source, target, std::move(resampler)));
}

SampleCount ConvertingSource::frames() const {
    const PcmFormat from = source_.format();
    if (from.sampleRate == target_.sampleRate) return source_.frames();
    const long double scaled =
        static_cast<long double>(source_.frames()) * target_.sampleRate / from.sampleRate;
    return static_cast<SampleCount>(scaled + 0.5L);
}

void ConvertingSource::refill() {
    const PcmFormat from = source_.format();
    const auto inChannels = static_cast<std::size_t>(from.channels);
    const auto outChannels = static_cast<std::size_t>(target_.channels);
    pending_.clear();
    pendingStart_ = 0;
    while (pending_.empty() && !flushed_ && error_.empty()) {
        std::size_t got = 0;
        if (!sourceEnded_) {
            input_.resize(kReadFrames * inChannels);
            got = source_.read(input_.data(), kReadFrames);
            sourceRead_ += static_cast<SampleCount>(got);
            sourceEnded_ = got == 0;
        }
        if (sourceEnded_ && !resampler_) {
            flushed_ = true;
            break;
        }
        remixed_.resize(got * outChannels);
        remixChannels(input_.data(), got, from.channels, target_.channels, remixed_.data());
        if (!resampler_) {
            pending_.swap(remixed_);
            continue;
        }
        if (platform::Result<void> converted = resampler_->convert(remixed_.data(), got, pending_);
            !converted) {
            error_ = converted.error();
            break;
        }
        if (sourceEnded_) flushed_ = true;  // the call above gave out the converter's tail
    }
}

std::size_t ConvertingSource::read(std::int16_t* out, std::size_t frameCount) {
    const auto channels = static_cast<std::size_t>(target_.channels);
    // A converted take lasts exactly as long as the original: the converter's
    // rounding at the ends is cut off or filled with silence.
    if (resampler_) {
        const SampleCount left = std::max<SampleCount>(frames() - produced_, 0);
        frameCount = std::min(frameCount, static_cast<std::size_t>(left));
    }
    std::size_t done = 0;
    while (done < frameCount) {
        if (pendingStart_ >= pending_.size()) {
            refill();
            if (pending_.empty()) break;
        }
        const std::size_t available = (pending_.size() - pendingStart_) / channels;
        const std::size_t take = std::min(available, frameCount - done);
        std::copy_n(pending_.begin() + static_cast<std::ptrdiff_t>(pendingStart_), take * channels,
                    out + done * channels);
        pendingStart_ += take * channels;
        done += take;
    }
    if (resampler_ && done < frameCount && error_.empty()) {
        std::fill(out + done * channels, out + frameCount * channels, std::int16_t{0});
        done = frameCount;
    }
    produced_ += static_cast<SampleCount>(done);
    return done;
}

}  // namespace ovd::engine
