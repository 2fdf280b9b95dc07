// Text codecs by name and number, and UTF-8 against ICU. The fuzz corpora encode.

#include "core/codecs/text_codec.h"
#include "tests/core/text.h"
#include "tests/support/log_capture.h"

#include <gmock/gmock.h>

#include <vector>

#include <unicode/ustring.h>

namespace {

TEST(TextCodec, IsFoundByName) {
    const std::pair<const char*, int> rows[] = {
        // clang-format off
        {"utf-8", 106}, {"utf8", 0}, {"utf-8 ", 0}, {"ISO-8859-1", 4}, {"iso8859-1", 4}, {"CP819", 4},
        {"ibm819", 4}, {"ISO-IR-100", 4}, {"csISOLatin1", 4}, {"", 0}, {nullptr, 0}, {"\xD5TF-8", 0},
        // clang-format on
    };
    for (const auto& [name, mib] : rows)
        EXPECT_TRUE(CZeTextCodec::mibForName(name) == mib && CZeTextCodec(name).isValid() == (mib != 0))
            << mib;
}

TEST(TextCodec, ConvertsBothWaysOrWarns) {
    LogCapture log;
    const CZeString e = text(u"\u00E9\u20AC");
    EXPECT_EQ(CZeTextCodec::decode(4, "\xE9"), CZeString(CZeChar(0xE9)));
    EXPECT_EQ(CZeTextCodec("utf-8").toUnicode("\xEF\xBB\xBF\xC3\xA9\xE2\x82\xAC"), e);
    EXPECT_EQ(bytes(CZeTextCodec("utf-8").fromUnicode(e)), "\xC3\xA9\xE2\x82\xAC");
    EXPECT_EQ(bytes(CZeTextCodec("cp819").fromUnicode(e)), "\xE9?");
    EXPECT_EQ(CZeTextCodec::decode(106, "ab\xC3", 2), text(u"ab"));
    EXPECT_TRUE(CZeTextCodec::decode(106, nullptr).isNull() && !CZeTextCodec::decode(106, "").isNull());
    EXPECT_TRUE(CZeTextCodec("cp819").toUnicode(CZeByteArray()).isNull());
    EXPECT_TRUE(CZeTextCodec::decode(3, "x", 1).isNull());
    EXPECT_TRUE(CZeTextCodec("latin1").fromUnicode(e).isNull());
    EXPECT_THAT(log.texts(), testing::ElementsAre("Unsupported mib!", "Unsupported mib!"));
    EXPECT_EQ(log.entries().at(0).priority, 5);
}

std::u16string decodedByIcu(const std::string& bytes) {
    const bool hasMark = bytes.starts_with("\xEF\xBB\xBF"); // which the library drops
    std::u16string units(bytes.size() + 1, u'\0');
    int32_t size = 0;
    UErrorCode error = U_ZERO_ERROR;
    u_strFromUTF8WithSub(units.data(), int32_t(units.size()), &size, bytes.data() + 3 * hasMark,
                         int32_t(bytes.size()) - 3 * hasMark, 0xFFFD, nullptr, &error);
    EXPECT_TRUE(U_SUCCESS(error));
    return units.substr(0, size_t(size));
}

/// Decodes the two pieces beside `cut`, each out of and into blocks of exactly the size that is to suffice.
std::u16string decodedInPieces(ze::Utf8Decoder& decoder, const std::string& bytes, size_t cut) {
    std::u16string all;
    for (const std::string& piece : {bytes.substr(0, cut), bytes.substr(cut)}) {
        const std::vector<char> in(piece.begin(), piece.end());
        std::vector<CZeChar> out(in.size() + 1);
        out.resize(size_t(decoder.decode(in.data(), int(in.size()), out.data())));
        for (const CZeChar unit : out)
            all += unit.unicode();
    }
    CZeChar last;
    return decoder.finish(&last) ? all + last.unicode() : all;
}

TEST(Utf8, EveryKindOfSequenceDecodesAsByIcuInAnyTwoPieces) {
    // The first and the last byte of every range that the rules tell apart.
    const std::string kinds =
        "a\x80\x8F\x90\x9F\xA0\xBB\xBF\xC1\xC2\xDF\xE0\xE1\xED\xEE\xEF\xF0\xF1\xF4\xF5\xFF";
    const size_t count = kinds.size(), all = count * count * count * count;
    ze::Utf8Decoder decoder;                                                     // as new after each text
    const std::string plain = "plain text, longer than what is taken at a step"; // around the second half
    for (size_t code = 0; code < 2 * all; ++code) {
        std::string input = code < all ? "" : plain;
        for (size_t rest = code % all, i = 0; i < 4; ++i, rest /= count)
            input += kinds[rest % count];
        input += code < all ? "" : plain;
        const std::u16string expected = decodedByIcu(input);
        for (size_t cut = 0; cut <= 4; ++cut)
            ASSERT_EQ(decodedInPieces(decoder, input, code < all ? cut : plain.size() + cut), expected)
                << code << ' ' << cut;
    }
}

} // namespace
