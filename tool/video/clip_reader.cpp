#include "tool/video/clip_reader.h"

#include "tool/files/interruption.h"
#include "tool/number_text.h"
#include "tool/video/dictionary.h"
#include "tool/video/ffmpeg_errors.h"

#include <algorithm>
#include <cerrno>
#include <utility>

extern "C" {
#include <libavutil/imgutils.h>
}

namespace ze::tool {
namespace {

constexpr int64_t kSecond = AV_TIME_BASE;
constexpr char kFrameMark[] = "FRAME\n"; // before each frame of YUV4MPEG2

int refuseOtherFiles(AVFormatContext*, AVIOContext**, const char*, int, AVDictionary**) {
    return AVERROR(EPERM);
}

int isInterrupted(void*) {
    return waitingSignal() != 0 ? 1 : 0;
}

void checkSignal() {
    if (waitingSignal() != 0)
        throw Failure(ExitCode::failed, "interrupted");
}

[[noreturn]] void failToRead(const std::string& reason) {
    checkSignal();
    throw Failure(ExitCode::badInput, "cannot be read: " + reason);
}

bool isYuv4Mpeg(const AVFormatContext& container) {
    return std::string_view(container.iformat->name) == "yuv4mpegpipe";
}

// Times of frames without anything around them are their numbers, from 0.
[[noreturn]] void failAtShortFrame(int64_t time, int64_t bytes, int size) {
    throw Failure(ExitCode::badInput, "frame " + std::to_string(time + 1) +
                                          " is short: " + std::to_string(std::max<int64_t>(0, bytes)) +
                                          " of " + std::to_string(size) + " bytes");
}

// Whether `stream` is shown, and not a cover or a track of thumbnails.
bool isMovingPicture(const AVStream& stream) {
    constexpr int kStill = AV_DISPOSITION_ATTACHED_PIC | AV_DISPOSITION_TIMED_THUMBNAILS;
    return stream.codecpar->codec_type == AVMEDIA_TYPE_VIDEO && (stream.disposition & kStill) == 0 &&
           stream.discard != AVDISCARD_ALL;
}

int64_t inUnitsOf(const AVStream& stream, int64_t microseconds) {
    return av_rescale_q(microseconds, kMicrosecond, stream.time_base);
}

void subtract(int64_t shift, int64_t& time) {
    if (time != AV_NOPTS_VALUE)
        time -= shift;
}

} // namespace

ClipReader::ClipReader(const std::string& path, const ReaderSettings& settings)
    : m_settings(settings), m_source(path) {
    catchFfmpegMessages();
    begin();
    startRange();
}

void ClipReader::begin() {
    open();
    findVideo();
    openDecoder();
}

void ClipReader::open() {
    AVFormatContext* container = avformat_alloc_context();
    if (!container)
        throw std::bad_alloc();
    container->pb = m_source.context();
    container->io_open = refuseOtherFiles;
    container->interrupt_callback.callback = isInterrupted;
    Dictionary options;
    options.set("scan_all_pmts", "1"); // transport streams: streams that begin later, too
    const AVInputFormat* demuxer = nullptr;
    if (const auto& raw = m_settings.raw) {
        demuxer = av_find_input_format("rawvideo");
        options.set("pixel_format", av_get_pix_fmt_name(raw->layout));
        options.set("video_size", std::to_string(raw->width) + "x" + std::to_string(raw->height));
        options.set("framerate", raw->rate);
    }
    const int opened =
        avformat_open_input(&container, "", demuxer, options.address()); // frees it if it fails
    m_container.reset(container);
    if (opened < 0)
        failToRead(m_source.failure().empty() ? ffmpegReason(opened) : m_source.failure());
    const int described = avformat_find_stream_info(m_container.get(), nullptr);
    if (described < 0)
        failToRead(ffmpegReason(described));
}

void ClipReader::findVideo() {
    AVStream** const end = m_container->streams + m_container->nb_streams;
    AVStream** const found =
        std::find_if(m_container->streams, end, [](const AVStream* s) { return isMovingPicture(*s); });
    if (found == end)
        throw Failure(ExitCode::badInput, "has no moving pictures");
    m_video = *found;
    m_clock.emplace(*m_container, m_video->index);
}

void ClipReader::openDecoder() {
    const AVCodecParameters& parameters = *m_video->codecpar;
    const AVCodec* const codec = avcodec_find_decoder(parameters.codec_id);
    if (!codec)
        throw Failure(ExitCode::badInput, std::string("has moving pictures of the kind ") +
                                              avcodec_get_name(parameters.codec_id) +
                                              ", which FFmpeg cannot decode");
    m_decoder = owned(avcodec_alloc_context3(codec));
    if (avcodec_parameters_to_context(m_decoder.get(), &parameters) < 0)
        throw std::bad_alloc();
    m_decoder->pkt_timebase = m_video->time_base;
    m_decoder->thread_count = 0; // as many as there are processors
    const int opened = avcodec_open2(m_decoder.get(), codec, nullptr);
    if (opened < 0)
        failToRead(ffmpegReason(opened));
}

void ClipReader::startRange() {
    const bool hasFreeClock = (m_container->iformat->flags & AVFMT_TS_DISCONT) != 0;
    m_start = m_container->start_time == AV_NOPTS_VALUE ? 0 : m_container->start_time;
    m_total = m_container->duration == AV_NOPTS_VALUE ? 0 : m_container->duration;
    if (hasFreeClock || !m_settings.range.isWhole())
        m_shift = m_start + m_settings.range.from;
    // A second before, so that a reordered frame is not missed. Decoding brings up what is dropped.
    const int64_t target = inUnitsOf(*m_video, m_shift - kSecond);
    if (!m_source.isSeekable() || hasFreeClock || m_shift - kSecond <= m_start || !hasFrameBefore(target))
        return;
    const int sought = avformat_seek_file(m_container.get(), m_video->index, INT64_MIN, target, target, 0);
    if (sought >= 0)
        return;
    m_container.reset();
    avio_seek(m_source.context(), 0, SEEK_SET);
    begin();
}

// Otherwise demuxers go to a later one, past the sound that is to be copied.
bool ClipReader::hasFrameBefore(int64_t time) const {
    return isYuv4Mpeg(*m_container) ||
           avformat_index_get_entry_from_timestamp(m_video, time, AVSEEK_FLAG_BACKWARD) != nullptr;
}

AVRational ClipReader::frameRate() const {
    return av_guess_frame_rate(m_container.get(), m_video, nullptr);
}

int64_t ClipReader::duration() const {
    const int64_t total = m_total;
    return total == 0 ? 0
                      : std::max<int64_t>(0, std::min(total, m_settings.range.to) - m_settings.range.from);
}

int64_t ClipReader::estimatedTotal() const {
    const int64_t size = avio_size(m_container->pb);
    const int64_t done = avio_tell(m_container->pb);
    return size > 0 && done > 0 ? av_rescale(std::max<int64_t>(0, m_clock->time() - m_start), size, done) : 0;
}

std::optional<ClipItem> ClipReader::next() {
    for (;;) {
        checkSignal();
        if (FfmpegPtr<AVFrame> frame = receiveFrame())
            return ClipItem{std::move(frame), nullptr};
        if (m_isAtEnd)
            return std::nullopt;
        if (!readPacket()) {
            m_isAtEnd = true;
            decode(nullptr);
        } else if (m_packet->stream_index == m_video->index) {
            decode(m_packet.get());
        } else if (isToBeCopied()) {
            return ClipItem{nullptr, std::move(m_packet)};
        }
    }
}

bool ClipReader::readPacket() {
    m_packet = m_clock->take();
    while (!m_packet && demux())
        m_packet = m_clock->take();
    return m_packet != nullptr;
}

// Hands the next packet to the clock, or the end. False after that.
bool ClipReader::demux() {
    if (m_isDemuxed || isRangeOver())
        return false;
    FfmpegPtr<AVPacket> packet = owned(av_packet_alloc());
    const int error = av_read_frame(m_container.get(), packet.get());
    if (error < 0) {
        m_isDemuxed = true;
        checkEnd(error);
        m_clock->finish();
        return true;
    }
    if (packet->flags & AV_PKT_FLAG_CORRUPT)
        checkPacket(*packet);
    m_packetSize = packet->size;
    m_packetTime = packet->pts;
    m_end = packet->pos + m_packetSize;
    m_clock->add(std::move(packet));
    if (m_clock->hasJumped())
        m_total = estimatedTotal();
    return true;
}

// Raw frames must be whole; anything else may be of use in parts.
void ClipReader::checkPacket(const AVPacket& packet) {
    checkSignal(); // which cuts a frame short, too
    if (const auto& raw = m_settings.raw)
        failAtShortFrame(packet.pts, packet.size,
                         av_image_get_buffer_size(raw->layout, raw->width, raw->height, 1));
    noteDamage();
}

void ClipReader::checkEnd(int error) {
    if (!m_source.failure().empty())
        failToRead(m_source.failure());
    checkSignal();
    const int64_t left = m_source.position() - m_end;
    if (isYuv4Mpeg(*m_container) && left > 0) {
        if (m_packetTime != AV_NOPTS_VALUE)
            failAtShortFrame(m_packetTime + 1, left - static_cast<int64_t>(sizeof kFrameMark - 1),
                             m_packetSize);
        if (m_settings.range.from == 0)
            throw Failure(ExitCode::badInput, "has no whole frame");
    }
    if (error != AVERROR_EOF)
        noteDamage();
}

void ClipReader::decode(const AVPacket* packet) {
    if (packet && m_ended.count(m_video->index) != 0)
        return;
    const int error = avcodec_send_packet(m_decoder.get(), packet);
    if (error == AVERROR(ENOMEM))
        throw std::bad_alloc();
    if (error < 0 && error != AVERROR_EOF)
        noteDamage();
}

bool ClipReader::isToBeCopied() {
    const AVStream& stream = *m_container->streams[m_packet->stream_index];
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
            noteDamage();
        if (error < 0)
            continue;
        const int64_t named = frame->best_effort_timestamp;
        const int64_t time = named == AV_NOPTS_VALUE ? m_nextTime : named;
        setTimes(*frame, time);
        if (isInRange(time, *m_video))
            return frame;
    }
}

