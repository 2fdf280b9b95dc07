// Floating-point numbers in the "C" locale, whatever locale the program has chosen.

#pragma once

#include <locale.h>

namespace ze {

/// While it lives, its thread reads and writes numbers as in the "C" locale. Nothing to do on Android, where
/// they are never written otherwise; elsewhere a decimal comma may have been chosen.
class InCLocale {
public:
#ifdef __ANDROID__
    InCLocale() {}
#else
    InCLocale() : m_previous(uselocale(cLocale())) {}
    ~InCLocale() {
        uselocale(m_previous);
    }
#endif
    InCLocale(const InCLocale&) = delete;
    InCLocale& operator=(const InCLocale&) = delete;

private:
#ifndef __ANDROID__
    static locale_t cLocale() {
        static const locale_t locale = newlocale(LC_ALL_MASK, "C", nullptr);
        return locale;
    }

    locale_t m_previous;
#endif
};

} // namespace ze
