// Section "intl" under four locales, with no setting of the user's own: the values that Wine's
// GetProfileStringA gives for a new prefix started in each locale. On POSIX every locale is
// tried through the locale variables; on Windows the program runs once per locale, in the one
// the run started it in.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <map>
#include <random>
#include <string>
#include <system_error>

#include "platform/win32.h"

namespace {

const char* const kKeys[] = {"sLanguage", "sCountry",    "iCountry",   "iDate",     "iTime",    "iTLZero",
                             "iCurrency", "iCurrDigits", "iNegCurr",   "iLzero",    "iDigits",  "iMeasure",
                             "s1159",     "s2359",       "sCurrency",  "sThousand", "sDecimal", "sDate",
                             "sTime",     "sList",       "sShortDate", "sLongDate"};

// Made once under Wine 8.0, in the order of kKeys; texts in the locale's ANSI code page.
const std::map<std::string, std::vector<std::string>> kWine = {
    {"en_US", {"ENU",      "United States",
               "1",        "0",
               "0",        "0",
               "0",        "2",
               "0",        "1",
               "2",        "1",
               "AM",       "PM",
               "$",        ",",
               ".",        "/",
               ":",        ",",
               "M/d/yyyy", "dddd, MMMM d, yyyy"}},
    {"de_DE", {"DEU", "Germany", "49", "1",    "1", "1", "3", "2", "8", "1",        "2",
               "0",   "AM",      "PM", "\x80", ".", ",", ".", ":", ";", "d.M.yyyy", "dddd, d. MMMM yyyy"}},
    {"fr_FR", {"FRA", "France", "33", "1",    "1",    "1", "3", "2", "15", "1",          "2",
               "0",   "AM",     "PM", "\x80", "\xA0", ",", "/", ":", ";",  "dd/MM/yyyy", "dddd d MMMM yyyy"}},
    {"ja_JP",
     {"JPN",
      "Japan",
      "81",
      "2",
      "1",
      "0",
      "0",
      "0",
      "0",
      "1",
      "2",
      "0",
      "\x8C\xDF\x91O",
      "\x8C\xDF\x8C\xE3",
      "\x81\x8F",
      ",",
      ".",
      "/",
      ":",
      ",",
      "yyyy/M/d",
      "yyyy\x94NM\x8C\x8E"
      "d\x93\xFA"
      "dddd"}},
};

void ExpectLocale(const std::string& name)
{
    const std::vector<std::string>& values = kWine.at(name);
    for (std::size_t i = 0; i < values.size(); ++i) {
        SCOPED_TRACE(name + " " + kKeys[i]);
        char buffer[1000];
        const DWORD n = GetProfileStringA("intl", kKeys[i], "<none>", buffer, sizeof(buffer));
        EXPECT_EQ(std::string(buffer, n), values[i]);
        if (kKeys[i][0] == 'i') {
            EXPECT_EQ(std::to_string(static_cast<int>(GetProfileIntA("intl", kKeys[i], -7))), values[i]);
        }
    }
}

TEST(ProfileLocale, AsWineGivesIt)
{
#if defined(_WIN32)
    const char* all = std::getenv("LC_ALL");
    ASSERT_NE(all, nullptr);
    ExpectLocale(std::string(all).substr(0, 5));
#else
    // A prefix without win.ini: every value comes from the locale.
    const std::filesystem::path prefix =
        std::filesystem::temp_directory_path() / ("yxtools-locale-" + std::to_string(std::random_device{}()));
    setenv("YXTOOLS_PREFIX", prefix.c_str(), 1);
    for (const auto& entry : kWine) {
        setenv("LC_ALL", (entry.first + ".UTF-8").c_str(), 1);
        ExpectLocale(entry.first);
    }
    // C and POSIX read as en_US, as under Wine.
    setenv("LC_ALL", "C", 1);
    ExpectLocale("en_US");
#endif
}

} // namespace
