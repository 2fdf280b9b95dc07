#include "tool/video/clip_clock.h"

#include "tool/video/time_range.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace ze::tool {
namespace {

constexpr int64_t kStepBack = AV_TIME_BASE / 10;  // less is disorder
constexpr int64_t kStepAhead = 10 * AV_TIME_BASE; // less is a pause
constexpr int64_t kPatience = 2 * AV_TIME_BASE;
constexpr size_t kMostWaiting = 4096;           // packets, where times do not move
constexpr int64_t kOverlap = AV_TIME_BASE / 10; // of other streams, so that frames keep their distance
constexpr int64_t kFarthest = int64_t{1} << 56; // beyond are no times, and sums could overflow

int64_t microseconds(int64_t time, const AVStream& stream) {
    const int64_t converted =
        time == AV_NOPTS_VALUE ? time : av_rescale_q(time, stream.time_base, kMicrosecond);
    return converted > -kFarthest && converted < kFarthest ? converted : AV_NOPTS_VALUE;
}

void carry(int64_t& time, int64_t offset) {
    if (time != AV_NOPTS_VALUE)
        time = av_sat_add64(time, offset);
}

} // namespace

bool isContinuous(const AVStream& stream) {
    const AVMediaType type = stream.codecpar->codec_type;
    return (type == AVMEDIA_TYPE_VIDEO || type == AVMEDIA_TYPE_AUDIO) && stream.discard != AVDISCARD_ALL &&
           (stream.disposition & AV_DISPOSITION_ATTACHED_PIC) == 0;
}

ClipClock::ClipClock(const AVFormatContext& container, int video) : m_container(container), m_video(video) {}

void ClipClock::add(FfmpegPtr<AVPacket> packet) {
    const int index = packet->stream_index;
    const bool canJump = (m_container.iformat->flags & AVFMT_TS_DISCONT) != 0;
    if (canJump)
        mend(*packet);
    const Times times = timesOf(*packet);
    if (canJump && isContinuous(*m_container.streams[index]) && times.decoded != AV_NOPTS_VALUE)
        follow(index, times);
    const auto track = m_tracks.find(index);
    const bool isKnown = track != m_tracks.end();
    if (isKnown)
        track->second.next += times.length; // also where only some packets have times
    if (m_isWaiting && (!isKnown || isLast(track->second)))
        m_waiting.push_back(std::move(packet));
    else
        giveOut(std::move(packet), isKnown ? track->second.part : usualPart());
    const auto isThere = [this](const auto& entry) { return isLast(entry.second); };
    if (m_parts.back().end > m_waitEnd || m_waiting.size() > kMostWaiting ||
        std::all_of(m_tracks.begin(), m_tracks.end(), isThere))
        endWait();
}

void ClipClock::finish() {
    endWait();
}

FfmpegPtr<AVPacket> ClipClock::take() {
    if (m_ready.empty())
        return nullptr;
    FfmpegPtr<AVPacket> packet = std::move(m_ready.front());
    m_ready.pop_front();
    return packet;
}

ClipClock::Times ClipClock::timesOf(const AVPacket& packet) const {
    const AVStream& stream = *m_container.streams[packet.stream_index];
    const int64_t decoded = microseconds(packet.dts, stream);
    const int64_t shown = microseconds(packet.pts, stream);
    const int64_t length = std::clamp<int64_t>(microseconds(packet.duration, stream), 0, kStepAhead);
    return {decoded == AV_NOPTS_VALUE ? shown : decoded, shown == AV_NOPTS_VALUE ? decoded : shown, length,
            (packet.flags & AV_PKT_FLAG_KEY) != 0};
}

// Where the two times of a packet are far apart, one is damaged: the one that does not go on.
void ClipClock::mend(AVPacket& packet) const {
    Times times = timesOf(packet);
    if (times.decoded == AV_NOPTS_VALUE || std::abs(times.shown - times.decoded) <= kStepAhead)
        return;
    const auto track = m_tracks.find(packet.stream_index);
    times.decoded = times.shown;
    if (track != m_tracks.end() && goesOn(track->second, track->second.part, times))
        packet.dts = packet.pts;
    else
        packet.pts = packet.dts;
}

void ClipClock::follow(int stream, const Times& times) {
    const bool isFirst = m_tracks.count(stream) == 0;
    if (isFirst && m_isWaiting)
        return; // it can begin once that is over
    Track& track = m_tracks[stream];
    if (isFirst)
        enter(track, usualPart());
    else if (!goesOn(track, track.part, times))
        jump(track, times);
    track.decoded = track.next = times.decoded;
    track.end = std::max(track.end, times.shown + times.length);
    m_parts[track.part].end = std::max(m_parts[track.part].end, track.end);
}

