#include "api/plane_geometry.h"

#include "log/log_stream.h"

namespace ze {
namespace {

size_t halfUp(int value) {
    return (static_cast<size_t>(value) + 1) / 2;
}

} // namespace

bool isValidPixelFormat(int pixelFormat) {
    return pixelFormat == 0 || pixelFormat == 1;
}

size_t planeRowBytes(int pixelFormat, int plane, int width) {
    if (!isValidPixelFormat(pixelFormat)) {
        ZeLogError() << "ZecGetLineInfoForImagePlane(): Invalid pixel format!";
        return 0;
    }
    return plane == 0 ? static_cast<size_t>(width) : 2 * halfUp(width);
}

size_t planeRows(int pixelFormat, int plane, int height) {
    if (!isValidPixelFormat(pixelFormat)) {
        ZeLogError() << "ZecGetActualHeightForImagePlane(): Invalid pixel format!";
        return 0;
    }
    return plane == 0 ? static_cast<size_t>(height) : halfUp(height);
}

size_t stagingPitch(int width) {
    return 4 * halfUp(width);
}

size_t stagingSize(int width, int height) {
    return stagingPitch(width) * static_cast<size_t>(height);
}

} // namespace ze
