// Takes the bytes of a fuzzer apart.

#pragma once

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

private:
    const uint8_t* m_next;
    const uint8_t* const m_end;
};
