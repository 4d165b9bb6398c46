#pragma once
// What the spectral view draws: for each column of the view, how strong each
// band of frequencies is in the audio under it, in dB below full scale.

#include <cstdint>
#include <functional>
#include <vector>

#include "engine/audio_format.h"

namespace ovd::engine {

// Reads interleaved frames from a position on; fewer at the end.
using FrameReader =
    std::function<std::size_t(SampleCount position, std::int16_t* out, std::size_t frameCount)>;

// Nothing quieter is told apart: the view draws it all as silence.
constexpr float kSpectrumFloorDb = -120.0F;

// `columns` spectra of `bins` values each, spread evenly over [from, to); the
// bins go from 0 Hz up to half the rate. A full-scale tone shows at 0 dB. However
// many columns are asked for, at most a few thousand transforms are made, so a
// redraw of an hour costs what one of a minute costs. Nothing to show (an empty
// stretch, no columns or bins) gives no columns.
std::vector<std::vector<float>> spectrumColumns(const FrameReader& read, int channels,
                                                SampleCount from, SampleCount to, int columns,
                                                int bins);

}  // namespace ovd::engine
