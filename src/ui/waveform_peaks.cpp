#include "ui/waveform_peaks.h"

#include <algorithm>

namespace ovd::ui {

namespace {

WaveformPeaks::Peak widest(const WaveformPeaks::Peak& a, const WaveformPeaks::Peak& b) {
    return {std::min(a.first, b.first), std::max(a.second, b.second)};
}

}  // namespace

int WaveformPeaks::levelFor(SampleCount length) {
    int level = 0;
    while ((length + (SampleCount{1} << level) - 1) >> level >
           static_cast<SampleCount>(kMaxStretches))
        ++level;
    return level;
}

void WaveformPeaks::clear() {
    level_ = 0;
    length_ = 0;
    channels_ = 0;
    stretches_.clear();
}

void WaveformPeaks::update(SampleCount unchangedUpTo, SampleCount length, int channels,
                           const Reader& read) {
    length = std::max<SampleCount>(length, 0);
    const int wanted = levelFor(length);
    const SampleCount unchanged = std::min({unchangedUpTo, length_, length});
    if (unchanged <= 0 || wanted < level_ || channels != channels_) {
        stretches_.clear();
        level_ = wanted;
    } else {
        // Only stretches wholly before the first changed frame are still right.
        stretches_.resize(
            std::min(stretches_.size(), static_cast<std::size_t>(unchanged >> level_)));
        while (level_ < wanted) mergePairs();
    }
    length_ = length;
    channels_ = channels;
    const auto count = static_cast<std::size_t>((length + stretchFrames() - 1) >> level_);
    stretches_.reserve(count);
    while (stretches_.size() < count) stretches_.push_back(readStretch(stretches_.size(), read));
}

void WaveformPeaks::mergePairs() {
    // Stretches shorter than what one looks at were read whole, so two make the
    // peak of both; longer ones looked at their start only, which the first holds.
    const bool readWhole = stretchFrames() * 2 <= kFramesLookedAt;
    std::vector<Peak> merged;
    merged.reserve(stretches_.size() / 2);
    // An odd last stretch is only part of its merged one: it is read again.
    for (std::size_t i = 0; i + 1 < stretches_.size(); i += 2) {
        merged.push_back(readWhole ? widest(stretches_[i], stretches_[i + 1]) : stretches_[i]);
    }
    stretches_ = std::move(merged);
    ++level_;
}

WaveformPeaks::Peak WaveformPeaks::readStretch(std::size_t index, const Reader& read) {
    const SampleCount from = static_cast<SampleCount>(index) << level_;
    const auto frames =
        static_cast<std::size_t>(std::min({stretchFrames(), length_ - from, kFramesLookedAt}));
    const auto perFrame = static_cast<std::size_t>(std::max(1, channels_));
    buffer_.resize(frames * perFrame);
    const std::size_t got = std::min(read(from, buffer_.data(), frames), frames);
    // Every peak reaches the middle line the waveform is drawn from.
    Peak peak{0, 0};
    for (std::size_t i = 0; i < got * perFrame; ++i) {
        peak.first = std::min(peak.first, buffer_[i]);
        peak.second = std::max(peak.second, buffer_[i]);
    }
    return peak;
}

std::vector<WaveformPeaks::Peak> WaveformPeaks::columns(int count) const {
    std::vector<Peak> result;
    if (length_ <= 0 || count <= 0 || stretches_.empty()) return result;
    result.reserve(static_cast<std::size_t>(count));
    const std::size_t last = stretches_.size() - 1;
    for (int x = 0; x < count; ++x) {
        const SampleCount from = length_ * x / count;
        const SampleCount to = std::max(from + 1, length_ * (x + 1) / count);
        const auto first = std::min(static_cast<std::size_t>(from >> level_), last);
        const auto end = std::min(static_cast<std::size_t>((to - 1) >> level_), last);
        Peak peak = stretches_[first];
        for (std::size_t i = first + 1; i <= end; ++i) peak = widest(peak, stretches_[i]);
        result.push_back(peak);
    }
    return result;
}

}  // namespace ovd::ui
