// Clips taken apart: packets of all streams, with times that go on.

#pragma once

#include "tool/video/adts_filter.h"
#include "tool/video/clip_clock.h"
#include "tool/video/clip_source.h"

#include <atomic>
#include <map>
#include <memory>
#include <optional>
#include <string>

namespace ze::tool {

/// Frames that follow each other without anything between or around them.
struct RawLayout {
    AVPixelFormat layout = AV_PIX_FMT_NV12; ///< Or NV21.
    int width = 0;
    int height = 0;
    std::string rate = "30"; ///< Frames a second, as in "25" or "30000/1001".
};

/// Throws `Failure` that says so when a signal waits to end the program.
void checkSignal();

/// Throws `Failure` (`badInput`) that begins with "cannot be read: ", or what `checkSignal` throws.
[[noreturn]] void failToRead(const std::string& reason);

/// Reads the packets of one clip. One thread at a time, where nothing else is said. Its failures name no file
/// and are `badInput`, but for "interrupted".
class ClipDemuxer {
public:
    /// Opens `path`, "-" for standard input; `raw` is none where the file itself says what it is. With
    /// `isStrict` damage is a failure. Throws `Failure` where there is no moving picture in it.
    ClipDemuxer(const std::string& path, const std::optional<RawLayout>& raw, bool isStrict);

    /// Goes on at a key frame of the video at or before `time` where it can, which is in microseconds by the
    /// clock of the clip. To be called before `next` is.
    void seek(int64_t time);

    /// The next packet, with times as `ClipClock` carries them on; null at the end. Throws `Failure` when the
    /// input cannot be read, when the last frame of raw frames or of YUV4MPEG2 is short, for damage where
    /// that is strict, and when a signal waits to end the program.
    FfmpegPtr<AVPacket> next();

    /// What the file says about itself and its streams.
    const AVFormatContext& container() const { return *m_container; }
    /// The first moving picture.
    AVStream& video() const { return *m_video; }
    /// Usual frames a second; 0/1 where unknown.
    AVRational frameRate() const { return av_guess_frame_rate(m_container.get(), m_video, nullptr); }
    /// Whether its clock begins anywhere and may jump.
    bool hasFreeClock() const { return (m_container->iformat->flags & AVFMT_TS_DISCONT) != 0; }
    /// Whether what has been read is gone.
    bool isPipe() const { return !m_source.isSeekable(); }

    /// Where it begins, in microseconds.
    int64_t start() const { return m_start; }
    /// Its length in microseconds; 0 where unknown. An estimate, from the size of the file, once the clock
    /// has jumped. Any thread may call.
    int64_t total() const { return m_total; }

    /// Counts a packet or frame that could not be read or decoded. Throws `Failure` where that is strict.
    void noteDamage();
    /// How many there were so far. Any thread may call.
    int damaged() const { return m_damaged; }
    /// By how many microseconds it ended earlier than the file says, as it does when the file was cut off; 0
    /// when it did not by more than a second. At the end.
    int64_t missing() const { return m_missing; }

private:
    struct ContainerCloser {
        void operator()(AVFormatContext* container) const { avformat_close_input(&container); }
    };

    void open();
    void findVideo();
    bool hasFrameBefore(int64_t time) const;
    void describeSound();
    bool read();
    void checkPacket(const AVPacket& packet);
    void checkEnd(int error);
    void checkLength();
    int64_t expectedEnd() const;
    int64_t estimatedTotal() const;

    std::optional<RawLayout> m_raw;
    bool m_isStrict;
    ClipSource m_source;
    std::unique_ptr<AVFormatContext, ContainerCloser> m_container;
    AVStream* m_video = nullptr;
    std::optional<ClipClock> m_clock;
    std::map<int, AdtsFilter> m_filters;   ///< By the number of their stream.
    int m_packetSize = 0;                  ///< In bytes, of the last packet, like the next two.
    int64_t m_packetTime = AV_NOPTS_VALUE; ///< In units of its stream.
    int64_t m_packetEnd = 0;               ///< In bytes of the file.
    int64_t m_start = 0;                   ///< In microseconds, like the next two.
    int64_t m_end = INT64_MIN;             ///< Of all packets so far.
    int64_t m_expectedEnd = 0;
    bool m_isSought = false;
    bool m_isAtEnd = false;
    int64_t m_missing = 0;
    std::atomic<int64_t> m_total = 0;
    std::atomic<int> m_damaged = 0;
};

} // namespace ze::tool
