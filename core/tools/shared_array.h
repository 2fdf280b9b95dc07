// The one pointer inside byte arrays and strings: an implicitly shared, copy-on-write, zero-terminated array.

#pragma once

#include "core/tools/array_data.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <type_traits>
#include <utility>

namespace ze {

/// What a slice of a container is.
enum class Slice {
    Null,   ///< The range lies outside: a null container.
    Empty,  ///< Nothing: an empty container.
    Full,   ///< Everything: a shared copy.
    Subset, ///< `count` elements from `position`, both adjusted to lie inside.
};

/// Slices `count` elements from `position` out of `length`. A negative count means up to the end; the part of
/// the range before the first element is dropped.
constexpr Slice resolveSlice(int length, int& position, int& count) {
    if (position > length)
        return Slice::Null;
    if (position < 0) {
        if (count < 0 || count + position >= length)
            return Slice::Full;
        if (count + position <= 0)
            return Slice::Null;
        count += position;
        position = 0;
    } else if (static_cast<unsigned>(count) > static_cast<unsigned>(length - position)) {
        count = length - position;
    }
    if (position == 0 && count == length)
        return Slice::Full;
    return count > 0 ? Slice::Subset : Slice::Empty;
}

/// A counted block of trivially copyable units, always followed by one zero unit (except in wrapped foreign
/// memory). No operation throws. When there is no memory, or the size would pass the limit of a block, a
/// modification returns false and changes nothing, and a construction gives the null array.
template <class Unit>
class SharedArray {
    static_assert(std::is_trivially_copyable_v<Unit> && alignof(Unit) <= 8);

public:
    SharedArray() noexcept : m_block(SZeArrayData::shared_null) {}
    SharedArray(SharedArray&& other) noexcept
        : m_block(std::exchange(other.m_block, static_cast<SZeArrayData*>(SZeArrayData::shared_null))) {}
    SharedArray(const SharedArray& other) noexcept : m_block(other.m_block) {
        if (!m_block->acquire())
            m_block = copyOf(other.units(), other.size()).take();
    }
    SharedArray& operator=(SharedArray other) noexcept {
        std::swap(m_block, other.m_block);
        return *this;
    }
    ~SharedArray() {
        if (m_block->release())
            SZeArrayData::deallocate(m_block, sizeof(Unit), kAlignment);
    }

    /// The array without units that is not null.
    static SharedArray empty() { return adopt(SZeArrayData::allocate(sizeof(Unit), kAlignment, 0, 0)); }

    /// `count` units, at least 0, for the caller to fill, in a block of exactly that many and the terminator.
    static SharedArray uninitialized(int64_t count) {
        SZeArrayData* const block =
            SZeArrayData::allocate(sizeof(Unit), kAlignment, static_cast<size_t>(count) + 1, 0);
        if (!block)
            return {};
        SharedArray array = adopt(block);
        array.setSize(static_cast<int>(count));
        return array;
    }

    /// A copy of `count` units; of none for a count below 1.
    static SharedArray copyOf(const Unit* units, int count) {
        if (count < 1)
            return empty();
        SharedArray array = uninitialized(count);
        if (array.size() == count)
            std::memcpy(array.units(), units, static_cast<size_t>(count) * sizeof(Unit));
        return array;
    }

    /// `count` times `unit`; nothing for a count below 1.
    static SharedArray filled(int count, Unit unit) {
        if (count < 1)
            return empty();
        SharedArray array = uninitialized(count);
        std::fill_n(array.units(), array.size(), unit);
        return array;
    }

    /// A view of foreign memory, which must outlive the array and all its copies. It is never written.
    static SharedArray wrapping(const Unit* units, int count) {
        SZeArrayData* const block =
            SZeArrayData::allocate(sizeof(Unit), kAlignment, 0, SZeArrayData::HeaderOnly);
        if (!block)
            return {};
        block->size = count;
        block->dataOffset =
            static_cast<ptrdiff_t>(reinterpret_cast<uintptr_t>(units) - reinterpret_cast<uintptr_t>(block));
        return adopt(block);
    }

    /// Takes over the caller's reference to `block`; `take` gives it back and leaves the null array.
    static SharedArray adopt(SZeArrayData* block) { return SharedArray(block); }
    SZeArrayData* take() {
        return std::exchange(m_block, static_cast<SZeArrayData*>(SZeArrayData::shared_null));
    }

