// The profile service: GetProfileStringA and GetProfileIntA.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <system_error>

#include "platform/win32.h"
#include "support/intl_profile.h"

namespace {

namespace fs = std::filesystem;

// A win.ini of the test's own, with a section that Windows reads from the file itself. On POSIX
// it is in a prefix made for the test; on Windows it is the prefix's own file, put back after.
class WinIni {
public:
    explicit WinIni(const std::string& content)
    {
#if defined(_WIN32)
        char folder[MAX_PATH];
        GetWindowsDirectoryA(folder, MAX_PATH);
        m_path = fs::path(folder) / "win.ini";
        std::ifstream old(m_path, std::ios::binary);
        m_saved.assign(std::istreambuf_iterator<char>(old), std::istreambuf_iterator<char>());
#else
        m_base = fs::temp_directory_path() / ("yxtools-profile-" + std::to_string(std::random_device{}()));
        fs::create_directories(m_base / "drive_c" / "windows");
        setenv("YXTOOLS_PREFIX", m_base.c_str(), 1);
        m_path = m_base / "drive_c" / "windows" / "win.ini";
#endif
        std::ofstream(m_path, std::ios::binary | std::ios::trunc) << content;
    }
    ~WinIni()
    {
#if defined(_WIN32)
        std::ofstream(m_path, std::ios::binary | std::ios::trunc) << m_saved;
#else
        std::error_code error;
        fs::remove_all(m_base, error);
#endif
    }
    WinIni(const WinIni&) = delete;
    WinIni& operator=(const WinIni&) = delete;

    const fs::path& Path() const
    {
        return m_path;
    }

private:
    fs::path m_path;
#if defined(_WIN32)
    std::string m_saved;
#else
    fs::path m_base;
#endif
};

std::string Get(const char* section, const char* key, const char* def, DWORD size = 1000, DWORD* count = nullptr)
{
    std::string buffer(size + 1, '\x7F');
    const DWORD n = GetProfileStringA(section, key, def, buffer.data(), size);
    if (count != nullptr) {
        *count = n;
    }
    return buffer.c_str();
}

// The file's rules as Windows applies them, answers taken from Wine: first section of a name and
// first key win, names match without regard to case and blanks, values lose their blanks and one
// pair of matching quotes, ";" lines are comments, a line without "=" holds nothing.
TEST(Profile, WinIniRules)
{
    const WinIni ini("[mail]\r\nmapi=1\r\n ; comment\r\n  [ YxProbe ]  \r\na=  spaced value  \r\nB = \"quoted\"\r\n"
                     "c=  \"half\r\nd=\r\ne=dup1\r\ne=dup2\r\n;f=commented\r\ng\r\nh=x;y\r\n i i = two words\r\n"
                     "j='sq'\r\nk=\" a \"\r\nm= 0x1F \r\nn=-12\r\np=\"mixed'\r\n[other]\r\nq=elsewhere\r\n"
                     "[yxprobe]\r\nl=second section\r\n");
    struct Case {
        const char* key;
        const char* text;
        int number;
    };
    const Case cases[] = {
        {"a", "spaced value", 0}, {"b", "quoted", 0}, {"c", "\"half", 0},   {"d", "", -7},
        {"e", "dup1", 0},         {"f", "<def>", -7}, {"g", "<def>", -7},   {"h", "x;y", 0},
        {"i i", "two words", 0},  {"j", "sq", 0},     {"k", " a ", 0},      {"l", "<def>", -7},
        {"m", "0x1F", 31},        {"n", "-12", -12},  {"p", "\"mixed'", 0}, {"q", "<def>", -7},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.key);
        EXPECT_EQ(Get("YXPROBE", c.key, "<def>"), c.text);
        EXPECT_EQ(static_cast<int>(GetProfileIntA("yxprobe", c.key, -7)), c.number);
    }
}

TEST(Profile, DefaultsAndSizes)
{
    const WinIni ini("[yxprobe]\r\nlong=" + std::string(5000, 'x') + "\r\nshort=United States\r\n");
    DWORD count = 0;
    EXPECT_EQ(Get("yxprobe", "long", "", 1000, &count), std::string(999, 'x'));
    EXPECT_EQ(count, 999u);
    EXPECT_EQ(Get("yxprobe", "short", "", 5, &count), "Unit");
    EXPECT_EQ(count, 4u);
    EXPECT_EQ(Get("yxprobe", "none", nullptr, 10, &count), "");
    EXPECT_EQ(count, 0u);
    // The blanks that end a default are dropped; the default is cut as a value is.
    EXPECT_EQ(Get("yxprobe", "none", "ab  ", 10, &count), "ab");
    EXPECT_EQ(count, 2u);
    EXPECT_EQ(Get("yxprobe", "none", "abcdefghijkl", 5, &count), "abcd");
    EXPECT_EQ(Get("nosuchsection", "k", "d", 10, &count), "d");
    EXPECT_EQ(GetProfileIntA("nosuchsection", "k", 42), 42u);
}

