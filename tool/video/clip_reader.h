// Clips taken apart: decoded frames of one stream, packets of the others.

#pragma once

#include "tool/video/clip_demuxer.h"
#include "tool/video/clip_item.h"
#include "tool/video/time_range.h"

#include <optional>
#include <set>
#include <string>

namespace ze::tool {

/// How a clip is read.
struct ReaderSettings {
    std::optional<RawLayout> raw; ///< None where the file itself says what it is.
    TimeRange range;
    bool strict = false; ///< What is damaged ends the run and is not passed over.
};

/// Reads one clip. One thread at a time. Its failures name no file and are `badInput`, but for "interrupted".
class ClipReader {
public:
    /// Opens `path`, "-" for standard input. Throws `Failure` where there is no moving picture in it.
    ClipReader(const std::string& path, const ReaderSettings& settings);

    /// The next frame, with its time in `pts` and its length in `pkt_duration`, or the next packet of another
    /// stream; nothing at the end. Times begin at 0 where a range is cut out and in transport streams, whose
    /// clocks start anywhere and are carried on where they jump (`ClipClock`); in other files they stay as
    /// they are.
    ///
    /// Throws `Failure` when the input cannot be read, when the last frame of raw frames or of YUV4MPEG2 is
    /// short, for damage with `strict`, and when a signal waits to end the program.
    std::optional<ClipItem> next();

    /// What the file says about itself and its streams.
    const AVFormatContext& container() const { return m_demuxer.container(); }
    /// The stream that is decoded.
    AVStream& video() const { return m_demuxer.video(); }
    /// Usual frames a second; 0/1 where unknown.
    AVRational frameRate() const { return m_demuxer.frameRate(); }
    /// What `next` subtracts from times, in microseconds.
    int64_t shift() const { return m_shift; }
    /// Where a range ends, counted from where it begins, in microseconds.
    int64_t end() const { return m_range.to - m_range.from; }
    /// Of what `next` returns, in microseconds; 0 where unknown. An estimate, from the size of the file, once
    /// the clock has jumped. Any thread may call.
    int64_t duration() const;

    /// Whether what has been read is gone.
    bool isPipe() const { return m_demuxer.isPipe(); }

    /// How many packets and frames could not be read or decoded so far. Any thread may call.
    int damaged() const { return m_demuxer.damaged(); }
    /// By how many microseconds the file ended early (`ClipDemuxer::missing`). At the end.
    int64_t missing() const { return m_demuxer.missing(); }

private:
    void openDecoder();
    void decode(const AVPacket* packet);
    bool isToBeCopied();
    FfmpegPtr<AVFrame> receiveFrame();
    void setTimes(AVFrame& frame, int64_t time);
    bool isInRange(int64_t time, const AVStream& stream);
    bool isRangeOver() const;

    TimeRange m_range;
    ClipDemuxer m_demuxer;
    FfmpegPtr<AVCodecContext> m_decoder;
    FfmpegPtr<AVPacket> m_packet;
    int64_t m_start;                     ///< Where the clip begins, in microseconds.
    int64_t m_shift = 0;                 ///< In microseconds.
    int64_t m_lastTime = AV_NOPTS_VALUE; ///< Of the frame before.
    int64_t m_nextTime = 0;              ///< Where a frame begins that does not say it.
    std::set<int> m_ended;               ///< Streams that have left the range.
    bool m_isAtEnd = false;
};

} // namespace ze::tool
