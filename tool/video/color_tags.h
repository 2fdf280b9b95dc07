// What a clip says about the colors of its frames.

#pragma once

#include "tool/render/yuv_frame.h"

#include <optional>

extern "C" {
#include <libavutil/frame.h>
}

namespace ze::tool {

/// The color tags of a frame, as FFmpeg and the standards (ITU-T H.273) number them.
struct ColorTags {
    AVColorSpace matrix = AVCOL_SPC_UNSPECIFIED;
    AVColorRange range = AVCOL_RANGE_UNSPECIFIED;
    AVColorPrimaries primaries = AVCOL_PRI_UNSPECIFIED;
    AVColorTransferCharacteristic transfer = AVCOL_TRC_UNSPECIFIED;
    AVChromaLocation chroma = AVCHROMA_LOC_UNSPECIFIED;

    bool operator==(const ColorTags& other) const = default;
};

/// What the command line says instead of the clip.
struct ColorOverride {
    std::optional<ColorStandard> standard;
    std::optional<ColorRange> range;
};

/// The tags of `frame`, with those of `instead` in their place. RGB has matrix RGB and full range.
ColorTags tagsOf(const AVFrame& frame, const ColorOverride& instead);

/// Throws `Failure` (`badInput`) for what is not SDR (PQ, HLG) and for matrices that cannot be converted,
/// with a sentence that says what to do.
void checkColors(const ColorTags& tags);

/// The tags of a frame with `tags` once it is one that the library takes: matrices other than those of BT.601
/// and BT.709 become BT.709, with the primaries and the transfer of BT.709 where `isWide`; the rest stays,
/// unspecified included. RGB becomes BT.709 in video range.
ColorTags libraryTags(const ColorTags& tags);

/// Whether frames with `tags` are YUV in a matrix that the library does not know and have the primaries of
/// BT.2020, named or because the matrix is that of BT.2020.
bool isWide(const ColorTags& tags);

/// Whether the same YUV is the same RGB in both, but for the range.
bool haveSameMatrix(const ColorTags& first, const ColorTags& second);

/// The matrix that `tags` name or, where they name none, that players take for a frame with `lines`: BT.709
/// from 720 on.
ColorStandard standardOf(const ColorTags& tags, int lines);
/// `tags` with that matrix where they name none.
ColorTags withMatrix(ColorTags tags, int lines);
/// Untagged frames have video range.
ColorRange rangeOf(const ColorTags& tags);

} // namespace ze::tool
