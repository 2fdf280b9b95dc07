// Storage, editing, order and pieces of strings.

#include "tests/core/text.h"

#include <gmock/gmock.h>

#include <climits>
#include <vector>

namespace {

TEST(String, TellsNullFromEmpty) {
    const CZeChar abc[] = {'a', 'b', 'c', CZeChar()};
    const struct {
        CZeString string;
        bool null;
        const char* contents;
    } rows[] = {
        // clang-format off
        {CZeString(), true, ""}, {CZeString(nullptr, 3), true, ""}, {CZeString(abc, 0), false, ""},
        {CZeString(abc, 2), false, "ab"}, {CZeString(abc), false, "abc"}, {CZeChar('x'), false, "x"},
        {CZeLatin1String(nullptr), true, ""}, {CZeLatin1String(""), false, ""},
        {CZeString(3, CZeChar('x')), false, "xxx"}, {CZeString(-3, CZeChar('x')), false, ""},
        {CZeString(0, Ze::Uninitialized), false, ""}, {CZeString(1 << 30, CZeChar('x')), true, ""},
        {CZeString() = CZeChar('y'), false, "y"}, {CZeString() = CZeLatin1String("\xE9"), false, "\xC3\xA9"},
        {CZeString(3, 'z').setUnicode(abc, 2), false, "ab"}, {CZeString::fromRawData(abc, 2), false, "ab"},
        {CZeString::fromRawData(nullptr, 2), true, ""}, {CZeString::fromRawData(abc, 0), false, ""},
        // clang-format on
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(&row - rows);
        EXPECT_EQ(row.string.isNull(), row.null);
        EXPECT_EQ(utf8(row.string), row.contents);
        EXPECT_EQ(row.string == CZeString(), row.string.isEmpty());
    }
}

TEST(String, WrappedMemoryIsNeverWritten) {
    const std::vector<CZeChar> foreign = {'a', 'b', 'c', 'd'};
    const auto wrap = [&foreign] { return CZeString::fromRawData(foreign.data(), 4); };
    const CZeString cut = CZeString::fromRawData(foreign.data(), 2);
    EXPECT_EQ(std::u16string(cut.utf16()), u"ab");
    CZeString s = wrap();
    EXPECT_EQ(s.constData(), foreign.data());
    s.truncate(2); // shortens the view
    EXPECT_EQ(s.constData(), foreign.data());
    EXPECT_EQ(utf8(s), "ab");
    EXPECT_EQ(std::u16string(s.utf16()), u"ab");
    EXPECT_EQ(utf8(wrap().fill('x')), "xxxx");
    EXPECT_EQ(utf8(wrap().append(CZeChar('e'))), "abcde");
    EXPECT_EQ(utf8(wrap().insert(1, foreign.data() + 1, 3)), "abcdbcd");
    (s = wrap())[3] = 'X';
    EXPECT_EQ(utf8(s), "abcX");
    s.setRawData(foreign.data() + 1, 2);
    const CZeString copy = s;
    s.resize(1);
    EXPECT_EQ(utf8(copy) + utf8(s), "bcb");
    s.setRawData(foreign.data(), 4);
    s.resize(6, '.');
    EXPECT_EQ(utf8(s), "abcd..");
    EXPECT_EQ(foreign, (std::vector<CZeChar>{'a', 'b', 'c', 'd'}));
}

TEST(String, StorageMembers) {
    CZeString s = text(u"abc");
    s.expand(2);
    s.expand(3);
    EXPECT_EQ(utf8(s), "abc ");
    s.expand(6);
    s.chop(2);
    s.chop(-1);
    EXPECT_EQ(utf8(s), "abc  ");
    EXPECT_EQ(utf8(s.fill('-', 3)), "---");
    s.chop(INT_MAX);
    EXPECT_TRUE(s.isEmpty() && !s.isNull());
    s.reserve(100);
    s.append(CZeLatin1String("abc"));
    s.truncate(-1);
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
        s.append(CZeChar(char16_t(i)));
        blocks += capacity != s.capacity();
        ASSERT_TRUE(s.size() >= capacity || s.constData() == block);
    }
    EXPECT_LE(blocks, 15);
    EXPECT_EQ(s.size(), 100000);
    EXPECT_EQ(s.at(99999).unicode(), char16_t(99999));
    EXPECT_EQ(s.constData()[s.size()], CZeChar());
}

