#include "tool/video/video_encoder.h"

#include "tool/number_text.h"
#include "tool/video/dictionary.h"
#include "tool/video/ffmpeg_errors.h"

#include <algorithm>
#include <string_view>

extern "C" {
#include <libavutil/opt.h>
#include <libavutil/pixdesc.h>
}

namespace ze::tool {
namespace {

constexpr char kLosslessEncoder[] = "ffv1";

// What an encoder is told unless the command line says something about its rate.
struct UsualOptions {
    std::string_view encoder;
    std::vector<std::pair<const char*, const char*>> options;
};

const std::vector<UsualOptions>& usualOptions() {
    static const std::vector<UsualOptions> s_options = {
        {"libx264", {{"crf", "18"}}},
        {"libvpx-vp9", {{"crf", "24"}, {"row-mt", "1"}, {"cpu-used", "2"}}},
    };
    return s_options;
}

const AVCodec* findEncoder(const EncoderSettings& settings, const ClipContainer& container) {
    std::string name = settings.encoder.empty() ? container.encoder : settings.encoder;
    if (settings.lossless && container.holdsStreams) {
        if (!settings.encoder.empty())
            throw Failure(ExitCode::usage, std::string("--lossless is the encoder ") + kLosslessEncoder +
                                               "; --encoder names another one");
        name = kLosslessEncoder;
    }
    const AVCodec* const codec = avcodec_find_encoder_by_name(name.c_str());
    if (!codec || codec->type != AVMEDIA_TYPE_VIDEO)
        throw Failure(ExitCode::usage, "--encoder: FFmpeg has no encoder '" + name + "' for moving pictures");
    return codec;
}

bool takes(const AVCodec& codec, AVPixelFormat format) {
    for (const AVPixelFormat* known = codec.pix_fmts; known && *known != AV_PIX_FMT_NONE; ++known)
        if (*known == format)
            return true;
    return false;
}

AVPixelFormat inputFormat(const AVCodec& codec, const ClipContainer& container, AVPixelFormat layout) {
    if (codec.id == AV_CODEC_ID_RAWVIDEO && !container.holdsStreams)
        return av_get_pix_fmt(container.extension + 1);
    if (codec.id == AV_CODEC_ID_WRAPPED_AVFRAME || codec.id == AV_CODEC_ID_RAWVIDEO)
        return AV_PIX_FMT_YUV420P;
    for (const AVPixelFormat format : {layout, AV_PIX_FMT_NV12, AV_PIX_FMT_YUV420P, AV_PIX_FMT_YUVJ420P})
        if (takes(codec, format))
            return format;
    throw Failure(ExitCode::usage,
                  std::string("--encoder: ") + codec.name + " takes no 8-bit 4:2:0 from main memory");
}

void checkSize(AVCodecID codec, int width, int height) {
    const bool isOdd = width % 2 != 0 || height % 2 != 0;
    if (isOdd && (codec == AV_CODEC_ID_H264 || codec == AV_CODEC_ID_HEVC))
        throw Failure(ExitCode::usage, std::to_string(width) + "x" + std::to_string(height) +
                                           " pixels: H.264 and H.265 in 4:2:0 have even sizes only; .webm, "
                                           ".y4m, and .mkv with --lossless hold odd ones");
}

bool setsRate(const std::string& option) {
    return option.rfind("crf=", 0) == 0 || option.rfind("qp=", 0) == 0 || option.rfind("b=", 0) == 0;
}

// FFmpeg takes any number for x264 and x265, which cut it or say something else.
double highestCrf(const AVCodec& codec, const AVOption& option) {
    return codec.id == AV_CODEC_ID_H264 || codec.id == AV_CODEC_ID_HEVC ? 51 : option.max;
}

void checkCrf(const AVCodec& codec, int crf) {
    const AVOption* const option = codec.priv_class ? av_opt_find(const_cast<AVClass**>(&codec.priv_class),
                                                                  "crf", nullptr, 0, AV_OPT_SEARCH_FAKE_OBJ)
                                                    : nullptr;
    if (!option)
        throw Failure(ExitCode::usage,
                      std::string("--crf: the encoder ") + codec.name + " has no such setting");
    const double highest = highestCrf(codec, *option);
    if (crf < 0 || crf > highest)
        throw Failure(ExitCode::usage, std::string("--crf: the encoder ") + codec.name + " takes 0 to " +
                                           numberText(highest, 0) + ", not " + std::to_string(crf));
}

// x265 prints what it does, whatever FFmpeg says, unless it is told not to; the user may tell it otherwise.
void quiet(Dictionary& options, std::string_view encoder) {
    constexpr char kKey[] = "x265-params";
    if (encoder != "libx265")
        return;
    const std::string named = options.valueOf(kKey);
    options.set(kKey, "log-level=error" + (named.empty() ? "" : ":" + named));
}

void addOptions(Dictionary& options, const EncoderSettings& settings, std::string_view encoder) {
    const bool hasRate = std::any_of(settings.options.begin(), settings.options.end(), setsRate);
    for (const UsualOptions& usual : usualOptions())
        if (usual.encoder == encoder)
            for (const auto& [key, value] : usual.options)
                if (!hasRate || std::string_view(key) != "crf")
                    options.set(key, value);
    if (settings.crf)
        options.set("crf", std::to_string(*settings.crf));
    for (const std::string& option : settings.options) {
        const size_t equals = option.find('=');
        if (equals == 0 || equals == option.npos)
            throw Failure(ExitCode::usage, "--encoder-option: '" + option + "' is not KEY=VALUE");
        options.set(option.substr(0, equals), option.substr(equals + 1));
    }
}

} // namespace

VideoEncoder::VideoEncoder(const EncoderSettings& settings, const ClipContainer& container,
                           const VideoFormat& format, bool needsGlobalHeader) {
    const AVCodec* const codec = findEncoder(settings, container);
    checkSize(codec->id, format.width, format.height);
    m_context = owned(avcodec_alloc_context3(codec));
    m_context->pix_fmt = inputFormat(*codec, container, format.layout);
    describe(format);
    if (!container.holdsStreams && format.tags.chroma == AVCHROMA_LOC_UNSPECIFIED)
        m_context->chroma_sample_location = AVCHROMA_LOC_LEFT; // FFmpeg's YUV4MPEG2 has JPEG's otherwise
    if (needsGlobalHeader)
        m_context->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    open(settings);
    if (m_context->pix_fmt != format.layout)
        m_repacker =
            owned(sws_getContext(format.width, format.height, format.layout, format.width, format.height,
                                 m_context->pix_fmt, SWS_POINT, nullptr, nullptr, nullptr));
}

void VideoEncoder::describe(const VideoFormat& format) {
    m_context->width = format.width;
    m_context->height = format.height;
    m_context->time_base = format.timeBase;
    m_context->framerate = format.frameRate;
    m_context->sample_aspect_ratio = format.pixelShape;
    m_context->colorspace = format.tags.matrix;
    m_context->color_range = format.tags.range;
    m_context->color_primaries = format.tags.primaries;
    m_context->color_trc = format.tags.transfer;
    m_context->chroma_sample_location = format.tags.chroma;
    m_context->thread_count = 0; // as many as there are processors
    m_context->field_order = format.fieldOrder;
    if (format.isInterlaced())
        m_context->flags |= AV_CODEC_FLAG_INTERLACED_DCT | AV_CODEC_FLAG_INTERLACED_ME;
}

void VideoEncoder::open(const EncoderSettings& settings) {
    const AVCodec& codec = *m_context->codec;
    Dictionary options;
    if (settings.crf)
        checkCrf(codec, *settings.crf);
    addOptions(options, settings, codec.name);
    quiet(options, codec.name);
    const int opened = avcodec_open2(m_context.get(), &codec, options.address());
    if (opened < 0)
        throw Failure(settings.crf || !settings.options.empty() ? ExitCode::usage : ExitCode::failed,
                      std::string("the encoder ") + codec.name + " refuses: " + ffmpegReason(opened));
    if (!options.firstKey().empty())
        throw Failure(ExitCode::usage, std::string("--encoder-option: the encoder ") + codec.name +
                                           " has no option '" + options.firstKey() + "'");
}

FfmpegPtr<AVFrame> VideoEncoder::repacked(const AVFrame& frame) {
    FfmpegPtr<AVFrame> planes = makeFrame(m_context->pix_fmt, frame.width, frame.height);
    if (av_frame_copy_props(planes.get(), &frame) < 0)
        throw std::bad_alloc();
    sws_scale(m_repacker.get(), frame.data, frame.linesize, 0, frame.height, planes->data, planes->linesize);
    return planes;
}

void VideoEncoder::send(const AVFrame* frame) {
    FfmpegPtr<AVFrame> planes;
    if (frame) {
        m_durations[frame->pts] = frame->pkt_duration;
        if (m_repacker)
            planes = repacked(*frame);
    }
    const int error = avcodec_send_frame(m_context.get(), planes ? planes.get() : frame);
    if (error < 0 && error != AVERROR_EOF)
        throw Failure(ExitCode::failed, "encoding: " + ffmpegReason(error));
}

FfmpegPtr<AVPacket> VideoEncoder::receive() {
    FfmpegPtr<AVPacket> packet = owned(av_packet_alloc());
    const int error = avcodec_receive_packet(m_context.get(), packet.get());
    if (error == AVERROR(EAGAIN) || error == AVERROR_EOF)
        return nullptr;
    if (error < 0)
        throw Failure(ExitCode::failed, "encoding: " + ffmpegReason(error));
    const auto duration = m_durations.find(packet->pts);
    if (duration != m_durations.end()) {
        packet->duration = duration->second;
        m_durations.erase(duration);
    }
    return packet;
}

} // namespace ze::tool
