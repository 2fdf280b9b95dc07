// Strings from and to other encodings.

#include "core/codecs/ascii_run.h"
#include "core/codecs/utf8_decoder.h"
#include "core/codecs/utf8_encoder.h"
#include "core/tools/code_point.h"
#include "core/tools/latin1.h"
#include "core/tools/uninitialized.h"
#include "core/tools/zero_terminated.h"

#include <cstring>

namespace {

/// Calls `take` with each code point of `text`; with an unpaired surrogate as it is.
template <class Take>
void forEachCodePoint(const CZeString& text, Take take) {
    const CZeChar* const end = text.end();
    for (const CZeChar* unit = text.begin(); unit != end; ++unit) {
        if (ze::isPair(unit, end)) {
            take(CZeChar::codePoint(unit[0], unit[1]));
            ++unit;
        } else {
            take(static_cast<char32_t>(unit->unicode()));
        }
    }
}

constexpr bool isSurrogate(char32_t codePoint) {
    return (codePoint & 0xFFFFF800U) == 0xD800;
}

/// What a string without units converts to.
CZeByteArray emptyBytesOf(const CZeString& text) {
    return text.isNull() ? CZeByteArray() : CZeByteArray("", 0);
}

} // namespace

CZeString CZeString::fromLatin1(const char* text, int size) {
    if (!text)
        return {};
    return fromLatin1_helper(text, size < 0 ? ze::zeroTerminatedLength(text) : size);
}

CZeString CZeString::fromLatin1(const CZeByteArray& text) {
    return text.isNull() ? CZeString() : fromLatin1_helper(text.constData(), text.size());
}

CZeString CZeString::fromLatin1_helper(const char* text, int size) {
    CZeString result(size, Ze::Uninitialized);
    ze::widenLatin1(text, result.size(), result.m_array.units());
    return result;
}

CZeString CZeString::fromUtf8(const char* text, int size) {
    if (!text)
        return {};
    return fromUtf8_helper(text, size < 0 ? ze::zeroTerminatedLength(text) : size);
}

CZeString CZeString::fromUtf8(const CZeByteArray& text) {
    return text.isNull() ? CZeString() : fromUtf8_helper(text.constData(), text.size());
}

CZeString CZeString::fromUtf8_helper(const char* text, int size) {
    // No byte gives more than one unit, and the terminator's place is the one more that the decoder wants.
    CZeString result = ze::uninitialized(size);
    if (result.isNull())
        return result;
    ze::Utf8Decoder decoder;
    CZeChar* const units = result.m_array.units();
    int written = decoder.decode(text, size, units);
    written += decoder.finish(units + written);
    result.truncate(written);
    return result;
}

CZeString CZeString::fromUtf16(const char16_t* units, int size) {
    return CZeString(reinterpret_cast<const CZeChar*>(units), size);
}

CZeString CZeString::fromUcs4(const char32_t* codePoints, int size) {
    if (!codePoints)
        return {};
    if (size < 0)
        size = ze::zeroTerminatedLength(codePoints);
    int64_t length = size;
    for (int i = 0; i < size; ++i)
        length += codePoints[i] >= 0x10000 && codePoints[i] <= 0x10FFFF;
    CZeString result = ze::uninitialized(length);
    if (result.isNull())
        return result;
    CZeChar* out = result.m_array.units();
    for (int i = 0; i < size; ++i) {
        const bool isValid = codePoints[i] <= 0x10FFFF && !isSurrogate(codePoints[i]);
        out = ze::putCodePoint(isValid ? codePoints[i] : CZeChar::Replacement, out);
    }
    return result;
}

CZeByteArray CZeString::toLatin1_helper(const CZeString& text) {
    if (text.isEmpty())
        return emptyBytesOf(text);
    CZeByteArray result(text.size(), Ze::Uninitialized);
    ze::narrowToLatin1(text.unicode(), result.size(), result.m_array.units());
    return result;
}

/// Narrows the units where they lie and hands the block over as one of bytes, which leaves `text` null. A
/// block that is shared, static or foreign stays as it is.
CZeByteArray CZeString::toLatin1_helper_inplace(CZeString& text) {
    if (!text.m_array.isExclusive())
        return toLatin1_helper(text);
    const int size = text.size();
    SZeArrayData* const block = text.m_array.take();
    ze::narrowToLatin1(static_cast<const CZeChar*>(block->data()), size, static_cast<char*>(block->data()));
    block->capacity = block->capacity * static_cast<uint32_t>(sizeof(CZeChar)) & INT32_MAX;
    CZeByteArray result(ze::SharedArray<char>::adopt(block));
    result.m_array.setSize(size);
    return result;
}

CZeByteArray CZeString::toUtf8_helper(const CZeString& text) {
    if (text.isEmpty())
        return emptyBytesOf(text);
    const CZeChar* const units = text.unicode();
    const int size = text.size();
    const bool mayBeAscii = units[0].unicode() < 0x80;
    CZeByteArray ascii(mayBeAscii ? size : 0, Ze::Uninitialized);
    if (ascii.isNull())
        return ascii;
    const int done = ze::narrowAsciiRun(units, ascii.size(), ascii.m_array.units());
    if (done == size)
        return ascii;

    // From the first other unit on, each gets the room that it needs at most, if there can be so much.
    const int rest = size - done;
    int64_t room = done + static_cast<int64_t>(rest) * 3;
    if (room >= INT32_MAX)
        room = done + ze::utf8Length(units + done, rest);
    CZeByteArray result(ze::SharedArray<char>::uninitialized(room));
    if (result.isNull())
        return result;
    char* const bytes = result.m_array.units();
    std::memcpy(bytes, ascii.constData(), static_cast<size_t>(done));
    const auto written = ze::encodeUtf8(units + done, rest, bytes + done) - bytes;
    result.m_array.setSize(static_cast<int>(written));
    result.m_array.reallocData(static_cast<uint32_t>(written) + 1,
                               0); // gives back the rest if it can
    return result;
}

CZeList<char32_t> CZeString::toUcs4_helper(const CZeString& text) {
    CZeList<char32_t> result;
    int codePoints = 0;
    forEachCodePoint(text, [&](char32_t codePoint) {
        result.append(isSurrogate(codePoint) ? static_cast<char32_t>(CZeChar::Replacement) : codePoint);
        ++codePoints;
    });
    return result.size() == codePoints ? result : CZeList<char32_t>();
}
