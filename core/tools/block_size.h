// The growth arithmetic of shared blocks, apart from any memory: how many bytes a block takes and how many
// elements it then holds.

#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>

namespace ze {

/// The size of a block to ask the platform for. `bytes` is `kImpossible` when the block cannot exist.
struct BlockSize {
    static constexpr size_t kImpossible = SIZE_MAX;

    size_t bytes;
    size_t capacity; ///< Elements the block holds.
};

/// Bytes of `capacity` elements behind `headerSpace` bytes, or kImpossible above the signed 32-bit range.
constexpr size_t exactBlockBytes(size_t elementSize, size_t capacity, size_t headerSpace) {
    if (headerSpace > size_t{INT32_MAX})
        return BlockSize::kImpossible;
    if (elementSize != 0 && capacity > (size_t{INT32_MAX} - headerSpace) / elementSize)
        return BlockSize::kImpossible;
    return elementSize * capacity + headerSpace;
}

/// The next power of two above `bytes`, also when `bytes` is one already; from 2^30 on half the way to 2^31.
/// `bytes` is at most INT32_MAX; 0 gives 1.
constexpr size_t roundBlockBytes(size_t bytes) {
    const size_t power = size_t{1} << std::bit_width(bytes);
    return power <= size_t{INT32_MAX} ? power : bytes + (power - bytes) / 2;
}

/// The block for `capacity` elements; with `geometric` rounded up, and with the capacity that this yields.
constexpr BlockSize blockSize(size_t elementSize, size_t capacity, size_t headerSpace, bool geometric) {
    const size_t exact = exactBlockBytes(elementSize, capacity, headerSpace);
    if (!geometric || exact == BlockSize::kImpossible)
        return {exact, capacity};
    const size_t rounded = roundBlockBytes(exact);
    return {rounded, elementSize == 0 ? 0 : (rounded - headerSpace) / elementSize};
}

} // namespace ze
