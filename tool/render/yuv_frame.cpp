#include "tool/render/yuv_frame.h"

#include "tool/pictures/color_conversion.h"

#include <algorithm>
#include <cstring>

namespace ze::tool {
namespace {

// FFmpeg works on pairs of pixels and rows, so it gets frames with even sizes.
int evenUp(int size) {
    return (size + 1) / 2 * 2;
}

FfmpegPtr<AVFrame> makeYuvFrame(int width, int height, const YuvDescription& description) {
    const bool nv12 = description.order == ChromaOrder::nv12;
    FfmpegPtr<AVFrame> frame =
        makeFrame(nv12 ? AV_PIX_FMT_NV12 : AV_PIX_FMT_NV21, evenUp(width), evenUp(height));
    const bool bt601 = description.standard == ColorStandard::bt601;
    frame->colorspace = bt601 ? AVCOL_SPC_SMPTE170M : AVCOL_SPC_BT709;
    const bool full = description.range == ColorRange::full;
    frame->color_range = full ? AVCOL_RANGE_JPEG : AVCOL_RANGE_MPEG;
    return frame;
}

// Doubles the last of the `size` elements of `row`, each of `bytes`, when `size` is odd.
void repeatLast(uint8_t* row, int size, ptrdiff_t bytes) {
    if (size % 2 != 0)
        std::memcpy(row + size * bytes, row + (size - 1) * bytes, static_cast<size_t>(bytes));
}

void copyRows(const uint8_t* from, int fromPitch, uint8_t* to, int toPitch, int bytes, int rows) {
    for (int y = 0; y < rows; ++y, from += fromPitch, to += toPitch)
        std::memcpy(to, from, static_cast<size_t>(bytes));
}

} // namespace

ZecImage YuvFrame::image() {
    return {{luma.data(), chroma.data(), nullptr}, {width, chromaPitch(), 0}};
}

YuvFrame yuvFromPicture(const Picture& picture, YuvDescription description) {
    const FfmpegPtr<AVFrame> rgb = makeFrame(AV_PIX_FMT_RGB24, evenUp(picture.width), evenUp(picture.height));
    for (int y = 0; y < rgb->height; ++y) {
        uint8_t* row = rgb->data[0] + static_cast<ptrdiff_t>(y) * rgb->linesize[0];
        std::memcpy(row, picture.row(std::min(y, picture.height - 1)),
                    3 * static_cast<size_t>(picture.width));
        repeatLast(row, picture.width, 3);
    }
    const FfmpegPtr<AVFrame> yuv = makeYuvFrame(picture.width, picture.height, description);
    convertColors(*rgb, *yuv);

    YuvFrame frame{picture.width, picture.height, description, {}, {}};
    frame.luma.resize(static_cast<size_t>(frame.width) * static_cast<size_t>(frame.height));
    frame.chroma.resize(static_cast<size_t>(frame.chromaPitch()) * static_cast<size_t>(frame.chromaRows()));
    copyRows(yuv->data[0], yuv->linesize[0], frame.luma.data(), frame.width, frame.width, frame.height);
    copyRows(yuv->data[1], yuv->linesize[1], frame.chroma.data(), frame.chromaPitch(), frame.chromaPitch(),
             frame.chromaRows());
    return frame;
}

Picture pictureFromYuv(const YuvFrame& frame) {
    const FfmpegPtr<AVFrame> yuv = makeYuvFrame(frame.width, frame.height, frame.description);
    for (int y = 0; y < yuv->height; ++y) {
        const int row = std::min(y, frame.height - 1);
        uint8_t* target = yuv->data[0] + static_cast<ptrdiff_t>(y) * yuv->linesize[0];
        copyRows(frame.luma.data() + static_cast<ptrdiff_t>(row) * frame.width, 0, target, 0, frame.width, 1);
        repeatLast(target, frame.width, 1);
    }
    copyRows(frame.chroma.data(), frame.chromaPitch(), yuv->data[1], yuv->linesize[1], frame.chromaPitch(),
             frame.chromaRows());
    const FfmpegPtr<AVFrame> rgb = makeFrame(AV_PIX_FMT_RGB24, yuv->width, yuv->height);
    convertColors(*yuv, *rgb);

    Picture picture(frame.width, frame.height);
    copyRows(rgb->data[0], rgb->linesize[0], picture.rgb.data(), 3 * frame.width, 3 * frame.width,
             frame.height);
    return picture;
}

} // namespace ze::tool
