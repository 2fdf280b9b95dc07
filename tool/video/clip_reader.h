// Clips taken apart: decoded frames of one stream, packets of the others.

#pragma once

#include "tool/video/clip_clock.h"
#include "tool/video/clip_item.h"
#include "tool/video/clip_source.h"
#include "tool/video/time_range.h"

#include <atomic>
#include <memory>
#include <optional>
#include <set>
#include <string>

namespace ze::tool {

/// Frames that follow each other without anything between or around them.
struct RawLayout {
    AVPixelFormat layout = AV_PIX_FMT_NV12; ///< Or NV21.
    int width = 0;
    int height = 0;
    std::string rate = "30"; ///< Frames a second, as in "25" or "30000/1001".
};

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
    const AVFormatContext& container() const { return *m_container; }
    /// The stream that is decoded.
    AVStream& video() const { return *m_video; }
    /// Usual frames a second; 0/1 where unknown.
    AVRational frameRate() const;
    /// What `next` subtracts from times, in microseconds.
    int64_t shift() const { return m_shift; }
    /// Where a range ends, counted from where it begins, in microseconds.
    int64_t end() const { return m_settings.range.to - m_settings.range.from; }
    /// Of what `next` returns, in microseconds; 0 where unknown. An estimate, from the size of the file, once
    /// the clock has jumped. Any thread may call.
    int64_t duration() const;

    /// Whether what has been read is gone.
    bool isPipe() const { return !m_source.isSeekable(); }

    /// How many packets and frames could not be read or decoded so far. Any thread may call.
    int damaged() const { return m_damaged; }

private:
    struct ContainerCloser {
        void operator()(AVFormatContext* container) const { avformat_close_input(&container); }
    };

    void begin();
    void open();
    void findVideo();
    void openDecoder();
    void startRange();
    bool hasFrameBefore(int64_t time) const;
    int64_t estimatedTotal() const;

    bool readPacket();
    bool demux();
    void checkPacket(const AVPacket& packet);
    void checkEnd(int error);
    void decode(const AVPacket* packet);
    bool isToBeCopied();
    FfmpegPtr<AVFrame> receiveFrame();
    void setTimes(AVFrame& frame, int64_t time);
    bool isInRange(int64_t time, const AVStream& stream);
    bool isRangeOver() const;
    void noteDamage();

    ReaderSettings m_settings;
    ClipSource m_source;
    std::unique_ptr<AVFormatContext, ContainerCloser> m_container;
    AVStream* m_video = nullptr;
    FfmpegPtr<AVCodecContext> m_decoder;
    std::optional<ClipClock> m_clock;
    FfmpegPtr<AVPacket> m_packet;
    int64_t m_start = 0;                   ///< Where the clip begins, in microseconds.
    int64_t m_shift = 0;                   ///< In microseconds.
    int64_t m_lastTime = AV_NOPTS_VALUE;   ///< Of the frame before.
    int64_t m_nextTime = 0;                ///< Where a frame begins that does not say it.
    int64_t m_end = 0;                     ///< In bytes, of the last packet.
    int m_packetSize = 0;                  ///< In bytes, of the last packet.
    int64_t m_packetTime = AV_NOPTS_VALUE; ///< Of the last packet.
    std::set<int> m_ended;                 ///< Streams that have left the range.
    bool m_isDemuxed = false;              ///< There are no more packets in the file.
    bool m_isAtEnd = false;
    std::atomic<int64_t> m_total = 0; ///< Length of the whole clip, in microseconds; 0 where unknown.
    std::atomic<int> m_damaged = 0;
};

} // namespace ze::tool