TEST(String, AppendMindsNull) {
    const CZeString abc = text(u"abc");
    CZeString s;
    s.append(CZeString());
    s.append(CZeStringRef());
    s.append(CZeLatin1String());
    s.append(abc.unicode(), 0);
    s.append(abc.unicode(), -1);
    s.append(static_cast<const CZeChar*>(nullptr), 3);
    EXPECT_TRUE(s.isNull());
    s.append(abc);
    EXPECT_EQ(s.constData(), abc.constData());
    s.append(abc.midRef(1)).append(CZeLatin1String("\xE9!")).append(CZeChar('x'));
    EXPECT_EQ(utf8(s), "abcbc\xC3\xA9!x");
    EXPECT_EQ(utf8(abc), "abc");
    EXPECT_FALSE(CZeString().append(text(u"")).isNull());
    CZeString shared = abc;
    EXPECT_EQ(shared.append(CZeString()).constData(), abc.constData());
    EXPECT_NE(shared.append(text(u"")).constData(),
              abc.constData()); // an empty string detaches, a null one not
    EXPECT_EQ(utf8(shared + abc.leftRef(1) + CZeLatin1String("-") + abc.rightRef(2)), "abca-bc");
    EXPECT_EQ(utf8(abc.leftRef(1) + abc.rightRef(1) + (abc.leftRef(2) + CZeChar('+'))), "acab+");
    EXPECT_EQ(utf8(CZeLatin1String("<") + abc + (abc.leftRef(1) + CZeLatin1String(">"))), "<abca>");
    EXPECT_EQ(utf8(abc + CZeLatin1String("-") + CZeChar('+') + abc), "abc-+abc");
}

TEST(String, InsertAtAndBehind) {
    const struct {
        int position;
        const char* result;
    } rows[] = {{0, "XYabc"}, {1, "aXYbc"}, {3, "abcXY"}, {5, "abc  XY"}, {-1, "abc"}};
    const CZeString xy = text(u"XY");
    for (const auto& row : rows) {
        EXPECT_EQ(utf8(text(u"abc").insert(row.position, CZeLatin1String("XY"))), row.result);
        EXPECT_EQ(utf8(text(u"abc").insert(row.position, xy)), row.result);
        EXPECT_EQ(utf8(text(u"abc").insert(row.position, CZeStringRef(&xy))), row.result);
        EXPECT_EQ(utf8(text(u"abc").insert(row.position, 'Y').insert(row.position, 'X')), row.result);
    }
}

TEST(String, TakesItsOwnUnits) {
    const std::u16string model = u"0123456789";
    for (const int reserve : {10, 200}) {
        for (int position = 0; position <= 12; ++position) {
            for (int from = 0; from < 10; ++from) {
                for (int count = 1; count <= 10 - from; ++count) {
                    CZeString s = text(model.c_str());
                    s.reserve(reserve);                                // with room in place, and without
                    const CZeString copy = from % 2 ? s : CZeString(); // and shared in spite of the room
                    s.insert(position, s.unicode() + from, count);
                    std::u16string expected = model;
                    expected.resize(size_t(std::max(position, 10)), ' ');
                    expected.insert(size_t(position), model, size_t(from), size_t(count));
                    ASSERT_EQ(s, text(expected.c_str())) << position << ' ' << from << ' ' << count;
                    ASSERT_TRUE(copy.isNull() || copy == text(model.c_str()));
                }
            }
        }
    }
    CZeString s = text(u"abc");
    const CZeString copy = s;
    s.append(s).append(s.leftRef(2)).insert(2, s);
    EXPECT_EQ(utf8(s), "ababcabcabcabcab");
    s = s.mid(4);
    s.setUnicode(s.unicode() + 1, 3);
    EXPECT_EQ(utf8(s), "abc");
    s = *&s;
    s.append(s.at(1));
    EXPECT_EQ(utf8(s), "abcb");
    EXPECT_EQ(utf8(copy), "abc");
}

