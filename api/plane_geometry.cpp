#include "api/plane_geometry.h"

#include "convert/half_up.h"
#include "log/log_stream.h"

namespace ze {

bool isValidPixelFormat(int pixelFormat) {
    return pixelFormat == 0 || pixelFormat == 1;
}

size_t planeRowBytes(int pixelFormat, int plane, int width) {
    if (!isValidPixelFormat(pixelFormat)) {
        ZeLogError() << "ZecGetLineInfoForImagePlane(): Invalid pixel format!";
        return 0;
    }
    return plane == 0 ? static_cast<size_t>(width) : size_t{2} * halfUp(uint32_t(width));
}

size_t planeRows(int pixelFormat, int plane, int height) {
    if (!isValidPixelFormat(pixelFormat)) {
        ZeLogError() << "ZecGetActualHeightForImagePlane(): Invalid pixel format!";
        return 0;
    }
    return plane == 0 ? static_cast<size_t>(height) : halfUp(uint32_t(height));
}

size_t stagingPitch(int width) {
    return size_t{4} * halfUp(uint32_t(width));
}

size_t stagingSize(int width, int height) {
    return stagingPitch(width) * static_cast<size_t>(height);
}

} // namespace ze
