// Which of ICU's locales gives section "intl" its data; shared with `yxtools doctor`.
#ifndef YXTOOLS_PLATFORM_POSIX_PROFILE_LOCALEDATA_H
#define YXTOOLS_PLATFORM_POSIX_PROFILE_LOCALEDATA_H

#include <string>

namespace yx::platform {

// language[_territory] of a POSIX locale name (language[_territory][.codeset][@modifier]), as ICU
// spells it; C and POSIX (and an empty name) read as en_US, as under Wine.
std::string IcuLocaleName(const std::string& posixName);

// Whether ICU has data for the language of an ICU locale name. For a language it lacks, ICU falls
// back to another locale's data, which must not answer for it.
bool HasLocaleData(const std::string& icuName);

} // namespace yx::platform

#endif
