// Storage, editing, order and pieces of strings.

#include "tests/core/text.h"

#include <gmock/gmock.h>

#include <climits>
#include <vector>

namespace {

TEST(String, TellsNullFromEmpty) {
    const CZeChar abc[] = {'a', 'b', 'c', CZeChar()};
    const std::pair<CZeString, std::string> rows[] = {
        // clang-format off
        {CZeString(), "(null)"}, {CZeString(nullptr, 3), "(null)"}, {CZeString(abc, 0), ""},
        {CZeString(abc, 2), "ab"}, {CZeString(abc), "abc"}, {CZeChar('x'), "x"},
        {CZeLatin1String(nullptr), "(null)"}, {CZeLatin1String(""), ""}, {CZeString(3, CZeChar('x')), "xxx"},
        {CZeString(-3, CZeChar('x')), ""}, {CZeString(0, Ze::Uninitialized), ""},
        {CZeString(1 << 30, CZeChar('x')), "(null)"}, {CZeString() = CZeChar('y'), "y"},
        {CZeString() = CZeLatin1String("\xE9"), "\xC3\xA9"}, {CZeString(3, 'z').setUnicode(abc, 2), "ab"},
        {CZeString::fromRawData(abc, 2), "ab"}, {CZeString::fromRawData(nullptr, 2), "(null)"},
        {CZeString::fromRawData(abc, 0), ""},
        // clang-format on
    };
    for (const auto& [string, contents] : rows) {
        EXPECT_EQ(shown(string), contents);
        EXPECT_EQ(string == CZeString(), string.isEmpty());
    }
}

TEST(String, WrappedMemoryIsNeverWritten) {
    const std::vector<CZeChar> foreign = {'a', 'b', 'c', 'd'};
    const auto wrap = [&foreign](int size = 4) { return CZeString::fromRawData(foreign.data(), size); };
    EXPECT_EQ(std::u16string(wrap(2).utf16()), u"ab");
    CZeString s = wrap();
    s.truncate(2); // shortens the view
    EXPECT_EQ(s.constData(), foreign.data());
    EXPECT_EQ(std::u16string(s.utf16()), u"ab");
    EXPECT_EQ(utf8(wrap().fill('x')) + utf8(wrap().append(CZeChar('e'))), "xxxxabcde");
    EXPECT_EQ(utf8(wrap().insert(1, foreign.data() + 1, 3)), "abcdbcd");
    (s = wrap())[3] = 'X';
    EXPECT_EQ(utf8(s), "abcX");
    const CZeString copy = s.setRawData(foreign.data() + 1, 2);
    s.resize(1);
    EXPECT_EQ(utf8(copy) + utf8(s), "bcb");
    s.setRawData(foreign.data(), 4).resize(6, '.');
    EXPECT_EQ(utf8(s), "abcd..");
    EXPECT_EQ(foreign, (std::vector<CZeChar>{'a', 'b', 'c', 'd'}));
}

TEST(String, StorageMembers) {
    CZeString s = text(u"abc");
    s.expand(2);
    EXPECT_EQ(utf8(s), "abc");
    s.expand(3);
    EXPECT_EQ(utf8(s), "abc ");
    s.expand(6);
    s.chop(2);
    s.chop(-1);
    EXPECT_EQ(utf8(s), "abc  ");
    EXPECT_EQ(utf8(s.fill('-', 3)), "---");
    s.chop(INT_MAX);
    EXPECT_EQ(shown(s), "");
    s.reserve(100);
    s.append(CZeLatin1String("abc")).truncate(-1);
    s.reserve(5);
    EXPECT_EQ(s.capacity(), 101);
    s.reallocData(3, false);
    EXPECT_EQ(s.capacity(), 3);
    s.reallocData(21, true);
    EXPECT_EQ(s.capacity(), (128 - 24) / 2);
    EXPECT_TRUE(text(u"plain \u00E4 \u10D0\u1C90 \u4E00 \uFB00 \uFF21 \uFEFF\uFFFD").isSimpleText());
    for (const char16_t complex : {u'\u05D0', u'\u1000', u'\u1780', u'\uA840', u'\uFB1D', u'\uFE70'})
        EXPECT_FALSE(CZeString(complex).isSimpleText());
}

TEST(String, AppendGrowsGeometrically) {
    CZeString s;
    int blocks = 0;
    for (int i = 0; i < 100000; ++i) {
        const CZeChar* const block = s.constData();
        const int capacity = s.capacity();
        s.append(CZeChar(static_cast<char16_t>(i)));
        blocks += capacity != s.capacity();
        ASSERT_TRUE(s.size() >= capacity || s.constData() == block);
    }
    EXPECT_LE(blocks, 15);
    EXPECT_EQ(s.at(99999), CZeChar(99999));
    EXPECT_EQ(*s.end(), CZeChar());
}

TEST(String, AppendMindsNull) {
    const CZeString abc = text(u"abc");
    CZeString s;
    s.append(CZeString()).append(CZeStringRef()).append(CZeLatin1String()).append(abc.unicode(), 0);
    s.append(abc.unicode(), -1).append(static_cast<const CZeChar*>(nullptr), 3);
    EXPECT_TRUE(s.isNull());
    EXPECT_EQ(s.append(abc).constData(), abc.constData());
    s.append(abc.midRef(1)).append(CZeLatin1String("\xE9!")).append(CZeChar('x'));
    EXPECT_EQ(utf8(s) + utf8(abc), "abcbc\xC3\xA9!xabc");
    EXPECT_FALSE(CZeString().append(text(u"")).isNull());
    CZeString shared = abc; // an empty string detaches, a null one does not
    EXPECT_EQ(shared.append(CZeString()).constData(), abc.constData());
    EXPECT_NE(shared.append(text(u"")).constData(), abc.constData());
    EXPECT_EQ(utf8(shared + abc.leftRef(1) + CZeLatin1String("-") + (abc.rightRef(2) + CZeChar('+'))),
              "abca-bc+");
    EXPECT_EQ(utf8(CZeLatin1String("<") + abc + (abc.leftRef(1) + CZeLatin1String(">"))), "<abca>");
}

TEST(String, InsertAtAndBehind) {
    const std::pair<int, const char*> rows[] = {
        {0, "XYabc"}, {1, "aXYbc"}, {3, "abcXY"}, {5, "abc  XY"}, {-1, "abc"}};
    const CZeString xy = text(u"XY");
    for (const auto& [position, result] : rows) {
        EXPECT_EQ(utf8(text(u"abc").insert(position, CZeLatin1String("XY"))), result);
        EXPECT_EQ(utf8(text(u"abc").insert(position, CZeStringRef(&xy))), result);
        EXPECT_EQ(utf8(text(u"abc").insert(position, 'Y').insert(position, 'X')), result);
    }
}

TEST(String, TakesItsOwnUnits) {
    for (int code = 0; code < 2 * 13 * 10 * 10; ++code) {
        const int position = code % 13, from = code / 13 % 10,
                  count = std::min(code / 130 % 10 + 1, 10 - from);
        std::u16string model = u"0123456789";
        const std::u16string own = model.substr(static_cast<size_t>(from), static_cast<size_t>(count));
        CZeString s = text(model);
        s.reserve(code < 1300 ? 10 : 200);                 // with room in place, and without
        const CZeString copy = from % 2 ? s : CZeString(); // and shared in spite of the room
        s.insert(position, s.unicode() + from, count);
        model.resize(static_cast<size_t>(std::max(position, 10)), ' ');
        ASSERT_EQ(units(s), model.insert(static_cast<size_t>(position), own)) << code;
        ASSERT_EQ(utf8(copy), from % 2 ? "0123456789" : "") << code;
    }
    CZeString s = text(u"abc");
    const CZeString copy = s;
    s.append(s).append(s.leftRef(2)).insert(2, s);
    EXPECT_EQ(utf8(s), "ababcabcabcabcab");
    s.setUnicode(s.unicode() + 5, 3);
    s = *&s;
    EXPECT_EQ(utf8(s.append(s.at(1))) + utf8(copy), "abcbabc");
}

TEST(String, RefusesSizesBeyondTheLimit) {
    const CZeChar unit('x');
    CZeString s = text(u"abc");
    const void* const block = s.constData();
    s.insert(INT_MAX - 1, unit).insert(INT_MAX, unit).insert(1 << 30, CZeLatin1String("x"));
    s.resize(INT_MAX);
    s.resize(1 << 30, '.');
    s.expand(INT_MAX);
    s.expand(INT_MAX - 1);
    s.reserve(INT_MAX);
    s.append(CZeString::fromRawData(&unit, INT_MAX)); // nobody looks at the units
    EXPECT_EQ(utf8(s), "abc");
    EXPECT_EQ(s.constData(), block);
}

TEST(String, ComparesWithAndWithoutCase) {
    const struct {
        const char16_t *left, *right;
        int order, foldedOrder;
    } rows[] = {
        // clang-format off
        {u"ABC", u"abc", -32, 0}, {u"ab", u"abcd", -2, -1}, {u"abcd", u"AB", 32, 1}, {u"", u"abc", -3, -1},
        {u"a", u"Z", 'a' - 'Z', 'a' - 'z'}, {u"[", u"A", '[' - 'A', '[' - 'a'},
        {u"@", u"`", '@' - '`', '@' - '`'}, {u"[", u"{", '[' - '{', '[' - '{'}, // beside the letters
        {u"\u00C4A", u"\u00E4a", -32, -32}, // only A to Z fold
        {u"\U00010000", u"\xD800z", 0xDC00 - 'z', 0x10000 - 'z'}, {u"\U00010401", u"\U00010400", 1, 1},
        {u"a\xDC00", u"a\xE000", 0xDC00 - 0xE000, 0xDC00 - 0xE000},
        // clang-format on
    };
    for (const auto& row : rows) {
        const CZeString l = text(row.left), r = text(row.right);
        SCOPED_TRACE(utf8(l) + " " + utf8(r));
        EXPECT_EQ(l.compare(r), row.order);
        EXPECT_EQ(l.compare(r, Ze::CaseInsensitive), row.foldedOrder);
        EXPECT_EQ(l.compare(r, static_cast<Ze::CaseSensitivity>(2)), row.foldedOrder);
        EXPECT_EQ(CZeStringRef(&r).compare(CZeStringRef(&l), Ze::CaseInsensitive), -row.foldedOrder);
        const CZeByteArray narrow = r.toLatin1();
        const CZeLatin1String latin1(narrow.constData());
        if (CZeString(latin1) == r) {
            EXPECT_EQ(l.compare(latin1), row.order);
            EXPECT_EQ(l.compare(latin1, Ze::CaseInsensitive), row.foldedOrder);
        }
    }
    EXPECT_EQ(text(u"\u00E9"), CZeLatin1String("\xE9"));
    const CZeString empty = text(u""); // null views sort last without case
    const CZeStringRef null;
    EXPECT_EQ(empty.compare(CZeLatin1String(), Ze::CaseInsensitive), -1);
    EXPECT_EQ(empty.compare(null, Ze::CaseInsensitive), -1);
    EXPECT_EQ(null.compare(CZeStringRef(&empty), Ze::CaseInsensitive), 1);
    EXPECT_EQ(null.compare(CZeStringRef(), Ze::CaseInsensitive), 0);
    EXPECT_EQ(empty, CZeLatin1String());
    EXPECT_EQ(empty, null);
}

TEST(String, HasEveryOperatorForEveryFormOfText) {
    const CZeString a = text(u"a"), b = text(u"b");
    for (const auto& [l, r, expected] :
         {std::tuple(a, a, "eLG"), std::tuple(a, b, "nlL"), std::tuple(b, a, "ngG")}) {
        const CZeByteArray left = l.toLatin1(), right = r.toLatin1();
        EXPECT_EQ(relations(l, r), expected);
        EXPECT_EQ(relations(CZeStringRef(&l), CZeStringRef(&r)), expected);
        EXPECT_EQ(relations(l, CZeStringRef(&r)), expected);
        EXPECT_EQ(relations(CZeStringRef(&l), r), expected);
        EXPECT_EQ(relations(l, CZeLatin1String(right.constData())), expected);
        EXPECT_EQ(relations(CZeLatin1String(left.constData()), r), expected);
    }
}

TEST(String, CutsPieces) {
    const CZeString s = text(u"0123456789");
    for (int position = -3; position <= 12; ++position) {
        for (int count = -1; count <= 14; ++count) {
            const CZeString piece = s.mid(position, count);
            const CZeStringRef view = s.midRef(position, count);
            EXPECT_EQ(utf8(view), bytes(s.toLatin1().mid(position, count))); // one rule for all
            EXPECT_EQ(utf8(view), utf8(piece));
            const bool isOutside = position > 10 || (count >= 0 && position < 0 && position + count <= 0);
            EXPECT_EQ(view.isNull(), isOutside);
            EXPECT_EQ(piece.isNull(), isOutside);
            EXPECT_EQ(piece.constData() == s.constData(), piece.size() == 10); // a shared copy
        }
    }
    EXPECT_EQ(utf8(s.left(3)) + utf8(s.leftRef(3)) + utf8(s.right(3)) + utf8(s.rightRef(3)), "012012789789");
    const CZeByteArray array = s.toLatin1();
    EXPECT_EQ(bytes(array.left(3)) + bytes(array.right(3)), "012789");
    EXPECT_EQ(shown(s.right(0)) + utf8(s.left(0)) + utf8(s.rightRef(0)), "");
    for (const int all : {-1, 10, 11}) {
        for (const CZeString& whole :
             {s.left(all), s.right(all), s.leftRef(all).toString(), s.rightRef(all).toString()})
            EXPECT_EQ(whole.constData(), s.constData());
        EXPECT_EQ(array.left(all).constData(), array.constData());
        EXPECT_EQ(array.right(all).constData(), array.constData());
    }
}

std::string joined(const CZeStringList& list) {
    std::string all;
    for (const CZeString& part : list)
        all += "<" + utf8(part) + ">";
    return all;
}

TEST(String, Splits) {
    const struct {
        const char16_t *string, *separator;
        const char *kept, *skipped, *folded;
    } rows[] = {
        // clang-format off
        {u",a,,b,", u",", "<><a><><b><>", "<a><b>", "<><a><><b><>"}, {u"", u",", "<>", "", "<>"},
        {u"aXbxc", u"x", "<aXb><c>", "<aXb><c>", "<a><b><c>"}, {u"aab", u"ab", "<a><>", "<a>", "<a><>"},
        {u"1--2---3", u"--", "<1><2><-3>", "<1><2><-3>", "<1><2><-3>"},
        {u"aEndbENDc", u"END", "<aEndb><c>", "<aEndb><c>", "<a><b><c>"},
        {u"abcdef", u"", "<><a><b><c><d><e><f><>", "<a><b><c><d><e><f>", "<><a><b><c><d><e><f><>"},
        // clang-format on
    };
    for (const auto& row : rows) {
        const CZeString s = text(row.string);
        const CZeString separator = text(row.separator);
        const CZeStringList parts = s.split(separator);
        EXPECT_EQ(joined(parts), row.kept);
        EXPECT_EQ(joined(s.split(separator, CZeString::SkipEmptyParts)), row.skipped);
        EXPECT_EQ(joined(s.split(separator, CZeString::KeepEmptyParts, Ze::CaseInsensitive)), row.folded);
        const CZeStringRefList views = s.splitRef(separator);
        const auto isPart = [&s](auto view, auto part) { return view.string() == &s && view == part; };
        EXPECT_TRUE(std::equal(views.begin(), views.end(), parts.begin(), parts.end(), isPart));
        if (separator.size() == 1) {
            EXPECT_EQ(s.split(separator.at(0)), parts);
            EXPECT_EQ(s.splitRef(separator.at(0)), views);
        }
    }
}

TEST(String, Sections) {
    const CZeString path = text(u"/usr/local/bin/tool");
    const std::tuple<int, int, const char*> rows[] = {
        // clang-format off
        {3, 3, "bin"}, {0, 0, ""}, {0, 1, "/usr"}, {-1, -1, "tool"}, {-2, -1, "bin/tool"},
        {1, -2, "usr/local/bin"}, {2, 99, "local/bin/tool"}, {-99, 1, "/usr"}, {5, 9, "(null)"}, {3, 2, "(null)"},
        {-99, -50, "(null)"},
        // clang-format on
    };
    for (const auto& [first, last, contents] : rows) {
        EXPECT_EQ(shown(path.section('/', first, last)), contents) << first << last;
        EXPECT_EQ(shown(path.section(text(u"/"), first, last)), contents);
    }
    EXPECT_EQ(utf8(text(u"1aNd2AND3").section(text(u"and"), 1, 1, Ze::CaseInsensitive)), "2");
}

TEST(String, TrimsAndSimplifies) {
    const std::tuple<const char16_t*, const char*, const char*> rows[] = {
        // clang-format off
        {u" \t\n\v\f\r a \t b \r\n", "a \t b", "a b"}, {u"a b", "a b", "a b"}, {u"   ", "", ""}, {u"", "", ""},
        {u" x", "x", "x"}, {u"x ", "x", "x"}, {u"a\tb", "a\tb", "a b"},
        {u"\u0085\u00A0\u1680\u180E\u2000\u2006\u2008\u2009\u200A\u2028\u2029\u205F\u3000x", "x", "x"},
        {u"\u2001\u2007x", "\xE2\x80\x81\xE2\x80\x87x", "\xE2\x80\x81\xE2\x80\x87x"}, // no such spaces here
        {u"\u200B\u202F", "\xE2\x80\x8B\xE2\x80\xAF", "\xE2\x80\x8B\xE2\x80\xAF"},
        // clang-format on
    };
    for (const auto& [string, trimmed, simplified] : rows) {
        const CZeString s = text(string);
        EXPECT_EQ(shown(s.trimmed()), trimmed);
        EXPECT_EQ(shown(s.simplified()), simplified);
        EXPECT_EQ(shown(CZeString(s.unicode(), s.size()).trimmed()), trimmed);
        EXPECT_EQ(shown(CZeString(s.unicode(), s.size()).simplified()), simplified);
    }
    CZeString own = text(u" a  b ");
    const void* const block = own.constData(); // which a temporary string lends
    CZeString trimmed = std::move(own).trimmed();
    EXPECT_EQ(trimmed.constData(), block);
    const CZeString copy = trimmed, clean = CZeString(trimmed).simplified();
    EXPECT_EQ(utf8(copy) + utf8(clean), "a  ba b");
    EXPECT_EQ(clean.trimmed().constData(), clean.constData());
    EXPECT_EQ(clean.simplified().constData(), clean.constData());
    EXPECT_EQ(shown(CZeString().trimmed()) + shown(CZeString().simplified()), "(null)(null)");
}

} // namespace
