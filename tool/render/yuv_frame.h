// A semi-planar 4:2:0 frame as a camera delivers it, made from a picture and turned back into one.

#pragma once

#include "convert/ze_image.h"
#include "tool/pictures/picture.h"

namespace ze::tool {

// The numbers are those of ZecRender.
enum class ChromaOrder { nv12 = 0, nv21 = 1 };
enum class ColorStandard { bt601 = 0, bt709 = 1 };
enum class ColorRange { video = 0, full = 1 };

struct YuvDescription {
    ChromaOrder order = ChromaOrder::nv12;
    ColorStandard standard = ColorStandard::bt601;
    ColorRange range = ColorRange::full;
};

/// Planes without padding between their rows.
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

/// The colors of `picture`; a chroma sample is the mean of its four pixels. At an odd right or lower edge
/// the last pixels count twice. Transparency is left out.
YuvFrame yuvFromPicture(const Picture& picture, YuvDescription description);

/// The opaque picture that `frame` shows.
Picture pictureFromYuv(const YuvFrame& frame);

} // namespace ze::tool
