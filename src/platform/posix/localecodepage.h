// The ANSI code page of the user's locale, as Wine derives it. Built into the library's stand-in
// (behind GetACP) and into the yxtools command, which must agree with the library on the code page
// it converts arguments to.
#ifndef YXTOOLS_PLATFORM_POSIX_LOCALECODEPAGE_H
#define YXTOOLS_PLATFORM_POSIX_LOCALECODEPAGE_H

namespace yx::platform {

// The locale name that rules a category and the variable it was read from (null when none is
// set and the name is "C").
struct LocaleChoice {
    const char* variable;
    const char* name;
};
LocaleChoice ChooseLocale(const char* category);

// The locale name that rules a category, as the C library picks it: LC_ALL, else the category's
// own variable (none when null), else LANG; "C" when none is set. Read at each call.
const char* LocaleVariable(const char* category);

// The locale name the user's environment gives: LC_ALL, else LC_CTYPE, else LANG, else "C".
// The process locale (setlocale) plays no part: that belongs to the host.
const char* UserLocaleName();

// The ANSI code page of a POSIX locale name (language[_territory][.codeset][@modifier]).
unsigned int CodePageOfLocale(const char* name);

} // namespace yx::platform

#endif
