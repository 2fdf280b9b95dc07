#include "tool/video/side_by_side.h"

#include <cstring>

namespace ze::tool {
namespace {

constexpr int kBlack = 16;

int evenUp(int size) {
    return (size + 1) / 2 * 2;
}

void copyPlane(const AVFrame& from, AVFrame& to, int plane, int offset, int bytes, int rows) {
    for (int y = 0; y < rows; ++y)
        std::memcpy(to.data[plane] + ptrdiff_t{y} * to.linesize[plane] + offset,
                    from.data[plane] + ptrdiff_t{y} * from.linesize[plane], static_cast<size_t>(bytes));
}

void copyAt(const AVFrame& from, AVFrame& to, int offset) {
    copyPlane(from, to, 0, offset, from.width, from.height);
    copyPlane(from, to, 1, offset, evenUp(from.width), evenUp(from.height) / 2);
}

} // namespace

VideoFormat doubled(const VideoFormat& format) {
    VideoFormat both = format;
    both.width = evenUp(format.width) + format.width;
    return both;
}

FfmpegPtr<AVFrame> withLeftHalf(const AVFrame& frame, const VideoFormat& both) {
    FfmpegPtr<AVFrame> result = makeFrame(both.layout, both.width, both.height);
    if (av_frame_copy_props(result.get(), &frame) < 0)
        throw std::bad_alloc();
    if (frame.width % 2 != 0)
        std::memset(result->data[0], kBlack,
                    static_cast<size_t>(result->linesize[0]) * static_cast<size_t>(result->height));
    copyAt(frame, *result, 0);
    return result;
}

void fillRightHalf(AVFrame& both, const AVFrame& frame) {
    copyAt(frame, both, evenUp(frame.width));
}

} // namespace ze::tool
