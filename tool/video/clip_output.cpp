#include "tool/video/clip_output.h"

#include "tool/video/dictionary.h"
#include "tool/video/ffmpeg_errors.h"
#include "tool/video/movie_tags.h"

#include <algorithm>

namespace ze::tool {
namespace {

bool hasCover(const AVFormatContext& container) {
    const auto isCover = [](const AVStream* stream) {
        return (stream->disposition & AV_DISPOSITION_ATTACHED_PIC) != 0;
    };
    return std::any_of(container.streams, container.streams + container.nb_streams, isCover);
}

// MP4 holds either what it has places for, covers among them, or keys of any name.
bool needsFreeKeys(const AVFormatContext& container, const std::string& name) {
    const std::string key = keyWithoutPlace(container);
    if (key.empty() || !hasCover(container))
        return !key.empty();
    printError(name + ": metadata such as '" + key +
               "' is left out: there is no place for it beside a cover; .mkv has one");
    return false;
}

} // namespace

ClipOutput::ClipOutput(const std::string& path, const ClipContainer& container,
                       const EncoderSettings& settings, const VideoFormat& format, const ClipReader& from)
    : m_path(path), m_sink(path) {
    withFileInError(path, [&] { open(container, settings, format, from); });
}

void ClipOutput::open(const ClipContainer& container, const EncoderSettings& settings,
                      const VideoFormat& format, const ClipReader& from) {
    AVFormatContext* context = nullptr;
    require(avformat_alloc_output_context2(&context, nullptr, container.muxer, nullptr));
    m_container.reset(context);
    context->pb = m_sink.context();
    const bool needsHeader = (context->oformat->flags & AVFMT_GLOBALHEADER) != 0;
    m_encoder.emplace(settings, container, format, needsHeader);
    m_copy.emplace(from, streamsToCopy(m_path, from, container), *context);
    addVideo(container, format);
    if (!canHold(container, m_copy->video()) && container.holdsStreams)
        throw Failure(ExitCode::usage, std::string("--encoder: ") +
                                           avcodec_get_name(m_copy->video().codecpar->codec_id) +
                                           " has no place in " + container.extension);
    writeHeader();
}

void ClipOutput::addVideo(const ClipContainer& container, const VideoFormat& format) {
    AVStream& video = m_copy->video();
    if (avcodec_parameters_from_context(video.codecpar, &m_encoder->context()) < 0)
        throw std::bad_alloc();
    if (video.codecpar->codec_id == AV_CODEC_ID_HEVC && isMovie(*m_container))
        video.codecpar->codec_tag = MKTAG('h', 'v', 'c', '1'); // the other one is not for Apple's players
    m_isTimeless = !container.holdsStreams;
    video.time_base = m_isTimeless && format.frameRate.num > 0 ? av_inv_q(format.frameRate) : format.timeBase;
    video.avg_frame_rate = format.frameRate;
    video.sample_aspect_ratio = format.pixelShape;
}

void ClipOutput::writeHeader() {
    Dictionary options;
    std::string flags;
    if (m_sink.isStream()) // MP4 has its index at the end or, in pieces, everywhere
        flags += "+frag_keyframe+empty_moov+default_base_moof";
    if (needsFreeKeys(*m_container, m_path))
        flags += "+use_metadata_tags";
    nameStreams(*m_container);
    if (!flags.empty())
        options.set("movflags", flags);
    if (m_sink.isStream())
        m_container->flags |= AVFMT_FLAG_FLUSH_PACKETS;
    require(avformat_write_header(m_container.get(), options.address()));
}

bool ClipOutput::write(const ClipItem& item) {
    return withFileInError(m_path, [&] {
        if (item.frame) {
            m_encoder->send(item.frame.get());
            writePackets();
            return true;
        }
        const FfmpegPtr<AVPacket> packet = owned(av_packet_clone(item.packet.get()));
        if (!m_copy->adapt(*packet))
            return true;
        const int result = av_interleaved_write_frame(m_container.get(), packet.get());
        const bool isDamaged = result == AVERROR_INVALIDDATA || result == AVERROR_PATCHWELCOME;
        require(isDamaged ? 0 : result);
        return !isDamaged;
    });
}

void ClipOutput::finish() {
    withFileInError(m_path, [&] {
        m_encoder->send(nullptr);
        writePackets();
        require(av_write_trailer(m_container.get()));
        avio_flush(m_sink.context());
        m_sink.check();
    });
}

void ClipOutput::writePackets() {
    AVStream& video = m_copy->video();
    while (const FfmpegPtr<AVPacket> packet = m_encoder->receive()) {
        av_packet_rescale_ts(packet.get(), m_encoder->context().time_base, video.time_base);
        if (m_isTimeless) {
            packet->pts = packet->dts = m_count++;
            packet->duration = 1;
        }
        packet->stream_index = video.index;
        require(av_interleaved_write_frame(m_container.get(), packet.get()));
    }
}

// The reason is the file's, where that has one.
void ClipOutput::require(int result) {
    m_sink.check();
    if (result < 0)
        throw Failure(ExitCode::failed, "cannot be written: " + ffmpegReason(result));
}

} // namespace ze::tool
