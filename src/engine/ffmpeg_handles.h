#pragma once
// Owning handles for the codec library's objects, shared by the engine's reader
// and writer. Internal to the engine: it brings the library's headers with it.

#include <memory>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavutil/frame.h>
}

namespace ovd::engine {

struct CodecCloser {
    void operator()(AVCodecContext* context) const { avcodec_free_context(&context); }
};
struct FrameCloser {
    void operator()(AVFrame* frame) const { av_frame_free(&frame); }
};
struct PacketCloser {
    void operator()(AVPacket* packet) const { av_packet_free(&packet); }
};

using CodecHandle = std::unique_ptr<AVCodecContext, CodecCloser>;
using FrameHandle = std::unique_ptr<AVFrame, FrameCloser>;
using PacketHandle = std::unique_ptr<AVPacket, PacketCloser>;

}  // namespace ovd::engine
