#include "gst/video_frame.h"

namespace ze::gst {
namespace {

std::string nameOf(const GstVideoColorimetry& colorimetry) {
    char* const text = gst_video_colorimetry_to_string(&colorimetry);
    const std::string name = text ? text : "unknown";
    g_free(text);
    return name;
}

bool isHdr(const GstVideoColorimetry& colorimetry) {
    return colorimetry.transfer == GST_VIDEO_TRANSFER_SMPTE2084 ||
           colorimetry.transfer == GST_VIDEO_TRANSFER_ARIB_STD_B67;
}

} // namespace

std::optional<std::string> describe(const GstVideoInfo& info, zebeauty::Frame& frame) {
    frame.format = GST_VIDEO_INFO_FORMAT(&info) == GST_VIDEO_FORMAT_NV21 ? zebeauty::PixelFormat::nv21
                                                                         : zebeauty::PixelFormat::nv12;
    frame.range = info.colorimetry.range == GST_VIDEO_COLOR_RANGE_16_235 ? zebeauty::ColorRange::video
                                                                         : zebeauty::ColorRange::full;
    const GstVideoColorMatrix matrix = info.colorimetry.matrix;
    frame.standard = matrix == GST_VIDEO_COLOR_MATRIX_BT601 ? zebeauty::ColorStandard::bt601
                                                            : zebeauty::ColorStandard::bt709;
    if (isHdr(info.colorimetry))
        return "the frames are HDR (" + nameOf(info.colorimetry) + "), and the effects are for SDR";
    if (matrix != GST_VIDEO_COLOR_MATRIX_BT601 && matrix != GST_VIDEO_COLOR_MATRIX_BT709)
        return "the effects know the matrices of BT.601 and BT.709, and the frames' colorimetry is " +
               nameOf(info.colorimetry) +
               ": put \"videoconvert ! video/x-raw,colorimetry=bt709\" before zebeauty";
    return std::nullopt;
}

MappedFrame::MappedFrame(GstVideoInfo& info, GstBuffer& buffer)
    : m_isMapped(gst_video_frame_map(
          &m_frame, &info, &buffer,
          static_cast<GstMapFlags>(static_cast<int>(GST_MAP_READWRITE) | GST_VIDEO_FRAME_MAP_FLAG_NO_REF))) {}

MappedFrame::~MappedFrame() {
    if (m_isMapped)
        gst_video_frame_unmap(&m_frame);
}

zebeauty::Frame MappedFrame::get(zebeauty::Frame kind) const {
    kind.width = GST_VIDEO_FRAME_WIDTH(&m_frame);
    kind.height = GST_VIDEO_FRAME_HEIGHT(&m_frame);
    kind.planes = {static_cast<uint8_t*>(GST_VIDEO_FRAME_PLANE_DATA(&m_frame, 0)),
                   static_cast<uint8_t*>(GST_VIDEO_FRAME_PLANE_DATA(&m_frame, 1)),
                   GST_VIDEO_FRAME_PLANE_STRIDE(&m_frame, 0), GST_VIDEO_FRAME_PLANE_STRIDE(&m_frame, 1)};
    return kind;
}

} // namespace ze::gst
