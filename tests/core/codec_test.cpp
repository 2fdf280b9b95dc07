// Text codecs by name and number, and UTF-8 against ICU.

#include "core/codecs/text_codec.h"
#include "core/codecs/utf8_encoder.h"
#include "tests/core/text.h"
#include "tests/support/log_capture.h"

#include <gmock/gmock.h>

#include <random>

#include <unicode/unistr.h>
#include <unicode/ustring.h>

namespace {

TEST(TextCodec, IsFoundByName) {
    for (const char* const name : {"utf-8", "UTF-8"})
        EXPECT_EQ(CZeTextCodec::mibForName(name), 106);
    for (const char* const name : {"ISO-8859-1", "iso8859-1", "CP819", "ibm819", "ISO-IR-100", "csISOLatin1"})
        EXPECT_EQ(CZeTextCodec::mibForName(name), 4) << name;
    for (const char* const name : {"utf8", "utf-8 ", "utf-", "latin1", "iso-8859-2", ""})
        EXPECT_EQ(CZeTextCodec::mibForName(name), 0) << name;
    EXPECT_TRUE(CZeTextCodec("cp819").isValid());
    EXPECT_FALSE(CZeTextCodec(CZeByteArray()).isValid());
}

TEST(TextCodec, ConvertsBothWaysOrWarns) {
    LogCapture log;
    const CZeString e = text(u"\u00E9\u20AC");
    const CZeTextCodec utf8("utf-8"), latin1("cp819"), unknown("latin1");
    EXPECT_EQ(CZeTextCodec::decode(4, "\xE9"), CZeString(CZeChar(0xE9)));
    EXPECT_EQ(utf8.toUnicode("\xEF\xBB\xBF\xC3\xA9\xE2\x82\xAC"), e);
    EXPECT_EQ(bytes(utf8.fromUnicode(e)), "\xC3\xA9\xE2\x82\xAC");
    EXPECT_EQ(bytes(latin1.fromUnicode(e)), "\xE9?");
    EXPECT_EQ(CZeTextCodec::decode(106, "ab\xC3", 2), text(u"ab"));
    EXPECT_EQ(shown(utf8.toUnicode("")), "");
    EXPECT_EQ(shown(latin1.toUnicode(CZeByteArray())), "(null)");
    EXPECT_THAT(log.texts(), testing::IsEmpty());
    for (const CZeString& nothing :
         {CZeTextCodec::decode(3, "x", 1), unknown.toUnicode(""), unknown.toUnicode(CZeByteArray())})
        EXPECT_EQ(shown(nothing), "(null)");
    EXPECT_EQ(shown(unknown.fromUnicode(e)), "(null)");
    EXPECT_EQ(log.texts(), std::vector<std::string>(4, "Unsupported mib!"));
}

std::u16string decodedByIcu(const std::string& bytes) {
    const bool hasMark = bytes.starts_with("\xEF\xBB\xBF"); // which the library drops
    const icu::UnicodeString units = icu::UnicodeString::fromUTF8(bytes);
    return std::u16string(units.getBuffer(), static_cast<size_t>(units.length())).substr(hasMark);
}

std::string encodedByIcu(const std::u16string& units) {
    std::string bytes(units.size() * 3 + 1, '\0');
    int32_t size = 0;
    UErrorCode error = U_ZERO_ERROR;
    u_strToUTF8WithSub(bytes.data(), static_cast<int32_t>(bytes.size()), &size, units.data(),
                       static_cast<int32_t>(units.size()), '?', nullptr, &error);
    EXPECT_TRUE(U_SUCCESS(error));
    return bytes.substr(0, static_cast<size_t>(size));
}

TEST(Utf8, ConvertsAsByIcuInPiecesToo) {
    // clang-format off
    std::vector<std::string> runs = {"a\x7F", "plain text of more than thirty-two bytes, ", "\xC2\x80", "\xDF\xBF",
                                     "\xE0\xA0\x80", "\xE4\xB8\xAD", "\xEF\xBF\xBF", "\xF0\x90\x80\x80",
                                     "\xF4\x8F\xBF\xBF", "\xEF\xBB\xBF", "\xED\xA0\x80", "\xE0\x9F", "\xF4\x90"};
    // clang-format on
    constexpr size_t kWellFormed = 9; // of them, without the byte-order mark
    // The first and the last byte of every range that the rules tell apart, and zero.
    for (const char byte :
         "\x80\x8F\x90\x9F\xA0\xBB\xBF\xC0\xC1\xC2\xDF\xE0\xE1\xED\xEE\xEF\xF0\xF1\xF4\xF5\xFF")
        runs.emplace_back(1, byte);
    const std::u16string more[] = {u"", u"", u"", u"\xD800", u"\xDC00", std::u16string(1, u'\0')};
    std::minstd_rand random(1);
    const auto below = [&random](size_t limit) { return random() % limit; };
    for (int round = 0; round < 100000; ++round) {
        std::string input;
        std::u16string units;
        const size_t valid = below(2) ? runs.size() : kWellFormed;
        for (size_t i = below(24); i > 0; --i) {
            input += runs[below(valid)];
            units += decodedByIcu(runs[below(kWellFormed)]) + more[below(std::size(more))];
        }
        const CZeString whole = CZeTextCodec::decode(106, input.data(), static_cast<int>(input.size()));
        ASSERT_EQ(whole, text(decodedByIcu(input))) << round;
        ASSERT_EQ(*whole.end(), CZeChar());
        CZeTextCodec::State state;
        CZeString inPieces;
        for (size_t at = 0; at < input.size();) {
            const std::string next = input.substr(at, 1 + below(round % 2 ? 40 : 4));
            const std::vector<char> piece(next.begin(), next.end()); // of exactly that size
            inPieces += CZeTextCodec::decode(106, piece.data(), static_cast<int>(piece.size()), &state);
            at += piece.size();
        }
        ASSERT_EQ(inPieces + CZeTextCodec::finish(state), whole) << round;

        const CZeString string = text(units);
        ASSERT_EQ(bytes(string.toUtf8()), encodedByIcu(units)) << round;
        ASSERT_EQ(ze::utf8Length(string.unicode(), string.size()), string.toUtf8().size());
    }
}

} // namespace