TEST(String, RefusesSizesBeyondTheLimit) {
    const CZeChar unit('x');
    CZeString s = text(u"abc");
    const void* const block = s.constData();
    s.insert(INT_MAX - 1, unit);
    s.insert(INT_MAX, unit);
    s.insert(1 << 30, CZeLatin1String("x"));
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
        {u"abc", u"abc", 0, 0}, {u"ABC", u"abc", -32, 0}, {u"ab", u"abcd", -2, -1}, {u"abcd", u"AB", 32, 1},
        {u"a", u"Z", 'a' - 'Z', 'a' - 'z'}, {u"", u"abc", -3, -1}, {u"[", u"A", '[' - 'A', '[' - 'a'},
        {u"@", u"`", '@' - '`', '@' - '`'}, // the neighbours of the letters do not fold
        {u"[", u"{", '[' - '{', '[' - '{'}, {u"\u00C4A", u"\u00E4a", -32, -32}, // only A to Z fold
        {u"\U00010000", u"\xD800z", 0xDC00 - 'z', 0x10000 - 'z'}, {u"\U00010401", u"\U00010400", 1, 1},
        {u"a\xDC00", u"a\xE000", 0xDC00 - 0xE000, 0xDC00 - 0xE000},
        // clang-format on
    };
    for (const auto& row : rows) {
        const CZeString l = text(row.left);
        const CZeString r = text(row.right);
        SCOPED_TRACE(utf8(l) + " " + utf8(r));
        EXPECT_EQ(l.compare(r), row.order);
        EXPECT_EQ(l.compare(CZeStringRef(&r)), row.order);
        EXPECT_EQ(l.compare(r, Ze::CaseInsensitive), row.foldedOrder);
        EXPECT_EQ(l.compare(r, static_cast<Ze::CaseSensitivity>(2)), row.foldedOrder);
        EXPECT_EQ(CZeStringRef(&r).compare(CZeStringRef(&l), Ze::CaseInsensitive), -row.foldedOrder);
        EXPECT_EQ(l == r, row.order == 0);
        EXPECT_EQ(l < r, row.order < 0);
        EXPECT_EQ(l > r, row.order > 0);
        EXPECT_EQ(CZeStringRef(&l) == CZeStringRef(&r), row.order == 0);
        EXPECT_EQ(l != CZeStringRef(&r), row.order != 0);
        EXPECT_TRUE((l < CZeStringRef(&r)) == (row.order < 0) && (CZeStringRef(&l) > r) == (row.order > 0));
        const CZeByteArray latin1 = r.toLatin1();
        if (CZeString::fromLatin1(latin1) == r) {
            const CZeLatin1String view(latin1.constData(), latin1.size());
            EXPECT_EQ(l.compare(view), row.order);
            EXPECT_EQ(l.compare(view, Ze::CaseInsensitive), row.foldedOrder);
            EXPECT_TRUE((l == view) == (row.order == 0) && (l < view) == (row.order < 0) &&
                        (l > view) == (row.order > 0));
            EXPECT_TRUE((view == l) == (row.order == 0) && (view > l) == (row.order < 0) &&
                        (view <= l) == (row.order >= 0));
        }
    }
    EXPECT_GT(text(u"\u00E9").compare(CZeLatin1String("a")), 0);
    EXPECT_EQ(text(u"\u00E9"), CZeLatin1String("\xE9"));
}

