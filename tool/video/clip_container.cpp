#include "tool/video/clip_container.h"

#include <string_view>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

namespace ze::tool {
namespace {

constexpr ClipContainer kContainers[] = {
    {".mp4", "mp4", "libx264", true},
    {".mov", "mov", "libx264", true},
    {".mkv", "matroska", "libx264", true},
    {".webm", "webm", "libvpx-vp9", true},
    {".y4m", "yuv4mpegpipe", "wrapped_avframe", false},
    {".nv12", "rawvideo", "rawvideo", false},
    {".nv21", "rawvideo", "rawvideo", false},
};

} // namespace

const ClipContainer* clipContainerOf(const std::string& extension) {
    for (const ClipContainer& container : kContainers)
        if (extension == container.extension)
            return &container;
    return nullptr;
}

std::string clipExtensions() {
    std::string text;
    for (const ClipContainer& container : kContainers)
        text += (text.empty() ? "" : ", ") + std::string(container.extension);
    return text;
}

bool canHold(const ClipContainer& container, const AVCodecParameters& stream) {
    if (stream.codec_type == AVMEDIA_TYPE_ATTACHMENT)
        return std::string_view(container.muxer) == "matroska";
    const AVOutputFormat* const format = av_guess_format(container.muxer, nullptr, nullptr);
    return format && avformat_query_codec(format, stream.codec_id, FF_COMPLIANCE_NORMAL) == 1;
}

} // namespace ze::tool
