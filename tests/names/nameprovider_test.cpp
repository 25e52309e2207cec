#include <gtest/gtest.h>

#include <string>

#include <yxtools/frame.h>
#include <yxtools/nameprovider.h>

namespace {

int g_destroyed = 0; // the registries never own a provider

class StringProvider : public YXNameProviderByString {
public:
    StringProvider() = default;
    ~StringProvider() override { ++g_destroyed; }
    StringProvider(const StringProvider&) = delete;
    StringProvider& operator=(const StringProvider&) = delete;
    bool GetName(const _SS<char>& key, _SS<char>& name) override { return !(name = key).empty(); }
    bool HasName(const _SS<char>& /*key*/) override { return true; }
};

class IdProvider : public YXNameProviderByID {
public:
    bool GetName(unsigned long /*id*/, _SS<char>& /*name*/) override { return false; }
    bool GetID(const _SS<char>& /*name*/, unsigned long& /*id*/) override { return false; }
};

// Each test starts from empty registries.
class Registries : public ::testing::Test {
protected:
    void SetUp() override
    {
        YXTools_Close();
        YXTools_Init();
    }
};

TEST_F(Registries, KeysMatchExactlyTheRegisteredBytesInEachRegistry)
{
    StringProvider upper;
    StringProvider lower;
    StringProvider withNul;
    IdProvider byId;
    const std::string nulKey("ab\0c", 4);
    YXNameProvider_RegisterProviderByString("Abc", &upper);
    YXNameProvider_RegisterProviderByString("abc", &lower);
    YXNameProvider_RegisterProviderByString(nulKey, &withNul);
    YXNameProvider_RegisterProviderByID("abc", &byId);
    EXPECT_EQ(YXNameProvider_GetProviderByString("Abc"), &upper);
    EXPECT_EQ(YXNameProvider_GetProviderByString("abc"), &lower);
    EXPECT_EQ(YXNameProvider_GetProviderByString(nulKey), &withNul);
    EXPECT_EQ(YXNameProvider_GetProviderByID("abc"), &byId);
    for (const char* other : {"ab", "abcd", "ABC", ""}) { // a prefix of a key, a key as a prefix, other case
        EXPECT_EQ(YXNameProvider_GetProviderByString(other), nullptr) << other;
        EXPECT_EQ(YXNameProvider_GetProviderByID(other), nullptr) << other;
    }
    EXPECT_TRUE(YXNameProvider_RegisterProviderByID("abc", nullptr)); // hides the earlier one
    EXPECT_EQ(YXNameProvider_GetProviderByID("abc"), nullptr);
}

TEST_F(Registries, ReplacedAndClosedRegistrationsLeaveTheProvidersAlive)
{
    g_destroyed = 0;
    StringProvider first;
    StringProvider second;
    IdProvider byId;
    EXPECT_TRUE(YXNameProvider_RegisterProviderByString("key", &first));
    EXPECT_TRUE(YXNameProvider_RegisterProviderByString("key", &second));
    YXNameProvider_RegisterProviderByID("key", &byId);
    EXPECT_EQ(YXNameProvider_GetProviderByString("key"), &second);
    YXTools_Close();
    YXTools_Init();
    EXPECT_EQ(g_destroyed, 0);
    EXPECT_EQ(YXNameProvider_GetProviderByString("key"), nullptr);
    EXPECT_EQ(YXNameProvider_GetProviderByID("key"), nullptr);
    _SS<char> name;
    EXPECT_TRUE(second.GetName("still alive", name));
}

// After YXTools_Close both registries are gone: a call made then finds each of them empty, and
// what it registers there lasts until the next close.
TEST_F(Registries, AfterCloseEachRegistryStartsEmpty)
{
    StringProvider byString;
    IdProvider byId;
    YXNameProvider_RegisterProviderByString("key", &byString);
    YXNameProvider_RegisterProviderByID("key", &byId);
    YXTools_Close();
    EXPECT_EQ(YXNameProvider_GetProviderByID("key"), nullptr);
    EXPECT_EQ(YXNameProvider_GetProviderByString("key"), nullptr);
    EXPECT_TRUE(YXNameProvider_RegisterProviderByID("late", &byId));
    EXPECT_TRUE(YXNameProvider_RegisterProviderByString("late", &byString));
    EXPECT_EQ(YXNameProvider_GetProviderByID("late"), &byId);
    EXPECT_EQ(YXNameProvider_GetProviderByString("late"), &byString);
    YXTools_Close();
    EXPECT_EQ(YXNameProvider_GetProviderByID("late"), nullptr);
    EXPECT_EQ(YXNameProvider_GetProviderByString("late"), nullptr);
    YXTools_Close();
    YXTools_Init();
}

} // namespace
