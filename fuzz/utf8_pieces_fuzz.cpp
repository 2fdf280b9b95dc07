// Any bytes as UTF-8: however they are cut into pieces, decoding gives the same well-formed text.

#include "core/codecs/text_codec.h"
#include "fuzz/fuzz_input.h"

#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    FuzzInput input(data, size);
    unsigned cuts = input.byte() | static_cast<unsigned>(input.byte()) << 8;
    const std::string text = input.text();
    CZeTextCodec::State state;
    CZeString inPieces;
    for (size_t at = 0; at < text.size();) {
        cuts = (cuts * 25173 + 13849) & 0xFFFF;
        const size_t length =
            std::min((cuts >> 8) & (0xFFU >> (cuts & 7)), static_cast<unsigned>(text.size() - at));
        // A vector of the exact size, so that a sanitizer sees one byte too many.
        const std::vector<char> piece(text.data() + at, text.data() + at + length);
        inPieces += CZeTextCodec::decode(CZeTextCodec::Utf8, piece.data(), static_cast<int>(length), &state);
        at += length;
    }
    inPieces += CZeTextCodec::finish(state);
    const CZeString whole = CZeString::fromUtf8(text.data(), static_cast<int>(text.size()));
    require(inPieces == whole);

    // Nothing was malformed: the bytes come back, apart from a byte-order mark at the start.
    if (whole.indexOf(CZeChar::Replacement) < 0) {
        const std::string expected = text.substr(text.rfind("\xEF\xBB\xBF", 0) == 0 ? 3 : 0);
        const CZeByteArray bytes = whole.toUtf8();
        require(expected == std::string(bytes.begin(), bytes.end()));
    }
    return 0;
}
