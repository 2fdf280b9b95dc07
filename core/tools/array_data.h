// The header of the heap block behind every container of the core library, and its reference count.

#pragma once

#include "core/export.h"

#include <atomic>
#include <cstddef>
#include <cstdint>

/// A block of elements shared between containers by reference counting: this header, and the elements
/// `dataOffset` bytes from its start. Copies of a container may be made, read and destroyed on different
/// threads at once, because the count is all that they change in common.
struct ZE_EXPORT SZeArrayData {
    /// What `allocate` and `reallocateUnaligned` accept, as bits of an int.
    enum AllocationOption {
        ReserveCapacity = 0x1, ///< Sets `reserved`.
        NonShared = 0x2,       ///< The block has exactly one owner for life: its count starts at 0.
        HeaderOnly = 0x4,      ///< The elements live elsewhere, so a capacity of 0 still makes a block.
        GrowGeometric = 0x8,   ///< Rounds the block up and records the capacity that this yields.
    };

    static constexpr int32_t kStatic = -1;   ///< The count of a block that is never freed.
    static constexpr int32_t kNonShared = 0; ///< The count of a block with exactly one owner for life.

    std::atomic<int32_t> refCount; ///< kStatic, kNonShared, otherwise the number of owners.
    int32_t size;                  ///< Elements in use, without the terminating zero element.
    uint32_t capacity : 31;        ///< Elements that fit, terminator included.
    uint32_t reserved : 1;         ///< The owner asked to keep the capacity when the size shrinks.
    ptrdiff_t dataOffset;          ///< Bytes from the header to the first element; may be negative.

    /// The block of null containers. The second header is zero and terminates the first one's elements.
    static SZeArrayData shared_null[2];

    /// Makes a block for `capacity` elements with one owner, size 0 and uninitialized contents.
    /// `alignment` is that of the elements, a power of two; anything below 8 counts as 8. Without
    /// `HeaderOnly` a capacity of 0 allocates nothing: it gives the static empty block, or with `NonShared`
    /// the static non-shared one. Returns null when there is no memory or the block would pass 2^31 − 1
    /// bytes.
    static SZeArrayData* allocate(size_t elementSize, size_t alignment, size_t capacity, int options);

    /// Grows or shrinks `block`, which must not be shared or static and must have its data inline. Count,
    /// size and data offset stay, so a caller that goes below the size adjusts it. Returns the block, which
    /// may have moved, or null where `allocate` would; `block` is then still valid.
    static SZeArrayData* reallocateUnaligned(SZeArrayData* block, size_t elementSize, size_t capacity,
                                             int options);

    /// Frees a block without owners. The static non-shared block is left alone.
    static void deallocate(SZeArrayData* block, size_t elementSize, size_t alignment);

    /// Adds an owner, unless the block is static. Returns false for a non-shared block: take a copy instead.
    [[nodiscard]] bool acquire() {
        const int32_t owners = refCount.load();
        if (owners != kStatic && owners != kNonShared)
            refCount.fetch_add(1);
        return owners != kNonShared;
    }

    /// Removes an owner, unless the block is static. Returns true when no owner is left: free the block.
    [[nodiscard]] bool release() {
        const int32_t owners = refCount.load();
        if (owners == kStatic || owners == kNonShared)
            return owners == kNonShared;
        return refCount.fetch_sub(1) == 1;
    }

    /// Whether there are two owners or more. Any other block may be modified in place, within its capacity.
    bool isShared() const { return refCount.load() >= 2; }

    /// Whether the block lives in static storage: it is never written, counted or freed.
    bool isStatic() const { return refCount.load() == kStatic; }

    /// Whether the elements follow the header directly, as they must in a block that `realloc` resizes.
    bool dataIsInline() const { return dataOffset == static_cast<ptrdiff_t>(sizeof(SZeArrayData)); }

    /// The first element.
    void* data() { return reinterpret_cast<char*>(this) + dataOffset; }
    const void* data() const { return reinterpret_cast<const char*>(this) + dataOffset; }
};
