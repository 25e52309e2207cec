// Section "intl" from the user's POSIX locale: ICU's CLDR data, written as Windows writes them.
#include "platform/posix/profile/localeintl.h"

#include <cctype>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include <unicode/ucnv.h>
#include <unicode/udat.h>
#include <unicode/udatpg.h>
#include <unicode/uloc.h>
#include <unicode/ulocdata.h>
#include <unicode/unum.h>

#include "platform/posix/codepage.h"
#include "platform/posix/profile/localedata.h"

namespace {

using UText = std::u16string;
using Table = std::map<std::string, std::string>;

std::string Lower(std::string text)
{
    for (char& c : text) {
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    return text;
}

// The category whose variable names the locale of a key.
const char* CategoryOf(const std::string& lowerKey)
{
    static const std::map<std::string, const char*> categories = {
        {"idigits", "LC_NUMERIC"},    {"sthousand", "LC_NUMERIC"},  {"sdecimal", "LC_NUMERIC"},
        {"ilzero", "LC_NUMERIC"},     {"slist", "LC_NUMERIC"},      {"imeasure", "LC_MEASUREMENT"},
        {"scurrency", "LC_MONETARY"}, {"icurrency", "LC_MONETARY"}, {"icurrdigits", "LC_MONETARY"},
        {"inegcurr", "LC_MONETARY"},  {"stime", "LC_TIME"},         {"itime", "LC_TIME"},
        {"itlzero", "LC_TIME"},       {"s1159", "LC_TIME"},         {"s2359", "LC_TIME"},
        {"idate", "LC_TIME"},         {"sdate", "LC_TIME"},         {"sshortdate", "LC_TIME"},
        {"slongdate", "LC_TIME"},
    };
    const auto found = categories.find(lowerKey);
    return found == categories.end() ? nullptr : found->second;
}

// Windows' three-letter language names where they are not ISO 639-2 in capitals.
std::string WindowsLanguage(const std::string& icuName)
{
    static const std::map<std::string, std::string> names = {
        {"en_US", "ENU"}, {"en_GB", "ENG"}, {"en_AU", "ENA"}, {"en_CA", "ENC"}, {"en_NZ", "ENZ"},
        {"en_IE", "ENI"}, {"en_ZA", "ENS"}, {"en_IN", "ENN"}, {"de_CH", "DES"}, {"de_AT", "DEA"},
        {"de_LU", "DEL"}, {"fr_BE", "FRB"}, {"fr_CA", "FRC"}, {"fr_CH", "FRS"}, {"fr_LU", "FRL"},
        {"it_CH", "ITS"}, {"nl_BE", "NLB"}, {"pt_BR", "PTB"}, {"pt_PT", "PTG"}, {"es_ES", "ESN"},
        {"es_MX", "ESM"}, {"zh_CN", "CHS"}, {"zh_TW", "CHT"}, {"zh_HK", "ZHH"}, {"sv_FI", "SVF"},
    };
    static const std::map<std::string, std::string> languages = {
        {"en", "ENU"}, {"de", "DEU"}, {"fr", "FRA"}, {"it", "ITA"}, {"nl", "NLD"}, {"es", "ESN"}, {"pt", "PTB"},
        {"zh", "CHS"}, {"sv", "SVE"}, {"pl", "PLK"}, {"cs", "CSY"}, {"tr", "TRK"}, {"nb", "NOR"}, {"no", "NOR"},
        {"da", "DAN"}, {"el", "ELL"}, {"ko", "KOR"}, {"ja", "JPN"}, {"ru", "RUS"}, {"fi", "FIN"}, {"hu", "HUN"},
        {"is", "ISL"}, {"sk", "SKY"}, {"sl", "SLV"}, {"uk", "UKR"}, {"ca", "CAT"}, {"he", "HEB"}, {"ar", "ARA"},
    };
    const auto found = names.find(icuName);
    if (found != names.end()) {
        return found->second;
    }
    const std::string language = icuName.substr(0, icuName.find('_'));
    const auto known = languages.find(language);
    if (known != languages.end()) {
        return known->second;
    }
    std::string iso3 = uloc_getISO3Language(icuName.c_str());
    for (char& c : iso3) {
        c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    }
    return iso3;
}

// The telephone country code that Windows keeps as iCountry.
const char* CountryCode(const std::string& territory)
{
    static const std::map<std::string, const char*> codes = {
        {"US", "1"},   {"CA", "2"},   {"RU", "7"},   {"EG", "20"},  {"ZA", "27"},  {"GR", "30"},  {"NL", "31"},
        {"BE", "32"},  {"FR", "33"},  {"ES", "34"},  {"HU", "36"},  {"IT", "39"},  {"RO", "40"},  {"CH", "41"},
        {"AT", "43"},  {"GB", "44"},  {"DK", "45"},  {"SE", "46"},  {"NO", "47"},  {"PL", "48"},  {"DE", "49"},
        {"MX", "52"},  {"AR", "54"},  {"BR", "55"},  {"CL", "56"},  {"CO", "57"},  {"AU", "61"},  {"ID", "62"},
        {"NZ", "64"},  {"SG", "65"},  {"TH", "66"},  {"JP", "81"},  {"KR", "82"},  {"VN", "84"},  {"CN", "86"},
        {"TR", "90"},  {"IN", "91"},  {"PK", "92"},  {"PT", "351"}, {"LU", "352"}, {"IE", "353"}, {"IS", "354"},
        {"FI", "358"}, {"BG", "359"}, {"LT", "370"}, {"LV", "371"}, {"EE", "372"}, {"UA", "380"}, {"HR", "385"},
        {"SI", "386"}, {"CZ", "420"}, {"SK", "421"}, {"HK", "852"}, {"TW", "886"}, {"IL", "972"},
    };
    const auto found = codes.find(territory);
    return found == codes.end() ? nullptr : found->second;
}

// UTF-16 text in the ANSI code page, with "?" for what it cannot hold. The narrow no-break space
// that CLDR puts in French numbers is the plain no-break space that Windows uses there.
std::string ToAnsi(UText text)
{
    for (char16_t& c : text) {
        if (c == 0x202F) {
            c = 0x00A0;
        }
    }
    const UINT codePage = GetACP();
    const std::string name = codePage == 65001 ? std::string("UTF-8") : "windows-" + std::to_string(codePage);
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<UConverter, void (*)(UConverter*)> converter(ucnv_open(name.c_str(), &status), ucnv_close);
    if (U_FAILURE(status)) {
        return std::string();
    }
    ucnv_setSubstChars(converter.get(), "?", 1, &status);
    std::string out(text.size() * 4 + 1, '\0');
    status = U_ZERO_ERROR;
    const int32_t length = ucnv_fromUChars(converter.get(), out.data(), static_cast<int32_t>(out.size()), text.data(),
                                           static_cast<int32_t>(text.size()), &status);
    if (U_FAILURE(status)) {
        return std::string();
    }
    out.resize(static_cast<std::size_t>(length));
    return out;
}

template <class Fill>
UText Read(Fill fill)
{
    std::vector<UChar> buffer(256);
    UErrorCode status = U_ZERO_ERROR;
    const int32_t length = fill(buffer.data(), static_cast<int32_t>(buffer.size()), &status);
    if (U_FAILURE(status) || length < 0 || length > static_cast<int32_t>(buffer.size())) {
        return UText();
    }
    return UText(buffer.data(), buffer.data() + length);
}

// Invisible direction marks that CLDR places in some patterns.
UText WithoutMarks(const UText& text)
{
    UText out;
    for (const char16_t c : text) {
        if (c != 0x200E && c != 0x200F && c != 0x061C) {
            out += c;
        }
    }
    return out;
}

// A CLDR date or time pattern as a Windows picture: years as yyyy (yy stays), weekdays as
// ddd/dddd, eras as gg; literals in quotes pass unchanged.
UText WindowsPicture(const UText& pattern)
{
    UText out;
    for (std::size_t i = 0; i < pattern.size();) {
        const char16_t c = pattern[i];
        if (c == u'\'') {
            const std::size_t close = pattern.find(u'\'', i + 1);
            const std::size_t end = close == UText::npos ? pattern.size() : close + 1;
            out += pattern.substr(i, end - i);
            i = end;
            continue;
        }
        std::size_t run = 1;
        while (i + run < pattern.size() && pattern[i + run] == c) {
            ++run;
        }
        // Letters without a Windows counterpart, and everything that is no letter, stay as they are.
        if (c == u'y' || c == u'Y' || c == u'u') {
            out += run == 2 ? u"yy" : u"yyyy";
        } else if (c == u'M' || c == u'L') {
            out += UText(run > 4 ? 4 : run, u'M');
        } else if (c == u'd') {
            out += UText(run > 2 ? 2 : run, u'd');
        } else if (c == u'E' || c == u'c' || c == u'e') {
            out += run >= 4 ? u"dddd" : u"ddd";
        } else if (c == u'G') {
            out += u"gg";
        } else {
            out += pattern.substr(i, run);
        }
        i += run;
    }
    return out;
}

// The first run of characters that separates two fields of a picture.
UText SeparatorOf(const UText& picture)
{
    const auto isField = [](char16_t c) { return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || c == u'\''; };
    std::size_t i = 0;
    while (i < picture.size() && isField(picture[i])) {
        ++i;
    }
    std::size_t end = i;
    while (end < picture.size() && !isField(picture[end])) {
        ++end;
    }
    return picture.substr(i, end - i);
}

// A currency pattern reduced to its shape: C for the symbol, N for the number, and the signs,
// brackets and blanks between them.
std::string Shape(const UText& pattern)
{
    std::string out;
    for (const char16_t c : WithoutMarks(pattern)) {
        char token = '\0';
        if (c == 0x00A4) {
            token = 'C';
        } else if ((c >= u'0' && c <= u'9') || c == u'#' || c == u',' || c == u'.' || c == u'@') {
            token = 'N';
        } else if (c == u' ' || c == 0x00A0 || c == 0x202F) {
            token = ' ';
        } else if (c == u'-' || c == u'(' || c == u')') {
            token = static_cast<char>(c);
        } else {
            continue;
        }
        if (out.empty() || out.back() != token || token == '-' || token == '(' || token == ')') {
            out += token;
        }
    }
    return out;
}

void AddCurrencyFormats(const char* locale, Table& table)
{
    UErrorCode status = U_ZERO_ERROR;
    UNumberFormat* currency = unum_open(UNUM_CURRENCY, nullptr, 0, locale, nullptr, &status);
    if (U_FAILURE(status)) {
        return;
    }
    const UText symbol = Read(
        [&](UChar* b, int32_t n, UErrorCode* s) { return unum_getSymbol(currency, UNUM_CURRENCY_SYMBOL, b, n, s); });
    table["scurrency"] = ToAnsi(symbol);
    table["icurrdigits"] = std::to_string(unum_getAttribute(currency, UNUM_MAX_FRACTION_DIGITS));
    const UText pattern =
        Read([&](UChar* b, int32_t n, UErrorCode* s) { return unum_toPattern(currency, 0, b, n, s); });
    unum_close(currency);
    const UText positive = pattern.substr(0, pattern.find(u';'));
    static const std::map<std::string, const char*> positives = {{"CN", "0"}, {"NC", "1"}, {"C N", "2"}, {"N C", "3"}};
    const auto foundPositive = positives.find(Shape(positive));
    if (foundPositive != positives.end()) {
        table["icurrency"] = foundPositive->second;
    }
    // Windows' negative currency formats follow CLDR's accounting patterns.
    status = U_ZERO_ERROR;
    UNumberFormat* accounting = unum_open(UNUM_CURRENCY_ACCOUNTING, nullptr, 0, locale, nullptr, &status);
    if (U_FAILURE(status)) {
        return;
    }
    const UText accountingPattern =
        Read([&](UChar* b, int32_t n, UErrorCode* s) { return unum_toPattern(accounting, 0, b, n, s); });
    unum_close(accounting);
    const std::size_t semicolon = accountingPattern.find(u';');
    const std::string negative =
        semicolon == UText::npos ? "-" + Shape(accountingPattern) : Shape(accountingPattern.substr(semicolon + 1));
    static const char* const negatives[] = {"(CN)", "-CN",  "C-N",  "CN-",  "(NC)", "-NC",  "N-C",   "NC-",
                                            "-N C", "-C N", "N C-", "C N-", "C -N", "N- C", "(C N)", "(N C)"};
    for (std::size_t i = 0; i < sizeof(negatives) / sizeof(negatives[0]); ++i) {
        if (negative == negatives[i]) {
            table["inegcurr"] = std::to_string(i);
        }
    }
}

void AddNumberFormats(const char* locale, Table& table)
{
    UErrorCode status = U_ZERO_ERROR;
    UNumberFormat* number = unum_open(UNUM_DECIMAL, nullptr, 0, locale, nullptr, &status);
    if (U_FAILURE(status)) {
        return;
    }
    const UText decimal = Read([&](UChar* b, int32_t n, UErrorCode* s) {
        return unum_getSymbol(number, UNUM_DECIMAL_SEPARATOR_SYMBOL, b, n, s);
    });
    const UText grouping = Read([&](UChar* b, int32_t n, UErrorCode* s) {
        return unum_getSymbol(number, UNUM_GROUPING_SEPARATOR_SYMBOL, b, n, s);
    });
    table["ilzero"] = unum_getAttribute(number, UNUM_MIN_INTEGER_DIGITS) > 0 ? "1" : "0";
    unum_close(number);
    table["sdecimal"] = ToAnsi(decimal);
    table["sthousand"] = ToAnsi(grouping);
    // CLDR has no list separator: Windows uses ";" where the comma is the decimal mark.
    table["slist"] = decimal == u"," ? ";" : ",";
    // Two decimals, as Windows has for nearly every locale; CLDR's patterns show up to three.
    table["idigits"] = "2";
    status = U_ZERO_ERROR;
    const UMeasurementSystem system = ulocdata_getMeasurementSystem(locale, &status);
    if (U_SUCCESS(status)) {
        table["imeasure"] = system == UMS_US ? "1" : "0";
    }
}

void AddDateTimeFormats(const char* locale, Table& table)
{
    UErrorCode status = U_ZERO_ERROR;
    UDateFormat* time = udat_open(UDAT_SHORT, UDAT_NONE, locale, nullptr, 0, nullptr, 0, &status);
    if (U_SUCCESS(status)) {
        const UText pattern =
            WithoutMarks(Read([&](UChar* b, int32_t n, UErrorCode* s) { return udat_toPattern(time, 0, b, n, s); }));
        table["s1159"] = ToAnsi(
            Read([&](UChar* b, int32_t n, UErrorCode* s) { return udat_getSymbols(time, UDAT_AM_PMS, 0, b, n, s); }));
        table["s2359"] = ToAnsi(
            Read([&](UChar* b, int32_t n, UErrorCode* s) { return udat_getSymbols(time, UDAT_AM_PMS, 1, b, n, s); }));
        udat_close(time);
        const std::size_t hour = pattern.find_first_of(u"hHkK");
        if (hour != UText::npos) {
            table["itime"] = pattern[hour] == u'H' || pattern[hour] == u'k' ? "1" : "0";
            table["itlzero"] = hour + 1 < pattern.size() && pattern[hour + 1] == pattern[hour] ? "1" : "0";
        }
        table["stime"] = ToAnsi(SeparatorOf(pattern));
    }
    status = U_ZERO_ERROR;
    UDateTimePatternGenerator* generator = udatpg_open(locale, &status);
    if (U_SUCCESS(status)) {
        // Windows' short date is the locale's numeric year-month-day with a four-digit year.
        const UText shortDate = WindowsPicture(WithoutMarks(Read([&](UChar* b, int32_t n, UErrorCode* s) {
            return udatpg_getBestPattern(generator, u"yMd", -1, b, n, s);
        })));
        udatpg_close(generator);
        table["sshortdate"] = ToAnsi(shortDate);
        table["sdate"] = ToAnsi(SeparatorOf(shortDate));
        const std::size_t month = shortDate.find(u'M');
        const std::size_t day = shortDate.find(u'd');
        const std::size_t year = shortDate.find(u'y');
        if (month != UText::npos && day != UText::npos && year != UText::npos) {
            table["idate"] = year < month ? "2" : (month < day ? "0" : "1");
        }
    }
    status = U_ZERO_ERROR;
    UDateFormat* date = udat_open(UDAT_NONE, UDAT_FULL, locale, nullptr, 0, nullptr, 0, &status);
    if (U_SUCCESS(status)) {
        table["slongdate"] = ToAnsi(WindowsPicture(
            WithoutMarks(Read([&](UChar* b, int32_t n, UErrorCode* s) { return udat_toPattern(date, 0, b, n, s); }))));
        udat_close(date);
    }
}

Table MakeTable(const std::string& icuName)
{
    Table table;
    const char* locale = icuName.c_str();
    // A language that ICU has no data for falls back to another locale's: then nothing is answered.
    if (!yx::platform::HasLocaleData(icuName)) {
        return table;
    }
    table["slanguage"] = WindowsLanguage(icuName);
    char territory[ULOC_COUNTRY_CAPACITY] = {};
    UErrorCode status = U_ZERO_ERROR;
    uloc_getCountry(locale, territory, sizeof(territory), &status);
    if (U_SUCCESS(status) && territory[0] != '\0') {
        const UText country =
            Read([&](UChar* b, int32_t n, UErrorCode* s) { return uloc_getDisplayCountry(locale, "en", b, n, s); });
        table["scountry"] = ToAnsi(country);
        if (const char* code = CountryCode(territory)) {
            table["icountry"] = code;
        }
    }
    AddNumberFormats(locale, table);
    AddCurrencyFormats(locale, table);
    AddDateTimeFormats(locale, table);
    return table;
}

} // namespace

namespace yx::platform {

std::string IntlLocaleName(const std::string& key)
{
    return LocaleVariable(CategoryOf(Lower(key)));
}

bool IntlLocaleValue(const std::string& key, std::string& value)
{
    // Locale data do not change while the process runs: one table per locale and code page.
    static std::mutex lock;
    static std::map<std::string, Table> tables;
    const std::string lowerKey = Lower(key);
    const std::string icuName = IcuLocaleName(LocaleVariable(CategoryOf(lowerKey)));
    const std::string cacheKey = icuName + "/" + std::to_string(GetACP());
    const std::lock_guard<std::mutex> guard(lock);
    auto found = tables.find(cacheKey);
    if (found == tables.end()) {
        found = tables.emplace(cacheKey, MakeTable(icuName)).first;
    }
    const auto entry = found->second.find(lowerKey);
    if (entry == found->second.end()) {
        return false;
    }
    value = entry->second;
    return true;
}

} // namespace yx::platform
