// The values of section "intl" that a POSIX locale gives, taken from ICU's locale data (CLDR).
#ifndef YXTOOLS_PLATFORM_POSIX_PROFILE_LOCALEINTL_H
#define YXTOOLS_PLATFORM_POSIX_PROFILE_LOCALEINTL_H

#include <string>

#include "platform/posix/win32_posix.h"

namespace yx::platform {

// The POSIX locale whose data answer `key` of section "intl": LC_ALL, else the variable of the
// key's category (LC_NUMERIC, LC_MONETARY, LC_TIME, LC_MEASUREMENT; none for language and
// country), else LANG; "C" when none is set.
YX_PLATFORM std::string IntlLocaleName(const std::string& key);

// The value of `key` (matched without regard to case) under that locale, in the ANSI code page,
// as Windows writes it for the same locale: separators, grouping, currency symbol and digits,
// AM/PM, date order, short and long date pictures, sLanguage as Windows' three-letter name,
// iCountry as the telephone code, iMeasure. False when the key is not one of these or the
// locale's data cannot tell it.
YX_PLATFORM bool IntlLocaleValue(const std::string& key, std::string& value);

} // namespace yx::platform

#endif
