#include "core/tools/array_data.h"

#include "core/tools/block_size.h"

#include <algorithm>
#include <cstdlib>
#include <new>

namespace {

constexpr size_t kHeaderSize = sizeof(SZeArrayData);
static_assert(kHeaderSize % alignof(SZeArrayData) == 0 && alignof(SZeArrayData) == 8);

// The elements of an empty block are the zero word behind it, which is the count of the next header.
enum { StaticEmpty, NonSharedEmpty, Terminator, EmptyBlockCount };
SZeArrayData emptyBlocks[EmptyBlockCount] = {
    {-1, 0, 0, 0, kHeaderSize},
    {0, 0, 0, 0, kHeaderSize},
    {0, 0, 0, 0, 0},
};

} // namespace

SZeArrayData SZeArrayData::shared_null[2] = {
    {-1, 0, 0, 0, kHeaderSize},
    {0, 0, 0, 0, 0},
};

SZeArrayData* SZeArrayData::allocate(size_t elementSize, size_t alignment, size_t capacity, int options) {
    if (capacity == 0 && !(options & HeaderOnly))
        return &emptyBlocks[options & NonShared ? NonSharedEmpty : StaticEmpty];

    alignment = std::max(alignment, alignof(SZeArrayData));
    const size_t alignmentSlack = options & HeaderOnly ? 0 : alignment - alignof(SZeArrayData);
    const ze::BlockSize size =
        ze::blockSize(elementSize, capacity, kHeaderSize + alignmentSlack, (options & GrowGeometric) != 0);
    if (size.bytes == ze::BlockSize::kImpossible)
        return nullptr;
    void* const memory = std::malloc(size.bytes);
    if (!memory)
        return nullptr;

    const auto address = reinterpret_cast<uintptr_t>(memory);
    const uintptr_t data = (address + kHeaderSize + alignment - 1) & ~(static_cast<uintptr_t>(alignment) - 1);
    return new (memory)
        SZeArrayData{options & NonShared ? 0 : 1, 0, static_cast<uint32_t>(size.capacity) & INT32_MAX,
                     options & ReserveCapacity ? 1U : 0U, static_cast<ptrdiff_t>(data - address)};
}

SZeArrayData* SZeArrayData::reallocateUnaligned(SZeArrayData* block, size_t elementSize, size_t capacity,
                                                int options) {
    const ze::BlockSize size =
        ze::blockSize(elementSize, capacity, kHeaderSize, (options & GrowGeometric) != 0);
    if (size.bytes == ze::BlockSize::kImpossible)
        return nullptr;
    auto* const moved = static_cast<SZeArrayData*>(std::realloc(static_cast<void*>(block), size.bytes));
    if (!moved)
        return nullptr;
    moved->capacity = static_cast<uint32_t>(size.capacity) & INT32_MAX;
    moved->reserved = options & ReserveCapacity ? 1 : 0;
    return moved;
}

void SZeArrayData::deallocate(SZeArrayData* block, size_t /*elementSize*/, size_t /*alignment*/) {
    if (block != &emptyBlocks[NonSharedEmpty])
        std::free(block);
}
