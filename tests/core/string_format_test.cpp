// Numbers and arguments in strings.

#include "tests/core/text.h"
#include "tests/support/log_capture.h"
#include "tests/support/temp_directory.h"

#include <gmock/gmock.h>

#include <cfloat>
#include <climits>
#include <clocale>
#include <cmath>
#include <cstdlib>
#include <utility>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(Number, FormatsIntegersInEveryBase) {
    const std::tuple<long, int, std::string> rows[] = {
        // clang-format off
        {0, 10, "0"}, {-255, 16, "-ff"}, {35, 36, "z"}, {42, 1, "42"}, {42, 37, "42"}, {42, -2, "42"},
        {LONG_MAX, 10, "9223372036854775807"}, {LONG_MIN, 2, "-1" + std::string(63, '0')},
        // clang-format on
    };
    for (const auto& [value, base, digits] : rows) {
        EXPECT_EQ(utf8(text(u"before").setNum(value, base)), digits);
        EXPECT_EQ(utf8(CZeString::number(static_cast<unsigned long>(value), base)) == digits, value >= 0);
    }
    EXPECT_EQ(utf8(CZeString::number(INT_MIN) + CZeString::number(UINT_MAX)), "-21474836484294967295");
    EXPECT_EQ(utf8(CZeString::number(ULONG_MAX, 2)), std::string(64, '1'));
    EXPECT_EQ(utf8(CZeString::number(0.1) + CZeString().setNum(2.5f, 'E', 1)), "0.12.5E+00");
    EXPECT_EQ(utf8(CZeString::number(1.5, 'f', -1)), "1.500000");
    EXPECT_EQ(CZeString::number(1.0, 'f', 200).size(), 127); // the rest is cut
}

TEST(Number, ReadsIntegers) {
    constexpr bool kFails = false;
    const std::tuple<const char16_t*, int, bool, long long> rows[] = {
        // clang-format off
        {u"\u0085\u00A0\t-7\r\n\u00A0", 10, true, -7}, {u"- 7", 10, kFails, 0}, {u"0x1F", 10, kFails, 0},
        {u"09", 0, kFails, 0}, {u"z", 36, true, 35}, {u"7", 1, kFails, 0}, {u"7", 37, kFails, 0},
        {u"\u0664", 10, kFails, 0}, {u"4\u2000", 10, kFails, 0}, // '?' in Latin-1
        {u"32767", 10, true, SHRT_MAX}, {u"-32768", 10, true, SHRT_MIN}, {u"65535", 10, true, USHRT_MAX},
        {u"65536", 10, true, 65536}, {u"-32769", 10, true, -32769}, {u"2147483647", 10, true, INT_MAX},
        {u"-2147483649", 10, true, -2147483649}, {u"4294967296", 10, true, 4294967296},
        {u"9223372036854775807", 10, true, LLONG_MAX}, {u"-9223372036854775808", 10, true, LLONG_MIN},
        {u"9223372036854775808", 10, kFails, 0}, {u"-9223372036854775809", 10, kFails, 0},
        // clang-format on
    };
    for (const auto& [units, base, isNumber, value] : rows) {
        const CZeString s = text(units);
        const auto expect = [&, radix = base, isOk = isNumber,
                             wide = value]<class Number>(Number (CZeString::*member)(bool*, int) const) {
            const bool fits = isOk && std::in_range<Number>(wide);
            bool ok = !fits;
            EXPECT_EQ((s.*member)(&ok, radix), fits ? static_cast<Number>(wide) : 0) << utf8(s);
            EXPECT_EQ(ok, fits) << utf8(s) << ' ' << radix;
        };
        expect(&CZeString::toLongLong);
        expect(&CZeString::toInt);
        expect(&CZeString::toShort);
        if (isNumber && value >= 0) {
            expect(&CZeString::toUInt);
            expect(&CZeString::toUShort);
        }
    }
    bool ok = false;
    EXPECT_TRUE(text(u"18446744073709551615").toULongLong(&ok) == ULLONG_MAX && ok);
    EXPECT_TRUE(text(u"-1").toULongLong(&ok) == ULLONG_MAX && ok);
    EXPECT_TRUE(text(u"-1").toUInt(&ok) == 0 && !ok && CZeString(text(u"1") + CZeChar(0)).toInt() == 0);
}

TEST(Number, ReadsDoubles) {
    bool ok = true;
    EXPECT_TRUE(text(u"1e39").toFloat(&ok) == 0 && !ok && text(u"1e39").toDouble(&ok) == 1e39 && ok);
    EXPECT_TRUE(text(u"-1e39").toFloat(&ok) == 0 && !ok && text(u".").toDouble(&ok) == 0 && !ok);
    EXPECT_EQ(text(u"3.40282347e+38").toFloat(&ok), FLT_MAX); // which is slightly less
    EXPECT_TRUE(ok);
    EXPECT_EQ(text(u"-3.4028236e+38").toFloat(&ok), 0); // which is nearer to infinity
    EXPECT_FALSE(ok);
    EXPECT_TRUE(text(u"1e-400").toDouble(&ok) == 0 && !ok && text(u"1e-320").toDouble(&ok) == 1e-320 && ok);
    EXPECT_TRUE(text(u"\u00A0inf\u0085").toDouble(&ok) == HUGE_VAL && ok && text(u"0x1p3").toFloat() == 8);
}

