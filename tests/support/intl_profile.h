// Section "intl" of the profile service, set by a test and put back afterwards.
//
// On POSIX the test gets a prefix of its own in a temporary folder with a win.ini holding the
// keys it sets, and locale variables that ICU has no data for, so that a key left out gives the caller's
// default. On Windows, where the section lives in the registry (Control Panel\International),
// the keys are written with WriteProfileStringA and the earlier values restored at the end.
#ifndef YXTOOLS_TESTS_SUPPORT_INTL_PROFILE_H
#define YXTOOLS_TESTS_SUPPORT_INTL_PROFILE_H

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <random>
#include <string>
#include <system_error>

#if defined(_WIN32)
#include <windows.h>
#endif

namespace intltest {

// Every key the library reads from section "intl".
inline const char* const kKeys[] = {"sLanguage", "sCountry",    "iCountry",   "iDate",     "iTime",    "iTLZero",
                                    "iCurrency", "iCurrDigits", "iNegCurr",   "iLzero",    "iDigits",  "iMeasure",
                                    "s1159",     "s2359",       "sCurrency",  "sThousand", "sDecimal", "sDate",
                                    "sTime",     "sList",       "sShortDate", "sLongDate"};

class Profile {
public:
    // The keys given here are set; every other key of the section is missing.
    explicit Profile(const std::map<std::string, std::string>& keys = {})
    {
#if defined(_WIN32)
        char buffer[1000];
        for (const char* key : kKeys) {
            const DWORD n = GetProfileStringA("intl", key, "\x01", buffer, sizeof(buffer));
            m_saved[key] = (n == 1 && buffer[0] == '\x01') ? std::string("\x01") : std::string(buffer, n);
        }
#else
        m_base = std::filesystem::temp_directory_path() / ("yxtools-intl-" + std::to_string(std::random_device{}()));
        std::filesystem::create_directories(m_base / "drive_c" / "windows");
        setenv("YXTOOLS_PREFIX", m_base.c_str(), 1);
        // No locale data for any setting, so that a missing key gives the caller's default; the
        // code page stays that of the locale the program was started in.
        const char* all = std::getenv("LC_ALL");
        if (all != nullptr && *all != '\0') {
            setenv("LC_CTYPE", all, 1);
            unsetenv("LC_ALL");
        }
        for (const char* variable : {"LANG", "LC_NUMERIC", "LC_MONETARY", "LC_TIME", "LC_MEASUREMENT"}) {
            setenv(variable, "xx_XX", 1);
        }
#endif
        Set(keys);
    }
    ~Profile()
    {
#if defined(_WIN32)
        for (const auto& [key, value] : m_saved) {
            WriteProfileStringA("intl", key.c_str(), value == "\x01" ? nullptr : value.c_str());
        }
#else
        std::error_code error;
        std::filesystem::remove_all(m_base, error);
#endif
    }
    Profile(const Profile&) = delete;
    Profile& operator=(const Profile&) = delete;

    // Replaces the whole section: the keys given are set, all others missing.
    void Set(const std::map<std::string, std::string>& keys)
    {
#if defined(_WIN32)
        for (const char* key : kKeys) {
            const auto found = keys.find(key);
            WriteProfileStringA("intl", key, found == keys.end() ? nullptr : found->second.c_str());
        }
#else
        std::ofstream file(m_base / "drive_c" / "windows" / "win.ini", std::ios::binary | std::ios::trunc);
        file << "[intl]\r\n";
        for (const auto& [key, value] : keys) {
            file << key << "=" << value << "\r\n";
        }
#endif
    }

private:
#if defined(_WIN32)
    std::map<std::string, std::string> m_saved;
#else
    std::filesystem::path m_base;
#endif
};

} // namespace intltest

#endif