void ClipReader::setTimes(AVFrame& frame, int64_t time) {
    const AVRational rate = frameRate();
    if (frame.pkt_duration <= 0 && rate.num > 0)
        frame.pkt_duration = av_rescale_q(1, av_inv_q(rate), m_video->time_base);
    m_nextTime = time + std::max<int64_t>(1, frame.pkt_duration);
    frame.pts = time - inUnitsOf(*m_video, m_shift);
    if (m_lastTime != AV_NOPTS_VALUE)
        frame.pts = std::max(frame.pts, m_lastTime + 1); // encoders and containers take no two at one time
    m_lastTime = frame.pts;
    frame.pict_type = AV_PICTURE_TYPE_NONE; // otherwise encoders follow it
}

bool ClipReader::isInRange(int64_t time, const AVStream& stream) {
    const TimeRange& range = m_settings.range;
    if (range.isWhole())
        return true;
    if (range.to <= INT64_MAX - m_start &&
        av_compare_ts(time, stream.time_base, m_start + range.to, kMicrosecond) >= 0) {
        m_ended.insert(stream.index);
        return false;
    }
    // What lies before the beginning, as the lead-in of AAC does, belongs to it.
    return range.from == 0 || av_compare_ts(time, stream.time_base, m_start + range.from, kMicrosecond) >= 0;
}

bool ClipReader::isRangeOver() const {
    const auto hasEnded = [this](const AVStream* stream) {
        return !isContinuous(*stream) || m_ended.count(stream->index) != 0;
    };
    return !m_ended.empty() &&
           std::all_of(m_container->streams, m_container->streams + m_container->nb_streams, hasEnded);
}

void ClipReader::noteDamage() {
    ++m_damaged;
    if (!m_settings.strict)
        return;
    const double time =
        static_cast<double>(m_nextTime) * av_q2d(m_video->time_base) - static_cast<double>(m_start) / kSecond;
    throw Failure(ExitCode::badInput, "is damaged near " + numberText(std::max(0.0, time), 2) + " s");
}

} // namespace ze::tool