TEST(Number, KeepsItsPointWhereTheProgramHasAComma) {
    const TempDirectory directory;
    const std::string make = "localedef -i de_DE -f UTF-8 " + directory / "de_DE.UTF-8" + " 2>/dev/null";
    setenv("LOCPATH", directory.path().c_str(), 1);
    const bool hasComma = std::system(make.c_str()) == 0 && std::setlocale(LC_ALL, "de_DE.UTF-8");
    unsetenv("LOCPATH");
    if (!hasComma)
        GTEST_SKIP() << "no decimal comma: localedef or its sources are not installed";
    bool ok = true;
    EXPECT_EQ(utf8(CZeString::number(1.5)) + utf8(text(u"%1").arg(2.5)), "1.52.5");
    EXPECT_TRUE(text(u"1.5").toDouble() == 1.5 && text(u"1,5").toDouble(&ok) == 0 && !ok);
    EXPECT_STREQ(std::localeconv()->decimal_point, ","); // which the program keeps
    std::setlocale(LC_ALL, "C");
}

TEST(Arg, FillsTheLowestEscape) {
    const std::tuple<const char16_t*, int, const char*> rows[] = {
        // clang-format off
        {u"Error %1 in %1 and %2", 0, "Error x in x and %2"}, {u"%10 %9", 0, "%10 x"}, {u"%10", 0, "x"},
        {u"%100", 0, "x0"}, {u"%0%1", 0, "x%1"},
        {u"%01%1", 0, "xx"}, // both are the number 1, of different lengths
        {u"%%1%", 0, "%x%"}, {u"%\u0661%5", 0, "%\xD9\xA1x"}, // only ASCII digits
        {u"[%1]", -3, "[x..]"}, {u"[%1]", 1, "[x]"}, {u"[%1|%1]", 2, "[.x|.x]"},
        // clang-format on
    };
    for (const auto& [string, width, result] : rows) {
        const CZeString s = text(string);
        EXPECT_EQ(utf8(s.arg(text(u"x"), width, CZeChar('.'))), result);
        EXPECT_EQ(utf8(s.arg(CZeChar('x'), width, CZeChar('.'))), result);
    }
}

TEST(Arg, TakesEveryKindOfValue) {
    const LogCapture log;
    const CZeString s = text(u"%1|%2|%3");
    EXPECT_EQ(utf8(s.arg(-5, 4).arg(255U, -4, 16, CZeChar('_')).arg(2.0 / 3, 0, 'f', 2)), "  -5|ff__|0.67");
    EXPECT_EQ(utf8(s.arg(text(u"%2")).arg(static_cast<short>(9)).arg(1e9f)),
              "9|9|1e+09"); // filled text is filled again
    EXPECT_EQ(utf8(s.arg(CZeString()).arg(s.rightRef(2)).arg('\xE9')), "|\xC3\xA9|\xC3\xA9");
    EXPECT_FALSE(text(u"%1").arg(CZeString()).isNull());
    EXPECT_THAT(log.texts(), IsEmpty());
}

TEST(Arg, TakesCharactersForUnits) {
    const CZeString s = text(u"%1");
    EXPECT_EQ(utf8(s.arg(u'x') + s.arg('x', 3, '0') + s.arg(u'x', -3, u'0')), "x00xx00");
    EXPECT_EQ(utf8(s.arg(5, 3, 10, '0') + s.arg(10UL, 3, 16, u'0') + s.arg(0.5, 4, 'f', 1, '0')),
              "00500a00.5");
}

TEST(Arg, WarnsWithoutAnEscape) {
    const CZeString s = text(u"no \u00E9% %x %");
    LogCapture log;
    for (const CZeString& result : {s.arg(text(u"\u20AC")), s.arg(-3), s.arg(8UL, 0, 2), s.arg('c'),
                                    s.arg(CZeChar(0xE9)), s.arg(0.1234567, 0, 'f', 1)})
        EXPECT_EQ(result.constData(), s.constData());
    // Strings and doubles are told apart from the text, other values follow it at once.
    const std::string start = "CZeString::arg: Argument missing:", shown = "no \xC3\xA9% %x %";
    EXPECT_THAT(log.texts(), ElementsAre(start + " " + shown + ", \xE2\x82\xAC", start + shown + "-3",
                                         start + shown + "8", start + shown + "c", start + shown + "\xC3\xA9",
                                         start + " " + shown + ", 0.123457"));
    EXPECT_EQ(log.entries().at(0).priority, 5);
    text(u"long").leftJustified(2000).arg(42);
    EXPECT_THAT(log.texts().back(), testing::EndsWith("   42")); // nothing is cut
    EXPECT_TRUE(text(u"%1%1%1").arg(1, INT_MAX).isNull() && text(u"%1").arg(1, INT_MIN).isNull()); // too long
}

} // namespace
