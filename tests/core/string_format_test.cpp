// Numbers and arguments in strings.

#include "tests/core/text.h"
#include "tests/support/log_capture.h"
#include "tests/support/temp_directory.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <cfloat>
#include <climits>
#include <clocale>
#include <cstdlib>
#include <limits>

namespace {

TEST(Number, IsFormattedInEveryBase) {
    const std::pair<CZeString, std::string> rows[] = {
        // clang-format off
        {text(u"before").setNum(0), "0"}, {CZeString::number(-255, 16), "-ff"}, {CZeString::number(35, 36), "z"},
        {CZeString::number(42, 1), "42"}, {CZeString::number(42, 37), "42"}, {CZeString::number(42, -2), "42"},
        {CZeString::number(LONG_MIN, 2), "-1" + std::string(63, '0')},
        {CZeString::number(ULONG_MAX, 2), std::string(64, '1')}, {CZeString::number(UINT_MAX), "4294967295"},
        {CZeString::number(0.1), "0.1"}, {CZeString().setNum(2.5f, 'E', 1), "2.5E+00"},
        {CZeString::number(1.5, 'f', -1), "1.500000"}, {CZeString::number(1.0, 'f', 0), "1"},
        {CZeString::number(1.0, 'f', 200), "1." + std::string(125, '0')}, // the rest is cut
        // clang-format on
    };
    for (const auto& [number, digits] : rows)
        EXPECT_EQ(utf8(number), digits);
}

/// Reads `digits` by `member`: the number, or "no".
template <class Read, class... Base>
std::string read(Read member, const std::u16string& digits, Base... base) {
    bool ok = false;
    errno = ERANGE; // as an earlier call may have left it
    const auto value = (text(digits).*member)(&ok, base...);
    return ok ? std::to_string(value) : value == 0 ? "no" : "not 0";
}

/// Reads both ends of a type's range, and not what lies one beyond.
template <class Number>
void expectLimits(Number (CZeString::*member)(bool*, int) const) {
    for (const Number limit : {std::numeric_limits<Number>::min(), std::numeric_limits<Number>::max()}) {
        std::string digits = std::to_string(limit);
        EXPECT_EQ(read(member, {digits.begin(), digits.end()}, 10), digits);
        ++digits.back();
        EXPECT_EQ(read(member, {digits.begin(), digits.end()}, 10), limit == 0 ? "1" : "no");
    }
}

TEST(Number, IsReadWithinTheLimitsOfItsType) {
    expectLimits(&CZeString::toShort);
    expectLimits(&CZeString::toInt);
    expectLimits(&CZeString::toLong);
    expectLimits(&CZeString::toLongLong);
    expectLimits(&CZeString::toUShort);
    expectLimits(&CZeString::toUInt);
    expectLimits(&CZeString::toULong);
    expectLimits(&CZeString::toULongLong);
    EXPECT_EQ(read(&CZeString::toUInt, u"-1", 10), "no");
    EXPECT_EQ(read(&CZeString::toULongLong, u"-1", 10), "18446744073709551615");
    EXPECT_EQ(text(u"42x").toInt() + text(u"42").toInt(), 42);
}

TEST(Number, IsReadBetweenWhiteSpace) {
    const std::tuple<std::u16string, int, std::string> integers[] = {
        // clang-format off
        {u"\u0085\u00A0\t-7\r\n\u00A0", 10, "-7"}, {u" 0x1F ", 16, "31"}, {u"-017", 0, "-15"}, {u"+zZ9", 36, "46629"},
        {u"09", 0, "no"}, {u"7", 37, "no"}, {u"1", 1, "no"}, {u"0x", 16, "no"}, {u"42x", 10, "no"}, {u"- 7", 10, "no"},
        {{u"1\0002", 3}, 10, "no"}, {u" \v", 10, "no"}, {u"", 10, "no"}, {u"4\u2000", 10, "no"},
        {u"\u0664", 10, "no"}, // '?' in Latin-1
        // clang-format on
    };
    for (const auto& [digits, base, number] : integers)
        EXPECT_EQ(read(&CZeString::toLongLong, digits, base), number) << utf8(text(digits));
    const std::string tiny = "0.000000", large = std::to_string(3.40282347e+38);
    const std::tuple<std::u16string, std::string, std::string> reals[] = {
        // clang-format off
        {u"\u00A0inf\u0085", "inf", "inf"}, {u"nan(1)", "nan", "nan"}, {u"-1e400", "no", "no"},
        {u"0x1.8p-3", "0.187500", "0.187500"}, {u"1,5", "no", "no"}, {u".", "no", "no"}, {u"42x", "no", "no"},
        {u"4.9e-324", tiny, tiny}, {u"1e-400", "no", "no"},
        {u"3.40282347e+38", large, std::to_string(FLT_MAX)}, // a little above it as a double
        {u"-3.4028236e+38", std::to_string(-3.4028236e+38), "no"},
        // clang-format on
    };
    for (const auto& [digits, number, rounded] : reals) {
        EXPECT_EQ(read(&CZeString::toDouble, digits), number);
        EXPECT_EQ(read(&CZeString::toFloat, digits), rounded);
    }
}

TEST(Number, KeepsItsPointWhereTheProgramHasAComma) {
    const TempDirectory directory;
    const std::string make = "localedef -i de_DE -f UTF-8 " + directory / "de_DE.UTF-8" + " 2>/dev/null";
    setenv("LOCPATH", directory.path().c_str(), 1);
    const bool hasComma = std::system(make.c_str()) == 0 && std::setlocale(LC_ALL, "de_DE.UTF-8");
    unsetenv("LOCPATH");
    if (!hasComma)
        GTEST_SKIP() << "no decimal comma: localedef or its sources are not installed";
    EXPECT_EQ(utf8(text(u"%1").arg(2.5)), "2.5");
    EXPECT_EQ(text(u"1.5").toDouble(), 1.5);
    EXPECT_STREQ(std::localeconv()->decimal_point, ","); // which the program keeps
    std::setlocale(LC_ALL, "C");
}

TEST(Arg, FillsTheLowestEscapeWithEveryKindOfValue) {
    const LogCapture log;
    const CZeString s = text(u"%1|%2|%3"), one = text(u"%1"), x = text(u"x");
    const std::pair<CZeString, std::string> rows[] = {
        // clang-format off
        {text(u"Error %1 in %1 and %2").arg(x), "Error x in x and %2"}, {text(u"%10 %9").arg(x), "%10 x"},
        {text(u"%01%1|%100").arg(x), "xx|%100"}, {text(u"%00%0%99").arg(x, -3), "x  x  %99"}, {text(u"%10").arg(x), "x"},
        {text(u"%3%%3").arg(CZeLatin1String("xy"), 3, '.'), ".xy%.xy"}, {text(u"%%1%").arg(x, 1), "%x%"},
        {text(u"[%1|%1]").arg(x.midRef(0), 2), "[ x| x]"}, {one.arg(-1L, -8, 36, '.'), "-1......"},
        {text(u"%\u0661%5").arg(x), "%\xD9\xA1x"}, // only ASCII digits
        {s.arg(-5, 4).arg(255U, -4, 16, CZeChar('_')).arg(2.0 / 3, 0, 'f', 2), "  -5|ff__|0.67"},
        {s.arg(text(u"%2")).arg(9L).arg(1e9f), "9|9|1e+09"}, // filled text is filled again
        {s.arg(CZeString()).arg(s.rightRef(2)).arg('\xE9'), "|\xC3\xA9|\xC3\xA9"},
        {s.arg(u'x').arg('x', 3, '0').arg(u'x', -3, u'0'), "x|00x|x00"}, // characters are no numbers
        {s.arg(5, 3, 10, '0').arg(10UL, 3, 16, u'0').arg(0.5, 4, 'f', 1, '0'), "005|00a|00.5"},
        {one.arg(CZeString()), ""}, {text(u"%1%1%1").arg(1, INT_MAX), "(null)"}, {one.arg(1, INT_MIN), "(null)"},
        // clang-format on
    };
    for (const auto& [result, contents] : rows)
        EXPECT_EQ(shown(result), contents);
    EXPECT_THAT(log.texts(), testing::IsEmpty());
}

TEST(Arg, WarnsWithoutAnEscape) {
    const CZeString s = text(u"no \u00E9% %x %");
    LogCapture log;
    for (const CZeString& result : {s.arg(text(u"\u20AC")), s.arg(-3), s.arg(8UL, 0, 2), s.arg('c'),
                                    s.arg(CZeChar(0xE9)), s.arg(0.1234567, 0, 'f', 1)})
        EXPECT_EQ(result.constData(), s.constData());
    // Strings and doubles are told apart from the text, other values follow it at once.
    const std::string start = "CZeString::arg: Argument missing:", shown = "no \xC3\xA9% %x %";
    EXPECT_THAT(log.texts(),
                testing::ElementsAre(start + " " + shown + ", \xE2\x82\xAC", start + shown + "-3",
                                     start + shown + "8", start + shown + "c", start + shown + "\xC3\xA9",
                                     start + " " + shown + ", 0.123457"));
    EXPECT_EQ(log.entries().at(0).priority, 5);
    text(u"long").leftJustified(2000).arg(42);
    EXPECT_THAT(log.texts().back(), testing::EndsWith("   42")); // nothing is cut
    text({u"a\0b", 3}).arg(5);
    EXPECT_EQ(log.texts().back(), start + "a5"); // nor lost behind a zero
}

} // namespace