    int size() const { return m_block->size; }
    uint32_t capacity() const { return m_block->capacity; }
    bool isNull() const { return m_block == SZeArrayData::shared_null; }
    bool isShared() const { return m_block->isShared(); }
    bool wrapsForeignMemory() const { return !m_block->dataIsInline(); }
    const Unit* units() const { return static_cast<const Unit*>(m_block->data()); }
    /// The same for writing. Does not look for other owners: only for new blocks, or after `detach`.
    Unit* units() { return static_cast<Unit*>(m_block->data()); }

    /// Whether the block is on the heap, has this one owner and holds its data itself.
    bool isExclusive() const {
        return !m_block->isShared() && !m_block->isStatic() && m_block->dataIsInline();
    }

    /// Makes the units writable, by a private copy where they are shared or foreign.
    bool detach() {
        return isExclusive() || m_block->isStatic() ||
               reallocData(static_cast<uint32_t>(size()) + 1, keptOptions());
    }

    /// Gives the array a private block of `capacity` units, terminator included, made with `options`. The
    /// units that still fit are kept; a capacity of 0 gives the empty array.
    bool reallocData(uint32_t capacity, int options) {
        if (capacity == 0) {
            *this = empty();
            return true;
        }
        const int kept = static_cast<int>(std::min<uint32_t>(static_cast<uint32_t>(size()), capacity - 1));
        if (isExclusive()) {
            SZeArrayData* const block =
                SZeArrayData::reallocateUnaligned(m_block, sizeof(Unit), capacity, options);
            if (!block)
                return false;
            m_block = block;
            if (kept < size())
                setSize(kept);
            return true;
        }
        SZeArrayData* const block = SZeArrayData::allocate(sizeof(Unit), kAlignment, capacity, options);
        if (!block)
            return false;
        SharedArray fresh = adopt(block);
        std::memcpy(fresh.units(), std::as_const(*this).units(), static_cast<size_t>(kept) * sizeof(Unit));
        fresh.setSize(kept);
        std::swap(m_block, fresh.m_block);
        return true;
    }

    /// Sets the size to `count`, or to 0 for a negative one; new units are uninitialized. The block shrinks
    /// when the new size falls below half of its capacity and no capacity was reserved.
    bool resize(int count) {
        count = std::max(count, 0);
        const uint32_t needed = static_cast<uint32_t>(count) + 1;
        if (wrapsForeignMemory() && !isShared() && count < size()) {
            m_block->size = count; // the foreign memory gets no terminator
            return true;
        }
        if (count == 0 && !m_block->reserved) {
            *this = empty();
            return true;
        }
        if (size() == 0 && m_block->isStatic()) {
            SharedArray fresh = uninitialized(count);
            if (fresh.size() != count)
                return false;
            std::swap(m_block, fresh.m_block);
            return true;
        }
        const int options = SZeArrayData::GrowGeometric | keptOptions();
        if (isShared() || needed > capacity()) {
            if (!reallocData(needed, options))
                return false;
        } else if (!m_block->reserved && count < size() && needed < capacity() / 2) {
            reallocData(needed, options); // the old block still serves when this fails
        }
        setSize(count);
        return true;
    }

    /// Adds `count` units for the caller to fill and returns the first of them. Does nothing and returns null
    /// when `count` is below 1 or the block is shared or has no room for them.
    Unit* extend(int count) {
        const int oldSize = size();
        if (count < 1 || static_cast<uint32_t>(oldSize) + static_cast<uint32_t>(count) >= capacity() ||
            isShared())
            return nullptr;
        setSize(oldSize + count);
        return units() + oldSize;
    }

    /// Writes size and terminator into a block that has room for both.
    void setSize(int count) {
        m_block->size = count;
        units()[count] = Unit{};
    }

    /// The options that keep a reserved capacity reserved.
    int keptOptions() const { return m_block->reserved ? SZeArrayData::ReserveCapacity : 0; }

    /// The array that `resolveSlice` describes.
    SharedArray slice(int position, int count) const {
        switch (resolveSlice(size(), position, count)) {
        case Slice::Null:
            return {};
        case Slice::Empty:
            return empty();
        case Slice::Full:
            return *this;
        case Slice::Subset:
            break;
        }
        return copyOf(units() + position, count);
    }

    /// The last `count` units; all of them for a negative count.
    SharedArray sliceRight(int count) const { return count < 0 ? *this : slice(size() - count, count); }

private:
    static constexpr size_t kAlignment = 8;

    explicit SharedArray(SZeArrayData* block) noexcept : m_block(block) {}

    SZeArrayData* m_block;
};

} // namespace ze
