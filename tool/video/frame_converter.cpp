#include "tool/video/frame_converter.h"

#include "tool/errors.h"

extern "C" {
#include <libavutil/opt.h>
#include <libavutil/pixdesc.h>
}

namespace ze::tool {
namespace {

constexpr int kScaling = SWS_BICUBIC | SWS_ACCURATE_RND | SWS_FULL_CHR_H_INT | SWS_FULL_CHR_H_INP;

// The library uploads rows that are padded to a multiple of 8 bytes at most, and copies others first.
constexpr int kRowAlignment = 8;

bool isLibraryPitch(const AVFrame& frame) {
    const int chroma = (frame.width + 1) / 2 * 2;
    return frame.linesize[0] == FFALIGN(frame.width, kRowAlignment) &&
           frame.linesize[1] == FFALIGN(chroma, kRowAlignment);
}

FfmpegPtr<AVFrame> makeLibraryFrame(const VideoFormat& format) {
    FfmpegPtr<AVFrame> frame = owned(av_frame_alloc());
    frame->format = format.layout;
    frame->width = format.width;
    frame->height = format.height;
    if (av_frame_get_buffer(frame.get(), kRowAlignment) < 0)
        throw std::bad_alloc();
    return frame;
}

// Where the chroma samples of a format with fewer columns of them than of luma sit, in 1/256 of a luma pixel;
// 4:2:0 has them to the left unless it says otherwise.
struct ChromaPosition {
    int horizontal, vertical;
};

ChromaPosition positionOf(AVChromaLocation location) {
    switch (location) {
    case AVCHROMA_LOC_CENTER:
        return {128, 128};
    case AVCHROMA_LOC_TOPLEFT:
        return {0, 0};
    default:
        return {0, 128};
    }
}

int isFull(const ColorTags& tags) {
    return rangeOf(tags) == ColorRange::full ? 1 : 0;
}

const int* coefficientsOf(const ColorTags& tags, int lines) {
    if (tags.matrix == AVCOL_SPC_UNSPECIFIED)
        return sws_getCoefficients(standardOf(tags, lines) == ColorStandard::bt709 ? AVCOL_SPC_BT709
                                                                                   : AVCOL_SPC_SMPTE170M);
    return sws_getCoefficients(tags.matrix);
}

void setNumber(SwsContext* scaler, const char* name, int value) {
    av_opt_set_int(scaler, name, value, 0);
}

} // namespace

FrameConverter::FrameConverter(const VideoFormat& format, const ColorOverride& instead)
    : m_format(format), m_override(instead) {}

FfmpegPtr<AVFrame> FrameConverter::convert(FfmpegPtr<AVFrame> frame) {
    const Kind kind = {frame->width, frame->height, frame->format, tagsOf(*frame, m_override)};
    const bool isAsWanted = kind == Kind{m_format.width, m_format.height, m_format.layout, m_format.tags};
    if (isAsWanted && isLibraryPitch(*frame) && av_frame_is_writable(frame.get()))
        return frame;
    FfmpegPtr<AVFrame> result = makeLibraryFrame(m_format);
    if (av_frame_copy_props(result.get(), frame.get()) < 0)
        throw std::bad_alloc();
    if (isAsWanted)
        av_frame_copy(result.get(), frame.get());
    else
        scale(*frame, kind, *result);
    return result;
}

void FrameConverter::scale(const AVFrame& from, const Kind& kind, AVFrame& to) {
    if (!m_scaler || !(kind == m_kind))
        makeScaler(kind);
    sws_scale(m_scaler.get(), from.data, from.linesize, 0, from.height, to.data, to.linesize);
}

void FrameConverter::makeScaler(const Kind& kind) {
    m_scaler = owned(sws_alloc_context());
    SwsContext* const scaler = m_scaler.get();
    const ChromaPosition from = positionOf(kind.tags.chroma), to = positionOf(m_format.tags.chroma);
    const auto* const format = av_pix_fmt_desc_get(static_cast<AVPixelFormat>(kind.format));
    setNumber(scaler, "srcw", kind.width);
    setNumber(scaler, "srch", kind.height);
    setNumber(scaler, "src_format", kind.format);
    setNumber(scaler, "dstw", m_format.width);
    setNumber(scaler, "dsth", m_format.height);
    setNumber(scaler, "dst_format", m_format.layout);
    setNumber(scaler, "sws_flags", kScaling);
    setNumber(scaler, "dst_h_chr_pos", to.horizontal);
    setNumber(scaler, "dst_v_chr_pos", to.vertical);
    if (format->log2_chroma_w > 0)
        setNumber(scaler, "src_h_chr_pos", from.horizontal);
    if (format->log2_chroma_h > 0)
        setNumber(scaler, "src_v_chr_pos", from.vertical);
    sws_setColorspaceDetails(scaler, coefficientsOf(kind.tags, m_format.height), isFull(kind.tags),
                             coefficientsOf(m_format.tags, m_format.height), isFull(m_format.tags), 0,
                             1 << 16, 1 << 16);
    if (sws_init_context(scaler, nullptr, nullptr) < 0)
        throw Failure(ExitCode::badInput, std::string("has frames of the pixel format ") + format->name +
                                              ", from which FFmpeg knows no way to 4:2:0");
    m_kind = kind;
}

} // namespace ze::tool
