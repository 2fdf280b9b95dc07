// Floating-point numbers in the "C" locale, whatever locale the program has chosen.

#pragma once

#include <cstdlib>
#include <locale.h>

namespace ze {

/// As strtod. Android's knows no other locale; elsewhere a decimal comma may have been chosen.
inline double strtodInCLocale(const char* text, char** end) {
#ifdef __ANDROID__
    return std::strtod(text, end);
#else
    static const locale_t cLocale = newlocale(LC_ALL_MASK, "C", nullptr);
    return strtod_l(text, end, cLocale);
#endif
}

} // namespace ze
