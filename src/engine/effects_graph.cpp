#include "engine/effects_graph.h"

extern "C" {
#include <libavfilter/avfilter.h>
#include <libavfilter/buffersink.h>
#include <libavfilter/buffersrc.h>
#include <libavutil/channel_layout.h>
#include <libavutil/error.h>
#include <libavutil/frame.h>
}

#include <algorithm>
#include <cstring>

namespace ovd::engine {

namespace {

std::string libraryError(const std::string& what, int code) {
    char text[AV_ERROR_MAX_STRING_SIZE] = {};
    av_strerror(code, text, sizeof text);
    return what + ": " + text;
}

const char* layoutName(int channels) { return channels == 1 ? "mono" : "stereo"; }

struct InOutDeleter {
    void operator()(AVFilterInOut* inOut) const { avfilter_inout_free(&inOut); }
};
using InOut = std::unique_ptr<AVFilterInOut, InOutDeleter>;

}  // namespace

struct FilterGraph::State {
    AVFilterGraph* graph = nullptr;
    AVFilterContext* source = nullptr;
    AVFilterContext* sink = nullptr;
    AVFrame* in = nullptr;
    AVFrame* out = nullptr;
    PcmFormat format;
    std::int64_t fed = 0;  // frames so far: the time stamp of the next block

    ~State() {
        av_frame_free(&in);
        av_frame_free(&out);
        avfilter_graph_free(&graph);
    }
};

FilterGraph::FilterGraph(std::unique_ptr<State> state) : state_(std::move(state)) {}
FilterGraph::~FilterGraph() = default;

platform::Result<std::unique_ptr<FilterGraph>> FilterGraph::create(const PcmFormat& format,
                                                                   const std::string& description) {
    if (format.channels < 1 || format.channels > 2 || format.sampleRate <= 0)
        return platform::failure("the filters take one or two channels at a known rate");
    auto state = std::make_unique<State>();
    state->format = format;
    state->graph = avfilter_graph_alloc();
    state->in = av_frame_alloc();
    state->out = av_frame_alloc();
    if (!state->graph || !state->in || !state->out) return platform::failure("out of memory");
    // One thread: the effect already runs off the loop's thread, and the
    // machine's other work (a take being recorded elsewhere) keeps its share.
    state->graph->nb_threads = 1;

    const std::string rate = std::to_string(format.sampleRate);
    const std::string sourceArgs = "time_base=1/" + rate + ":sample_rate=" + rate +
                                   ":sample_fmt=s16:channel_layout=" + layoutName(format.channels);
    int code = avfilter_graph_create_filter(&state->source, avfilter_get_by_name("abuffer"), "in",
                                            sourceArgs.c_str(), nullptr, state->graph);
    if (code < 0) return platform::failure(libraryError("can't feed the filters", code));
    code = avfilter_graph_create_filter(&state->sink, avfilter_get_by_name("abuffersink"), "out",
                                        nullptr, nullptr, state->graph);
    if (code < 0) return platform::failure(libraryError("can't take from the filters", code));

    // Whatever the filters work in, what comes out is the document's own frames.
    const std::string chain = description + ",aformat=sample_fmts=s16:sample_rates=" + rate +
                              ":channel_layouts=" + layoutName(format.channels);
    InOut outputs(avfilter_inout_alloc());
    InOut inputs(avfilter_inout_alloc());
    if (!outputs || !inputs) return platform::failure("out of memory");
    outputs->name = av_strdup("in");
    outputs->filter_ctx = state->source;
    inputs->name = av_strdup("out");
    inputs->filter_ctx = state->sink;
    AVFilterInOut* inputsRaw = inputs.release();
    AVFilterInOut* outputsRaw = outputs.release();
    code = avfilter_graph_parse_ptr(state->graph, chain.c_str(), &inputsRaw, &outputsRaw, nullptr);
    inputs.reset(inputsRaw);
    outputs.reset(outputsRaw);
    if (code < 0) return platform::failure(libraryError("can't set up " + description, code));
    code = avfilter_graph_config(state->graph, nullptr);
    if (code < 0) return platform::failure(libraryError("can't set up " + description, code));
    return std::unique_ptr<FilterGraph>(new FilterGraph(std::move(state)));
}

platform::Result<void> FilterGraph::push(const std::int16_t* frames, std::size_t frameCount,
                                         const Output& output) {
    if (frameCount == 0) return platform::Result<void>::success();
    AVFrame* frame = state_->in;
    frame->format = AV_SAMPLE_FMT_S16;
    frame->sample_rate = state_->format.sampleRate;
    frame->nb_samples = static_cast<int>(frameCount);
    av_channel_layout_default(&frame->ch_layout, state_->format.channels);
    frame->pts = state_->fed;
    int code = av_frame_get_buffer(frame, 0);
    if (code < 0) return platform::failure(libraryError("can't feed the filters", code));
    std::memcpy(
        frame->data[0], frames,
        frameCount * static_cast<std::size_t>(state_->format.channels) * sizeof(std::int16_t));
    state_->fed += static_cast<std::int64_t>(frameCount);
    // The source takes the frame's buffers over and leaves the frame empty for the next block.
    code = av_buffersrc_add_frame_flags(state_->source, frame, 0);
    av_frame_unref(frame);
    if (code < 0) return platform::failure(libraryError("the filters refused the audio", code));
    return drain(output);
}

platform::Result<void> FilterGraph::finish(const Output& output) {
    const int code = av_buffersrc_add_frame_flags(state_->source, nullptr, 0);
    if (code < 0) return platform::failure(libraryError("can't end the filters' input", code));
    return drain(output);
}

platform::Result<void> FilterGraph::drain(const Output& output) {
    for (;;) {
        const int code = av_buffersink_get_frame(state_->sink, state_->out);
        if (code == AVERROR(EAGAIN) || code == AVERROR_EOF)
            return platform::Result<void>::success();
        if (code < 0) return platform::failure(libraryError("the filters failed", code));
        output(reinterpret_cast<const std::int16_t*>(state_->out->data[0]),
               static_cast<std::size_t>(state_->out->nb_samples));
        av_frame_unref(state_->out);
    }
}

}  // namespace ovd::engine
