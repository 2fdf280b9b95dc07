// The formatting of arguments in place of numbered escapes.

#include "core/tools/text_view.h"
#include "core/tools/uninitialized.h"
#include "core/warning.h"

#include <algorithm>

namespace {

/// One '%' with its digits.
struct Escape {
    int position; ///< Of the '%'; the size of the text when there is none.
    int number;
    int length; ///< 2 or 3 units.
};

constexpr bool isDigit(CZeChar unit) {
    return unit >= u'0' && unit <= u'9';
}

/// The first escape at or behind `from`.
Escape findEscape(ze::Utf16View text, int from) {
    for (int i = from; i + 1 < text.count; ++i) {
        if (text.units[i] != u'%' || !isDigit(text.units[i + 1]))
            continue;
        const int first = text.units[i + 1].unicode() - '0';
        if (i + 2 < text.count && isDigit(text.units[i + 2]))
            return {i, first * 10 + text.units[i + 2].unicode() - '0', 3};
        return {i, first, 2};
    }
    return {text.count, 0, 0};
}

/// The occurrences of the lowest escape of a text.
struct ArgEscapes {
    int number = 100;
    int occurrences = 0;
    int totalLength = 0;
};

ArgEscapes findLowestEscapes(ze::Utf16View text) {
    ArgEscapes lowest;
    for (Escape e = findEscape(text, 0); e.length != 0; e = findEscape(text, e.position + e.length)) {
        if (e.number > lowest.number)
            continue;
        if (e.number < lowest.number)
            lowest = {e.number, 0, 0};
        ++lowest.occurrences;
        lowest.totalLength += e.length;
    }
    return lowest;
}

/// `text` with `argument` in place of its lowest escapes.
CZeString replaceEscapes(ze::Utf16View text, const ArgEscapes& escapes, ze::Utf16View argument,
                         int fieldWidth, CZeChar fill) {
    const int64_t width =
        std::max(std::abs(static_cast<int64_t>(fieldWidth)), static_cast<int64_t>(argument.count));
    const int64_t length = text.count - escapes.totalLength + escapes.occurrences * width;
    CZeString result = ze::uninitialized(length);
    if (result.isNull())
        return result;

    const auto padding = static_cast<size_t>(width - argument.count);
    CZeChar* out = result.data();
    int copied = 0;
    for (Escape e = findEscape(text, 0); e.length != 0; e = findEscape(text, e.position + e.length)) {
        if (e.number != escapes.number)
            continue;
        out = std::copy(text.units + copied, text.units + e.position, out);
        if (fieldWidth > 0)
            out = std::fill_n(out, padding, fill);
        out = std::copy_n(argument.units, argument.count, out);
        if (fieldWidth < 0)
            out = std::fill_n(out, padding, fill);
        copied = e.position + e.length;
    }
    std::copy(text.units + copied, text.units + text.count, out);
    return result;
}

/// What every `arg` does: replaces the lowest escapes. Without any it calls `warn` and returns the text.
template <class Warn>
CZeString arg_helper(const CZeString& text, ze::Utf16View argument, int fieldWidth, CZeChar fill, Warn warn) {
    const ArgEscapes escapes = findLowestEscapes(text);
    if (escapes.occurrences != 0)
        return replaceEscapes(text, escapes, argument, fieldWidth, fill);
    warn();
    return text;
}

void warnOfText(const CZeString& text, const CZeString& argument) {
    ze::coreWarning("CZeString::arg: Argument missing: %s, %s", text.toLocal8Bit().constData(),
                    argument.toLocal8Bit().constData());
}

/// The warning for integers and characters, which gives text and value in full and without a gap.
void warnOfValue(const CZeString& text, const CZeString& value) {
    constexpr char kWarning[] = "CZeString::arg: Argument missing:";
    const CZeString shown = text.left(text.indexOf(CZeChar())); // a zero would end the whole warning
    const CZeString warning = CZeLatin1String(kWarning) + shown + value;
    if (warning.endsWith(value) && warning.startsWith(CZeLatin1String(kWarning)))
        ze::coreWarning(warning);
    else
        ze::coreWarning(kWarning); // no memory for the rest
}

template <class Integer>
CZeString integerArg(const CZeString& text, Integer argument, int fieldWidth, int base, CZeChar fill) {
    const CZeString digits = CZeString::number(argument, base);
    if (digits.isNull())
        return {};
    return arg_helper(text, digits, fieldWidth, fill,
                      [&] { warnOfValue(text, CZeString::number(argument)); }); // decimal whatever the base
}

} // namespace

CZeString CZeString::arg(const CZeString& argument, int fieldWidth, CZeChar fill) const {
    return arg_helper(*this, argument, fieldWidth, fill, [&] { warnOfText(*this, argument); });
}

CZeString CZeString::arg(const CZeStringRef& argument, int fieldWidth, CZeChar fill) const {
    return arg_helper(*this, argument, fieldWidth, fill, [&] { warnOfText(*this, argument.toString()); });
}

CZeString CZeString::arg(CZeLatin1String argument, int fieldWidth, CZeChar fill) const {
    const CZeString widened(argument);
    return widened.size() == argument.size() ? arg(widened, fieldWidth, fill) : CZeString();
}

CZeString CZeString::arg(CZeChar argument, int fieldWidth, CZeChar fill) const {
    return arg_helper(*this, ze::Utf16View(&argument), fieldWidth, fill,
                      [&] { warnOfValue(*this, argument); });
}

CZeString CZeString::arg(char argument, int fieldWidth, CZeChar fill) const {
    return arg(CZeChar(argument), fieldWidth, fill);
}

CZeString CZeString::arg(long argument, int fieldWidth, int base, CZeChar fill) const {
    return integerArg(*this, argument, fieldWidth, base, fill);
}

CZeString CZeString::arg(unsigned long argument, int fieldWidth, int base, CZeChar fill) const {
    return integerArg(*this, argument, fieldWidth, base, fill);
}

CZeString CZeString::arg(double argument, int fieldWidth, char format, int precision, CZeChar fill) const {
    const CZeString digits = number(argument, format, precision);
    if (digits.isNull())
        return {};
    return arg_helper(*this, digits, fieldWidth, fill, [&] {
        ze::coreWarning("CZeString::arg: Argument missing: %s, %g", toLocal8Bit().constData(), argument);
    });
}
