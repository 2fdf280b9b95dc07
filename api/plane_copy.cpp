#include "api/plane_copy.h"

#include "api/frame_description.h"
#include "log/log_stream.h"

#include <cstddef>
#include <cstring>

namespace ze {
namespace {

void copyPlane(const uint8_t* from, ptrdiff_t fromPitch, uint8_t* to, ptrdiff_t toPitch, size_t rowBytes,
               size_t rows) {
    if (from == to && fromPitch == toPitch)
        return; // a frame that is processed in place
    if (fromPitch == static_cast<ptrdiff_t>(rowBytes) && toPitch == fromPitch) {
        std::memmove(to, from, rowBytes * rows);
        return;
    }
    for (size_t row = 0; row < rows; ++row) {
        const auto step = static_cast<ptrdiff_t>(row);
        std::memmove(to + step * toPitch, from + step * fromPitch, rowBytes);
    }
}

} // namespace

void copyFrame(const ZecImage& input, const ZecImage& output, int32_t pixelFormat, FrameSize size) {
    if (!isValidPixelFormat(pixelFormat)) {
        for (int plane = 0; plane < 2; ++plane) {
            ZeLogError() << "ZecGetLineInfoForImagePlane(): Invalid pixel format!";
            ZeLogError() << "ZecGetActualHeightForImagePlane(): Invalid pixel format!";
        }
        return;
    }
    const auto width = static_cast<size_t>(size.width);
    const auto height = static_cast<size_t>(size.height);
    const auto chromaBytes = static_cast<size_t>(halfUp(size.width)) * 2;
    const auto chromaRows = static_cast<size_t>(halfUp(size.height));
    copyPlane(input.planes[0], input.pitches[0], output.planes[0], output.pitches[0], width, height);
    copyPlane(input.planes[1], input.pitches[1], output.planes[1], output.pitches[1], chromaBytes,
              chromaRows);
}

} // namespace ze
