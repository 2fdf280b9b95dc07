// Search and replacement against a plain model, and strings made of others. The fuzz corpora replace.

#include "tests/core/text.h"

#include <gmock/gmock.h>

#include <climits>
#include <vector>

namespace {

/// Every text of up to `length` units out of three, two of which are one letter without case.
std::vector<std::u16string> allTexts(size_t length) {
    std::vector<std::u16string> texts{u""};
    for (size_t i = 0; i < texts.size(); ++i) {
        for (const char16_t unit : {u'a', u'A', u'b'})
            if (texts[i].size() < length)
                texts.push_back(texts[i] + unit);
    }
    return texts;
}

std::u16string folded(std::u16string text, Ze::CaseSensitivity cs) {
    for (char16_t& unit : text)
        unit = cs == Ze::CaseInsensitive && unit == u'A' ? u'a' : unit;
    return text;
}

TEST(StringSearch, FollowsAPlainModel) {
    for (const auto& haystack : allTexts(4)) {
        for (const auto& sought : allTexts(2)) {
            for (const auto cs : {Ze::CaseSensitive, Ze::CaseInsensitive}) {
                SCOPED_TRACE(utf8(text(haystack.c_str())) + "|" + utf8(text(sought.c_str())));
                const CZeString string = text(haystack.c_str()), needle = text(sought.c_str());
                const std::u16string all = folded(haystack, cs), part = folded(sought, cs);
                int count = 0;
                for (size_t at = 0; (at = all.find(part, at)) != std::u16string::npos; ++at)
                    ++count;
                EXPECT_EQ(string.count(needle, cs), count); // overlapping ones, too
                EXPECT_EQ(string.startsWith(needle, cs), all.starts_with(part));
                EXPECT_EQ(string.endsWith(needle, cs), all.ends_with(part));
                for (int from = -6; from <= 6; ++from) {
                    const int start = from < 0 ? from + string.size() : from;
                    const int last =
                        start < 0 ? -1 : static_cast<int>(all.rfind(part, static_cast<size_t>(start)));
                    EXPECT_EQ(string.indexOf(needle, from, cs),
                              static_cast<int>(all.find(part, static_cast<size_t>(std::max(start, 0)))));
                    EXPECT_EQ(string.lastIndexOf(needle, from, cs), last) << from;
                }
            }
        }
    }
}

TEST(StringReplace, KeepsABlockWithRoomAndTakesOwnUnits) {
    CZeString s = text(u"a-b-c");
    s.reserve(50);
    const void* const block = s.constData();
    s.replace('-', CZeLatin1String(", "));
    EXPECT_EQ(utf8(s.remove(CZeChar(',')).remove(1, 1).replace(0, 1, 'A')), "Ab c");
    EXPECT_EQ(s.constData(), block);
    EXPECT_EQ(utf8(s.replace(s.midRef(1, 1), s)), "AAb c c");
    EXPECT_EQ(utf8(s.replace(2, 1, s.leftRef(3))), "AAAAb c c");
    EXPECT_EQ(utf8(s.remove(s.rightRef(2))), "AAAAb");
    EXPECT_TRUE(s.remove(s).isEmpty() && !s.isNull() && CZeString().replace('a', 'b').isNull());
}

TEST(StringReplace, TakesCharactersForUnits) {
    CZeString s = text(u"banAna");
    EXPECT_EQ(utf8(s.replace('a', u'o', Ze::CaseInsensitive)), "bonono");
    EXPECT_EQ(utf8(s.remove('O', Ze::CaseInsensitive)), "bnn");
    EXPECT_EQ(utf8(s.replace(u'n', 'm').remove(u'b') + CZeString(0, 'x') + CZeString(2, u'x')), "mmxx");
}

TEST(StringSearch, TakesEveryFormOfText) {
    const CZeString s = text(u"x\u00E9X\u00C9x");
    const CZeString needle = text(u"X");
    EXPECT_TRUE(s.indexOf(CZeStringRef(&needle)) == 2 && s.indexOf(CZeLatin1String("X")) == 2);
    EXPECT_EQ(s.lastIndexOf('\xE9', -1, Ze::CaseInsensitive), 1); // only A to Z fold
    EXPECT_TRUE(s.startsWith(CZeString()) && CZeString().endsWith(CZeStringRef()) &&
                !CZeString().startsWith('x'));
}

TEST(StringBuilding, RepeatsPadsAndEscapes) {
    const CZeString ab = text(u"ab");
    const std::pair<CZeString, const char*> rows[] = {
        // clang-format off
        {ab.repeated(3), "ababab"}, {ab.repeated(0), ""}, {ab.repeated(-1), ""}, {text(u"").repeated(9), ""},
        {ab.leftJustified(4, '.'), "ab.."}, {ab.rightJustified(4, '.'), "..ab"}, {ab.leftJustified(1), "ab"},
        {ab.leftJustified(1, ' ', true), "a"}, {ab.rightJustified(1, ' ', true), "a"},
        {ab.leftJustified(-1, ' ', true), ""}, {CZeString().rightJustified(2), "  "},
        {text(u"<a \"x\">&'\u00E9</a>").toHtmlEscaped(), "&lt;a &quot;x&quot;&gt;&amp;'\xC3\xA9&lt;/a&gt;"},
        // clang-format on
    };
    for (const auto& [result, contents] : rows)
        EXPECT_TRUE(utf8(result) == contents && !result.isNull()) << contents;
    for (const CZeString& same :
         {ab.repeated(1), ab.leftJustified(2), ab.rightJustified(0), ab.toHtmlEscaped()})
        EXPECT_EQ(same.constData(), ab.constData());
    EXPECT_TRUE(ab.repeated(1 << 30).isNull() && ab.leftJustified(INT_MAX).isNull() &&
                CZeString().repeated(2).isNull());
}

} // namespace
