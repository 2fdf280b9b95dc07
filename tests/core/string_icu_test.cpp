// Case mappings and conversions of strings, against ICU.

#include "tests/core/text.h"

#include <gmock/gmock.h>

#include <unicode/uchar.h>

namespace {

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
