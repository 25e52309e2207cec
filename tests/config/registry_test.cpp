#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <yxtools/registry.h>

#include "platform/win32.h"
#include "support/registry_sandbox.h"

namespace {

using Root = YXRegistry::RootKey;
constexpr Root kCU = YXRegistry::CurrentUser;
constexpr Root kLM = YXRegistry::LocalMachine;

// Stores raw bytes as REG_SZ, bypassing the class (which always stores its text's length).
void StoreRaw(HKEY hive, const std::string& key, const std::string& name, const std::string& bytes)
{
    HKEY handle = nullptr;
    ASSERT_EQ(RegCreateKeyExA(hive, key.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &handle, nullptr), 0);
    EXPECT_EQ(RegSetValueExA(handle, name.c_str(), 0, REG_SZ, reinterpret_cast<const BYTE*>(bytes.data()),
                             static_cast<DWORD>(bytes.size())),
              0);
    RegCloseKey(handle);
}

bool KeyExists(HKEY hive, const std::string& key)
{
    HKEY handle = nullptr;
    if (RegOpenKeyExA(hive, key.c_str(), 0, KEY_READ, &handle) != ERROR_SUCCESS) {
        return false;
    }
    RegCloseKey(handle);
    return true;
}

// Type and bytes of a value as the registry holds them.
std::string StoredBytes(HKEY hive, const std::string& key, const std::string& name, DWORD* type)
{
    HKEY handle = nullptr;
    if (RegOpenKeyExA(hive, key.c_str(), 0, KEY_READ, &handle) != ERROR_SUCCESS) {
        return "<no key>";
    }
    char data[256] = {};
    DWORD size = sizeof(data);
    const LONG result = RegQueryValueExA(handle, name.c_str(), nullptr, type, reinterpret_cast<BYTE*>(data), &size);
    RegCloseKey(handle);
    return result == ERROR_SUCCESS ? std::string(data, size) : "<no value>";
}

TEST(YXRegistry, WritesEveryTypeAsTextAndReadsItBack)
{
    const regtest::Sandbox sandbox;
    const std::string section = sandbox.Section("types");
    _SS<char> text("hello");
    ASSERT_TRUE(YXRegistry::WriteStringParam(section, "s", text, kCU));
    ASSERT_TRUE(YXRegistry::WriteLongParam(section, "l", -5, kCU));
    ASSERT_TRUE(YXRegistry::WriteBooleanParam(section, "t", true, kCU));
    ASSERT_TRUE(YXRegistry::WriteBooleanParam(section, "f", false, kCU));

    // Stored as REG_SZ, without a zero of the writer's (the platform adds one of its own).
    const struct {
        const char* name;
        const char* stored;
    } stored[] = {{"s", "hello"}, {"l", "-5"}, {"t", "True"}, {"f", "False"}};
    for (const auto& row : stored) {
        DWORD type = REG_NONE;
        EXPECT_EQ(StoredBytes(HKEY_CURRENT_USER, sandbox.KeyOf("types"), row.name, &type),
                  std::string(row.stored) + '\0')
            << row.name;
        EXPECT_EQ(type, REG_SZ) << row.name;
    }

    bool useDefault = true;
    EXPECT_EQ(YXRegistry::ReadLongParam(section, "l", 7, kCU, &useDefault), -5);
    EXPECT_FALSE(useDefault);
    useDefault = true;
    EXPECT_TRUE(YXRegistry::ReadBooleanParam(section, "t", false, kCU, &useDefault));
    EXPECT_FALSE(useDefault);
    EXPECT_FALSE(YXRegistry::ReadBooleanParam(section, "f", true, kCU, nullptr));
    // Names are the registry's: without regard to case.
    EXPECT_EQ(YXRegistry::ReadLongParam(section, "L", 7, kCU, nullptr), -5);
}

// Every row of ReadStringParam's table but the failed second query, which has its own test.
TEST(YXRegistry, ReadStringParamGivesTheCountTheValueAndTheFlagOfEachSituation)
{
    const regtest::Sandbox sandbox;
    const std::string section = sandbox.Section("read");
    _SS<char> stored("abc");
    ASSERT_TRUE(YXRegistry::WriteStringParam(section, "v", stored, kCU));
    const unsigned long reported = 4; // "abc" and the zero the platform adds

    const struct {
        const char* name;
        bool withValue;
        const char* defaultValue;
        const char* valueAfter;
        unsigned long result;
        bool flag;
    } rows[] = {
        {"v", true, "", "abc", reported, false},      // stored, read
        {"v", true, "dflt", "abc", reported, false},  // stored, read: the default plays no part
        {"v", false, "", nullptr, reported, false},   // stored, no value, empty default: the size
        {"v", false, "dflt", nullptr, 5, false},      // stored, no value, a default
        {"missing", true, "dflt", "dflt", 5, true},   // not stored, a default
        {"missing", true, "", "untouched", 0, true},  // not stored, no default
        {"missing", false, "dflt", nullptr, 5, true}, // not stored, no value
    };
    for (const auto& row : rows) {
        _SS<char> value("untouched");
        bool flag = !row.flag;
        const unsigned long result = YXRegistry::ReadStringParam(section, row.name, row.withValue ? &value : nullptr,
                                                                 row.defaultValue, kCU, &flag);
        const std::string label = std::string(row.name) + " default '" + row.defaultValue + "'";
        EXPECT_EQ(result, row.result) << label;
        EXPECT_EQ(flag, row.flag) << label;
        EXPECT_EQ(value, row.valueAfter != nullptr ? row.valueAfter : "untouched") << label;
    }
    // A key that is not there is the same as a missing value, and reading does not make it.
    const std::string absent = sandbox.Section("absent\\deeper");
    _SS<char> value;
    bool flag = false;
    EXPECT_EQ(YXRegistry::ReadStringParam(absent, "v", &value, "d", kCU, &flag), 2U);
    EXPECT_TRUE(flag);
    EXPECT_EQ(value, "d");
    EXPECT_FALSE(KeyExists(HKEY_CURRENT_USER, sandbox.KeyOf("absent")));
    // Writing there makes the key and the keys above it.
    ASSERT_TRUE(YXRegistry::WriteStringParam(absent, "v", stored, kCU));
    EXPECT_TRUE(KeyExists(HKEY_CURRENT_USER, sandbox.KeyOf("absent\\deeper")));
}

TEST(YXRegistry, EmptyTextsAndZeroBytes)
{
    const regtest::Sandbox sandbox;
    const std::string section = sandbox.Section("zero");
    const std::string key = sandbox.KeyOf("zero");
    _SS<char> empty;
    ASSERT_TRUE(YXRegistry::WriteStringParam(section, "empty", empty, kCU));
    StoreRaw(HKEY_CURRENT_USER, key, "inner", std::string("ab\0cd", 5));

    // A text of size zero: result 0 and an empty string whatever the default; the boolean and the
    // number take their defaults, but it counts as stored.
    _SS<char> value("former");
    bool flag = true;
    EXPECT_EQ(YXRegistry::ReadStringParam(section, "empty", &value, "dflt", kCU, &flag), 0U);
    EXPECT_EQ(value, "");
    EXPECT_FALSE(flag);
    flag = true;
    EXPECT_TRUE(YXRegistry::ReadBooleanParam(section, "empty", true, kCU, &flag));
    EXPECT_FALSE(flag);
    EXPECT_FALSE(YXRegistry::ReadBooleanParam(section, "empty", false, kCU, nullptr));
    EXPECT_EQ(YXRegistry::ReadLongParam(section, "empty", 42, kCU, &flag), 42);
    EXPECT_FALSE(flag);

    // Cut at the zero byte, counted whole.
    EXPECT_EQ(YXRegistry::ReadStringParam(section, "inner", &value, "", kCU, nullptr), 6U);
    EXPECT_EQ(value, "ab");
    // A value with zero bytes of its own is written up to the first of them only as far as the
    // reader goes, but stored whole.
    _SS<char> withZero(std::string("x\0y", 3));
    ASSERT_TRUE(YXRegistry::WriteStringParam(section, "written", withZero, kCU));
    DWORD type = REG_NONE;
    EXPECT_EQ(StoredBytes(HKEY_CURRENT_USER, key, "written", &type), std::string("x\0y\0", 4));
}

#if !defined(_WIN32)
// The value grows between the size query and the data query: the second query fails.
std::string g_growSection;
int g_queries = 0;
void GrowOnSecondQuery()
{
    if (++g_queries == 2) {
        yxposix::SetRegistryQueryHook(nullptr);
        _SS<char> longer("a much longer text");
        YXRegistry::WriteStringParam(g_growSection, "v", longer, YXRegistry::CurrentUser);
    }
}
#endif

TEST(YXRegistry, ReadStringParamAfterAFailedDataQuery)
{
#if defined(_WIN32)
    GTEST_SKIP() << "the change between the two queries is made through a hook of the POSIX stand-in";
#else
    const regtest::Sandbox sandbox;
    g_growSection = sandbox.Section("grow");
    const struct {
        const char* defaultValue;
        const char* valueAfter;
        unsigned long result;
    } rows[] = {
        // No default: the former text cut to the first size (five bytes with the zero the platform
        // added), and the count the failed query left.
        {"", "forme", 19},
        {"dflt", "dflt", 5},
    };
    for (const auto& row : rows) {
        _SS<char> shorter("abcd");
        ASSERT_TRUE(YXRegistry::WriteStringParam(g_growSection, "v", shorter, kCU));
        g_queries = 0;
        yxposix::SetRegistryQueryHook(GrowOnSecondQuery);
        _SS<char> value("former text");
        bool flag = true;
        EXPECT_EQ(YXRegistry::ReadStringParam(g_growSection, "v", &value, row.defaultValue, kCU, &flag), row.result);
        EXPECT_EQ(value, row.valueAfter);
        EXPECT_FALSE(flag);
    }
#endif
}

TEST(YXRegistry, BooleansAreASubstringOfTheTrueWords)
{
    const regtest::Sandbox sandbox;
    const std::string section = sandbox.Section("bool");
    const struct {
        const char* stored;
        bool expected;
    } rows[] = {
        {"oui", true},   {"Vrai", true}, {"1", true},   {"on", true},      {"True", true},  {"true", true},
        {"actif", true}, {"TRU", true},  {"U", true},   {"A", true},       {"F", true},     {"E YES", true},
        {"I O", true},   {" ", true},    {"ON ", true}, {"False", false},  {"NON", false},  {"NO", false},
        {"0", false},    {"OFF", false}, {"10", false}, {"TRUE  ", false}, {"yes!", false}, {"\xe9t\xe9", false},
    };
    for (const auto& row : rows) {
        _SS<char> text(row.stored);
        ASSERT_TRUE(YXRegistry::WriteStringParam(section, "b", text, kCU));
        // The default is the opposite, so that a default taken by mistake shows.
        bool flag = true;
        EXPECT_EQ(YXRegistry::ReadBooleanParam(section, "b", !row.expected, kCU, &flag), row.expected)
            << "'" << row.stored << "'";
        EXPECT_FALSE(flag);
    }
    for (const bool defaultValue : {true, false}) {
        bool flag = false;
        EXPECT_EQ(YXRegistry::ReadBooleanParam(section, "missing", defaultValue, kCU, &flag), defaultValue);
        EXPECT_TRUE(flag);
    }
}

TEST(YXRegistry, LongsAreReadWithAtol)
{
    const regtest::Sandbox sandbox;
    const std::string section = sandbox.Section("long");
    const struct {
        const char* stored;
        long expected;
    } rows[] = {{"12abc", 12}, {"abc", 0}, {"  -7", -7}, {"+15", 15}, {"0x10", 0}, {"2147483647", 2147483647L}};
    for (const auto& row : rows) {
        _SS<char> text(row.stored);
        ASSERT_TRUE(YXRegistry::WriteStringParam(section, "n", text, kCU));
        bool flag = true;
        EXPECT_EQ(YXRegistry::ReadLongParam(section, "n", 99, kCU, &flag), row.expected) << row.stored;
        EXPECT_FALSE(flag);
    }
    bool flag = false;
    EXPECT_EQ(YXRegistry::ReadLongParam(section, "missing", -99, kCU, &flag), -99);
    EXPECT_TRUE(flag);
}

TEST(YXRegistry, RootsAndSectionPaths)
{
    const regtest::Sandbox sandbox;
    _SS<char> text("x");
    // Root 2 is HKEY_USERS below .DEFAULT; an unknown root is the current user.
    ASSERT_TRUE(YXRegistry::WriteStringParam(sandbox.Section("users"), "v", text, YXRegistry::DefaultUser));
    EXPECT_TRUE(KeyExists(HKEY_USERS, ".DEFAULT\\" + sandbox.KeyOf("users")));
    EXPECT_FALSE(KeyExists(HKEY_CURRENT_USER, sandbox.KeyOf("users")));
    ASSERT_TRUE(YXRegistry::WriteStringParam(sandbox.Section("seven"), "v", text, static_cast<Root>(7)));
    EXPECT_TRUE(KeyExists(HKEY_CURRENT_USER, sandbox.KeyOf("seven")));
    EXPECT_EQ(YXRegistry::ReadLongParam(sandbox.Section("seven"), "v", 1, static_cast<Root>(-1), nullptr), 0);
    ASSERT_TRUE(YXRegistry::WriteStringParam(sandbox.Section("lm"), "v", text, kLM));
    EXPECT_TRUE(KeyExists(HKEY_LOCAL_MACHINE, sandbox.KeyOf("lm")));

    // Backslashes in a section address deeper keys; empty names between them fall away.
    _SS<char> deep("deep");
    ASSERT_TRUE(YXRegistry::WriteStringParam(sandbox.Section("a\\b"), "v", deep, kCU));
    for (const char* same : {"a\\b", "a\\b\\", "a\\\\b", "A\\B\\\\"}) {
        _SS<char> value;
        EXPECT_EQ(YXRegistry::ReadStringParam(sandbox.Section(same), "v", &value, "", kCU, nullptr), 5U) << same;
        EXPECT_EQ(value, "deep") << same;
    }
    // The whole subkey may have 260 characters: after the root's 28, the sandbox's tag and a
    // separator, a section name of 200 bytes fits and one of 255 does not. A value name of 16384
    // bytes does not fit either. The write fails and the read gives the default.
    const std::string name200(200, 'k');
    ASSERT_TRUE(YXRegistry::WriteStringParam(sandbox.Section(name200), "v", text, kCU));
    EXPECT_EQ(YXRegistry::ReadLongParam(sandbox.Section(name200), "v", 1, kCU, nullptr), 0);
    for (const auto& tooLong : {std::make_pair(sandbox.Section(std::string(255, 'k')), std::string("v")),
                                std::make_pair(sandbox.Section("names"), std::string(16384, 'n'))}) {
        EXPECT_FALSE(YXRegistry::WriteStringParam(tooLong.first, tooLong.second, text, kCU));
        bool flag = false;
        EXPECT_EQ(YXRegistry::ReadLongParam(tooLong.first, tooLong.second, 3, kCU, &flag), 3);
        EXPECT_TRUE(flag);
    }
    ASSERT_TRUE(YXRegistry::WriteStringParam(sandbox.Section("names"), std::string(16383, 'n'), deep, kCU));
}

// Which root answers, for each type: the current user whenever it has the parameter.
TEST(YXRegistry, CurrentUserThenLocalMachine)
{
    const regtest::Sandbox sandbox;
    const std::string section = sandbox.Section("culm");
    const struct {
        const char* cu; // null: not stored there
        const char* lm;
        long expectedLong;
        bool expectedBool;
        const char* expectedText;
        bool flag;
    } rows[] = {
        {"5", "9", 5, false, "5", false},
        {"0", "9", 0, false, "0", false},
        {"False", "True", 0, false, "False", false},
        {nullptr, "True", 0, true, "True", false},
        {nullptr, "9", 9, false, "9", false},
        {nullptr, nullptr, -1, true, "dflt", true},
    };
    int n = 0;
    for (const auto& row : rows) {
        const std::string name = "p" + std::to_string(n++);
        if (row.cu != nullptr) {
            _SS<char> text(row.cu);
            ASSERT_TRUE(YXRegistry::WriteStringParam(section, name, text, kCU));
        }
        if (row.lm != nullptr) {
            _SS<char> text(row.lm);
            ASSERT_TRUE(YXRegistry::WriteStringParam(section, name, text, kLM));
        }
        bool flag = !row.flag;
        EXPECT_EQ(YXRegistry::ReadLongParamCUAndLM(section, name, -1, &flag), row.expectedLong) << name;
        EXPECT_EQ(flag, row.flag) << name;
        flag = !row.flag;
        EXPECT_EQ(YXRegistry::ReadBooleanParamCUAndLM(section, name, true, &flag), row.expectedBool) << name;
        EXPECT_EQ(flag, row.flag) << name;
        _SS<char> value;
        flag = !row.flag;
        const unsigned long count = YXRegistry::ReadStringParamCUAndLM(section, name, &value, "dflt", &flag);
        EXPECT_EQ(value, row.expectedText) << name;
        EXPECT_EQ(flag, row.flag) << name;
        // Both branches give ReadStringParam's count for the text they read.
        EXPECT_EQ(count, std::string(row.expectedText).size() + 1) << name;
    }
    // A text of size zero under the current user gives 0 and stops there.
    _SS<char> empty;
    _SS<char> full("full");
    ASSERT_TRUE(YXRegistry::WriteStringParam(section, "e", empty, kCU));
    ASSERT_TRUE(YXRegistry::WriteStringParam(section, "e", full, kLM));
    _SS<char> value("former");
    EXPECT_EQ(YXRegistry::ReadStringParamCUAndLM(section, "e", &value, "", nullptr), 0U);
    EXPECT_EQ(value, "");
}

// The value read into may be the default, the section or the name.
TEST(YXRegistry, TheValueMayBeAnotherArgument)
{
    const regtest::Sandbox sandbox;
    _SS<char> section(sandbox.Section("alias"));
    _SS<char> stored("stored");
    ASSERT_TRUE(YXRegistry::WriteStringParam(section, "v", stored, kCU));

    _SS<char> both("fallback");
    EXPECT_EQ(YXRegistry::ReadStringParam(section, "missing", &both, both, kCU, nullptr), 9U);
    EXPECT_EQ(both, "fallback");
    EXPECT_EQ(YXRegistry::ReadStringParam(section, "v", &both, both, kCU, nullptr), 7U);
    EXPECT_EQ(both, "stored");
    _SS<char> name("v");
    EXPECT_EQ(YXRegistry::ReadStringParam(section, name, &name, "", kCU, nullptr), 7U);
    EXPECT_EQ(name, "stored");
    _SS<char> sectionCopy(section);
    EXPECT_EQ(YXRegistry::ReadStringParam(sectionCopy, "v", &sectionCopy, "d", kCU, nullptr), 7U);
    EXPECT_EQ(sectionCopy, "stored");
}

} // namespace
