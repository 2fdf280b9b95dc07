#include "tool/video/color_space_converter.h"

#include "tool/errors.h"

extern "C" {
#include <libavutil/pixdesc.h>
}
#include <zimg.h>

namespace ze::tool {
namespace {

// zimg numbers matrices, primaries and transfers as FFmpeg does: after ITU-T H.273.
zimg_image_format describe(int width, int height, const ColorTags& tags) {
    zimg_image_format format;
    zimg_image_format_default(&format, ZIMG_API_VERSION);
    format.width = static_cast<unsigned>(width);
    format.height = static_cast<unsigned>(height);
    format.pixel_type = ZIMG_PIXEL_WORD;
    format.depth = 16;
    format.color_family = ZIMG_COLOR_YUV;
    format.matrix_coefficients = static_cast<zimg_matrix_coefficients_e>(tags.matrix);
    format.color_primaries = static_cast<zimg_color_primaries_e>(tags.primaries);
    format.transfer_characteristics = static_cast<zimg_transfer_characteristics_e>(tags.transfer);
    format.pixel_range = rangeOf(tags) == ColorRange::full ? ZIMG_RANGE_FULL : ZIMG_RANGE_LIMITED;
    return format;
}

ColorTags named(ColorTags tags, AVColorPrimaries primaries) {
    if (tags.primaries == AVCOL_PRI_UNSPECIFIED)
        tags.primaries = primaries;
    if (tags.transfer == AVCOL_TRC_UNSPECIFIED)
        tags.transfer = AVCOL_TRC_BT709;
    return tags;
}

ColorTags withMatrixAlone(ColorTags tags) {
    tags.primaries = AVCOL_PRI_UNSPECIFIED;
    tags.transfer = AVCOL_TRC_UNSPECIFIED;
    return tags;
}

} // namespace

void ColorSpaceConverter::GraphDeleter::operator()(zimg_filter_graph* graph) const {
    zimg_filter_graph_free(graph);
}

ColorSpaceConverter::ColorSpaceConverter(int width, int height, const ColorTags& from, const ColorTags& to) {
    const bool wide = isWide(from);
    const zimg_image_format source =
        describe(width, height, wide ? named(from, AVCOL_PRI_BT2020) : withMatrixAlone(from));
    const zimg_image_format target =
        describe(width, height, wide ? named(to, AVCOL_PRI_BT709) : withMatrixAlone(to));
    zimg_graph_builder_params parameters;
    zimg_graph_builder_params_default(&parameters, ZIMG_API_VERSION);
    parameters.allow_approximate_gamma = 1; // to far less than a level of 8 bits
    m_graph.reset(zimg_filter_graph_build(&source, &target, &parameters));
    size_t size = 0;
    if (!m_graph || zimg_filter_graph_get_tmp_size(m_graph.get(), &size) != ZIMG_ERROR_SUCCESS) {
        const char* const name = av_color_transfer_name(from.transfer);
        throw Failure(ExitCode::badInput, std::string("has colors with the transfer ") + (name ? name : "?") +
                                              ", of which there is no conversion");
    }
    m_work.resize((size + sizeof(Block) - 1) / sizeof(Block));
}

void ColorSpaceConverter::convert(const AVFrame& from, AVFrame& to) {
    zimg_image_buffer_const source = {ZIMG_API_VERSION, {}};
    zimg_image_buffer target = {ZIMG_API_VERSION, {}};
    for (int plane = 0; plane < 3; ++plane) {
        source.plane[plane] = {from.data[plane], from.linesize[plane], ZIMG_BUFFER_MAX};
        target.plane[plane] = {to.data[plane], to.linesize[plane], ZIMG_BUFFER_MAX};
    }
    if (zimg_filter_graph_process(m_graph.get(), &source, &target, m_work.data(), nullptr, nullptr, nullptr,
                                  nullptr) != ZIMG_ERROR_SUCCESS)
        throw Failure(ExitCode::failed, "its colors could not be converted");
}

} // namespace ze::tool
