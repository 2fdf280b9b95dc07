#include "tool/video/color_tags.h"

#include "tool/errors.h"

extern "C" {
#include <libavutil/pixdesc.h>
}

namespace ze::tool {
namespace {

constexpr int kFirstHdLine = 720;

// The formats of JPEG, whose names say that they have full range.
bool isFullRangeFormat(const AVFrame& frame) {
    switch (frame.format) {
    case AV_PIX_FMT_YUVJ420P:
    case AV_PIX_FMT_YUVJ422P:
    case AV_PIX_FMT_YUVJ444P:
    case AV_PIX_FMT_YUVJ440P:
    case AV_PIX_FMT_YUVJ411P:
        return true;
    default:
        return false;
    }
}

bool isRgb(const AVFrame& frame) {
    const AVPixFmtDescriptor* const format = av_pix_fmt_desc_get(static_cast<AVPixelFormat>(frame.format));
    return format && (format->flags & (AV_PIX_FMT_FLAG_RGB | AV_PIX_FMT_FLAG_PAL)) != 0;
}

bool isBt601(AVColorSpace matrix) {
    return matrix == AVCOL_SPC_BT470BG || matrix == AVCOL_SPC_SMPTE170M;
}

bool isLibraryMatrix(AVColorSpace matrix) {
    return matrix == AVCOL_SPC_UNSPECIFIED || matrix == AVCOL_SPC_BT709 || isBt601(matrix);
}

bool canBeConverted(AVColorSpace matrix) {
    return matrix == AVCOL_SPC_RGB || matrix == AVCOL_SPC_FCC || matrix == AVCOL_SPC_SMPTE240M ||
           matrix == AVCOL_SPC_YCGCO || matrix == AVCOL_SPC_BT2020_NCL;
}

void checkTransfer(AVColorTransferCharacteristic transfer) {
    const bool isPq = transfer == AVCOL_TRC_SMPTE2084;
    if (isPq || transfer == AVCOL_TRC_ARIB_STD_B67)
        throw Failure(ExitCode::badInput,
                      std::string("is HDR (") + (isPq ? "PQ" : "HLG") +
                          "); make SDR of it first: ffmpeg -i INPUT -vf zscale=t=linear:npl=100,"
                          "format=gbrpf32le,tonemap=hable,zscale=p=bt709:t=bt709:m=bt709:r=tv,format=yuv420p "
                          "-crf 12 -map 0:v:0 -map '0:a?' -c:a copy SDR.mkv");
}

void checkMatrix(AVColorSpace matrix) {
    if (isLibraryMatrix(matrix) || canBeConverted(matrix))
        return;
    const char* const name = av_color_space_name(matrix);
    throw Failure(ExitCode::badInput, std::string("has colors in the matrix ") + (name ? name : "?") +
                                          ", of which there is no conversion; --standard names another "
                                          "where that is not true");
}

} // namespace

ColorTags tagsOf(const AVFrame& frame, const ColorOverride& instead) {
    ColorTags tags = {frame.colorspace, frame.color_range, frame.color_primaries, frame.color_trc,
                      frame.chroma_location};
    if (isFullRangeFormat(frame))
        tags.range = AVCOL_RANGE_JPEG;
    if (isRgb(frame)) {
        tags.matrix = AVCOL_SPC_RGB;
        tags.range = AVCOL_RANGE_JPEG;
        return tags;
    }
    if (tags.matrix == AVCOL_SPC_RGB) // a tag that is not true of YUV
        tags.matrix = AVCOL_SPC_UNSPECIFIED;
    if (instead.standard)
        tags.matrix = *instead.standard == ColorStandard::bt601 ? AVCOL_SPC_SMPTE170M : AVCOL_SPC_BT709;
    if (instead.range)
        tags.range = *instead.range == ColorRange::full ? AVCOL_RANGE_JPEG : AVCOL_RANGE_MPEG;
    return tags;
}

void checkColors(const ColorTags& tags) {
    checkTransfer(tags.transfer);
    checkMatrix(tags.matrix);
}

ColorTags libraryTags(const ColorTags& tags) {
    ColorTags result = tags;
    if (isLibraryMatrix(tags.matrix))
        return result;
    result.matrix = AVCOL_SPC_BT709;
    if (tags.matrix == AVCOL_SPC_RGB)
        result.range = AVCOL_RANGE_MPEG;
    if (isWide(tags)) {
        result.primaries = AVCOL_PRI_BT709;
        result.transfer = AVCOL_TRC_BT709;
    }
    return result;
}

bool isWide(const ColorTags& tags) {
    if (isLibraryMatrix(tags.matrix) || tags.matrix == AVCOL_SPC_RGB)
        return false;
    return tags.primaries == AVCOL_PRI_BT2020 ||
           (tags.primaries == AVCOL_PRI_UNSPECIFIED && tags.matrix == AVCOL_SPC_BT2020_NCL);
}

bool haveSameMatrix(const ColorTags& first, const ColorTags& second) {
    return first.matrix == second.matrix || (isBt601(first.matrix) && isBt601(second.matrix));
}

ColorStandard standardOf(const ColorTags& tags, int lines) {
    if (tags.matrix == AVCOL_SPC_UNSPECIFIED)
        return lines >= kFirstHdLine ? ColorStandard::bt709 : ColorStandard::bt601;
    return isBt601(tags.matrix) ? ColorStandard::bt601 : ColorStandard::bt709;
}

ColorTags withMatrix(ColorTags tags, int lines) {
    if (tags.matrix == AVCOL_SPC_UNSPECIFIED)
        tags.matrix = standardOf(tags, lines) == ColorStandard::bt709 ? AVCOL_SPC_BT709 : AVCOL_SPC_SMPTE170M;
    return tags;
}

ColorRange rangeOf(const ColorTags& tags) {
    return tags.range == AVCOL_RANGE_JPEG ? ColorRange::full : ColorRange::video;
}

} // namespace ze::tool
