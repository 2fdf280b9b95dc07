// The implicitly shared byte array.

#pragma once

#include "core/export.h"
#include "core/tools/shared_array.h"
#include "core/tools/ze_namespace.h"

/// Bytes in one shared block. Copies are cheap and independent: a change first takes a private copy of a
/// shared block. A zero byte, not counted in the size, always follows the last byte. A null array is an empty
/// one that was never given contents.
///
/// Sizes are at most about 2^31. Nothing throws: a change that cannot get its memory leaves the array as it
/// was, a construction gives the null array; whoever must know compares `size()` with what was asked for.
/// Different objects may be used on different threads at once, also when they are copies of each other.
class ZE_EXPORT CZeByteArray {
public:
    /// The null array.
    CZeByteArray() = default;
    /// Copies `size` bytes, or up to the terminating zero when `size` is negative. A null pointer gives the
    /// null array, a length of 0 the empty one.
    CZeByteArray(const char* bytes, int size = -1);
    /// `count` times `byte`; a count below 1 gives the empty array.
    CZeByteArray(int count, char byte);
    /// `count` bytes (below 0: none) for the caller to fill.
    CZeByteArray(int count, Ze::Initialization);

    /// Copies the zero-terminated `text`, into the own block where that is private and fits well. A null
    /// pointer gives the null array. `text` may point into this array.
    CZeByteArray& operator=(const char* text);

    /// The number of bytes.
    int size() const { return m_array.size(); }
    int length() const { return m_array.size(); }
    /// Bytes that fit into the block, terminator included; 0 for null, empty and wrapped arrays.
    int capacity() const { return static_cast<int>(m_array.capacity()); }
    /// There are no bytes.
    bool isEmpty() const { return m_array.size() == 0; }
    /// The array was never given contents.
    bool isNull() const { return m_array.isNull(); }

    /// The bytes, valid until the array changes.
    const char* constData() const { return m_array.units(); }
    const char* data() const { return m_array.units(); }
    /// The bytes for writing, `size()` of them. Null when a private copy was needed and there is no memory.
    char* data() { return m_array.detach() ? m_array.units() : nullptr; }
    /// The range of the bytes.
    const char* begin() const { return m_array.units(); }
    const char* end() const { return m_array.units() + m_array.size(); }

    /// The byte at `index`, from 0 to `size()` − 1.
    char at(int index) const { return m_array.units()[index]; }
    char operator[](int index) const { return m_array.units()[index]; }
    /// The same for writing.
    char& operator[](int index) { return data()[index]; }

    /// Sets the size; a negative one counts as 0, new bytes are uninitialized. Growth is geometric; the block
    /// shrinks only when the new size falls below half of its capacity and no capacity was reserved.
    void resize(int size) { m_array.resize(size); }
    /// Cuts the array to `size` bytes when it is longer.
    void truncate(int size);
    /// Moves the bytes into a private block of `capacity` bytes, terminator included, dropping those that do
    /// not fit. `options` are those of SZeArrayData::allocate; with ReserveCapacity later cuts keep the
    /// block.
    void reallocData(uint32_t capacity, int options) { m_array.reallocData(capacity, options); }

    /// `count` bytes from `position`, up to the end for a negative count. A position behind the end gives the
    /// null array, one at the end the empty array; what lies before the first byte is dropped from the range.
    CZeByteArray mid(int position, int count = -1) const {
        return CZeByteArray(m_array.slice(position, count));
    }
    /// The first or the last `count` bytes; all of them when there are fewer or `count` is negative.
    CZeByteArray left(int count) const { return CZeByteArray(m_array.slice(0, count)); }
    CZeByteArray right(int count) const { return CZeByteArray(m_array.sliceRight(count)); }

    /// Formats `value` as printf does in the "C" locale with the conversion `format` (one that takes a
    /// double, such as 'e', 'f' or 'g') and, unless negative, `precision`. At most 127 bytes are kept.
    CZeByteArray& setNum(double value, char format = 'g', int precision = 6);

    /// Below, at or above 0 as `left` sorts before, with or behind `right`: the bytes decide as memcmp sees
    /// them, then the difference of the sizes.
    static int compare(const CZeByteArray& left, const CZeByteArray& right);

    /// As `compare`.
    friend bool operator==(const CZeByteArray& l, const CZeByteArray& r) { return compare(l, r) == 0; }
    friend bool operator!=(const CZeByteArray& l, const CZeByteArray& r) { return compare(l, r) != 0; }
    friend bool operator<(const CZeByteArray& l, const CZeByteArray& r) { return compare(l, r) < 0; }
    friend bool operator>(const CZeByteArray& l, const CZeByteArray& r) { return compare(l, r) > 0; }
    friend bool operator<=(const CZeByteArray& l, const CZeByteArray& r) { return compare(l, r) <= 0; }
    friend bool operator>=(const CZeByteArray& l, const CZeByteArray& r) { return compare(l, r) >= 0; }

private:
    friend class CZeString; // turns its own block into that of a byte array

    explicit CZeByteArray(ze::SharedArray<char> array) : m_array(std::move(array)) {}

    ze::SharedArray<char> m_array;
};
