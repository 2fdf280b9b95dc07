// Owners for the objects of FFmpeg that the tool uses.

#pragma once

#include <memory>
#include <new>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavcodec/bsf.h>
#include <libavformat/avformat.h>
#include <libavutil/frame.h>
#include <libswscale/swscale.h>
}

namespace ze::tool {

struct FfmpegDeleter {
    void operator()(AVFrame* frame) const { av_frame_free(&frame); }
    void operator()(AVPacket* packet) const { av_packet_free(&packet); }
    void operator()(AVCodecContext* codec) const { avcodec_free_context(&codec); }
    void operator()(AVBSFContext* filter) const { av_bsf_free(&filter); }
    void operator()(SwsContext* scaler) const { sws_freeContext(scaler); }
};

template <class T>
using FfmpegPtr = std::unique_ptr<T, FfmpegDeleter>;

/// `object` when it is not null; otherwise throws `std::bad_alloc`.
template <class T>
FfmpegPtr<T> owned(T* object) {
    if (!object)
        throw std::bad_alloc();
    return FfmpegPtr<T>(object);
}

/// Bytes that the kernels of FFmpeg and zimg want the beginnings of rows to be multiples of.
inline constexpr int kFrameAlignment = 64;

/// A frame with memory for its pixels, aligned as above. Throws `std::bad_alloc`.
FfmpegPtr<AVFrame> makeFrame(AVPixelFormat format, int width, int height);

} // namespace ze::tool
