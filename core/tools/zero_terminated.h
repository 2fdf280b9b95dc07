// The length of text that ends at a zero.

#pragma once

#include <cstdint>

namespace ze {

/// The number of elements before the zero one, at most INT32_MAX.
template <class Element>
int zeroTerminatedLength(const Element* elements) {
    int length = 0;
    while (length < INT32_MAX && elements[length] != Element{})
        ++length;
    return length;
}

} // namespace ze
