#include "tool/video/rotation.h"

#include "tool/errors.h"

#include <cmath>
#include <cstring>
#include <new>
#include <string_view>

extern "C" {
#include <libavformat/avformat.h>
#include <libavutil/display.h>
}

namespace ze::tool {
namespace {

constexpr size_t kMatrixBytes = 9 * sizeof(int32_t);

bool changesNothing(const int32_t* matrix) {
    return matrix[0] > 0 && matrix[1] == 0 && matrix[3] == 0 && matrix[4] > 0;
}

bool isMirrored(const int32_t* matrix) {
    return int64_t{matrix[0]} * matrix[4] - int64_t{matrix[1]} * matrix[3] < 0;
}

std::string describe(const int32_t* matrix) {
    const double angle = av_display_rotation_get(matrix);
    if (isMirrored(matrix) || !std::isfinite(angle))
        return "the mirroring of frames";
    return "the rotation of frames by " + std::to_string(std::lround(std::abs(angle))) + " degrees";
}

} // namespace

const int32_t* displayMatrixOf(const AVStream& video) {
    size_t size = 0;
    const auto* const matrix =
        reinterpret_cast<const int32_t*>(av_stream_get_side_data(&video, AV_PKT_DATA_DISPLAYMATRIX, &size));
    return !matrix || size < kMatrixBytes || changesNothing(matrix) ? nullptr : matrix;
}

void adoptDisplayMatrix(AVStream& video, const AVFrame& first) {
    const AVFrameSideData* const data = av_frame_get_side_data(&first, AV_FRAME_DATA_DISPLAYMATRIX);
    if (!data || data->size < kMatrixBytes || displayMatrixOf(video))
        return;
    uint8_t* const copy = av_stream_new_side_data(&video, AV_PKT_DATA_DISPLAYMATRIX, kMatrixBytes);
    if (!copy)
        throw std::bad_alloc();
    std::memcpy(copy, data->data, kMatrixBytes);
}

bool holdsRotation(const ClipContainer& container) {
    const std::string_view muxer = container.muxer;
    return muxer == "mp4" || muxer == "mov";
}

void checkRotation(const std::string& name, const ClipContainer& container, const AVStream& video) {
    const int32_t* const matrix = displayMatrixOf(video);
    if (!matrix || holdsRotation(container))
        return;
    if (container.holdsStreams)
        throw Failure(ExitCode::usage, name,
                      describe(matrix) + " has no place in " + container.extension +
                          "; .mp4 and .mov hold it");
    printError(name + ": " + describe(matrix) + " is left out: " + container.extension + " has frames alone");
}

} // namespace ze::tool
