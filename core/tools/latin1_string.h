// A view on Latin-1 text.

#pragma once

#include <cstring>

/// A pointer to Latin-1 characters and their number. It owns nothing; the characters must outlive it.
class CZeLatin1String {
public:
    /// The null view.
    constexpr CZeLatin1String() = default;
    /// Up to the terminating zero; a null pointer gives the null view.
    explicit CZeLatin1String(const char* text)
        : m_data(text), m_size(text ? static_cast<int>(std::strlen(text)) : 0) {}
    /// `size` characters, at least 0.
    constexpr CZeLatin1String(const char* text, int size) : m_data(text), m_size(size) {}

    /// The first character; null for the null view.
    constexpr const char* data() const { return m_data; }
    constexpr const char* latin1() const { return m_data; }
    /// The number of characters.
    constexpr int size() const { return m_size; }
    /// The pointer is null.
    constexpr bool isNull() const { return !m_data; }
    /// There are no characters.
    constexpr bool isEmpty() const { return m_size == 0; }

private:
    const char* m_data = nullptr;
    int m_size = 0;
};
