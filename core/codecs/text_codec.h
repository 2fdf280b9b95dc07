// The two 8-bit encodings that the core library knows.

#pragma once

#include "core/codecs/utf8_decoder.h"
#include "core/export.h"
#include "core/tools/ze_string.h"

/// UTF-8 or ISO-8859-1, chosen by name or by IANA MIB number. Any other number is unsupported: converting
/// with it logs the warning "Unsupported mib!" and gives a null result. A codec may be used on any thread, a
/// state on one at a time.
class ZE_EXPORT CZeTextCodec {
public:
    /// Character sets as IANA numbers them.
    enum Mib : int { NoCodec = 0, Latin1 = 4, Utf8 = 106 };

    /// What must be kept between pieces of UTF-8: whether text has begun, and a sequence that was cut off.
    class State {
        friend class CZeTextCodec;
        ze::Utf8Decoder m_decoder;
    };

    /// 106 for "utf-8"; 4 for "iso-8859-1", "iso8859-1", "cp819", "ibm819", "iso-ir-100" and "csisolatin1"; 0
    /// for any other name. Case is ignored.
    static int mibForName(const CZeByteArray& name);

    /// Decodes `size` bytes, or up to the terminating zero when `size` is negative. A null pointer gives the
    /// null string. Malformed UTF-8 becomes U+FFFD and a byte-order mark at the start is dropped, as in
    /// CZeString::fromUtf8. With a state the bytes continue those of the previous call, and a sequence cut
    /// off at the end is kept in it for the next. When there is no memory the result is null and the state
    /// stays.
    static CZeString decode(int mib, const char* bytes, int size = -1, State* state = nullptr);
    /// Ends text decoded in pieces: returns U+FFFD if a sequence is still cut off, else the empty string. The
    /// state is then as new.
    static CZeString finish(State& state);
    /// As CZeString::toUtf8 and toLatin1, which write '?' for what they cannot encode.
    static CZeByteArray encode(int mib, const CZeString& text);

    /// The codec of that name, with the MIB 0 if there is none.
    explicit CZeTextCodec(const CZeByteArray& name) : m_mib(mibForName(name)) {}

    /// A value of Mib.
    int mib() const { return m_mib; }
    /// Whether there is such a codec.
    bool isValid() const { return m_mib != NoCodec; }
    /// As `decode`; a null array gives the null string.
    CZeString toUnicode(const CZeByteArray& bytes, State* state = nullptr) const {
        return decode(m_mib, bytes.isNull() ? nullptr : bytes.constData(), bytes.size(), state);
    }
    /// As `encode`.
    CZeByteArray fromUnicode(const CZeString& text) const { return encode(m_mib, text); }

private:
    int m_mib;
};
