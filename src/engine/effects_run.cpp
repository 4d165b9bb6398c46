// Carrying an effect out: the stretch read a block at a time through the
// effect's filters (or our own arithmetic where no filter is needed) and the
// result appended to the effect's work file.

#include "engine/effects_run.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "engine/effects_graph.h"

namespace ovd::engine {

namespace {

constexpr std::size_t kBlockFrames = 8192;
constexpr double kInsertedSilenceMs = 500;
constexpr double kFullScale = 32767.0;

SampleCount framesIn(const PieceList& pieces) {
    SampleCount frames = 0;
    for (const Piece& piece : pieces) frames += piece.length;
    return frames;
}

// Appends to the work file and keeps the pieces that hold what was appended;
// with a limit, frames past it are dropped (an echo's tail past the stretch).
class PieceWriter {
  public:
    PieceWriter(WorkFile& file, SampleCount limit) : file_(file), limit_(limit) {}

    void write(const std::int16_t* frames, std::size_t frameCount) {
        if (limit_ >= 0)
            frameCount =
                std::min<std::size_t>(frameCount, static_cast<std::size_t>(limit_ - written_));
        if (frameCount == 0) return;
        const SampleCount start = file_.append(frames, frameCount);
        const auto count = static_cast<SampleCount>(frameCount);
        if (!pieces_.empty() && pieces_.back().start + pieces_.back().length == start)
            pieces_.back().length += count;
        else
            pieces_.push_back(Piece{fileHandle(), start, count});
        written_ += count;
    }

    void writeSilence(SampleCount frames, int channels) {
        const std::vector<std::int16_t> zeros(kBlockFrames * static_cast<std::size_t>(channels));
        while (frames > 0) {
            const auto count = static_cast<std::size_t>(
                std::min<SampleCount>(frames, static_cast<SampleCount>(kBlockFrames)));
            write(zeros.data(), count);
            frames -= static_cast<SampleCount>(count);
        }
    }

    void setHandle(std::shared_ptr<const WorkFile> handle) { handle_ = std::move(handle); }
    [[nodiscard]] SampleCount written() const { return written_; }
    PieceList takePieces() { return std::move(pieces_); }

  private:
    [[nodiscard]] std::shared_ptr<const WorkFile> fileHandle() const { return handle_; }

    WorkFile& file_;
    std::shared_ptr<const WorkFile> handle_;
    SampleCount limit_;
    SampleCount written_ = 0;
    PieceList pieces_;
};

std::string gainFilter(double gain) {
    char text[64];
    std::snprintf(text, sizeof text, "volume=%.9f:precision=double", gain);
    return text;
}

// The loudest sample of the stretch, as a magnitude (32768 for -32768).
platform::Result<int> peakOf(const EffectJob& job, const std::atomic<bool>& cancelled,
                             const std::function<void(SampleCount)>& progress) {
    DocumentSource source(job.format, job.stretch);
    std::vector<std::int16_t> block(kBlockFrames * static_cast<std::size_t>(job.format.channels));
    int peak = 0;
    SampleCount done = 0;
    while (const std::size_t got = source.read(block.data(), kBlockFrames)) {
        if (cancelled) return platform::failure("the effect was cancelled");
        const std::size_t samples = got * static_cast<std::size_t>(job.format.channels);
        for (std::size_t i = 0; i < samples; ++i) peak = std::max(peak, std::abs(int{block[i]}));
        done += static_cast<SampleCount>(got);
        progress(done);
    }
    return peak;
}

}  // namespace

platform::Result<PieceList> runEffect(const EffectJob& job, const std::atomic<bool>& cancelled,
                                      const EffectProgress& progress) {
    const int channels = job.format.channels;
    const SampleCount length = framesIn(job.stretch);
    // A stretch in time comes out of its filter a few milliseconds short or long;
    // it is made exactly its factor long, so the selection that follows is too.
    const std::optional<double> factor = effectLengthFactor(job.effect);
    const SampleCount expected =
        factor ? std::llround(static_cast<double>(length) * *factor) : SampleCount{-1};
    PieceWriter writer(*job.output, expected);
    writer.setHandle(job.output);

    if (job.effect == Effect::InsertSilence) {
        const SampleCount silence =
            MilliSecondsToSamples(kInsertedSilenceMs, job.format.sampleRate);
        writer.writeSilence(silence, channels);
        progress(silence, silence);
        return writer.takePieces();
    }
    if (length == 0) return platform::failure("there is no audio for the effect to work on");

    std::string filters = effectFilters(job.effect, job.format);
    SampleCount range = length;
    SampleCount measured = 0;
    if (job.effect == Effect::Normalize) {
        range = 2 * length;
        auto peak = peakOf(job, cancelled, [&](SampleCount done) { progress(done, range); });
        if (!peak) return peak.failed();
        if (*peak == 0)
            return platform::failure("the audio is silent: there is nothing to bring up");
        filters = gainFilter(kFullScale / *peak);
        measured = length;
    } else if (job.effect == Effect::FadeIn || job.effect == Effect::FadeOut) {
        filters += ":ss=0:ns=" + std::to_string(length);
    }

    std::unique_ptr<FilterGraph> graph;
    if (!filters.empty()) {
        auto created = FilterGraph::create(job.format, filters);
        if (!created) return created.failed();
        graph = std::move(*created);
    }
    const FilterGraph::Output output = [&](const std::int16_t* frames, std::size_t count) {
        writer.write(frames, count);
    };
    DocumentSource source(job.format, job.stretch);
    std::vector<std::int16_t> block(kBlockFrames * static_cast<std::size_t>(channels));
    SampleCount done = 0;
    while (const std::size_t got = source.read(block.data(), kBlockFrames)) {
        if (cancelled) return platform::failure("the effect was cancelled");
        if (graph) {
            if (platform::Result<void> pushed = graph->push(block.data(), got, output); !pushed)
                return pushed.failed();
        } else {
            // Invert: -32768 has no positive twin in 16 bits and becomes the loudest one there is.
            const std::size_t samples = got * static_cast<std::size_t>(channels);
            for (std::size_t i = 0; i < samples; ++i)
                block[i] =
                    block[i] == -32768 ? std::int16_t{32767} : static_cast<std::int16_t>(-block[i]);
            writer.write(block.data(), got);
        }
        done += static_cast<SampleCount>(got);
        progress(measured + done, range);
    }
    if (graph) {
        if (platform::Result<void> finished = graph->finish(output); !finished)
            return finished.failed();
    }
    // A stretch the disk could not give back whole, or a filter that gives out
    // a little less than it should, still leaves the rest of the document in place.
    if (factor) writer.writeSilence(expected - writer.written(), channels);
    return writer.takePieces();
}

}  // namespace ovd::engine
