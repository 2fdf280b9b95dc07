// Takes the bytes of a fuzzer apart.

#pragma once

#include "core/tools/ze_string.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

/// What must hold for every input.
inline void require(bool condition) {
    if (!condition)
        std::abort();
}

/// Hands out bytes from the front. Behind the end there are zeros, or nothing.
class FuzzInput {
public:
    FuzzInput(const uint8_t* data, size_t size) : m_next(data), m_end(data + size) {}

    uint8_t byte() { return static_cast<uint8_t>(m_next == m_end ? 0 : *m_next++); }

    /// Up to `count` bytes.
    std::string text(size_t count = SIZE_MAX) {
        const uint8_t* const first = m_next;
        m_next += std::min(count, static_cast<size_t>(m_end - m_next));
        return std::string(first, m_next);
    }

    /// Up to `count` units, two bytes for each, the lower one first.
    std::u16string units(size_t count = SIZE_MAX) {
        std::u16string result;
        for (; result.size() < count && m_end - m_next >= 2; m_next += 2)
            result.push_back(static_cast<char16_t>(m_next[0] | m_next[1] << 8));
        return result;
    }

private:
    const uint8_t* m_next;
    const uint8_t* const m_end;
};

inline CZeString toString(const std::u16string& units) {
    return CZeString::fromUtf16(units.data(), static_cast<int>(units.size()));
}

inline bool isSame(const CZeString& text, const std::u16string& units) {
    return units == std::u16string(reinterpret_cast<const char16_t*>(text.unicode()),
                                   static_cast<size_t>(text.size()));
}
