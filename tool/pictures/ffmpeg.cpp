#include "tool/pictures/ffmpeg.h"

namespace ze::tool {

FfmpegPtr<AVFrame> makeFrame(AVPixelFormat format, int width, int height) {
    FfmpegPtr<AVFrame> frame = owned(av_frame_alloc());
    frame->format = format;
    frame->width = width;
    frame->height = height;
    if (av_frame_get_buffer(frame.get(), kFrameAlignment) < 0)
        throw std::bad_alloc();
    return frame;
}

} // namespace ze::tool
