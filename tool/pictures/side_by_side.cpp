#include "tool/pictures/side_by_side.h"

#include <algorithm>

namespace ze::tool {
namespace {

void copyInto(Picture& both, const Picture& part, int left) {
    const auto width = static_cast<size_t>(part.width);
    for (int y = 0; y < part.height; ++y) {
        std::copy_n(part.row(y), 3 * width, both.row(y) + 3 * static_cast<ptrdiff_t>(left));
        if (!part.alpha.empty())
            std::copy_n(part.alpha.begin() + static_cast<ptrdiff_t>(part.index(0, y)), width,
                        both.alpha.begin() + static_cast<ptrdiff_t>(both.index(left, y)));
    }
}

} // namespace

Picture sideBySide(const Picture& left, const Picture& right) {
    Picture both(2 * left.width, left.height);
    if (!left.alpha.empty() || !right.alpha.empty())
        both.alpha.assign(both.index(0, both.height), 255);
    copyInto(both, left, 0);
    copyInto(both, right, left.width);
    return both;
}

} // namespace ze::tool
