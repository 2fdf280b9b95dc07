#include "tool/video/video_format.h"

namespace ze::tool {
namespace {

bool isTopFirst(AVFieldOrder order) {
    return order == AV_FIELD_TT || order == AV_FIELD_TB;
}

// As the clip names it, where that is true of its first frame.
AVFieldOrder fieldOrderOf(const AVStream& video, const AVFrame& first) {
    if (!first.interlaced_frame)
        return AV_FIELD_PROGRESSIVE;
    const bool topFirst = first.top_field_first != 0;
    const AVFieldOrder named = video.codecpar->field_order;
    const bool isNamed = named != AV_FIELD_UNKNOWN && named != AV_FIELD_PROGRESSIVE;
    if (isNamed && isTopFirst(named) == topFirst)
        return named;
    return topFirst ? AV_FIELD_TT : AV_FIELD_BB;
}

} // namespace

VideoFormat formatOf(const AVStream& video, AVRational frameRate, const AVFrame& first,
                     const ColorOverride& instead) {
    const ColorTags tags = tagsOf(first, instead);
    checkColors(tags);
    VideoFormat format;
    format.width = first.width;
    format.height = first.height;
    if (first.format == AV_PIX_FMT_NV21)
        format.layout = AV_PIX_FMT_NV21;
    format.tags = libraryTags(tags);
    format.pixelShape =
        first.sample_aspect_ratio.num > 0 ? first.sample_aspect_ratio : video.sample_aspect_ratio;
    format.timeBase = video.time_base;
    format.frameRate = frameRate;
    format.fieldOrder = fieldOrderOf(video, first);
    return format;
}

} // namespace ze::tool
