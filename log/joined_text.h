// Two texts in one.

#pragma once

#include <cstring>
#include <memory>
#include <new>

namespace ze {

/// `first` followed by `second`; null when there is no memory for it.
inline std::unique_ptr<char[]> joinedText(const char* first, const char* second) noexcept {
    const std::size_t firstSize = std::strlen(first);
    const std::size_t secondSize = std::strlen(second) + 1; // with the final zero
    std::unique_ptr<char[]> joined(new (std::nothrow) char[firstSize + secondSize]);
    if (joined) {
        std::memcpy(joined.get(), first, firstSize);
        std::memcpy(joined.get() + firstSize, second, secondSize);
    }
    return joined;
}

} // namespace ze
