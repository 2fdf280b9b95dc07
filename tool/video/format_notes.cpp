#include "tool/video/format_notes.h"

#include "tool/errors.h"

#include <string_view>

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

std::string nameOf(AVColorSpace matrix) {
    const char* const name = av_color_space_name(matrix);
    return name ? name : "unknown";
}

std::string nameOf(ColorRange range) {
    return range == ColorRange::full ? "full" : "video";
}

} // namespace

FormatNotes::FormatNotes(std::string name, const VideoFormat& format, const ColorOverride& instead)
    : m_name(std::move(name)), m_format(format), m_override(instead) {}

void FormatNotes::look(const AVFrame& frame) {
    lookAtPixels(frame);
    lookAtColors(tagsOf(frame, m_override));
    if (frame.interlaced_frame && m_format.isInterlaced())
        say("is interlaced and stays so; its fields are rendered as one picture");
    else if (frame.interlaced_frame)
        say("becomes interlaced in the middle; is written as progressive, as it begins");
}

void FormatNotes::lookAtPixels(const AVFrame& frame) {
    if (frame.width != m_format.width || frame.height != m_format.height)
        say("changes its size; all frames are scaled to the first one's, " + std::to_string(m_format.width) +
            "x" + std::to_string(m_format.height));
    const auto& pixels = *av_pix_fmt_desc_get(static_cast<AVPixelFormat>(frame.format));
    const int depth = pixels.comp[0].depth;
    const std::string sampling = samplingOf(pixels);
    if (depth > 8 || sampling != "4:2:0")
        say(std::to_string(depth) + "-bit " + sampling + " becomes 8-bit 4:2:0");
    if (pixels.flags & AV_PIX_FMT_FLAG_ALPHA)
        say("its transparency is left out");
}

// RGB has neither matrix nor range.
void FormatNotes::lookAtColors(const ColorTags& tags) {
    if (tags.matrix == AVCOL_SPC_RGB)
        return;
    const ColorTags known = withMatrix(tags, m_format.height),
                    wanted = withMatrix(m_format.tags, m_format.height);
    if (isWide(tags))
        say("its colors, BT.2020, become BT.709; those outside of it are clipped");
    else if (!haveSameMatrix(known, wanted))
        say("its color matrix, " + nameOf(known.matrix) + ", becomes " + nameOf(wanted.matrix));
    if (rangeOf(tags) != rangeOf(wanted))
        say("its range, " + nameOf(rangeOf(tags)) + ", becomes " + nameOf(rangeOf(wanted)));
}

void FormatNotes::say(const std::string& note) {
    if (m_said.insert(note).second)
        printError(m_name + ": " + note);
}

void tellUnnamed(const std::string& name, const ClipContainer& container, const VideoFormat& format) {
    const ColorTags tags = withMatrix(format.tags, format.height), taken = withMatrix({}, format.height);
    if (std::string_view(container.muxer) == "yuv4mpegpipe" && !haveSameMatrix(tags, taken))
        printError(name + ": its color matrix, " + nameOf(tags.matrix) +
                   ", is left out: .y4m names none, and " + nameOf(taken.matrix) +
                   " is taken for it at this size");
    if (std::string_view(container.muxer) == "webm" && format.isInterlaced())
        printError(name + ": .webm does not say that its frames are interlaced; .mkv does");
}

} // namespace ze::tool