// Numbers as GetProfileIntA reads them: a sign, decimal or 0x digits as far as they go, wrapping at
// 32 bits; the default only for a missing or empty value.
TEST(Profile, Numbers)
{
    const WinIni ini("[yxprobe]\r\na=12\r\nb=-5\r\nc=0x10\r\nd= 12abc\r\ne=abc\r\nf=\r\ng=4294967295\r\n"
                     "h=99999999999\r\ni=+7\r\nj=010\r\nk=-0x10\r\nl=\t9\r\n");
    const std::pair<const char*, int> cases[] = {{"a", 12}, {"b", -5}, {"c", 16},  {"d", 12},
                                                 {"e", 0},  {"f", -7}, {"g", -1},  {"h", 1215752191},
                                                 {"i", 7},  {"j", 10}, {"k", -16}, {"l", 9}};
    for (const auto& [key, number] : cases) {
        EXPECT_EQ(static_cast<int>(GetProfileIntA("yxprobe", key, -7)), number) << key;
    }
}

// Section "intl" from the win.ini of the prefix, read afresh at each call, before the locale's.
TEST(Profile, IntlFromWinIniFirst)
{
#if defined(_WIN32)
    GTEST_SKIP() << "Windows keeps section intl in the registry (Control Panel\\International), never in win.ini";
#else
    setenv("LC_ALL", "de_DE.UTF-8", 1);
    WinIni ini("[intl]\r\nsDecimal=;\r\n");
    EXPECT_EQ(Get("intl", "sDecimal", "."), ";");
    EXPECT_EQ(Get("intl", "sThousand", ","), ".");
    std::ofstream(ini.Path(), std::ios::binary | std::ios::trunc) << "[intl]\r\nsDecimal=:\r\nsThousand=\r\n";
    EXPECT_EQ(Get("intl", "sDecimal", "."), ":");
    EXPECT_EQ(Get("intl", "sThousand", ","), "");
    // A file that has no section intl, that cannot be read, or that is missing, leaves the locale.
    std::ofstream(ini.Path(), std::ios::binary | std::ios::trunc) << "[mail]\r\nsDecimal=;\r\n";
    EXPECT_EQ(Get("intl", "sDecimal", "."), ",");
    fs::remove(ini.Path());
    fs::create_directory(ini.Path());
    EXPECT_EQ(Get("intl", "sDecimal", "."), ",");
    fs::remove(ini.Path());
    EXPECT_EQ(Get("intl", "sDecimal", "."), ",");
    // Where the locale cannot tell, the default answers.
    EXPECT_EQ(Get("intl", "sNoSuchKey", "x"), "x");
    setenv("LC_ALL", "xx_XX.UTF-8", 1);
    EXPECT_EQ(Get("intl", "sDecimal", "."), ".");
    unsetenv("LC_ALL");
#endif
}

// Each setting follows LC_ALL, else its own category's variable, else LANG.
TEST(Profile, IntlLocaleByCategory)
{
#if defined(_WIN32)
    GTEST_SKIP() << "Wine takes one locale for the whole process, when it starts";
#else
    const WinIni ini("");
    unsetenv("LC_ALL");
    setenv("LANG", "ja_JP.UTF-8", 1);
    setenv("LC_NUMERIC", "de_DE.UTF-8", 1);
    setenv("LC_MONETARY", "en_US.UTF-8", 1);
    setenv("LC_TIME", "fr_FR.UTF-8", 1);
    setenv("LC_MEASUREMENT", "en_US.UTF-8", 1);
    EXPECT_EQ(Get("intl", "sDecimal", ""), ",");
    EXPECT_EQ(Get("intl", "sCurrency", ""), "$");
    EXPECT_EQ(Get("intl", "sShortDate", ""), "dd/MM/yyyy");
    EXPECT_EQ(GetProfileIntA("intl", "iMeasure", 7), 1u);
    EXPECT_EQ(Get("intl", "sLanguage", ""), "JPN");
    setenv("LC_ALL", "en_US.UTF-8", 1);
    EXPECT_EQ(Get("intl", "sDecimal", ""), ".");
    EXPECT_EQ(Get("intl", "sLanguage", ""), "ENU");
    for (const char* variable : {"LC_ALL", "LANG", "LC_NUMERIC", "LC_MONETARY", "LC_TIME", "LC_MEASUREMENT"}) {
        unsetenv(variable);
    }
#endif
}

} // namespace
