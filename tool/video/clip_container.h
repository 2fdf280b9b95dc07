// The kinds of clip files that can be written.

#pragma once

#include <cstdint>
#include <string>

struct AVCodecParameters;
struct AVOutputFormat;
struct AVStream;

namespace ze::tool {

struct ClipContainer {
    const char* extension; ///< With its dot.
    const char* muxer;     ///< FFmpeg's name for it.
    const char* encoder;   ///< FFmpeg's name of the usual one.
    bool holdsStreams;     ///< Others than that of frames.
};

/// The container for files with `extension` (with its dot, in lower case); null when there is none.
const ClipContainer* clipContainerOf(const std::string& extension);

/// ".mp4, .mov, …" for messages.
std::string clipExtensions();

/// Whether `stream` can be in such a file. Throws `std::bad_alloc`.
bool canHold(const ClipContainer& container, const AVStream& stream);

/// What a file of `format` calls the codec: as `stream` does where that means the same there, otherwise 0 for
/// what is usual.
uint32_t codecTag(const AVCodecParameters& stream, const AVOutputFormat& format);

/// The first container for which `holdsAll` is true; null when there is none.
template <class HoldsAll>
const ClipContainer* firstContainer(HoldsAll holdsAll) {
    for (const char* const extension : {".mp4", ".mov", ".mkv", ".webm"}) {
        const ClipContainer* const container = clipContainerOf(extension);
        if (holdsAll(*container))
            return container;
    }
    return nullptr;
}

} // namespace ze::tool
