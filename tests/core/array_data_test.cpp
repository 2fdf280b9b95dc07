#include "core/tools/array_data.h"

#include "core/tools/block_size.h"
#include "tests/core/text.h"

#include <gmock/gmock.h>

#include <array>
#include <climits>
#include <thread>

namespace {

using D = SZeArrayData;

constexpr size_t kImpossible = ze::BlockSize::kImpossible;
constexpr size_t kMax = INT_MAX;
constexpr size_t kHeader = sizeof(D);

TEST(BlockSize, FollowsThe32BitRules) {
    const struct {
        size_t elementSize, capacity, headerSpace;
        bool geometric;
        std::pair<size_t, size_t> size;
    } rows[] = {
        // clang-format off
        {2, 8, 24, false, {40, 8}},
        {1, 8, 24, true, {64, 40}}, // an exact power of two is rounded up as well
        {1, 8, 32, true, {64, 32}}, // slack for alignment is no room for elements
        {12, 1, 24, true, {64, 3}}, {0, 100, 24, true, {32, 0}},
        {1, (1U << 30) - 25, 24, true, {1U << 30, (1U << 30) - 24}},
        {1, (1U << 30) - 24, 24, true, {3U << 29, (3U << 29) - 24}}, // half the way to the limit
        {1, kMax - 24, 24, true, {kMax, kMax - 24}}, {1, kMax - 24, 24, false, {kMax, kMax - 24}},
        {1, kMax - 23, 24, false, {kImpossible, kMax - 23}},
        {2, 1U << 31, 24, false, {kImpossible, 1U << 31}}, // the product wraps to 0 in 32 bits
        {SIZE_MAX, 2, 24, true, {kImpossible, 2}}, {1, 1, kMax + 1, false, {kImpossible, 1}},
        // clang-format on
    };
    for (const auto& row : rows) {
        const auto [bytes, capacity] =
            ze::blockSize(row.elementSize, row.capacity, row.headerSpace, row.geometric);
        EXPECT_EQ(std::pair(bytes, capacity), row.size) << "row " << &row - rows;
    }
}

/// Count, size, capacity and whether it is reserved.
using Header = std::tuple<int32_t, int32_t, uint32_t, uint32_t>;

Header header(const D* block) {
    return {block->refCount, block->size, block->capacity, block->reserved};
}

TEST(ArrayData, AllocateFillsTheHeaderAndNeedsNoMemoryWithoutCapacity) {
    const struct {
        size_t elementSize, alignment, capacity;
        int options;
        Header header;
    } rows[] = {
        {1, 8, 0, D::HeaderOnly, {1, 0, 0, 0}},
        {4, 8, 5, D::NonShared | D::GrowGeometric, {0, 0, 10, 0}},
        {1, 64, 100, D::ReserveCapacity | D::GrowGeometric, {1, 0, 256 - 24 - 56, 1}},
        {1, 8, 0, D::ReserveCapacity, {-1, 0, 0, 0}},
        {2, 64, 0, D::GrowGeometric, {-1, 0, 0, 0}},
        {2, 8, 0, D::NonShared, {0, 0, 0, 0}}, // its count says "free me", deallocate ignores it
    };
    for (const auto& row : rows) {
        D* const block = D::allocate(row.elementSize, row.alignment, row.capacity, row.options);
        ASSERT_TRUE(block);
        const bool isStatic = row.capacity == 0 && row.options != D::HeaderOnly;
        EXPECT_EQ(header(block), row.header);
        EXPECT_TRUE(isStatic || reinterpret_cast<uintptr_t>(block->data()) % row.alignment == 0);
        EXPECT_TRUE(row.alignment > 8 || block->dataIsInline());
        EXPECT_TRUE(!isStatic || *static_cast<const uint32_t*>(block->data()) == 0); // terminates any element
        std::memset(block->data(), 0x66, block->capacity * row.elementSize);
        if (block->release())
            D::deallocate(block, row.elementSize, row.alignment);
    }
}

TEST(ArrayData, ReallocateKeepsWhatItDoesNotSet) {
    EXPECT_EQ(D::allocate(2, 8, kMax / 2, 0), nullptr);
    EXPECT_EQ(D::allocate(1, 1UL << 40, 1, 0), nullptr);
    D* block = D::allocate(2, 8, 5, D::NonShared);
    block->size = 3;
    std::memcpy(block->data(), "abcdef", 6);
    EXPECT_EQ(D::reallocateUnaligned(block, 2, kMax, 0), nullptr);
    block = D::reallocateUnaligned(block, 2, 1000, D::GrowGeometric | D::ReserveCapacity);
    EXPECT_EQ(header(block), Header(0, 3, (2048 - kHeader) / 2, 1));
    block = D::reallocateUnaligned(block, 2, 4, 0);
    EXPECT_EQ(header(block), Header(0, 3, 4, 0));
    EXPECT_TRUE(block->dataIsInline());
    EXPECT_EQ(std::memcmp(block->data(), "abcdef", 6), 0);
    D::deallocate(block, 2, 8);
}

TEST(ArrayData, StaticBlocksAreNeverWritten) {
    std::array<char, 2 * kHeader> null, empty;
    const void* const emptyBlock = D::allocate(1, 8, 0, 0);
    std::memcpy(null.data(), D::shared_null, null.size());
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
    EXPECT_EQ(std::memcmp(null.data(), D::shared_null, null.size()), 0);
    EXPECT_EQ(std::memcmp(empty.data(), emptyBlock, empty.size()), 0);
}

// The thread sanitizer is the judge of the rest.
TEST(Sharing, CopiesLiveOnDifferentThreads) {
    const CZeString string = text(u"one block");
    std::vector<std::thread> threads;
    for (const char letter : {'a', 'b', 'c', 'd'}) {
        // Each thread starts from a copy of its own, and the last owner of a block may be any of them.
        threads.emplace_back([letter, string] {
            for (int i = 0; i < 500; ++i) {
                CZeString s = string;
                s.append(letter);
                ASSERT_EQ(utf8(s), std::string("one block") + letter);
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(utf8(string), "one block");
}

} // namespace
