// Construction and storage of strings.

#include "core/tools/ze_string.h"
#include "core/tools/zero_terminated.h"

#include <algorithm>
#include <iterator>

namespace {

using UnitStorage = ze::SharedArray<CZeChar>;

UnitStorage copyUnits(const CZeChar* units, int size) {
    if (!units)
        return {};
    return UnitStorage::copyOf(units, size < 0 ? ze::zeroTerminatedLength(units) : size);
}

} // namespace

CZeString::CZeString(const CZeChar* units, int size) : m_array(copyUnits(units, size)) {}

CZeString::CZeString(int count, CZeChar unit) : m_array(UnitStorage::filled(count, unit)) {}

CZeString::CZeString(int count, Ze::Initialization)
    : m_array(count < 1 ? UnitStorage::empty() : UnitStorage::uninitialized(count)) {}

CZeString::CZeString(CZeChar unit) : m_array(UnitStorage::filled(1, unit)) {}

CZeString::CZeString(CZeLatin1String text) : CZeString(fromLatin1(text.data(), text.size())) {}

CZeString::CZeString(const CZeStringRef& text) : CZeString(text.toString()) {}

CZeString CZeString::fromRawData(const CZeChar* units, int size) {
    if (!units)
        return {};
    return CZeString(size < 1 ? UnitStorage::empty() : UnitStorage::wrapping(units, size));
}

const char16_t* CZeString::utf16() const {
    const bool isTerminated = !m_array.wrapsForeignMemory() || m_array.detach();
    return isTerminated ? reinterpret_cast<const char16_t*>(unicode()) : nullptr;
}

void CZeString::resize(int size, CZeChar fill) {
    const int oldSize = this->size();
    resize(size);
    if (this->size() > oldSize)
        std::fill(m_array.units() + oldSize, m_array.units() + this->size(), fill);
}

void CZeString::reserve(int size) {
    const uint32_t needed = static_cast<uint32_t>(std::max(size, this->size())) + 1;
    m_array.reallocData(std::max(needed, m_array.capacity()), SZeArrayData::ReserveCapacity);
}

void CZeString::reallocData(uint32_t capacity, bool grow) {
    m_array.reallocData(capacity, m_array.keptOptions() | (grow ? SZeArrayData::GrowGeometric : 0));
}

void CZeString::expand(int position) {
    if (position >= size() && position < INT32_MAX)
        resize(position + 1, ' ');
}

void CZeString::truncate(int position) {
    if (position < size())
        resize(position);
}

void CZeString::chop(int count) {
    if (count > 0)
        resize(size() - count);
}

CZeString& CZeString::fill(CZeChar unit, int size) {
    if (size >= 0)
        resize(size);
    if (size >= 0 && this->size() != size)
        return *this;
    if (CZeChar* const units = data())
        std::fill_n(units, this->size(), unit);
    return *this;
}

bool CZeString::isSimpleText() const {
    // Hebrew to Myanmar; Tagalog to Mongolian; Limbu to Ol Chiki; Sundanese and Vedic; Syloti Nagri to Meetei
    // Mayek, twice; the presentation forms of Hebrew and of Arabic.
    static constexpr struct {
        char16_t first, last;
    } kComplex[] = {{0x0590, 0x109F}, {0x1700, 0x18AF}, {0x1900, 0x1C7F}, {0x1CC0, 0x1CFF},
                    {0xA800, 0xAAFF}, {0xABC0, 0xABFF}, {0xFB1D, 0xFDFF}, {0xFE70, 0xFEFC}};
    return std::none_of(begin(), end(), [](CZeChar unit) {
        return std::any_of(std::begin(kComplex), std::end(kComplex),
                           [unit](auto range) { return unit >= range.first && unit <= range.last; });
    });
}
