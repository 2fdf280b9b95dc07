// The header of the heap block behind every container of the core library, and its reference count.

#pragma once

#include "core/export.h"

#include <atomic>
#include <cstddef>
#include <cstdint>

/// A block of elements shared between containers by reference counting: this header, then the elements at
/// `dataOffset` bytes from its start. Copies of a container may be made, read and destroyed on different
/// threads at once; the count is the only thing they change in common.
struct ZE_EXPORT SZeArrayData {
    /// What `allocate` and `reallocateUnaligned` accept, as bits of an int.
    enum AllocationOption {
        ReserveCapacity = 0x1, ///< Sets `reserved`.
        NonShared = 0x2,       ///< The block has exactly one owner for life: its count starts at 0.
        HeaderOnly = 0x4,      ///< The elements live elsewhere; a capacity of 0 still makes a block.
        GrowGeometric = 0x8,   ///< Rounds the block up and records the capacity that this yields.
    };

    std::atomic<int32_t> refCount; ///< −1 static, 0 non-shared, otherwise the number of owners.
    int32_t size;                  ///< Elements in use, without the terminating zero element.
    uint32_t capacity : 31;        ///< Elements that fit, terminator included.
    uint32_t reserved : 1;         ///< The owner asked for the capacity to be kept when it shrinks.
    ptrdiff_t dataOffset;          ///< Bytes from the header to the first element; may be negative.

    /// The block of null containers. The second header is zero and terminates the first one's elements.
    static SZeArrayData shared_null[2];

    /// Makes a block for `capacity` elements with one owner and size 0, contents uninitialized.
    /// `alignment` is that of the elements, a power of two; anything below 8 counts as 8. A capacity of 0
    /// gives the static empty block, or the static non-shared one with `NonShared`, and allocates nothing
    /// unless `HeaderOnly` is set. Null when there is no memory or the block would pass 2^31 − 1 bytes.
    static SZeArrayData* allocate(size_t elementSize, size_t alignment, size_t capacity, int options);

    /// Grows or shrinks `block`, which is not shared, not static and has its data right behind the header.
    /// Count, size and data offset stay; a capacity below the size is for the caller to mend.
    /// Returns the block, perhaps moved; null on the failures of `allocate`, `block` is then still valid.
    static SZeArrayData* reallocateUnaligned(SZeArrayData* block, size_t elementSize, size_t capacity,
                                             int options);

    /// Frees a block that no owner is left of. The static non-shared block is left alone.
    static void deallocate(SZeArrayData* block, size_t elementSize, size_t alignment);

    /// Adds an owner; static blocks are not counted. False: the block is non-shared, take a copy instead.
    [[nodiscard]] bool acquire() {
        const int32_t owners = refCount.load();
        if (static_cast<uint32_t>(owners) + 1 >= 2)
            refCount.fetch_add(1);
        return owners != 0;
    }

    /// Removes an owner. True: it was the last one, or the only one of a non-shared block; free the block.
    [[nodiscard]] bool release() {
        const int32_t owners = refCount.load();
        if (static_cast<uint32_t>(owners) + 1 < 2)
            return owners == 0;
        return refCount.fetch_sub(1) == 1;
    }

    /// Two owners or more. Anything else may be modified in place, as far as its capacity goes.
    bool isShared() const { return refCount.load() >= 2; }

    /// Lives in static storage, is never written, counted or freed.
    bool isStatic() const { return refCount.load() == -1; }

    /// The elements follow the header directly, as in every block that may be resized by `realloc`.
    bool dataIsInline() const { return dataOffset == static_cast<ptrdiff_t>(sizeof(SZeArrayData)); }

    /// The first element.
    void* data() { return reinterpret_cast<char*>(this) + dataOffset; }
    const void* data() const { return reinterpret_cast<const char*>(this) + dataOffset; }
};
