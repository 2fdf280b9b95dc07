#include "tool/video/clip_demuxer.h"

#include "tool/files/interruption.h"
#include "tool/number_text.h"
#include "tool/video/dictionary.h"
#include "tool/video/ffmpeg_errors.h"
#include "tool/video/time_range.h"

#include <algorithm>
#include <cerrno>
#include <utility>

extern "C" {
#include <libavutil/imgutils.h>
}

namespace ze::tool {
namespace {

constexpr int kMostReadAhead = 2000;     // packets
constexpr char kFrameMark[] = "FRAME\n"; // before each frame of YUV4MPEG2

int refuseOtherFiles(AVFormatContext*, AVIOContext**, const char*, int, AVDictionary**) {
    return AVERROR(EPERM);
}

int isInterrupted(void*) {
    return waitingSignal() != 0 ? 1 : 0;
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

bool isDefault(const AVStream& stream) {
    return (stream.disposition & AV_DISPOSITION_DEFAULT) != 0;
}

int64_t endOf(const AVStream& stream, int64_t start, int64_t length) {
    return av_rescale_q(av_sat_add64(start, length), stream.time_base, kMicrosecond);
}

double seconds(int64_t microseconds) {
    return static_cast<double>(microseconds) / AV_TIME_BASE;
}

} // namespace

void checkSignal() {
    if (waitingSignal() != 0)
        throw Failure(ExitCode::failed, "interrupted");
}

void failToRead(const std::string& reason) {
    checkSignal();
    throw Failure(ExitCode::badInput, "cannot be read: " + reason);
}

ClipDemuxer::ClipDemuxer(const std::string& path, const std::optional<RawLayout>& raw, bool isStrict)
    : m_raw(raw), m_isStrict(isStrict), m_source(path) {
    catchFfmpegMessages();
    open();
    if (hasFreeClock())
        describeSound();
}

void ClipDemuxer::open() {
    AVFormatContext* container = avformat_alloc_context();
    if (!container)
        throw std::bad_alloc();
    container->pb = m_source.context();
    container->io_open = refuseOtherFiles;
    container->interrupt_callback.callback = isInterrupted;
    Dictionary options;
    options.set("protocol_whitelist", "none"); // inputs that name others, in files or on a network
    options.set("scan_all_pmts", "1");         // transport streams: streams that begin later, too
    const AVInputFormat* demuxer = nullptr;
    if (const auto& raw = m_raw) {
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
    findVideo();
    m_clock.emplace(*m_container, m_video->index);
    m_start = m_container->start_time == AV_NOPTS_VALUE ? 0 : m_container->start_time;
    m_total = m_container->duration == AV_NOPTS_VALUE ? 0 : m_container->duration;
    m_expectedEnd = expectedEnd();
}

void ClipDemuxer::findVideo() {
    m_video = nullptr;
    for (unsigned i = 0; i < m_container->nb_streams; ++i) {
        AVStream* const stream = m_container->streams[i];
        if (isMovingPicture(*stream) && (!m_video || (isDefault(*stream) && !isDefault(*m_video))))
            m_video = stream;
    }
    if (!m_video)
        throw Failure(ExitCode::badInput, "has no moving pictures");
}

void ClipDemuxer::seek(int64_t time) {
    const int64_t target = av_rescale_q(time, kMicrosecond, m_video->time_base);
    if (isPipe() || hasFreeClock() || time <= m_start || !hasFrameBefore(target))
        return;
    m_isSought = true;
    if (avformat_seek_file(m_container.get(), m_video->index, INT64_MIN, target, target, 0) >= 0)
        return;
    m_container.reset();
    avio_seek(m_source.context(), 0, SEEK_SET);
    open();
}

// Otherwise demuxers go to a later one, past the sound that is to be copied.
bool ClipDemuxer::hasFrameBefore(int64_t time) const {
    return isYuv4Mpeg(*m_container) ||
           avformat_index_get_entry_from_timestamp(m_video, time, AVSEEK_FLAG_BACKWARD) != nullptr;
}

FfmpegPtr<AVPacket> ClipDemuxer::next() {
    FfmpegPtr<AVPacket> packet = m_clock->take();
    while (!packet && read())
        packet = m_clock->take();
    return packet;
}

// Reads until there is a packet of each stream of sound that only its packets describe.
void ClipDemuxer::describeSound() {
    for (unsigned i = 0; i < m_container->nb_streams; ++i)
        if (AdtsFilter::isFor(*m_container->streams[i]))
            m_filters.emplace(static_cast<int>(i), *m_container->streams[i]);
    const auto isDone = [](const auto& entry) { return entry.second.isDone(); };
    for (int i = 0; i < kMostReadAhead && !std::all_of(m_filters.begin(), m_filters.end(), isDone); ++i)
        read();
    std::erase_if(m_filters, [&](const auto& entry) { return !isDone(entry); }); // left to the muxer
}

// Hands the next packet to the clock, or the end. False after that.
bool ClipDemuxer::read() {
    if (m_isAtEnd)
        return false;
    FfmpegPtr<AVPacket> packet = owned(av_packet_alloc());
    const int error = av_read_frame(m_container.get(), packet.get());
    if (error < 0) {
        m_isAtEnd = true;
        checkEnd(error);
        m_clock->finish();
        return true;
    }
    if (packet->flags & AV_PKT_FLAG_CORRUPT)
        checkPacket(*packet);
    m_packetSize = packet->size;
    m_packetTime = packet->pts;
    m_packetEnd = packet->pos + m_packetSize;
    const int64_t time = packet->pts == AV_NOPTS_VALUE ? packet->dts : packet->pts;
    if (time != AV_NOPTS_VALUE)
        m_end = std::max(m_end, endOf(*m_container->streams[packet->stream_index], time, packet->duration));
    const auto filter = m_filters.find(packet->stream_index);
    if (filter == m_filters.end() || filter->second.filter(*packet))
        m_clock->add(std::move(packet));
    else
        noteDamage();
    if (m_clock->hasJumped())
        m_total = estimatedTotal();
    return true;
}

// Raw frames must be whole; anything else may be of use in parts.
void ClipDemuxer::checkPacket(const AVPacket& packet) {
    checkSignal(); // which cuts a frame short, too
    if (const auto& raw = m_raw)
        failAtShortFrame(packet.pts, packet.size,
                         av_image_get_buffer_size(raw->layout, raw->width, raw->height, 1));
    noteDamage();
}

void ClipDemuxer::checkEnd(int error) {
    if (!m_source.failure().empty())
        failToRead(m_source.failure());
    checkSignal();
    const int64_t left = m_source.position() - m_packetEnd;
    if (isYuv4Mpeg(*m_container) && left > 0) {
        if (m_packetTime != AV_NOPTS_VALUE)
            failAtShortFrame(m_packetTime + 1, left - static_cast<int64_t>(sizeof kFrameMark - 1),
                             m_packetSize);
        if (!m_isSought)
            throw Failure(ExitCode::badInput, "has no whole frame");
    }
    if (error != AVERROR_EOF)
        noteDamage();
    else if (!hasFreeClock() && m_container->duration_estimation_method != AVFMT_DURATION_FROM_BITRATE)
        checkLength();
}

// Demuxers find nothing wrong with most kinds of files that were cut off.
void ClipDemuxer::checkLength() {
    const int64_t missing = av_sat_sub64(m_expectedEnd, m_end);
    if (m_end == INT64_MIN || missing <= AV_TIME_BASE)
        return;
    m_missing = missing;
    if (m_isStrict)
        throw Failure(ExitCode::badInput, "ends " + numberText(seconds(missing), 2) + " s early");
}

// By what the file says; FFmpeg changes that while packets are read. In some kinds of files a duration counts
// from 0, so that a start behind that is not added.
int64_t ClipDemuxer::expectedEnd() const {
    int64_t end = INT64_MIN;
    for (unsigned i = 0; i < m_container->nb_streams; ++i) {
        const AVStream& stream = *m_container->streams[i];
        if (stream.discard != AVDISCARD_ALL && stream.duration > 0 && stream.start_time != AV_NOPTS_VALUE)
            end = std::max(end, endOf(stream, std::min<int64_t>(0, stream.start_time), stream.duration));
    }
    return end == INT64_MIN && m_total > 0 ? std::min<int64_t>(0, m_start) + m_total : end;
}

void ClipDemuxer::noteDamage() {
    ++m_damaged;
    if (m_isStrict)
        throw Failure(ExitCode::badInput,
                      "is damaged near " +
                          numberText(seconds(std::max<int64_t>(0, m_clock->time() - m_start)), 2) + " s");
}

int64_t ClipDemuxer::estimatedTotal() const {
    const int64_t size = avio_size(m_container->pb);
    const int64_t done = avio_tell(m_container->pb);
    return size > 0 && done > 0 ? av_rescale(std::max<int64_t>(0, m_clock->time() - m_start), size, done) : 0;
}

} // namespace ze::tool
