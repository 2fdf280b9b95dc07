#include "tool/pictures/color_conversion.h"

#include "tool/errors.h"

#include <string>

extern "C" {
#include <libavutil/opt.h>
#include <libavutil/pixdesc.h>
}

namespace ze::tool {
namespace {

// Exact arithmetic, the same on every processor. Area averages four pixels into one chroma sample on the way
// down; on the way up it is what FFmpeg takes for bilinear. Without further settings FFmpeg places chroma in
// the center.
constexpr int kScaling = SWS_AREA | SWS_ACCURATE_RND | SWS_BITEXACT | SWS_FULL_CHR_H_INT;

int isFullRange(const AVFrame& frame) {
    const auto* description = av_pix_fmt_desc_get(static_cast<AVPixelFormat>(frame.format));
    return (description->flags & AV_PIX_FMT_FLAG_RGB) || frame.color_range == AVCOL_RANGE_JPEG;
}

} // namespace

void convertColors(const AVFrame& from, AVFrame& to) {
    const FfmpegPtr<SwsContext> scaler = owned(sws_alloc_context());
    const struct {
        const char* name;
        int value;
    } settings[] = {
        {"srcw", from.width}, {"srch", from.height}, {"src_format", from.format}, {"sws_flags", kScaling},
        {"dstw", to.width},   {"dsth", to.height},   {"dst_format", to.format},
    };
    for (const auto& setting : settings)
        av_opt_set_int(scaler.get(), setting.name, setting.value, 0);
    sws_setColorspaceDetails(scaler.get(), sws_getCoefficients(from.colorspace), isFullRange(from),
                             sws_getCoefficients(to.colorspace), isFullRange(to), 0, 1 << 16, 1 << 16);
    if (sws_init_context(scaler.get(), nullptr, nullptr) < 0)
        throw Failure(ExitCode::failed, std::string("no conversion from pixel format ") +
                                            av_get_pix_fmt_name(static_cast<AVPixelFormat>(from.format)));
    sws_scale(scaler.get(), from.data, from.linesize, 0, from.height, to.data, to.linesize);
}

} // namespace ze::tool
