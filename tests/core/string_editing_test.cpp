// Search and replacement against a plain model, and strings made of others. The fuzz corpora replace ranges.

#include "tests/core/text.h"

#include <gmock/gmock.h>

#include <climits>
#include <vector>

namespace {

/// Every text of up to `length` units out of three, two of which are one letter without case.
std::vector<std::u16string> allTexts(size_t length) {
    std::vector<std::u16string> texts{u""};
    for (size_t i = 0; i < texts.size(); ++i) {
        for (const char16_t unit : {u'a', u'A', u'b'}) {
            if (texts[i].size() < length)
                texts.push_back(texts[i] + unit);
        }
    }
    return texts;
}

std::u16string folded(std::u16string text, Ze::CaseSensitivity cs) {
    for (char16_t& unit : text)
        unit = cs == Ze::CaseInsensitive && unit == u'A' ? u'a' : unit;
    return text;
}

struct Case {
    std::u16string text; // as it is
    CZeString string, needle;
    std::u16string haystack, sought; // folded where the case does not count
    Ze::CaseSensitivity cs;
};

template <class Check>
void forEachCase(Check check) {
    for (const auto& text : allTexts(4)) {
        for (const auto& pattern : allTexts(2)) {
            for (const auto cs : {Ze::CaseSensitive, Ze::CaseInsensitive}) {
                SCOPED_TRACE(utf8(::text(text.c_str())) + "|" + utf8(::text(pattern.c_str())));
                check(Case{text, ::text(text.c_str()), ::text(pattern.c_str()), folded(text, cs),
                           folded(pattern, cs), cs});
            }
        }
    }
}

TEST(StringSearch, FollowsAPlainModel) {
    forEachCase([](const Case& c) {
        const int size = int(c.text.size());
        int count = 0;
        for (size_t at = 0; (at = c.haystack.find(c.sought, at)) != std::u16string::npos; ++at)
            ++count;
        EXPECT_EQ(c.string.count(c.needle, c.cs), count); // overlapping ones, too
        EXPECT_EQ(c.string.startsWith(c.needle, c.cs), c.haystack.starts_with(c.sought));
        EXPECT_EQ(c.string.endsWith(c.needle, c.cs), c.haystack.ends_with(c.sought));
        for (int from = -6; from <= 6; ++from) {
            const int start = from < 0 ? from + size : from;
            const size_t first = c.haystack.find(c.sought, size_t(std::max(start, 0)));
            const int last = start < 0 ? -1 : int(c.haystack.rfind(c.sought, size_t(start)));
            EXPECT_EQ(c.string.indexOf(c.needle, from, c.cs), int(first)) << from;
            EXPECT_EQ(c.string.lastIndexOf(c.needle, from, c.cs), last) << from;
        }
    });
}

TEST(StringReplace, FollowsAPlainModel) {
    forEachCase([](const Case& c) {
        for (const char16_t* const after : {u"", u"a", u"xy", u"wxyz"}) {
            std::u16string expected;
            size_t copied = 0;
            for (size_t at = 0;
                 !c.sought.empty() && (at = c.haystack.find(c.sought, at)) != std::u16string::npos;
                 at = copied = at + c.sought.size())
                expected += c.text.substr(copied, at - copied) + after;
            expected += c.text.substr(copied);
            for (CZeString s : {CZeString(c.string.unicode(), c.string.size()), c.string}) { // alone, shared
                EXPECT_EQ(units(s.replace(c.needle, text(after), c.cs)), expected);
                EXPECT_EQ(*s.end(), CZeChar());
            }
            EXPECT_EQ(units(c.string), c.text);
        }
    });
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

TEST(StringSearch, TakesEveryFormOfText) {
    const CZeString s = text(u"x\u00E9X\u00C9x");
    const CZeString needle = text(u"X");
    EXPECT_EQ(s.indexOf(needle) + s.indexOf(CZeStringRef(&needle)) + s.indexOf(CZeLatin1String("X")) +
                  s.indexOf('X') + s.indexOf(u'X') + s.indexOf(CZeChar('X')),
              6 * 2);
    EXPECT_EQ(s.count(CZeLatin1String("x"), Ze::CaseInsensitive), 3);
    EXPECT_EQ(s.lastIndexOf('\xE9', -1, Ze::CaseInsensitive), 1); // only A to Z fold
    EXPECT_TRUE(s.startsWith(CZeLatin1String("x\xE9")) && s.endsWith(s.rightRef(3)) && s.endsWith('x'));
    EXPECT_TRUE(s.startsWith(CZeString()) && CZeString().endsWith(CZeStringRef()) &&
                !CZeString().startsWith('x'));
}

TEST(StringBuilding, RepeatsPadsAndEscapes) {
    const CZeString ab = text(u"ab");
    const std::pair<CZeString, const char*> rows[] = {
        // clang-format off
        {ab.repeated(3), "ababab"}, {ab.repeated(0), ""}, {ab.repeated(-1), ""}, {text(u"").repeated(9), ""},
        {ab.leftJustified(4, '.'), "ab.."}, {ab.rightJustified(4, '.'), "..ab"}, {ab.leftJustified(1), "ab"},
        {ab.leftJustified(1, ' ', true), "a"}, {ab.rightJustified(1, ' ', true), "a"}, {ab.rightJustified(-1), "ab"},
        {ab.leftJustified(-1, ' ', true), ""}, {CZeString().rightJustified(2), "  "},
        {text(u"<a href=\"x\">&'\u00E9</a>").toHtmlEscaped(), "&lt;a href=&quot;x&quot;&gt;&amp;'\xC3\xA9&lt;/a&gt;"},
        // clang-format on
    };
    for (const auto& [result, contents] : rows)
        EXPECT_TRUE(utf8(result) == contents && !result.isNull()) << contents;
    EXPECT_EQ(utf8(ab), "ab");
    for (const CZeString& same :
         {ab.repeated(1), ab.leftJustified(2), ab.rightJustified(0), ab.toHtmlEscaped()})
        EXPECT_EQ(same.constData(), ab.constData());
    EXPECT_TRUE(ab.repeated(1 << 30).isNull() && ab.leftJustified(INT_MAX).isNull() &&
                CZeString().repeated(2).isNull());
}

} // namespace
