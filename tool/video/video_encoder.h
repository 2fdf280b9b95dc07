// Frames to packets.

#pragma once

#include "tool/pictures/ffmpeg.h"
#include "tool/video/clip_container.h"
#include "tool/video/video_format.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace ze::tool {

/// What the command line says about encoding.
struct EncoderSettings {
    std::string encoder;    ///< FFmpeg's name; empty for the container's.
    std::optional<int> crf; ///< None for 18 with H.264, 24 with VP9, and the encoder's own with others.
    std::vector<std::string> options; ///< "KEY=VALUE", handed to FFmpeg.
    bool lossless = false;            ///< FFV1, where the container does not lose anything anyway.
};

/// One encoder of FFmpeg. One thread at a time.
class VideoEncoder {
public:
    /// Throws `Failure`: `usage` for an encoder, an option or a size that cannot be, `failed` for what else
    /// FFmpeg refuses. `needsGlobalHeader` is what the muxer says.
    VideoEncoder(const EncoderSettings& settings, const ClipContainer& container, const VideoFormat& format,
                 bool needsGlobalHeader);

    /// Takes a frame of the format, with its times; null ends the stream. Then all packets have to be taken.
    /// Throws `Failure` (`failed`).
    void send(const AVFrame* frame);
    /// The next packet, in the time base of the format, with its length; null when a frame is needed first.
    FfmpegPtr<AVPacket> receive();

    const AVCodecContext& context() const { return *m_context; }

private:
    void describe(const VideoFormat& format);
    void open(const EncoderSettings& settings);
    FfmpegPtr<AVFrame> repacked(const AVFrame& frame);

    FfmpegPtr<AVCodecContext> m_context;
    FfmpegPtr<SwsContext> m_repacker;       ///< Where the encoder takes planes for itself.
    std::map<int64_t, int64_t> m_durations; ///< By time, of the frames that have not come out.
};

} // namespace ze::tool
