#include "engine/spectrum.h"

extern "C" {
#include <libavutil/mem.h>
#include <libavutil/tx.h>
}

#include <algorithm>
#include <cmath>
#include <memory>
#include <numbers>

namespace ovd::engine {

namespace {

constexpr int kMaxTransforms = 4096;
constexpr int kShortestTransform = 64;
constexpr int kLongestTransform = 16384;

struct AvFree {
    void operator()(void* memory) const { av_free(memory); }
};
template <typename T>
using AvBuffer = std::unique_ptr<T[], AvFree>;

template <typename T>
AvBuffer<T> avBuffer(std::size_t count) {
    return AvBuffer<T>(static_cast<T*>(av_calloc(count, sizeof(T))));
}

struct TxDeleter {
    void operator()(AVTXContext* context) const { av_tx_uninit(&context); }
};

int transformLength(int bins) {
    int length = kShortestTransform;
    while (length < 2 * bins && length < kLongestTransform) length *= 2;
    return length;
}

}  // namespace

std::vector<std::vector<float>> spectrumColumns(const FrameReader& read, int channels,
                                                SampleCount from, SampleCount to, int columns,
                                                int bins) {
    if (columns <= 0 || bins <= 0 || to <= from || channels < 1) return {};
    const int length = transformLength(bins);
    const int half = length / 2;
    AVTXContext* raw = nullptr;
    av_tx_fn transform = nullptr;
    const float scale = 1.0F;
    if (av_tx_init(&raw, &transform, AV_TX_FLOAT_RDFT, 0, length, &scale, 0) < 0) return {};
    const std::unique_ptr<AVTXContext, TxDeleter> context(raw);

    const auto count = static_cast<std::size_t>(length);
    std::vector<float> window(count);
    for (std::size_t i = 0; i < count; ++i)
        window[i] = 0.5F - 0.5F * static_cast<float>(std::cos(2.0 * std::numbers::pi *
                                                              static_cast<double>(i) / length));
    AvBuffer<float> input = avBuffer<float>(count);
    AvBuffer<AVComplexFloat> output = avBuffer<AVComplexFloat>(count / 2 + 1);
    if (!input || !output) return {};
    std::vector<std::int16_t> frames(count * static_cast<std::size_t>(channels));
    // A full-scale tone through the window peaks at a quarter of the length.
    const float fullScale = 32768.0F * static_cast<float>(length) / 4.0F;

    const int transforms = std::min(columns, kMaxTransforms);
    std::vector<std::vector<float>> computed(static_cast<std::size_t>(transforms));
    const double span = static_cast<double>(to - from);
    for (int column = 0; column < transforms; ++column) {
        const auto centre = from + static_cast<SampleCount>((column + 0.5) * span / transforms);
        // Kept inside the stretch where it is long enough: a window hanging past
        // its end would show the tone there weaker than it is.
        const SampleCount start = std::max<SampleCount>(0, std::min(centre - half, to - length));
        const std::size_t got = read(start, frames.data(), count);
        for (std::size_t i = 0; i < count; ++i) {
            float sum = 0;
            if (i < got) {
                for (int channel = 0; channel < channels; ++channel)
                    sum += frames[i * static_cast<std::size_t>(channels) +
                                  static_cast<std::size_t>(channel)];
            }
            input[i] = window[i] * sum / static_cast<float>(channels);
        }
        transform(context.get(), output.get(), input.get(), sizeof(float));
        std::vector<float>& magnitudes = computed[static_cast<std::size_t>(column)];
        magnitudes.assign(static_cast<std::size_t>(bins), kSpectrumFloorDb);
        for (int bin = 0; bin < bins; ++bin) {
            // Each value shows the strongest frequency of its band.
            const int first = bin * half / bins;
            const int last = std::max(first + 1, (bin + 1) * half / bins);
            float strongest = 0;
            for (int k = first; k < last; ++k)
                strongest = std::max(strongest, std::hypot(output[static_cast<std::size_t>(k)].re,
                                                           output[static_cast<std::size_t>(k)].im));
            if (strongest > 0)
                magnitudes[static_cast<std::size_t>(bin)] =
                    std::max(kSpectrumFloorDb, 20.0F * std::log10(strongest / fullScale));
        }
    }
    if (transforms == columns) return computed;
    std::vector<std::vector<float>> spread(static_cast<std::size_t>(columns));
    for (int column = 0; column < columns; ++column)
        spread[static_cast<std::size_t>(column)] = computed[static_cast<std::size_t>(
            static_cast<std::int64_t>(column) * transforms / columns)];
    return spread;
}

}  // namespace ovd::engine
