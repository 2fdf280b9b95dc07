// Semi-planar 4:2:0 frames as cameras deliver them, from pictures and back.

#pragma once

#include "convert/ze_image.h"
#include "tool/pictures/picture.h"

namespace ze::tool {

// The values are those that ZecRender takes.
enum class ChromaOrder { nv12 = 0, nv21 = 1 };
enum class ColorStandard { bt601 = 0, bt709 = 1 };
enum class ColorRange { video = 0, full = 1 };

struct YuvDescription {
    ChromaOrder order = ChromaOrder::nv12;
    ColorStandard standard = ColorStandard::bt601;
    ColorRange range = ColorRange::full;
};

/// A frame whose rows follow each other without padding.
struct YuvFrame {
    int width = 0;
    int height = 0;
    YuvDescription description;
    std::vector<uint8_t> luma;   ///< `height` rows of `width` bytes.
    std::vector<uint8_t> chroma; ///< `chromaRows()` rows of `chromaPitch()` bytes.

    int chromaPitch() const { return (width + 1) / 2 * 2; }
    int chromaRows() const { return (height + 1) / 2; }

    /// The frame as the library takes it: a view, valid while the planes keep their memory.
    ZecImage image();
};

/// The colors of `picture`; a chroma sample is the mean of its four pixels. The last pixels at an odd right
/// or lower edge count twice. Transparency is ignored.
YuvFrame yuvFromPicture(const Picture& picture, YuvDescription description);

/// The opaque picture that `frame` shows.
Picture pictureFromYuv(const YuvFrame& frame);

} // namespace ze::tool
