#include "core/tools/array_data.h"

#include "core/tools/block_size.h"
#include "tests/core/text.h"

#include <gmock/gmock.h>

#include <array>
#include <climits>

namespace {

constexpr size_t kImpossible = ze::BlockSize::kImpossible;
constexpr size_t kMax = INT_MAX;
constexpr size_t kHeader = sizeof(SZeArrayData);

TEST(BlockSize, FollowsThe32BitRules) {
    const struct {
        size_t elementSize, capacity, headerSpace;
        bool geometric;
        size_t bytes, stored;
    } rows[] = {
        // clang-format off
        {2, 8, 24, false, 40, 8}, {1, 7, 24, true, 32, 8},
        {1, 8, 24, true, 64, 40}, // an exact power of two is rounded up as well
        {12, 1, 24, true, 64, 3}, {1, 8, 32, true, 64, 32}, // slack for alignment is no room for elements
        {0, 100, 24, true, 32, 0}, {1, (1U << 30) - 25, 24, true, 1U << 30, (1U << 30) - 24},
        {1, (1U << 30) - 24, 24, true, 3U << 29, (3U << 29) - 24}, // half the way to the limit
        {1, (3U << 29) - 24, 24, true, 7U << 28, (7U << 28) - 24}, {1, kMax - 24, 24, true, kMax, kMax - 24},
        {1, kMax - 24, 24, false, kMax, kMax - 24}, {1, kMax - 23, 24, false, kImpossible, kMax - 23},
        {1, kMax - 23, 24, true, kImpossible, kMax - 23},
        {2, 1U << 31, 24, false, kImpossible, 1U << 31}, // the product wraps to 0 in 32 bits
        {SIZE_MAX, 2, 24, false, kImpossible, 2}, {2, SIZE_MAX, 24, true, kImpossible, SIZE_MAX},
        {1, 1, kMax + 1, false, kImpossible, 1},
        // clang-format on
    };
    for (const auto& row : rows) {
        const ze::BlockSize size =
            ze::blockSize(row.elementSize, row.capacity, row.headerSpace, row.geometric);
        EXPECT_TRUE(size.bytes == row.bytes && size.capacity == row.stored) << "row " << &row - rows;
    }
}

TEST(ArrayData, AllocateFillsTheHeader) {
    using D = SZeArrayData;
    const struct {
        size_t elementSize, alignment, capacity;
        int options, refCount;
        uint32_t stored, reserved;
    } rows[] = {
        // clang-format off
        {1, 8, 0, D::HeaderOnly, 1, 0, 0}, {4, 8, 5, D::NonShared | D::GrowGeometric, 0, 10, 0},
        {1, 64, 100, D::ReserveCapacity | D::GrowGeometric, 1, 256 - 24 - 56, 1},
        // clang-format on
    };
    for (const auto& row : rows) {
        D* const block = D::allocate(row.elementSize, row.alignment, row.capacity, row.options);
        ASSERT_TRUE(block);
        EXPECT_TRUE(block->refCount == row.refCount && block->size == 0 && block->capacity == row.stored &&
                    block->reserved == row.reserved);
        EXPECT_EQ(reinterpret_cast<uintptr_t>(block->data()) % row.alignment, 0U);
        EXPECT_TRUE(row.alignment > 8 ? block->dataOffset >= static_cast<ptrdiff_t>(kHeader)
                                      : block->dataIsInline());
        std::memset(block->data(), 0x66, block->capacity * row.elementSize);
        D::deallocate(block, row.elementSize, row.alignment);
    }
}

TEST(ArrayData, WithoutCapacityThereIsNothingToAllocate) {
    SZeArrayData* const empty = SZeArrayData::allocate(1, 8, 0, SZeArrayData::ReserveCapacity);
    SZeArrayData* const nonShared = SZeArrayData::allocate(2, 8, 0, SZeArrayData::NonShared);
    EXPECT_EQ(empty, SZeArrayData::allocate(2, 64, 0, SZeArrayData::GrowGeometric));
    EXPECT_TRUE(empty->refCount == -1 && nonShared->refCount == 0);
    for (SZeArrayData* block : {empty, nonShared, SZeArrayData::shared_null + 0}) {
        EXPECT_TRUE(block->size == 0 && block->capacity == 0);
        EXPECT_EQ(*static_cast<const uint64_t*>(block->data()) & 0xFFFFFFFF, 0U); // terminates any element
    }
    EXPECT_TRUE(nonShared->release()); // its count says "free me", deallocate ignores it
    SZeArrayData::deallocate(nonShared, 2, 8);
}

TEST(ArrayData, ReallocateKeepsWhatItDoesNotSet) {
    EXPECT_FALSE(SZeArrayData::allocate(2, 8, kMax / 2, 0) || SZeArrayData::allocate(1, 1UL << 40, 1, 0));
    SZeArrayData* block = SZeArrayData::allocate(2, 8, 4, SZeArrayData::NonShared);
    block->size = 3;
    std::memcpy(block->data(), "abcdef", 6);
    EXPECT_FALSE(SZeArrayData::reallocateUnaligned(block, 2, kMax, 0));
    const int options = SZeArrayData::GrowGeometric | SZeArrayData::ReserveCapacity;
    block = SZeArrayData::reallocateUnaligned(block, 2, 1000, options);
    EXPECT_TRUE(block->capacity == (2048 - kHeader) / 2 && block->reserved);
    block = SZeArrayData::reallocateUnaligned(block, 2, 4, 0);
    EXPECT_TRUE(block->capacity == 4 && !block->reserved && block->refCount == 0 && block->size == 3);
    EXPECT_TRUE(block->dataIsInline() && std::memcmp(block->data(), "abcdef", 6) == 0);
    SZeArrayData::deallocate(block, 2, 8);
}

TEST(ArrayData, StaticBlocksAreNeverWritten) {
    std::array<char, 2 * kHeader> null, empty;
    const void* const emptyBlock = SZeArrayData::allocate(1, 8, 0, 0);
    std::memcpy(null.data(), SZeArrayData::shared_null, null.size());
    std::memcpy(empty.data(), emptyBlock, empty.size());
    for (const CZeString& start : {CZeString(), CZeString(CZeLatin1String(""))}) {
        CZeString s = start;
        CZeString copy = s;
        s.fill('x').resize(0);
        s.insert(0, CZeString()).truncate(0);
        (s = start).reserve(4);
        EXPECT_GE(s.capacity(), 5);
        CZeByteArray b = std::move(copy).toLatin1();
        b.resize(3);
        b.resize(0);
        start.split(',', CZeString::SkipEmptyParts).append(start);
    }
    EXPECT_EQ(std::memcmp(null.data(), SZeArrayData::shared_null, null.size()), 0);
    EXPECT_EQ(std::memcmp(empty.data(), emptyBlock, empty.size()), 0);
}

} // namespace
