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

FfmpegPtr<AVFrame> makeLibraryFrame(const FrameKind& kind) {
    FfmpegPtr<AVFrame> frame = owned(av_frame_alloc());
    frame->format = kind.format;
    frame->width = kind.width;
    frame->height = kind.height;
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
    case AVCHROMA_LOC_TOP:
        return {128, 0};
    case AVCHROMA_LOC_BOTTOMLEFT:
        return {0, 256};
    case AVCHROMA_LOC_BOTTOM:
        return {128, 256};
    default:
        return {0, 128};
    }
}

int isFull(const ColorTags& tags) {
    return rangeOf(tags) == ColorRange::full ? 1 : 0;
}

bool isRgb(const FrameKind& kind) {
    return kind.tags.matrix == AVCOL_SPC_RGB;
}

const int* coefficientsOf(const FrameKind& kind) {
    return sws_getCoefficients(isRgb(kind) ? AVCOL_SPC_BT709 : kind.tags.matrix);
}

void setNumber(SwsContext* scaler, const char* name, int value) {
    av_opt_set_int(scaler, name, value, 0);
}

void placeChroma(SwsContext* scaler, const FrameKind& kind, const char* horizontal, const char* vertical) {
    const AVPixFmtDescriptor& format = *av_pix_fmt_desc_get(kind.format);
    const ChromaPosition position = positionOf(kind.tags.chroma);
    if (format.log2_chroma_w > 0)
        setNumber(scaler, horizontal, position.horizontal);
    if (format.log2_chroma_h > 0)
        setNumber(scaler, vertical, position.vertical);
}

FfmpegPtr<SwsContext> makeScaler(const FrameKind& from, const FrameKind& to) {
    FfmpegPtr<SwsContext> owner = owned(sws_alloc_context());
    SwsContext* const scaler = owner.get();
    setNumber(scaler, "srcw", from.width);
    setNumber(scaler, "srch", from.height);
    setNumber(scaler, "src_format", from.format);
    setNumber(scaler, "dstw", to.width);
    setNumber(scaler, "dsth", to.height);
    setNumber(scaler, "dst_format", to.format);
    setNumber(scaler, "sws_flags", kScaling);
    placeChroma(scaler, from, "src_h_chr_pos", "src_v_chr_pos");
    placeChroma(scaler, to, "dst_h_chr_pos", "dst_v_chr_pos");
    sws_setColorspaceDetails(scaler, coefficientsOf(from), isFull(from.tags), coefficientsOf(to),
                             isFull(to.tags), 0, 1 << 16, 1 << 16);
    if (sws_init_context(scaler, nullptr, nullptr) < 0)
        throw Failure(ExitCode::badInput, std::string("has frames of the pixel format ") +
                                              av_get_pix_fmt_name(from.format) +
                                              ", from which FFmpeg knows no way to 4:2:0");
    return owner;
}

void run(SwsContext& scaler, const AVFrame& from, AVFrame& to) {
    sws_scale(&scaler, from.data, from.linesize, 0, from.height, to.data, to.linesize);
}

} // namespace

FrameConverter::FrameConverter(const VideoFormat& format, const ColorOverride& instead)
    : m_wanted{format.width, format.height, format.layout, withMatrix(format.tags, format.height)},
      m_override(instead) {}

FfmpegPtr<AVFrame> FrameConverter::convert(FfmpegPtr<AVFrame> frame) {
    // Without a tag all sizes in a clip mean what the first one does.
    const FrameKind kind = {frame->width, frame->height, static_cast<AVPixelFormat>(frame->format),
                            withMatrix(tagsOf(*frame, m_override), m_wanted.height)};
    const bool isAsWanted = kind == m_wanted;
    if (isAsWanted && isLibraryPitch(*frame) && av_frame_is_writable(frame.get()))
        return frame;
    FfmpegPtr<AVFrame> result = makeLibraryFrame(m_wanted);
    if (av_frame_copy_props(result.get(), frame.get()) < 0)
        throw std::bad_alloc();
    if (!isAsWanted) {
        prepare(kind);
        scale(*frame, *result);
    } else if (av_frame_copy(result.get(), frame.get()) < 0) {
        throw std::bad_alloc();
    }
    return result;
}

void FrameConverter::prepare(const FrameKind& from) {
    if (m_toLibrary && from == m_from)
        return;
    m_colors.reset();
    if (isRgb(from) || haveSameMatrix(from.tags, m_wanted.tags)) {
        m_toLibrary = makeScaler(from, m_wanted);
    } else { // FFmpeg would change the matrix by itself, but with chroma in the wrong place
        const FrameKind before = {m_wanted.width, m_wanted.height, AV_PIX_FMT_YUV444P16, from.tags};
        const FrameKind after = {m_wanted.width, m_wanted.height, AV_PIX_FMT_YUV444P16, m_wanted.tags};
        m_colors = ColorChange{makeScaler(from, before),
                               makeFrame(before.format, before.width, before.height),
                               makeFrame(after.format, after.width, after.height),
                               {after.width, after.height, before.tags, after.tags}};
        m_toLibrary = makeScaler(after, m_wanted);
    }
    m_from = from;
}

void FrameConverter::scale(const AVFrame& from, AVFrame& to) {
    if (m_colors) {
        run(*m_colors->unpack, from, *m_colors->before);
        m_colors->converter.convert(*m_colors->before, *m_colors->after);
    }
    run(*m_toLibrary, m_colors ? *m_colors->after : from, to);
}

} // namespace ze::tool