TEST(String, NullViewsSortLastWithoutCase) {
    const CZeString empty = text(u"");
    const CZeStringRef null;
    EXPECT_EQ(empty.compare(CZeLatin1String(), Ze::CaseInsensitive), -1);
    EXPECT_EQ(empty.compare(null, Ze::CaseInsensitive), -1);
    EXPECT_EQ(null.compare(CZeStringRef(&empty), Ze::CaseInsensitive), 1);
    EXPECT_EQ(null.compare(CZeStringRef(), Ze::CaseInsensitive), 0);
    EXPECT_EQ(empty.compare(CZeLatin1String()), 0);
    EXPECT_EQ(empty.compare(null), 0);
}

TEST(String, CutsPieces) {
    const CZeString s = text(u"0123456789");
    for (int position = -3; position <= 12; ++position) {
        for (int count = -1; count <= 14; ++count) {
            const CZeString piece = s.mid(position, count);
            const CZeStringRef view = s.midRef(position, count);
            EXPECT_EQ(utf8(view), bytes(s.toLatin1().mid(position, count))); // one rule for all
            EXPECT_EQ(utf8(view), utf8(piece));
            EXPECT_EQ(view.isNull(), piece.isNull());
            EXPECT_EQ(piece.constData() == s.constData(), piece.size() == 10); // a shared copy
        }
    }
    EXPECT_EQ(utf8(s.left(3)) + utf8(s.leftRef(3)) + utf8(s.right(3)) + utf8(s.rightRef(3)), "012012789789");
    EXPECT_TRUE(s.left(0).isEmpty() && s.rightRef(0).isEmpty() && !s.right(0).isNull());
    for (const int all : {-1, 10, 11})
        EXPECT_TRUE(s.left(all) == s && s.right(all) == s && s.leftRef(all) == s && s.rightRef(all) == s);
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
        {u"a,b,,c", u",", "<a><b><><c>", "<a><b><c>", "<a><b><><c>"},
        {u",a,", u",", "<><a><>", "<a>", "<><a><>"},
        {u"abc", u",", "<abc>", "<abc>", "<abc>"},
        {u"", u",", "<>", "", "<>"},
        {u"aXbxc", u"x", "<aXb><c>", "<aXb><c>", "<a><b><c>"},
        {u"1--2---3", u"--", "<1><2><-3>", "<1><2><-3>", "<1><2><-3>"},
        {u"aEndbENDc", u"END", "<aEndb><c>", "<aEndb><c>", "<a><b><c>"},
        {u"abc", u"", "<><a><b><c><>", "<a><b><c>", "<><a><b><c><>"},
        {u"aab", u"ab", "<a><>", "<a>", "<a><>"},
    };
    for (const auto& row : rows) {
        const CZeString s = text(row.string);
        const CZeString separator = text(row.separator);
        EXPECT_EQ(joined(s.split(separator)), row.kept);
        EXPECT_EQ(joined(s.split(separator, CZeString::SkipEmptyParts)), row.skipped);
        EXPECT_EQ(joined(s.split(separator, CZeString::KeepEmptyParts, Ze::CaseInsensitive)), row.folded);
        CZeStringList fromViews;
        for (const CZeStringRef& part : s.splitRef(separator)) {
            EXPECT_EQ(part.string(), &s);
            fromViews.append(part.toString());
        }
        EXPECT_EQ(fromViews, s.split(separator));
        if (separator.size() == 1) {
            EXPECT_EQ(s.split(separator.at(0)), s.split(separator));
            EXPECT_EQ(s.splitRef(separator.at(0)).size(), s.split(separator).size());
        }
    }
}

TEST(String, ListsAreShared) {
    CZeStringList list = text(u"a b c d e f g h i j").split(' ');
    const CZeStringList copy = list;
    EXPECT_EQ(copy.begin(), list.begin());
    for (int i = 0; i < 100; ++i)
        list.append(list[i]);
    EXPECT_EQ(joined(copy), "<a><b><c><d><e><f><g><h><i><j>");
    EXPECT_EQ(list.size(), 110);
    EXPECT_EQ(utf8(list.at(109)), "j");
    EXPECT_NE(list, copy);
    list = copy;
    EXPECT_EQ(list, copy);
}

