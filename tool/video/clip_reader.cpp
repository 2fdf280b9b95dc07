#include "tool/video/clip_reader.h"

#include "tool/video/ffmpeg_errors.h"

#include <algorithm>
#include <utility>

namespace ze::tool {
namespace {

constexpr int64_t kSecond = AV_TIME_BASE;

int64_t inUnitsOf(const AVStream& stream, int64_t microseconds) {
    return av_rescale_q(microseconds, kMicrosecond, stream.time_base);
}

void subtract(int64_t shift, int64_t& time) {
    if (time != AV_NOPTS_VALUE)
        time -= shift;
}

} // namespace

ClipReader::ClipReader(const std::string& path, const ReaderSettings& settings)
    : m_range(settings.range), m_demuxer(path, settings.raw, settings.strict), m_start(m_demuxer.start()) {
    if (m_demuxer.hasFreeClock() || !m_range.isWhole())
        m_shift = av_sat_add64(m_start, m_range.from);
    // A second before, so that a reordered frame is not missed. Decoding brings up what is dropped.
    m_demuxer.seek(m_shift - kSecond);
    openDecoder();
}

void ClipReader::openDecoder() {
    const AVCodecParameters& parameters = *video().codecpar;
    const AVCodec* const codec = avcodec_find_decoder(parameters.codec_id);
    if (!codec)
        throw Failure(ExitCode::badInput, std::string("has moving pictures of the kind ") +
                                              avcodec_get_name(parameters.codec_id) +
                                              ", which FFmpeg cannot decode");
    m_decoder = owned(avcodec_alloc_context3(codec));
    if (avcodec_parameters_to_context(m_decoder.get(), &parameters) < 0)
        throw std::bad_alloc();
    m_decoder->pkt_timebase = video().time_base;
    m_decoder->thread_count = 0; // as many as there are processors
    const int opened = avcodec_open2(m_decoder.get(), codec, nullptr);
    if (opened < 0)
        failToRead(ffmpegReason(opened));
}

int64_t ClipReader::duration() const {
    const int64_t total = m_demuxer.total();
    return total == 0 ? 0 : std::max<int64_t>(0, std::min(total, m_range.to) - m_range.from);
}

std::optional<ClipItem> ClipReader::next() {
    for (;;) {
        checkSignal();
        if (FfmpegPtr<AVFrame> frame = receiveFrame())
            return ClipItem{std::move(frame), nullptr};
        if (m_isAtEnd)
            return std::nullopt;
        m_packet = isRangeOver() ? nullptr : m_demuxer.next();
        if (!m_packet) {
            m_isAtEnd = true;
            decode(nullptr);
        } else if (m_packet->stream_index == video().index) {
            decode(m_packet.get());
        } else if (isToBeCopied()) {
            return ClipItem{nullptr, std::move(m_packet)};
        }
    }
}

void ClipReader::decode(const AVPacket* packet) {
    if (packet && m_ended.count(video().index) != 0)
        return;
    const int error = avcodec_send_packet(m_decoder.get(), packet);
    if (error == AVERROR(ENOMEM))
        throw std::bad_alloc();
    if (error < 0 && error != AVERROR_EOF)
        m_demuxer.noteDamage();
}

bool ClipReader::isToBeCopied() {
    const AVStream& stream = *container().streams[m_packet->stream_index];
    const int64_t time = m_packet->pts != AV_NOPTS_VALUE ? m_packet->pts : m_packet->dts;
    const bool isAttached = (stream.disposition & AV_DISPOSITION_ATTACHED_PIC) != 0;
    if (!isAttached && time != AV_NOPTS_VALUE && !isInRange(time, stream))
        return false;
    const int64_t shift = isAttached ? 0 : inUnitsOf(stream, m_shift);
    subtract(shift, m_packet->pts);
    subtract(shift, m_packet->dts);
    return true;
}

FfmpegPtr<AVFrame> ClipReader::receiveFrame() {
    FfmpegPtr<AVFrame> frame = owned(av_frame_alloc());
    for (;;) {
        const int error = avcodec_receive_frame(m_decoder.get(), frame.get());
        if (error == AVERROR(EAGAIN) || error == AVERROR_EOF)
            return nullptr;
        if (error == AVERROR(ENOMEM))
            throw std::bad_alloc();
        if (error < 0 || frame->decode_error_flags != 0 || (frame->flags & AV_FRAME_FLAG_CORRUPT) != 0)
            m_demuxer.noteDamage();
        if (error < 0)
            continue;
        const int64_t named = frame->best_effort_timestamp;
        const int64_t time = named == AV_NOPTS_VALUE ? m_nextTime : named;
        setTimes(*frame, time);
        if (isInRange(time, video()))
            return frame;
    }
}

void ClipReader::setTimes(AVFrame& frame, int64_t time) {
    const AVRational rate = frameRate();
    if (frame.pkt_duration <= 0 && rate.num > 0)
        frame.pkt_duration = av_rescale_q(1, av_inv_q(rate), video().time_base);
    m_nextTime = time + std::max<int64_t>(1, frame.pkt_duration);
    frame.pts = time - inUnitsOf(video(), m_shift);
    if (m_lastTime != AV_NOPTS_VALUE)
        frame.pts = std::max(frame.pts, m_lastTime + 1); // encoders and containers take no two at one time
    m_lastTime = frame.pts;
    frame.pict_type = AV_PICTURE_TYPE_NONE; // otherwise encoders follow it
}

bool ClipReader::isInRange(int64_t time, const AVStream& stream) {
    if (m_range.isWhole())
        return true;
    if (av_compare_ts(time, stream.time_base, av_sat_add64(m_start, m_range.to), kMicrosecond) >= 0) {
        m_ended.insert(stream.index);
        return false;
    }
    // What lies before the beginning, as the lead-in of AAC does, belongs to it.
    return m_range.from == 0 || av_compare_ts(time, stream.time_base, m_shift, kMicrosecond) >= 0;
}

bool ClipReader::isRangeOver() const {
    const auto hasEnded = [this](const AVStream* stream) {
        return !isContinuous(*stream) || m_ended.count(stream->index) != 0;
    };
    return !m_ended.empty() &&
           std::all_of(container().streams, container().streams + container().nb_streams, hasEnded);
}

} // namespace ze::tool
