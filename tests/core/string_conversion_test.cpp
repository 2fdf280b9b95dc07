// Conversions of strings, and their case against ICU. There is more of UTF-8 in codec_test.cpp, and the fuzz
// corpora go there and back.

#include "tests/core/text.h"

#include <gmock/gmock.h>

#include <vector>

#include <unicode/uchar.h>

namespace {

TEST(Ucs4, SubstitutesWhatIsNoCodePoint) {
    const char32_t codePoints[] = {'a', 0xD800, 0xDFFF, 0x10FFFF, 0x110000, 0xFFFFFFFF, 0};
    EXPECT_EQ(units(CZeString::fromUcs4(codePoints)), u"a\uFFFD\uFFFD\U0010FFFF\uFFFD\uFFFD");
    const CZeChar unpaired[] = {CZeChar(0xDC00), CZeChar(0xD800), CZeChar(0xD800), CZeChar(0xDC01)};
    EXPECT_EQ(bytes(CZeString(unpaired, 3).toUtf8()), "???"); // deliberately no U+FFFD
    const CZeList<char32_t> out = CZeString(unpaired, 4).toUcs4();
    EXPECT_THAT(std::vector<char32_t>(out.begin(), out.end()), testing::ElementsAre(0xFFFD, 0xFFFD, 0x10001));
}

TEST(Latin1, SixteenAtAStepIsTheUnitRule) {
    for (int size = 0; size <= 34; ++size) {
        for (int odd = 0; odd <= size; ++odd) { // where the unit stands that Latin-1 lacks
            std::vector<CZeChar> units;
            std::string narrow, widened;
            for (int i = 0; i < size; ++i) {
                constexpr char16_t kTooHigh[] = {0x100, 0x7FFF, 0x8000, 0xFFFF};
                units.push_back(i == odd ? CZeChar(kTooHigh[size % 4]) : CZeChar((0xFF - 37 * i) & 0xFF));
                narrow += i == odd ? '?' : static_cast<char>(0xFF - 37 * i);
            }
            CZeString string(units.data(), size); // a block of exactly this size
            EXPECT_EQ(bytes(string.toLatin1()), narrow);
            for (const CZeChar unit : CZeString::fromLatin1(narrow.data(), size))
                widened += static_cast<char>(unit.unicode());
            EXPECT_EQ(widened, narrow);
            EXPECT_EQ(bytes(std::move(string).toLatin1()), narrow);
        }
    }
}

TEST(Latin1, ATemporaryStringLendsItsBlock) {
    CZeString own = text(u"caf\u00E9 \u20AC and more");
    const void* const block = own.constData();
    const int capacity = own.capacity();
    CZeByteArray array = std::move(own).toLatin1();
    EXPECT_EQ(bytes(array), "caf\xE9 ? and more");
    EXPECT_EQ(array.constData(), block);
    EXPECT_EQ(array.capacity(), 2 * capacity);
    array.resize(array.capacity() - 1);
    CZeString shared = text(u"shared");
    const CZeString copy = shared;
    EXPECT_EQ(bytes(std::move(shared).toLatin1()) + utf8(copy), "sharedshared");
    const CZeChar foreign[] = {'r', 'a', 'w'};
    EXPECT_EQ(bytes(CZeString::fromRawData(foreign, 3).toLatin1()), "raw");
    EXPECT_EQ(foreign[0], CZeChar('r'));
}

TEST(Conversion, KeepsNullAndEmptyApart) {
    for (const CZeString& null :
         {CZeString::fromUtf8(static_cast<const char*>(nullptr), 3), CZeString::fromLatin1(nullptr, -1),
          CZeString::fromUcs4(nullptr), CZeString::fromUtf16(nullptr), CZeString::fromUtf8(CZeByteArray())}) {
        EXPECT_EQ(shown(null), "(null)");
        EXPECT_EQ(shown(null.toLatin1()), "(null)");
    }
    for (const CZeString& empty :
         {CZeString::fromUtf8(""), CZeString::fromUtf8("\xEF\xBB\xBF"), CZeString::fromAscii("x", 0),
          CZeString::fromUcs4(U""), CZeString::fromUtf16(u""), CZeString::fromLocal8Bit(CZeByteArray(""))}) {
        EXPECT_EQ(shown(empty), "");
        EXPECT_EQ(empty.capacity(), 0);
        EXPECT_EQ(shown(empty.toLatin1()), "");
    }
    EXPECT_EQ(CZeString::fromUtf8("abc\0def", 7).size(), 7);
    EXPECT_EQ(CZeString::fromUtf8("abc\0def").size(), 3);
}

TEST(StringCase, MapsEveryCodePointAsIcuDoes) {
    for (UChar32 codePoint = 0; codePoint <= 0x10FFFF; ++codePoint) {
        UVersionInfo age;
        u_charAge(codePoint, age);
        // Versions may know letters that others lack; 15 is that of the table.
        if ((codePoint >= 0xD800 && codePoint <= 0xDFFF) || age[0] == 0 || age[0] > 15)
            continue;
        const auto string = [](UChar32 one) {
            const auto unsignedOne = static_cast<char32_t>(one);
            return CZeString::fromUcs4(&unsignedOne, 1);
        };
        const CZeList<char32_t> back = string(codePoint).toUcs4();
        ASSERT_EQ(std::u32string(back.begin(), back.end()),
                  std::u32string(1, static_cast<char32_t>(codePoint)));
        ASSERT_EQ(string(codePoint).toLower(), string(u_tolower(codePoint))) << codePoint;
        ASSERT_EQ(string(codePoint).toUpper(), string(u_toupper(codePoint))) << codePoint;
    }
}

TEST(StringCase, MapsTextsAndReusesBlocks) {
    const struct {
        std::u16string text, lower, upper;
    } rows[] = {
        {u"@AZ[`az{ \u00C4\u00DF\u00FF", u"@az[`az{ \u00E4\u00DF\u00FF", u"@AZ[`AZ{ \u00C4\u00DF\u0178"},
        {u"x\U00010400\U00010428y", u"x\U00010428\U00010428y", u"X\U00010400\U00010400Y"},
        {{0xD801, 'A', 0xDC00, 0xD801}, {0xD801, 'a', 0xDC00, 0xD801}, {0xD801, 'A', 0xDC00, 0xD801}},
        {u"\u0130\u01C5", u"i\u01C6", u"\u0130\u01C4"}, // no case of its own beside the title one
    };
    for (const auto& row : rows) {
        const CZeString s = text(row.text);
        for (const bool isLower : {true, false}) {
            const CZeString mapped = isLower ? s.toLower() : s.toUpper();
            CZeString own(s.unicode(), s.size());
            const void* const block = own.constData();
            const CZeString moved = isLower ? std::move(own).toLower() : std::move(own).toUpper();
            EXPECT_EQ(units(mapped), isLower ? row.lower : row.upper);
            EXPECT_EQ(moved, mapped);
            EXPECT_EQ(moved.constData(), block);
            EXPECT_EQ(units(s), row.text);
            EXPECT_EQ(mapped.constData() == s.constData(), mapped == s);
        }
    }
    EXPECT_TRUE(CZeString().toLower().isNull());
}

} // namespace
