#include "platform/posix/profile/localedata.h"

#include <cstring>

#include <unicode/uloc.h>
#include <unicode/unum.h>

namespace yx::platform {

std::string IcuLocaleName(const std::string& posixName)
{
    std::string base = posixName.substr(0, posixName.find_first_of(".@"));
    if (base.empty() || base == "C" || base == "POSIX") {
        return "en_US";
    }
    return base;
}

bool HasLocaleData(const std::string& icuName)
{
    // A number format of the locale names the locale whose data it was made from.
    const char* locale = icuName.c_str();
    UErrorCode status = U_ZERO_ERROR;
    UNumberFormat* probe = unum_open(UNUM_DECIMAL, nullptr, 0, locale, nullptr, &status);
    const char* actual = U_SUCCESS(status) ? unum_getLocaleByType(probe, ULOC_ACTUAL_LOCALE, &status) : nullptr;
    char wanted[ULOC_LANG_CAPACITY] = {};
    char found[ULOC_LANG_CAPACITY] = {};
    UErrorCode languageStatus = U_ZERO_ERROR;
    uloc_getLanguage(locale, wanted, sizeof(wanted), &languageStatus);
    if (actual != nullptr) {
        uloc_getLanguage(actual, found, sizeof(found), &languageStatus);
    }
    unum_close(probe);
    return U_SUCCESS(status) && U_SUCCESS(languageStatus) && wanted[0] != '\0' && std::strcmp(wanted, found) == 0;
}

} // namespace yx::platform