TEST(String, Sections) {
    const CZeString path = text(u"/usr/local/bin/tool");
    const struct {
        int first, last;
        const char* contents;
    } rows[] = {
        // clang-format off
        {3, 4, "bin/tool"}, {3, 3, "bin"}, {0, 0, ""}, {0, 1, "/usr"}, {-1, -1, "tool"}, {-2, -1, "bin/tool"},
        {1, -2, "usr/local/bin"}, {2, 99, "local/bin/tool"}, {-99, 1, "/usr"}, {5, 9, ""}, {3, 2, ""},
        {-99, -50, ""}, {0, -1, "/usr/local/bin/tool"},
        // clang-format on
    };
    for (const auto& row : rows) {
        EXPECT_EQ(utf8(path.section('/', row.first, row.last)), row.contents) << row.first << row.last;
        EXPECT_EQ(utf8(path.section(text(u"/"), row.first, row.last)), row.contents);
    }
    EXPECT_EQ(utf8(text(u"1aNd2AND3").section(text(u"and"), 1, 1, Ze::CaseInsensitive)), "2");
    EXPECT_TRUE(path.section('/', 5, 9).isNull() && path.section('/', -99, -50).isNull());
}

TEST(String, Trims) {
    const struct {
        const char16_t* string;
        const char* trimmed;
    } rows[] = {
        // clang-format off
        {u" \t\n\v\f\r a b \r\n", "a b"}, {u"ab", "ab"}, {u"   ", ""}, {u"", ""}, {u" x", "x"}, {u"x ", "x"},
        {u"\u0085\u00A0\u1680\u180E\u2000\u2006\u2008\u2009\u200A\u2028\u2029\u205F\u3000x", "x"},
        {u"\u2001\u2007x\u200B\u202F", "\xE2\x80\x81\xE2\x80\x87x\xE2\x80\x8B\xE2\x80\xAF"}, // no such space here
        // clang-format on
    };
    for (const auto& row : rows) {
        const CZeString s = text(row.string);
        CZeString own(s.unicode(), s.size());
        const void* const block = own.constData();
        const bool keepsBlock = 2 * std::string(row.trimmed).size() > size_t(s.size());
        const CZeString moved = std::move(own).trimmed();
        for (const CZeString& trimmed : {s.trimmed(), moved, CZeString(s).trimmed()}) {
            EXPECT_EQ(utf8(trimmed), row.trimmed);
            EXPECT_FALSE(trimmed.isNull());
            EXPECT_EQ(trimmed.constData()[trimmed.size()], CZeChar());
        }
        EXPECT_TRUE(!keepsBlock || moved.constData() == block);
        EXPECT_EQ(s, text(row.string));
    }
    const CZeString clean = text(u"clean");
    EXPECT_EQ(clean.trimmed().constData(), clean.constData());
    EXPECT_TRUE(CZeString().trimmed().isNull());
}

TEST(String, Simplifies) {
    const struct {
        const char16_t* string;
        const char* simplified;
    } rows[] = {
        {u"  a \t b\u00A0\u3000c\n", "a b c"},
        {u"a b", "a b"},
        {u"a\tb", "a b"},
        {u"a  b", "a b"},
        {u" \n ", ""},
        {u"", ""},
    };
    for (const auto& row : rows) {
        const CZeString s = text(row.string);
        CZeString own(s.unicode(), s.size());
        const void* const block = own.constData();
        const CZeString moved = std::move(own).simplified();
        for (const CZeString& simplified : {s.simplified(), moved, CZeString(s).simplified()}) {
            EXPECT_EQ(utf8(simplified), row.simplified);
            EXPECT_FALSE(simplified.isNull());
        }
        EXPECT_TRUE(moved.isEmpty() || moved.constData() == block);
        EXPECT_EQ(s, text(row.string));
        EXPECT_EQ(s.simplified().constData() == s.constData(), s == moved);
    }
    EXPECT_TRUE(CZeString().simplified().isNull());
}

} // namespace
