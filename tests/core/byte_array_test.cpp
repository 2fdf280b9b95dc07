#include "core/tools/byte_array.h"

#include "tests/core/text.h"

#include <gmock/gmock.h>

#include <climits>

namespace {

TEST(ByteArray, TellsNullFromEmpty) {
    const std::tuple<CZeByteArray, std::string, int> rows[] = {
        // clang-format off
        {CZeByteArray(nullptr, 5), "(null)", 0}, {CZeByteArray("abc", 0), "", 0}, {CZeByteArray(""), "", 0},
        {CZeByteArray("a\0b", 3), std::string("a\0b", 3), 4}, {CZeByteArray(3, 'x'), "xxx", 4},
        {CZeByteArray(-1, 'x'), "", 0}, {CZeByteArray(INT_MAX, 'x'), "(null)", 0},
        {CZeByteArray(-1, Ze::Uninitialized), "", 1},
        // clang-format on
    };
    for (const auto& [array, contents, capacity] : rows) {
        EXPECT_EQ(shown(array), contents);
        EXPECT_EQ(array.capacity(), capacity) << contents;
        EXPECT_EQ(*array.end(), '\0') << contents;
    }
}

/// `size` letters a, b, c and so on, in a block of exactly that size.
CZeByteArray letters(int size) {
    CZeByteArray array(size, Ze::Uninitialized);
    for (int i = 0; i < size; ++i)
        array[i] = static_cast<char>('a' + i % 26);
    return array;
}

TEST(ByteArray, ResizeGrowsByPowersAndShrinksBelowHalf) {
    const std::tuple<int, int, int> rows[] = {
        // clang-format off
        {0, 5, 6}, // out of the static block: exact
        {1000, 1001, 2048 - 24}, {1000, 499, 1001}, // 500 is half of 1001, not below
        {1000, 498, 1024 - 24}, {1000, 0, 0}, {1000, -7, 0}, {1000, INT_MAX, 1001}, // refused
        // clang-format on
    };
    for (const auto& [from, to, capacity] : rows) {
        CZeByteArray array = from == 0 ? CZeByteArray() : letters(from);
        const int size = to == INT_MAX ? from : std::max(to, 0);
        array.resize(to);
        EXPECT_EQ(array.size(), size);
        EXPECT_EQ(array.capacity(), capacity) << to;
        EXPECT_EQ(*array.end(), '\0');
        EXPECT_EQ(array.left(from), letters(size).left(from)) << to;
    }
}

TEST(ByteArray, ReservedCapacityIsKept) {
    CZeByteArray array = letters(100);
    array.reallocData(200, SZeArrayData::ReserveCapacity);
    const CZeByteArray first = array;
    array[0] = 'a'; // a private copy is reserved as well
    array.resize(0);
    EXPECT_EQ(array.capacity(), 101);
    EXPECT_EQ(*array.end(), '\0');
    const CZeByteArray second = array;
    array.resize(50); // whatever it is taken for
    array.resize(1);
    EXPECT_EQ(array.capacity(), 128 - 24);
    array = "abc";
    array.reallocData(2, 0);
    EXPECT_EQ(shown(array), "a");
    EXPECT_EQ(array.capacity(), 2);
    array.reallocData(0, 0);
    array.truncate(-1);
    EXPECT_EQ(shown(array), "");
    EXPECT_EQ(array.capacity(), 0);
}

TEST(ByteArray, ChangingACopyLeavesTheOriginal) {
    const CZeByteArray original("abc");
    CZeByteArray copy = original;
    copy[1] = 'X';
    EXPECT_EQ(bytes(copy), "aXc");
    (copy = original).resize(3);
    EXPECT_NE(copy.constData(), original.constData());
    (copy = original) = "xyz";
    copy = *&copy;
    EXPECT_EQ(bytes(CZeByteArray(std::move(copy))) + bytes(original), "xyzabc");
    CZeByteArray unshared = original;
    unshared.reallocData(8, SZeArrayData::NonShared);
    CZeByteArray second = unshared; // must not end up with the same block
    second[0] = 'Z';
    EXPECT_EQ(bytes(unshared), "abc");
}

TEST(ByteArray, AssigningTextReusesABlockThatFitsWell) {
    const struct {
        int capacity, size, reserved, length, newCapacity;
    } rows[] = {
        // clang-format off
        {100, 10, 0, 99, 100}, {100, 99, 0, 49, 100}, {100, 99, 0, 48, 49}, // below half
        {100, 9, 0, 9, 100}, {100, 10, 0, 9, 10}, // below half, but as long or shorter
        {100, 99, 1, 100, 101},
        // clang-format on
    };
    for (const auto& row : rows) {
        CZeByteArray array = letters(row.size);
        array.reallocData(static_cast<uint32_t>(row.capacity), row.reserved);
        array = letters(row.length).constData();
        EXPECT_EQ(array, letters(row.length));
        EXPECT_EQ(array.capacity(), row.newCapacity) << "row " << &row - rows;
        array.resize(0);
        EXPECT_EQ(array.capacity(), row.reserved ? row.newCapacity : 0);
    }
    for (const int offset : {1, 40, 99}) {
        CZeByteArray array = letters(100); // its own text, moved within the block or out of it
        const CZeByteArray expected = array.mid(offset);
        array = array.constData() + offset;
        EXPECT_EQ(array, expected);
    }
    CZeByteArray array("abc");
    EXPECT_EQ(shown(array = ""), "");
    EXPECT_EQ(shown(array = static_cast<const char*>(nullptr)), "(null)");
}

TEST(ByteArray, ComparesBytesThenSizes) {
    EXPECT_EQ(CZeByteArray::compare("ab", "abcde"), -3);
    EXPECT_GT(CZeByteArray::compare("b", "abc"), 0);
    EXPECT_EQ(CZeByteArray::compare(CZeByteArray(), ""), 0);
    EXPECT_GT(CZeByteArray("\x80"), CZeByteArray("a"));
    const CZeByteArray a("a"), b("b");
    EXPECT_EQ(relations(a, a) + relations(a, b) + relations(b, a), "eLGnlLngG");
}

} // namespace