// Whether `times` can be the next of `track`, if they are by the clock of `part`.
bool ClipClock::goesOn(const Track& track, size_t part, const Times& times) const {
    const int64_t shift = m_parts[track.part].offset - m_parts[part].offset;
    return times.decoded >= track.decoded + shift - kStepBack &&
           times.decoded <= std::max(track.end + shift, m_parts[part].end) + kStepAhead;
}

// By how much `times` are behind the next ones of `track`. Between key frames, what is decoded later may be
// shown earlier.
int64_t ClipClock::distance(const Track& track, const Times& times) {
    const int64_t distance = track.next - times.decoded;
    return times.isKey ? std::max(distance, track.end - times.shown) : distance;
}

void ClipClock::jump(Track& track, const Times& times) {
    if (isLast(track))
        endWait(); // a second jump, before all others had the first
    for (const size_t part : {track.partBefore, usualPart(), m_parts.size() - 1}) {
        const bool hasOffset = !m_isWaiting || part < m_parts.size() - 1;
        if (hasOffset && goesOn(track, part, times)) {
            enter(track, part);
            return;
        }
    }
    if (!m_isWaiting || std::abs(times.decoded - m_parts.back().end) > kStepAhead)
        beginPart(track, times);
    track.offset = m_parts[track.part].offset + distance(track, times);
    enter(track, m_parts.size() - 1);
}

void ClipClock::beginPart(const Track& track, const Times& times) {
    endWait();
    m_before = m_parts[track.part].offset;
    m_jump = m_before + m_parts[track.part].end;
    m_parts.push_back({0, times.decoded});
    m_waitEnd = times.decoded + kPatience;
    m_isWaiting = true;
}

void ClipClock::enter(Track& track, size_t part) {
    track.partBefore = std::exchange(track.part, part);
    track.end = -kFarthest;
}

void ClipClock::endWait() {
    if (!std::exchange(m_isWaiting, false))
        return;
    m_parts.back().offset = nextOffset();
    for (FfmpegPtr<AVPacket>& packet : std::exchange(m_waiting, {})) {
        const bool isKnown = m_tracks.count(packet->stream_index) != 0;
        const size_t part = isKnown ? m_parts.size() - 1 : nearestPart(*packet);
        giveOut(std::move(packet), part);
    }
}

int64_t ClipClock::nextOffset() const {
    int64_t offset = INT64_MIN;
    bool isClocks = true;
    for (const auto& [index, track] : m_tracks)
        if (isLast(track))
            offset = std::max(offset, track.offset);
        else if (m_parts[track.part].offset + track.end > m_jump + kPatience / 2)
            isClocks = false;
    if (!isClocks && std::abs(offset - m_before) < kStepAhead)
        return m_before; // other streams went on where this one jumped, and it stays beside them
    const auto video = m_tracks.find(m_video);
    const bool isVideoThere = video != m_tracks.end() && isLast(video->second);
    return isVideoThere && offset - video->second.offset <= kOverlap ? video->second.offset : offset;
}

// For streams of which it cannot be told by themselves.
size_t ClipClock::usualPart() const {
    const auto video = m_tracks.find(m_video);
    return video == m_tracks.end() ? m_parts.size() - 1 : video->second.part;
}

// The same just after a jump: the last part or the one before.
size_t ClipClock::nearestPart(const AVPacket& packet) const {
    const int64_t time = timesOf(packet).decoded;
    const size_t last = m_parts.size() - 1;
    const auto distance = [&](size_t part) { return std::abs(time - m_parts[part].end); };
    return time == AV_NOPTS_VALUE || distance(last) <= distance(last - 1) ? last : last - 1;
}

void ClipClock::giveOut(FfmpegPtr<AVPacket> packet, size_t part) {
    const AVRational unit = m_container.streams[packet->stream_index]->time_base;
    const int64_t offset = av_rescale_q(m_parts[part].offset, kMicrosecond, unit);
    carry(packet->dts, offset);
    carry(packet->pts, offset);
    const int64_t time = timesOf(*packet).decoded;
    if (time != AV_NOPTS_VALUE)
        m_time = time;
    m_ready.push_back(std::move(packet));
}

} // namespace ze::tool
