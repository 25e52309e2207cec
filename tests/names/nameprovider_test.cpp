#include <gtest/gtest.h>

#include <string>

#include <yxtools/frame.h>
#include <yxtools/nameprovider.h>

namespace {

class StringProvider : public YXNameProviderByString {
public:
    explicit StringProvider(int* destroyed = nullptr) : m_destroyed(destroyed) {}
    ~StringProvider() override
    {
        if (m_destroyed != nullptr) {
            ++*m_destroyed;
        }
    }
    StringProvider(const StringProvider&) = delete;
    StringProvider& operator=(const StringProvider&) = delete;
    bool GetName(const _SS<char>& key, _SS<char>& name) override
    {
        name = key;
        return true;
    }
    bool HasName(const _SS<char>& /*key*/) override { return true; }

private:
    int* m_destroyed;
};

class IdProvider : public YXNameProviderByID {
public:
    bool GetName(unsigned long id, _SS<char>& name) override
    {
        name = std::to_string(id).c_str();
        return true;
    }
    bool GetID(const _SS<char>& /*name*/, unsigned long& id) override
    {
        id = 0;
        return false;
    }
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

TEST_F(Registries, EmptyRegistryFindsNothing)
{
    EXPECT_EQ(YXNameProvider_GetProviderByString("x"), nullptr);
    EXPECT_EQ(YXNameProvider_GetProviderByID("x"), nullptr);
}

TEST_F(Registries, SecondRegistrationReplacesTheFirstWithoutDestroyingIt)
{
    int destroyed = 0;
    StringProvider first(&destroyed);
    StringProvider second(&destroyed);
    EXPECT_TRUE(YXNameProvider_RegisterProviderByString("key", &first));
    EXPECT_TRUE(YXNameProvider_RegisterProviderByString("key", &second));
    EXPECT_EQ(YXNameProvider_GetProviderByString("key"), &second);
    EXPECT_EQ(destroyed, 0);
    YXTools_Close(); // the registry goes; the providers stay their owner's
    EXPECT_EQ(destroyed, 0);
    YXTools_Init();
}

TEST_F(Registries, KeysMatchExactlyTheRegisteredBytes)
{
    StringProvider upper;
    StringProvider lower;
    StringProvider empty;
    StringProvider withNul;
    YXNameProvider_RegisterProviderByString("Abc", &upper);
    YXNameProvider_RegisterProviderByString("abc", &lower);
    YXNameProvider_RegisterProviderByString("", &empty);
    YXNameProvider_RegisterProviderByString(std::string("ab\0c", 4), &withNul);

    EXPECT_EQ(YXNameProvider_GetProviderByString("Abc"), &upper);
    EXPECT_EQ(YXNameProvider_GetProviderByString("abc"), &lower);
    EXPECT_EQ(YXNameProvider_GetProviderByString(""), &empty);
    EXPECT_EQ(YXNameProvider_GetProviderByString(std::string("ab\0c", 4)), &withNul);
    EXPECT_EQ(YXNameProvider_GetProviderByString("ab"), nullptr);   // a prefix of a key
    EXPECT_EQ(YXNameProvider_GetProviderByString("abcd"), nullptr); // a key is a prefix of it
    EXPECT_EQ(YXNameProvider_GetProviderByString("ABC"), nullptr);
}

TEST_F(Registries, TheTwoRegistriesAreIndependent)
{
    StringProvider byString;
    IdProvider byId;
    YXNameProvider_RegisterProviderByString("same", &byString);
    EXPECT_EQ(YXNameProvider_GetProviderByID("same"), nullptr);
    YXNameProvider_RegisterProviderByID("same", &byId);
    EXPECT_EQ(YXNameProvider_GetProviderByString("same"), &byString);
    EXPECT_EQ(YXNameProvider_GetProviderByID("same"), &byId);
}

TEST_F(Registries, NullRegistrationHidesAnEarlierOne)
{
    IdProvider provider;
    YXNameProvider_RegisterProviderByID("k", &provider);
    EXPECT_TRUE(YXNameProvider_RegisterProviderByID("k", nullptr));
    EXPECT_EQ(YXNameProvider_GetProviderByID("k"), nullptr);
}

TEST_F(Registries, RegistrationsEndWithCloseAndDoNotComeBackWithInit)
{
    StringProvider provider;
    IdProvider idProvider;
    YXNameProvider_RegisterProviderByString("k", &provider);
    YXNameProvider_RegisterProviderByID("k", &idProvider);
    YXTools_Close();
    YXTools_Init();
    EXPECT_EQ(YXNameProvider_GetProviderByString("k"), nullptr);
    EXPECT_EQ(YXNameProvider_GetProviderByID("k"), nullptr);
    _SS<char> name;
    EXPECT_TRUE(provider.GetName("still alive", name));
}

} // namespace
