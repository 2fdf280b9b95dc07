#include "core/tools/byte_array.h"

#include "core/tools/c_locale.h"

#include <cstdio>
#include <functional>

namespace {

using ByteStorage = ze::SharedArray<char>;

ByteStorage copyBytes(const char* bytes, int size) {
    if (!bytes)
        return {};
    if (size >= 0)
        return ByteStorage::copyOf(bytes, size);
    const size_t length = std::strlen(bytes);
    return length > static_cast<size_t>(INT32_MAX) ? ByteStorage()
                                                   : ByteStorage::copyOf(bytes, static_cast<int>(length));
}

} // namespace

CZeByteArray::CZeByteArray(const char* bytes, int size) : m_array(copyBytes(bytes, size)) {}

CZeByteArray::CZeByteArray(int count, char byte) : m_array(ByteStorage::filled(count, byte)) {}

CZeByteArray::CZeByteArray(int count, Ze::Initialization)
    : m_array(ByteStorage::uninitialized(std::max(count, 0))) {}

CZeByteArray& CZeByteArray::operator=(const char* text) {
    if (!text || !*text) {
        m_array = copyBytes(text, 0);
        return *this;
    }
    const size_t length = std::strlen(text);
    if (length >= static_cast<size_t>(INT32_MAX))
        return *this;
    const auto needed = static_cast<uint32_t>(length) + 1;
    const uint32_t capacity = m_array.capacity();
    const bool fits = !m_array.isShared() && needed <= capacity &&
                      (needed >= capacity / 2 || static_cast<size_t>(m_array.size()) <= length);
    if (!fits) {
        constexpr std::less<> before;
        const bool isOwnText = !before(text, begin()) && before(text, end());
        if (isOwnText) {
            const CZeByteArray copy(text, static_cast<int>(length));
            if (!copy.isNull())
                *this = copy.constData();
            return *this;
        }
        if (!m_array.reallocData(needed, m_array.keptOptions()))
            return *this;
    }
    std::memmove(m_array.units(), text, needed);
    m_array.setSize(static_cast<int>(length));
    return *this;
}

void CZeByteArray::truncate(int size) {
    if (size < m_array.size())
        m_array.resize(size);
}

CZeByteArray& CZeByteArray::setNum(double value, char format, int precision) {
    char pattern[32];
    if (precision < 0)
        std::snprintf(pattern, sizeof pattern, "%%%c", format);
    else
        std::snprintf(pattern, sizeof pattern, "%%.%d%c", precision, format);

    char text[128];
    const ze::InCLocale scope;
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
    const int length = std::snprintf(text, sizeof text, pattern, value);
#pragma GCC diagnostic pop
    m_array = ByteStorage::copyOf(text, std::min(length, static_cast<int>(sizeof text) - 1));
    return *this;
}

int CZeByteArray::compare(const CZeByteArray& left, const CZeByteArray& right) {
    const int common = std::min(left.size(), right.size());
    const int order = std::memcmp(left.constData(), right.constData(), static_cast<size_t>(common));
    return order != 0 ? order : left.size() - right.size();
}
