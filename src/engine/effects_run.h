#pragma once
// One effect carried out over a stretch of a document, on whatever thread calls
// it: the stretch is read a block at a time, put through the effect, and the
// result appended to a work file, whose new pieces replace the stretch.

#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "engine/audio_document.h"
#include "engine/effects.h"

namespace ovd::engine {

// The filter chain of an effect at a rate and channel count; empty for the
// effects done without filters (insert silence, invert) and for normalize,
// whose gain is only known once the stretch has been measured.
std::string effectFilters(Effect effect, const PcmFormat& format);

// How long the effect's result is against the stretch, where that is fixed: 1
// for most, so echoes and filter tails beyond the stretch are cut there and the
// rest of the document stays put; none where it depends on the audio.
std::optional<double> effectLengthFactor(Effect effect);

// Called now and then with the work done so far, out of `range`.
using EffectProgress = std::function<void(SampleCount done, SampleCount range)>;

struct EffectJob {
    Effect effect = Effect::AmplifyUp;
    PcmFormat format;
    PieceList stretch;  // the audio the effect works on
    std::shared_ptr<WorkFile> output;
};

// The pieces of `output` that hold the processed stretch; a failure (or a
// cancel) says why and leaves only unused frames at the end of the work file.
platform::Result<PieceList> runEffect(const EffectJob& job, const std::atomic<bool>& cancelled,
                                      const EffectProgress& progress);

}  // namespace ovd::engine
