// Search and replacement against plain models, edits, and strings made of others.

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
                SCOPED_TRACE(utf8(text(haystack)) + "|" + utf8(text(sought)));
                const CZeString string = text(haystack), needle = text(sought);
                const std::u16string all = folded(haystack, cs), part = folded(sought, cs);
                int count = 0;
                for (size_t at = 0; (at = all.find(part, at)) != std::u16string::npos; ++at)
                    ++count;
                EXPECT_EQ(string.count(needle, cs), count); // overlapping ones, too
                EXPECT_EQ(string.startsWith(needle, cs), all.starts_with(part));
                EXPECT_EQ(string.endsWith(needle, cs), all.ends_with(part));
                for (int from = -6; from <= 6; ++from) {
                    const int start = from < 0 ? from + string.size() : from;
                    const auto first = all.find(part, static_cast<size_t>(std::max(start, 0)));
                    const auto last = start < 0 ? all.npos : all.rfind(part, static_cast<size_t>(start));
                    EXPECT_EQ(string.indexOf(needle, from, cs), static_cast<int>(first)) << from;
                    EXPECT_EQ(string.lastIndexOf(needle, from, cs), static_cast<int>(last)) << from;
                }
            }
        }
    }
}

TEST(StringSearch, TakesEveryFormOfText) {
    const CZeString s = text(u"x\u00E9X\u00C9x"), needle = text(u"X");
    EXPECT_EQ(s.indexOf(CZeStringRef(&needle)), 2);
    EXPECT_EQ(s.indexOf(CZeLatin1String("X")), 2);
    EXPECT_EQ(s.lastIndexOf('\xE9', -1, Ze::CaseInsensitive), 1); // only A to Z fold
    EXPECT_TRUE(s.startsWith(CZeString()));
    EXPECT_TRUE(CZeString().endsWith(CZeStringRef()));
    EXPECT_FALSE(CZeString().startsWith(u'x'));
}

/// `all` with `after` in place of every `before`.
std::u16string replaced(std::u16string all, const std::u16string& before, const std::u16string& after,
                        Ze::CaseSensitivity cs) {
    for (size_t at = 0; !before.empty(); at += after.size()) {
        at = folded(all, cs).find(folded(before, cs), at);
        if (at == all.npos)
            break;
        all.replace(at, before.size(), after);
    }
    return all;
}

TEST(StringReplace, FollowsAPlainModel) {
    for (const auto& all : allTexts(4)) {
        const std::u16string own = all.substr(0, 2);
        for (const auto& before : allTexts(2)) {
            for (const auto cs : {Ze::CaseSensitive, Ze::CaseInsensitive}) {
                SCOPED_TRACE(utf8(text(all)) + "|" + utf8(text(before)));
                for (const std::u16string after : {u"", u"b", u"ab", u"a longer text"})
                    EXPECT_EQ(units(text(all).replace(text(before), text(after), cs)),
                              replaced(all, before, after, cs));
                EXPECT_EQ(units(text(all).remove(text(before), cs)), replaced(all, before, u"", cs));
                CZeString s = text(all), t = s;
                EXPECT_EQ(units(s.replace(text(before), s.leftRef(2), cs)), replaced(all, before, own, cs));
                EXPECT_EQ(units(t.replace(t.leftRef(2), text(before), cs)), replaced(all, own, before, cs));
            }
        }
    }
    for (int position = -5; position <= 5; ++position) {
        for (int count = -1; count <= 5; ++count) {
            const int from = position < 0 ? position + 4 : position;
            std::u16string expected = u"aAbc";
            if (from >= 0 && from <= 4)
                expected.replace(static_cast<size_t>(from), static_cast<size_t>(count), u"xyz");
            EXPECT_EQ(units(text(u"aAbc").replace(position, count, text(u"xyz"))), expected)
                << position << count;
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
    EXPECT_EQ(shown(s.remove(s)), "");
    EXPECT_EQ(shown(CZeString().replace('a', 'b')), "(null)");
}

TEST(StringBuilding, RepeatsPadsAndEscapes) {
    const CZeString ab = text(u"ab");
    const std::pair<CZeString, const char*> rows[] = {
        // clang-format off
        {ab.repeated(3), "ababab"}, {ab.repeated(-1), ""}, {text(u"").repeated(9), ""},
        {CZeString().repeated(2), "(null)"}, {ab.repeated(1 << 30), "(null)"},
        {ab.leftJustified(4, '.'), "ab.."}, {ab.rightJustified(4, '.'), "..ab"}, {ab.leftJustified(1), "ab"},
        {ab.leftJustified(1, ' ', true), "a"}, {ab.rightJustified(1, ' ', true), "a"},
        {ab.leftJustified(-1, ' ', true), ""}, {CZeString().rightJustified(2), "  "},
        {ab.leftJustified(INT_MAX), "(null)"},
        {text(u"<a \"x\">&'\u00E9</a>").toHtmlEscaped(), "&lt;a &quot;x&quot;&gt;&amp;'\xC3\xA9&lt;/a&gt;"},
        // clang-format on
    };
    for (const auto& [result, contents] : rows)
        EXPECT_EQ(shown(result), contents);
    for (const CZeString& same :
         {ab.repeated(1), ab.leftJustified(2), ab.rightJustified(0), ab.toHtmlEscaped()})
        EXPECT_EQ(same.constData(), ab.constData());
}

} // namespace
