// The implicitly shared list that splitting a string returns.

#pragma once

#include "core/tools/array_data.h"

#include <cstdint>
#include <memory>
#include <utility>

/// Elements in one shared block; copies are cheap and independent, as with strings. `T` is relocatable by a
/// copy of its bytes, copies without throwing and needs an alignment of at most 8.
///
/// Nothing throws: an element that there is no memory for is not appended.
template <class T>
class CZeList {
    static_assert(alignof(T) <= 8);

public:
    /// The empty list.
    CZeList() noexcept : m_block(SZeArrayData::allocate(sizeof(T), kAlignment, 0, 0)) {}
    /// Shares the block of `other`.
    CZeList(const CZeList& other) noexcept : m_block(other.m_block) {
        (void)m_block->acquire(); // a list's block is never non-shared
    }
    /// Takes the elements of `other`, which is empty afterwards.
    CZeList(CZeList&& other) noexcept : CZeList() { std::swap(m_block, other.m_block); }
    /// Becomes a copy that shares the block.
    CZeList& operator=(CZeList other) noexcept {
        std::swap(m_block, other.m_block);
        return *this;
    }
    ~CZeList() {
        if (!m_block->release())
            return;
        std::destroy_n(elements(), m_block->size);
        SZeArrayData::deallocate(m_block, sizeof(T), kAlignment);
    }

    /// The number of elements.
    int size() const { return m_block->size; }
    /// There are no elements.
    bool isEmpty() const { return m_block->size == 0; }
    /// The element at `index`, from 0 to `size()` − 1.
    const T& at(int index) const { return elements()[index]; }
    const T& operator[](int index) const { return elements()[index]; }
    /// The range of the elements.
    const T* begin() const { return elements(); }
    const T* end() const { return elements() + m_block->size; }

    /// Adds `element`, which may be one of this list, at the end.
    void append(T element) {
        if (!makeRoom())
            return;
        new (static_cast<void*>(elements() + m_block->size)) T(std::move(element));
        ++m_block->size;
    }

    /// As many elements, and equal ones.
    friend bool operator==(const CZeList& l, const CZeList& r) {
        if (l.size() != r.size())
            return false;
        for (int i = 0; i < l.size(); ++i)
            if (!(l[i] == r[i]))
                return false;
        return true;
    }
    friend bool operator!=(const CZeList& l, const CZeList& r) { return !(l == r); }

private:
    static constexpr size_t kAlignment = 8;

    const T* elements() const { return static_cast<const T*>(m_block->data()); }
    T* elements() { return static_cast<T*>(m_block->data()); }

    /// A private block with room for one more element.
    bool makeRoom() {
        const size_t needed = static_cast<size_t>(m_block->size) + 1;
        const bool isPrivate = !m_block->isShared() && !m_block->isStatic();
        if (isPrivate && needed <= m_block->capacity)
            return true;
        if (isPrivate) {
            SZeArrayData* const moved =
                SZeArrayData::reallocateUnaligned(m_block, sizeof(T), needed, SZeArrayData::GrowGeometric);
            m_block = moved ? moved : m_block;
            return moved;
        }
        SZeArrayData* const fresh =
            SZeArrayData::allocate(sizeof(T), kAlignment, needed, SZeArrayData::GrowGeometric);
        if (!fresh)
            return false;
        std::uninitialized_copy_n(begin(), size(), static_cast<T*>(fresh->data()));
        fresh->size = m_block->size;
        CZeList previous;
        previous.m_block = std::exchange(m_block, fresh);
        return true;
    }

    SZeArrayData* m_block;
};
