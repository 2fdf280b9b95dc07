// What a clip holds beside the frames that are rendered: audio, subtitles, chapters, metadata.

#pragma once

#include "tool/video/clip_container.h"
#include "tool/video/clip_reader.h"

#include <map>
#include <vector>

namespace ze::tool {

/// The numbers of the streams of `from` that go into `container` as they are, in order. Streams that no
/// container can hold are left out, and so are all where it holds frames alone; a line on standard error,
/// which begins with `name`, says so. Throws `Failure` (`usage`) when `container` cannot hold one of the
/// others; the message names one that can.
std::vector<int> streamsToCopy(const std::string& name, const ClipReader& from,
                               const ClipContainer& container);

/// Copies into a file that is being set up. One thread at a time.
class StreamCopy {
public:
    /// Adds to `to`: a stream for the rendered frames, which `video` returns; those of `streams`, in the
    /// order that they all have in `from`; chapters and metadata, with times as `from` shifts them. Both have
    /// to live as long as this. Throws `std::bad_alloc`.
    StreamCopy(const ClipReader& from, const std::vector<int>& streams, AVFormatContext& to);

    AVStream& video() const { return *m_video; }

    /// Makes a packet of the input one of the output. False for those of streams that are not copied. Once
    /// the header is written.
    bool adapt(AVPacket& packet);

private:
    AVStream& add(const AVStream& from);
    AVStream& addRendered(const AVStream& from);
    AVStream& addCopied(const AVStream& from);
    void attachCover(const AVStream& from);
    void copyChapters(const ClipReader& reader);

    const AVFormatContext& m_from;
    AVFormatContext& m_to;
    AVStream* m_video = nullptr;
    std::map<int, AVStream*> m_streams; ///< By the number in the input.
    std::map<int, int64_t> m_lastTimes; ///< Of decoding, by the number in the output.
};

} // namespace ze::tool
