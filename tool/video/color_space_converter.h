// Frames of one color space to another.

#pragma once

#include "tool/pictures/ffmpeg.h"
#include "tool/video/color_tags.h"

#include <memory>
#include <vector>

struct zimg_filter_graph;

namespace ze::tool {

/// Converts frames in YUV444P16 of one size. One thread at a time.
class ColorSpaceConverter {
public:
    /// Converts from the matrix and range of `from` to those of `to`, both named. Where `isWide(from)`,
    /// primaries and transfer change, too, in the light that a display of BT.1886 shows; those that `to` does
    /// not name are BT.709's. Throws `Failure` (`badInput`) for what cannot be converted.
    ColorSpaceConverter(int width, int height, const ColorTags& from, const ColorTags& to);

    /// Both have the size, and memory from `makeFrame`; they are not the same.
    void convert(const AVFrame& from, AVFrame& to);

private:
    struct GraphDeleter {
        void operator()(zimg_filter_graph* graph) const;
    };
    struct alignas(kFrameAlignment) Block {
        uint8_t bytes[kFrameAlignment];
    };

    std::unique_ptr<zimg_filter_graph, GraphDeleter> m_graph;
    std::vector<Block> m_work; ///< What the graph needs while it runs.
};

} // namespace ze::tool
