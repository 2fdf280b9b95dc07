#include "tool/pictures/orientation.h"

#include <utility>

namespace ze::tool {

// A pixel (x, y) is shown at (a x + c y, b x + d y), plus a shift. The matrix is {a, b, u, c, d, v, ...}.
Orientation orientationOf(const int32_t* displayMatrix) {
    const int32_t a = displayMatrix[0];
    const int32_t b = displayMatrix[1];
    const int32_t c = displayMatrix[3];
    const int32_t d = displayMatrix[4];
    const bool transposed = a == 0 && d == 0;
    return transposed ? Orientation{true, c < 0, b < 0} : Orientation{false, a < 0, d < 0};
}

Picture upright(Picture picture, Orientation orientation) {
    if (!orientation.transposed && !orientation.mirrored && !orientation.upsideDown)
        return picture;
    Picture shown(picture.width, picture.height);
    if (orientation.transposed)
        std::swap(shown.width, shown.height);
    shown.alpha.resize(picture.alpha.size());
    for (int y = 0; y < shown.height; ++y) {
        for (int x = 0; x < shown.width; ++x) {
            int fromX = orientation.mirrored ? shown.width - 1 - x : x;
            int fromY = orientation.upsideDown ? shown.height - 1 - y : y;
            if (orientation.transposed)
                std::swap(fromX, fromY);
            shown.set(x, y, picture.at(fromX, fromY));
            if (!shown.alpha.empty())
                shown.alpha[shown.index(x, y)] = picture.alpha[picture.index(fromX, fromY)];
        }
    }
    return shown;
}

} // namespace ze::tool
