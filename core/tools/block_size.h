// The growth arithmetic of shared blocks: how many bytes to allocate and how many elements these hold.

#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>

namespace ze {

/// The size of a block to ask the platform for. `bytes` is `kImpossible` when the block cannot exist.
struct BlockSize {
    static constexpr size_t kMaxBytes = INT32_MAX;
    static constexpr size_t kImpossible = SIZE_MAX;

    size_t bytes;
    size_t capacity; ///< Elements the block holds.
};

/// Bytes of `capacity` elements behind `headerSpace` bytes, or kImpossible above the signed 32-bit range.
constexpr size_t exactBlockBytes(size_t elementSize, size_t capacity, size_t headerSpace) {
    if (headerSpace > BlockSize::kMaxBytes)
        return BlockSize::kImpossible;
    if (elementSize != 0 && capacity > (BlockSize::kMaxBytes - headerSpace) / elementSize)
        return BlockSize::kImpossible;
    return elementSize * capacity + headerSpace;
}

/// The next power of two above `bytes`, even when `bytes` is one itself; from 2^30 on half the way to 2^31.
/// `bytes` is at most INT32_MAX; 0 gives 1.
constexpr size_t roundBlockBytes(size_t bytes) {
    constexpr size_t kOne = 1;
    const size_t power = kOne << std::bit_width(bytes);
    return power <= BlockSize::kMaxBytes ? power : bytes + (power - bytes) / 2;
}

/// The block for `capacity` elements. With `geometric` it is rounded up and its capacity is what then fits.
constexpr BlockSize blockSize(size_t elementSize, size_t capacity, size_t headerSpace, bool geometric) {
    const size_t exact = exactBlockBytes(elementSize, capacity, headerSpace);
    if (!geometric || exact == BlockSize::kImpossible)
        return {exact, capacity};
    const size_t rounded = roundBlockBytes(exact);
    return {rounded, elementSize == 0 ? 0 : (rounded - headerSpace) / elementSize};
}

} // namespace ze
