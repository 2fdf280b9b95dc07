// A clip that is being written.

#pragma once

#include "tool/video/clip_sink.h"
#include "tool/video/stream_copy.h"
#include "tool/video/video_encoder.h"

#include <memory>

namespace ze::tool {

/// Encodes frames and writes them with the other streams of a clip. One thread at a time, and all failures
/// name the file. What `ClipSink` says about files and pipes holds here, too.
class ClipOutput {
public:
    /// Sets up the file and writes its head. `from` has to live as long as this. Throws `Failure`: `usage`
    /// for what cannot be in such a file, `failed` for the rest.
    ClipOutput(const std::string& path, const ClipContainer& container, const EncoderSettings& settings,
               const VideoFormat& format, const ClipReader& from);

    /// Frames of the format, or packets of `from`. Throws `Failure` (`failed`) or `ReaderGone`.
    /// False for a packet so damaged that there can be none such in the file; it is left out.
    bool write(const ClipItem& item);

    /// Writes what is still on its way, and the end of the file. The same failures.
    void finish();

    /// Puts the finished file in its place. The same failures.
    void commit() { m_sink.commit(); }

private:
    struct ContainerDeleter {
        void operator()(AVFormatContext* container) const { avformat_free_context(container); }
    };

    void open(const ClipContainer& container, const EncoderSettings& settings, const VideoFormat& format,
              const ClipReader& from);
    void addVideo(const ClipContainer& container, const VideoFormat& format);
    void writeHeader();
    void writePackets();
    void require(int result);

    std::string m_path;
    ClipSink m_sink;
    std::unique_ptr<AVFormatContext, ContainerDeleter> m_container;
    std::optional<StreamCopy> m_copy;
    std::optional<VideoEncoder> m_encoder;
    bool m_isTimeless = false; ///< Frames follow each other at one rate.
    int64_t m_count = 0;       ///< Of packets with frames.
};

} // namespace ze::tool
