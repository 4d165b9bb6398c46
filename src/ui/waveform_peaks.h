#pragma once
// The loudest and softest sample of each stretch of a document, kept between
// looks so that a take that grows costs only what is new: the stretches before
// the first frame that changed stay as they are, and only the rest are read.
//
// A stretch is a power of two frames long, the shortest that keeps the document
// within kMaxStretches stretches; as the document grows past that, neighbouring
// stretches merge. A stretch looks at no more than its first kFramesLookedAt
// frames, so reading a whole hour costs no more than reading a minute. The peaks
// depend only on the document, never on how it was read: a take followed as it
// grows has the same peaks as the same take read whole.

#include <cstddef>
#include <cstdint>
#include <functional>
#include <utility>
#include <vector>

#include "engine/audio_format.h"

namespace ovd::ui {

class WaveformPeaks {
  public:
    using SampleCount = engine::SampleCount;
    // Reads frames (all channels interleaved) from a position on; fewer at the end.
    using Reader =
        std::function<std::size_t(SampleCount position, std::int16_t* out, std::size_t frames)>;
    // (lowest, highest) of a stretch or a column.
    using Peak = std::pair<std::int16_t, std::int16_t>;

    static constexpr std::size_t kMaxStretches = 2048;
    static constexpr SampleCount kFramesLookedAt = 512;

    // The document is now `length` frames long and the same as before up to
    // `unchangedUpTo`; what follows is read again. 0 reads it all.
    void update(SampleCount unchangedUpTo, SampleCount length, int channels, const Reader& read);
    void clear();

    [[nodiscard]] SampleCount length() const { return length_; }
    [[nodiscard]] SampleCount stretchFrames() const { return SampleCount{1} << level_; }
    [[nodiscard]] const std::vector<Peak>& stretches() const { return stretches_; }

    // The peak of each of `count` columns spread over the whole document; the
    // stretches a column touches make its peak. Empty for an empty document.
    [[nodiscard]] std::vector<Peak> columns(int count) const;

  private:
    // The level whose stretches keep a document of this length within kMaxStretches.
    [[nodiscard]] static int levelFor(SampleCount length);
    // Neighbouring stretches merge once: the next level up.
    void mergePairs();
    [[nodiscard]] Peak readStretch(std::size_t index, const Reader& read);

    int level_ = 0;
    SampleCount length_ = 0;
    int channels_ = 0;
    std::vector<Peak> stretches_;
    std::vector<std::int16_t> buffer_;
};

}  // namespace ovd::ui
