#include "core/codecs/utf8_decoder.h"
#include "tests/core/text.h"

#include <gmock/gmock.h>

#include <vector>

namespace {

// U+FFFD below, and what a piece of input must become as a whole and in any pieces.
const struct {
    const char* name;
    std::string bytes;
    std::u16string units;
} kUtf8Rows[] = {
    // clang-format off
    {"ascii", "plain text, longer than a step", u"plain text, longer than a step"},
    {"zero inside", std::string("a\0b", 3), std::u16string(u"a\0b", 3)},
    {"first and last of two", "\xC2\x80\xDF\xBF", u"\u0080\u07FF"},
    {"first and last of three", "\xE0\xA0\x80\xEF\xBF\xBF", u"\u0800\uFFFF"},
    {"around the surrogates", "\xED\x9F\xBF\xEE\x80\x80", u"\uD7FF\uE000"},
    {"first and last of four", "\xF0\x90\x80\x80\xF4\x8F\xBF\xBF", u"\U00010000\U0010FFFF"},
    {"mixed", "aaaaaaa\xC3\xA4 \xE2\x82\xAC bbbbbbbb \xF0\x9F\x98\x80", u"aaaaaaa\u00E4 \u20AC bbbbbbbb \U0001F600"},
    {"mark alone", "\xEF\xBB\xBF", u""}, {"mark at the start only", "\xEF\xBB\xBF\xEF\xBB\xBFx", u"\uFEFFx"},
    {"mark later", "x\xEF\xBB\xBF", u"x\uFEFF"},
    {"mark behind a malformed byte", "\x80\xEF\xBB\xBF", u"\uFFFD\uFEFF"},
    {"cut-off mark", "\xEF\xBB", u"\uFFFD"}, {"lone lead", "\xC3", u"\uFFFD"},
    {"lone continuations", "\x80\xBF", u"\uFFFD\uFFFD"},
    {"overlong two", "\xC0\xAF\xC1\xBF", u"\uFFFD\uFFFD\uFFFD\uFFFD"},
    {"overlong three", "\xE0\x9F\xBF", u"\uFFFD\uFFFD\uFFFD"},
    {"overlong four", "\xF0\x8F\xBF\xBF", u"\uFFFD\uFFFD\uFFFD\uFFFD"},
    {"surrogates", "\xED\xA0\x80\xED\xBF\xBF", u"\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD"},
    {"above the last", "\xF4\x90\x80\x80", u"\uFFFD\uFFFD\uFFFD\uFFFD"},
    {"bytes never used", "\xF5\x80\xF8\xFE\xFF", u"\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD"},
    {"one per maximal subpart", "a\xF1\x80\x80\xE1\x80\xC2" "b\x80" "c\x80\xBF" "d", u"a\uFFFD\uFFFD\uFFFDb\uFFFDc\uFFFD\uFFFDd"},
    {"lead after cut-off", "\xF0\x9F\x98\xF0\x9F\x98\x80\xE2\x82", u"\uFFFD\U0001F600\uFFFD"},
    // clang-format on
};

std::u16string units(const CZeString& string) {
    return std::u16string(reinterpret_cast<const char16_t*>(string.unicode()), size_t(string.size()));
}

TEST(Utf8, DecodesAndSubstitutes) {
    for (const auto& row : kUtf8Rows) {
        const CZeString decoded = CZeString::fromUtf8(row.bytes.data(), int(row.bytes.size()));
        EXPECT_EQ(units(decoded), row.units) << row.name;
        EXPECT_EQ(decoded.constData()[decoded.size()], CZeChar());
        EXPECT_FALSE(decoded.isNull()) << row.name;
    }
}

/// Decodes the pieces that lie between `cuts`, each in blocks of exactly the size that is promised to
/// suffice.
std::u16string decodeInPieces(ze::Utf8Decoder& decoder, const std::string& bytes, std::vector<size_t> cuts) {
    std::u16string all;
    size_t start = 0;
    cuts.push_back(bytes.size());
    for (const size_t end : cuts) {
        const std::vector<char> piece(bytes.begin() + long(start), bytes.begin() + long(end));
        std::vector<CZeChar> out(piece.size() + 1);
        out.resize(size_t(decoder.decode(piece.data(), int(piece.size()), out.data())));
        for (const CZeChar unit : out)
            all += unit.unicode();
        start = end;
    }
    CZeChar last;
    if (decoder.finish(&last))
        all += last.unicode();
    return all;
}

TEST(Utf8, PiecesGiveWhatTheWholeGives) {
    ze::Utf8Decoder decoder; // as new after each text
    for (const auto& row : kUtf8Rows) {
        std::vector<size_t> everywhere;
        for (size_t first = 0; first <= row.bytes.size(); ++first) {
            everywhere.push_back(first);
            for (size_t second = first; second <= row.bytes.size(); ++second)
                EXPECT_EQ(decodeInPieces(decoder, row.bytes, {first, second}), row.units)
                    << row.name << first;
        }
        EXPECT_EQ(decodeInPieces(decoder, row.bytes, everywhere), row.units) << row.name;
    }
}

TEST(Utf8, EveryCodePointComesBack) {
    std::vector<char32_t> all;
    for (char32_t codePoint = 0; codePoint <= 0x10FFFF; ++codePoint) {
        if (codePoint < 0xD800 || codePoint > 0xDFFF)
            all.push_back(codePoint);
    }
    const CZeString string = CZeString::fromUcs4(all.data(), int(all.size()));
    EXPECT_EQ(string.size(), 0x10000 - 0x800 + 2 * 0x100000);
    const CZeByteArray encoded = string.toUtf8();
    EXPECT_EQ(encoded.size(), 0x80 + 2 * 0x780 + 3 * (0xF800 - 0x800) + 4 * 0x100000);
    EXPECT_TRUE(CZeString::fromUtf8(encoded) == string);
    const CZeList<char32_t> back = string.toUcs4();
    EXPECT_TRUE(std::equal(back.begin(), back.end(), all.begin(), all.end()));
}

TEST(Utf8, EncodesByTheUnit) {
    const struct {
        std::u16string units;
        std::string bytes;
    } rows[] = {
        {u"\u007F\u0080\u07FF\u0800\uFFFF", "\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF"},
        {u"\U00010000\U0010FFFF", "\xF0\x90\x80\x80\xF4\x8F\xBF\xBF"},
        {{0xD800}, "?"}, // deliberately no U+FFFD
        {{0xDC00, 0xD800}, "??"},
        {{0xD800, 'a', 0xDBFF, 0xD800, 0xDC00}, "?a?\xF0\x90\x80\x80"},
        {std::u16string(1, u'\0'), std::string(1, '\0')},
    };
    for (const auto& row : rows) {
        const CZeString string = CZeString::fromUtf16(row.units.data(), int(row.units.size()));
        EXPECT_EQ(bytes(string.toUtf8()), row.bytes);
        EXPECT_EQ(bytes(string.toLocal8Bit()), row.bytes);
    }
    const CZeChar pair[] = {CZeChar(0xD800), CZeChar(0xDC00)};
    EXPECT_EQ(bytes(CZeString::fromRawData(pair, 1).toUtf8()), "?"); // what follows is not the string's
}

TEST(Ucs4, SubstitutesWhatIsNoCodePoint) {
    const char32_t codePoints[] = {'a', 0xD800, 0xDFFF, 0x10FFFF, 0x110000, 0xFFFFFFFF, 0};
    EXPECT_EQ(units(CZeString::fromUcs4(codePoints)), u"a\uFFFD\uFFFD\U0010FFFF\uFFFD\uFFFD");
    const CZeChar unpaired[] = {CZeChar(0xDC00), CZeChar(0xD800), CZeChar(0xD800), CZeChar(0xDC01)};
    const CZeList<char32_t> out = CZeString(unpaired, 4).toUcs4();
    EXPECT_THAT(std::vector<char32_t>(out.begin(), out.end()), testing::ElementsAre(0xFFFD, 0xFFFD, 0x10001));
}

TEST(Latin1, EightAtAStepIsTheUnitRule) {
    for (int size = 0; size <= 34; ++size) {
        for (int odd = 0; odd <= size; ++odd) { // where the unit stands that Latin-1 lacks
            std::vector<CZeChar> units;
            std::string narrow, widened;
            for (int i = 0; i < size; ++i) {
                constexpr char16_t kTooHigh[] = {0x100, 0x7FFF, 0x8000, 0xFFFF};
                units.push_back(i == odd ? CZeChar(kTooHigh[size % 4]) : CZeChar((0xFF - 37 * i) & 0xFF));
                narrow += i == odd ? '?' : char(0xFF - 37 * i);
            }
            CZeString string(units.data(), size); // a block of exactly this size
            EXPECT_EQ(bytes(string.toLatin1()), narrow);
            EXPECT_EQ(CZeString(CZeLatin1String(narrow.data(), size)).size(), size);
            for (const CZeChar unit : CZeString::fromLatin1(narrow.data(), size))
                widened += char(unit.unicode());
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
    EXPECT_EQ(bytes(std::move(shared).toLatin1()), "shared");
    EXPECT_EQ(copy, text(u"shared"));
    const CZeChar foreign[] = {'r', 'a', 'w'};
    EXPECT_EQ(bytes(CZeString::fromRawData(foreign, 3).toLatin1()), "raw");
    EXPECT_EQ(foreign[0], CZeChar('r'));
}

TEST(Conversion, KeepsNullAndEmptyApart) {
    const char* const none = nullptr;
    for (const CZeString& null :
         {CZeString::fromUtf8(none, 3), CZeString::fromLatin1(none), CZeString::fromUcs4(nullptr),
          CZeString::fromUtf16(nullptr), CZeString::fromUtf8(CZeByteArray())}) {
        EXPECT_TRUE(null.isNull());
        EXPECT_TRUE(null.toUtf8().isNull() && null.toLatin1().isNull() &&
                    CZeString(null).toLatin1().isNull());
    }
    for (const CZeString& empty :
         {CZeString::fromUtf8(""), CZeString::fromAscii("x", 0), CZeString::fromUcs4(U""),
          CZeString::fromUtf16(u""), CZeString::fromLocal8Bit(CZeByteArray(""))}) {
        EXPECT_TRUE(empty.isEmpty() && !empty.isNull());
        EXPECT_EQ(empty.capacity(), 0);
        EXPECT_FALSE(empty.toUtf8().isNull() || empty.toLatin1().isNull());
    }
    EXPECT_EQ(CZeString::fromUtf8("abc\0def", 7).size(), 7);
    EXPECT_EQ(CZeString::fromUtf8("abc\0def").size(), 3);
}

} // namespace
