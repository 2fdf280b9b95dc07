#include "tool/video/format_notes.h"

#include "tool/errors.h"

extern "C" {
#include <libavutil/pixdesc.h>
}

namespace ze::tool {
namespace {

std::string samplingOf(const AVPixFmtDescriptor& format) {
    if (format.flags & (AV_PIX_FMT_FLAG_RGB | AV_PIX_FMT_FLAG_PAL))
        return "RGB";
    if (format.nb_components < 3)
        return "gray";
    if (format.log2_chroma_w == 1 && format.log2_chroma_h == 1)
        return "4:2:0";
    if (format.log2_chroma_w == 1)
        return "4:2:2";
    return format.log2_chroma_w == 0 && format.log2_chroma_h == 0 ? "4:4:4" : format.name;
}

} // namespace

void printFormatNotes(const std::string& name, const AVFrame& frame, const ColorTags& tags,
                      const VideoFormat& format) {
    const auto& pixels = *av_pix_fmt_desc_get(static_cast<AVPixelFormat>(frame.format));
    const int depth = pixels.comp[0].depth;
    const std::string sampling = samplingOf(pixels);
    if (depth > 8 || sampling != "4:2:0")
        printError(name + ": " + std::to_string(depth) + "-bit " + sampling + " becomes 8-bit 4:2:0");
    if (pixels.flags & AV_PIX_FMT_FLAG_ALPHA)
        printError(name + ": its transparency is left out");
    if (tags.matrix != format.tags.matrix && tags.matrix != AVCOL_SPC_RGB)
        printError(name + ": its color matrix, " + av_color_space_name(tags.matrix) + ", becomes BT.709");
    if (format.isInterlaced)
        printError(name + ": is interlaced and stays so; its fields are rendered as one picture");
}

} // namespace ze::tool
