#include "tool/video/clip_container.h"

#include "tool/video/ffmpeg_errors.h"

#include <new>
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

// A file in memory, of which nothing is kept.
class ScratchFile {
public:
    explicit ScratchFile(const char* muxer) {
        if (avformat_alloc_output_context2(&m_context, nullptr, muxer, nullptr) < 0 ||
            avio_open_dyn_buf(&m_context->pb) < 0)
            throw std::bad_alloc();
    }
    ~ScratchFile() {
        uint8_t* bytes = nullptr;
        avio_close_dyn_buf(m_context->pb, &bytes);
        av_free(bytes);
        avformat_free_context(m_context);
    }
    ScratchFile(const ScratchFile&) = delete;
    ScratchFile& operator=(const ScratchFile&) = delete;

    AVFormatContext* context() const { return m_context; }

private:
    AVFormatContext* m_context = nullptr;
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

// Only the head of a file of that stream alone, written to memory, tells all that FFmpeg's muxers mind.
bool canHold(const ClipContainer& container, const AVStream& stream) {
    const std::string_view muxer = container.muxer;
    if (stream.codecpar->codec_type == AVMEDIA_TYPE_ATTACHMENT)
        return muxer == "matroska"; // WebM passes them over, without an error
    if (muxer == "mov" && (stream.disposition & AV_DISPOSITION_ATTACHED_PIC) != 0)
        return false; // the same
    const ScratchFile file(container.muxer);
    const AVOutputFormat& format = *file.context()->oformat;
    // The answer leaves out what Matroska holds in the way of AVI, which nothing but Matroska should.
    if (muxer != "matroska" &&
        avformat_query_codec(&format, stream.codecpar->codec_id, FF_COMPLIANCE_NORMAL) != 1)
        return false;
    AVStream* const copy = avformat_new_stream(file.context(), nullptr);
    if (!copy || avcodec_parameters_copy(copy->codecpar, stream.codecpar) < 0)
        throw std::bad_alloc();
    copy->codecpar->codec_tag = codecTag(*stream.codecpar, format);
    copy->disposition = stream.disposition;
    copy->time_base = stream.time_base;
    const int written = avformat_write_header(file.context(), nullptr);
    if (written < 0)
        ffmpegReason(written); // so that it is not taken for that of another failure
    return written >= 0;
}

uint32_t codecTag(const AVCodecParameters& stream, const AVOutputFormat& format) {
    return av_codec_get_id(format.codec_tag, stream.codec_tag) == stream.codec_id ? stream.codec_tag : 0;
}

} // namespace ze::tool
