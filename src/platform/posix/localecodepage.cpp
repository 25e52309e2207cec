#include "platform/posix/localecodepage.h"

#include <cctype>
#include <cstdlib>
#include <string>

namespace {

constexpr unsigned int kWesternEuropean = 1252;
constexpr unsigned int kUtf8 = 65001;

struct LanguageCodePage {
    const char* language;
    unsigned int codePage;
};

// The ANSI code page of each language whose default is not 1252, as Wine gives it. Languages that
// Windows writes in Unicode only have UTF-8 as their ANSI code page.
const LanguageCodePage kLanguages[] = {
    {"ja", 932},   {"ko", 949},   {"cs", 1250},  {"hu", 1250},  {"pl", 1250},  {"ro", 1250},  {"sk", 1250},
    {"sl", 1250},  {"hr", 1250},  {"sq", 1250},  {"ru", 1251},  {"uk", 1251},  {"be", 1251},  {"bg", 1251},
    {"mk", 1251},  {"mn", 1251},  {"ky", 1251},  {"tt", 1251},  {"ba", 1251},  {"tg", 1251},  {"el", 1253},
    {"tr", 1254},  {"he", 1255},  {"ar", 1256},  {"fa", 1256},  {"ur", 1256},  {"ps", 1256},  {"ug", 1256},
    {"et", 1257},  {"lv", 1257},  {"lt", 1257},  {"vi", 1258},  {"th", 874},   {"hi", kUtf8}, {"ka", kUtf8},
    {"hy", kUtf8}, {"kk", kUtf8}, {"bn", kUtf8}, {"ta", kUtf8}, {"te", kUtf8}, {"ml", kUtf8}, {"kn", kUtf8},
    {"mr", kUtf8}, {"gu", kUtf8}, {"pa", kUtf8}, {"or", kUtf8}, {"as", kUtf8}, {"ne", kUtf8}, {"si", kUtf8},
    {"km", kUtf8}, {"lo", kUtf8}, {"am", kUtf8}, {"bo", kUtf8}, {"dv", kUtf8}, {"iu", kUtf8}, {"sa", kUtf8},
};

std::string Lower(std::string text)
{
    for (char& c : text) {
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    return text;
}

} // namespace

namespace yx::platform {

LocaleChoice ChooseLocale(const char* category)
{
    for (const char* variable : {"LC_ALL", category, "LANG"}) {
        const char* value = variable != nullptr ? std::getenv(variable) : nullptr;
        if (value != nullptr && *value != '\0') {
            return {variable, value};
        }
    }
    return {nullptr, "C"};
}

const char* LocaleVariable(const char* category)
{
    return ChooseLocale(category).name;
}

const char* UserLocaleName()
{
    return LocaleVariable("LC_CTYPE");
}

unsigned int CodePageOfLocale(const char* name)
{
    // language[_territory][.codeset][@modifier]; the codeset plays no part, as in Wine.
    const std::string text(name);
    const std::size_t languageEnd = text.find_first_of("_.@");
    const std::string language = Lower(text.substr(0, languageEnd));
    std::string territory;
    if (languageEnd != std::string::npos && text[languageEnd] == '_') {
        territory = Lower(text.substr(languageEnd + 1, text.find_first_of(".@", languageEnd) - languageEnd - 1));
    }
    const std::size_t at = text.find('@');
    const std::string modifier = at == std::string::npos ? std::string() : Lower(text.substr(at + 1));

    if (language == "zh") {
        return territory == "tw" || territory == "hk" || territory == "mo" ? 950 : 936;
    }
    if (language == "sr") {
        // Serbian without a script falls to the default, as in Wine.
        if (modifier == "latin") {
            return 1250;
        }
        return modifier == "cyrillic" ? 1251 : kWesternEuropean;
    }
    for (const LanguageCodePage& entry : kLanguages) {
        if (language == entry.language) {
            return entry.codePage;
        }
    }
    return kWesternEuropean; // C, POSIX, the Western European languages and all others
}

} // namespace yx::platform
