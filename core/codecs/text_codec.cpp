#include "core/codecs/text_codec.h"

#include "core/tools/text_view.h"
#include "core/tools/uninitialized.h"
#include "core/tools/zero_terminated.h"
#include "core/warning.h"

#include <algorithm>
#include <iterator>
#include <string_view>

namespace {

/// Whether `name` is `alias`, which is in lower case and ASCII.
bool isNamed(const CZeByteArray& name, std::string_view alias) {
    return std::equal(name.begin(), name.end(), alias.begin(), alias.end(),
                      [](CZeChar l, CZeChar r) { return ze::foldAscii(l.unicode()) == r; });
}

constexpr std::string_view kLatin1Names[] = {"iso-8859-1", "iso8859-1",  "cp819",
                                             "ibm819",     "iso-ir-100", "csisolatin1"};

CZeString decodeUtf8Piece(const char* bytes, int size, ze::Utf8Decoder& decoder) {
    CZeString result = ze::uninitialized(static_cast<int64_t>(size) + 1); // an earlier piece may add one unit
    if (result.isNull())
        return result;
    result.truncate(decoder.decode(bytes, size, result.data()));
    return result;
}

void warnOfMib() {
    ze::coreWarning("Unsupported mib!");
}

} // namespace

int CZeTextCodec::mibForName(const CZeByteArray& name) {
    if (isNamed(name, "utf-8"))
        return Utf8;
    const bool isLatin1 = std::any_of(std::begin(kLatin1Names), std::end(kLatin1Names),
                                      [&name](std::string_view alias) { return isNamed(name, alias); });
    return isLatin1 ? Latin1 : NoCodec;
}

CZeString CZeTextCodec::decode(int mib, const char* bytes, int size, State* state) {
    switch (mib) {
    case Latin1:
        return CZeString::fromLatin1(bytes, size);
    case Utf8:
        if (!state || !bytes)
            return CZeString::fromUtf8(bytes, size);
        return decodeUtf8Piece(bytes, size < 0 ? ze::zeroTerminatedLength(bytes) : size, state->m_decoder);
    default:
        warnOfMib();
        return {};
    }
}

CZeString CZeTextCodec::finish(State& state) {
    CZeChar last;
    return CZeString(&last, state.m_decoder.finish(&last));
}

CZeByteArray CZeTextCodec::encode(int mib, const CZeString& text) {
    switch (mib) {
    case Latin1:
        return text.toLatin1();
    case Utf8:
        return text.toUtf8();
    default:
        warnOfMib();
        return {};
    }
}
