// Clocks that start anew in the middle of a clip, as in transport streams that were joined.

#pragma once

#include "tool/pictures/ffmpeg.h"

#include <deque>
#include <map>
#include <vector>

namespace ze::tool {

/// Whether packets of `stream` follow each other without long pauses: sound and moving pictures.
bool isContinuous(const AVStream& stream);

/// Carries the times of packets on where the clock of a clip jumps: what comes after a jump begins where the
/// video ended, or later where another stream would lie over its own end. All streams move alike, though they
/// get to the jump one after the other: those that are there first wait for the rest, while two seconds pass
/// at most. A packet whose time alone is wrong moves nothing but itself, and a stream that steps back
/// alone stays beside the others.
///
/// A jump is a step back in a stream, or one of more than ten seconds ahead of all streams. Where the
/// container's clock cannot jump (no `AVFMT_TS_DISCONT`), times stay as they are. One thread at a time.
class ClipClock {
public:
    /// Of the packets of `container`, which has to live as long as this; `video` is the stream whose frames
    /// keep their distance.
    ClipClock(const AVFormatContext& container, int video);

    /// Takes the next packet as the demuxer gives it.
    void add(FfmpegPtr<AVPacket> packet);
    /// There are no more: none waits any longer.
    void finish();
    /// The next packet, with its times carried on; null until more have been added.
    FfmpegPtr<AVPacket> take();

    /// Whether there has been a jump.
    bool hasJumped() const { return m_parts.size() > 1; }
    /// The carried time of the last packet that does not wait, in microseconds.
    int64_t time() const { return m_time; }

private:
    /// What lies between two jumps. All times here and below are in microseconds.
    struct Part {
        int64_t offset = 0; ///< Carries its times on.
        int64_t end = 0;    ///< By its own clock.
    };

    /// Of a packet.
    struct Times {
        int64_t decoded;
        int64_t shown;
        int64_t length;
        bool isKey;
    };

    /// Where a stream is, by the clock of its part.
    struct Track {
        size_t part = 0;
        size_t partBefore = 0;
        int64_t decoded = 0; ///< The last packet.
        int64_t next = 0;    ///< When the next one is due.
        int64_t end = 0;     ///< Of what is shown.
        int64_t offset = 0;  ///< That would carry it on from the part before without a gap.
    };

    Times timesOf(const AVPacket& packet) const;
    void mend(AVPacket& packet) const;
    void follow(int stream, const Times& times);
    bool goesOn(const Track& track, size_t part, const Times& times) const;
    static int64_t distance(const Track& track, const Times& times);
    void jump(Track& track, const Times& times);
    void beginPart(const Track& track, const Times& times);
    static void enter(Track& track, size_t part);
    bool isLast(const Track& track) const { return track.part == m_parts.size() - 1; }
    void endWait();
    int64_t nextOffset() const;
    size_t usualPart() const;
    size_t nearestPart(const AVPacket& packet) const;
    void giveOut(FfmpegPtr<AVPacket> packet, size_t part);

    const AVFormatContext& m_container;
    int m_video;
    std::vector<Part> m_parts{1};
    std::map<int, Track> m_tracks; ///< Of continuous streams, by number.
    bool m_isWaiting = false;      ///< For streams to get to the last part, whose offset is not known yet.
    int64_t m_waitEnd = 0;         ///< By the clock of the last part.
    int64_t m_before = 0;          ///< The offset of the part before.
    int64_t m_jump = 0;            ///< Carried time of the jump.
    std::deque<FfmpegPtr<AVPacket>> m_waiting;
    std::deque<FfmpegPtr<AVPacket>> m_ready;
    int64_t m_time = 0;
};

} // namespace ze::tool
