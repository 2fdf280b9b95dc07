// The two 8-bit encodings that the core library knows.

#pragma once

#include "core/codecs/utf8_decoder.h"
#include "core/export.h"
#include "core/tools/ze_string.h"

/// UTF-8 or ISO-8859-1, chosen by name or by its IANA MIB number. Every other number is unsupported:
/// converting with it warns "Unsupported mib!" and gives a null result. A codec may be used on any thread, a
/// state on one at a time.
class ZE_EXPORT CZeTextCodec {
public:
    /// The numbers of the character sets, as IANA registers them.
    enum Mib : int { NoCodec = 0, Latin1 = 4, Utf8 = 106 };

    /// What UTF-8 fed in pieces needs to remember: whether it is at the start, and a sequence cut off.
    class State {
        friend class CZeTextCodec;
        ze::Utf8Decoder m_decoder;
    };

    /// 106 for "utf-8"; 4 for "iso-8859-1", "iso8859-1", "cp819", "ibm819", "iso-ir-100" and "csisolatin1"; 0
    /// for any other name. Case does not count.
    static int mibForName(const CZeByteArray& name);

    /// Decodes `size` bytes, or up to the terminating zero when `size` is negative. A null pointer gives the
    /// null string. Malformed UTF-8 becomes U+FFFD and a byte-order mark at the start is dropped, as in
    /// CZeString::fromUtf8. With a state the bytes go on from those of the call before: a sequence cut off at
    /// the end waits there for its rest. Without the memory for a piece the result is null and the state as
    /// before.
    static CZeString decode(int mib, const char* bytes, int size = -1, State* state = nullptr);
    /// Ends what was fed in pieces: U+FFFD for a sequence still cut off, else the empty string. The state is
    /// then as new.
    static CZeString finish(State& state);
    /// As CZeString::toUtf8 and toLatin1, which put '?' for what they cannot encode.
    static CZeByteArray encode(int mib, const CZeString& text);

    /// The codec of that name; with the MIB 0 when there is none.
    explicit CZeTextCodec(const CZeByteArray& name) : m_mib(mibForName(name)) {}

    /// A value of Mib.
    int mib() const { return m_mib; }
    /// There is such a codec.
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
