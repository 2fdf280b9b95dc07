// AAC of broadcasts, brought into the form that it has in files.

#pragma once

#include "tool/pictures/ffmpeg.h"

namespace ze::tool {

/// Takes the headers that broadcasts put before each packet of AAC off, and says once for the whole stream
/// what they say. Muxers do the same, but not before the head of the file, which pipes need then. One thread
/// at a time.
class AdtsFilter {
public:
    /// Whether `stream` may have such headers, and nothing else that describes it.
    static bool isFor(const AVStream& stream);

    /// For the packets of `stream`, which has to live as long as this. Throws `std::bad_alloc`.
    explicit AdtsFilter(AVStream& stream);

    /// Changes `packet`, and describes the stream by the first. False for one that is damaged.
    bool filter(AVPacket& packet);

    /// Whether the stream is described.
    bool isDone() const { return m_stream.codecpar->extradata_size > 0; }

private:
    void describe(AVPacket& packet);

    AVStream& m_stream;
    FfmpegPtr<AVBSFContext> m_filter;
};

} // namespace ze::tool
