#include <gtest/gtest.h>

#include <string>

#include <yxtools/yxtools.h>

namespace {

int g_notifications = 0;
void CountNotification(YXErrorsLogManager& /*manager*/)
{
    ++g_notifications;
}

class Provider : public YXNameProviderByString {
public:
    bool GetName(const _SS<char>& /*key*/, _SS<char>& /*name*/) override { return false; }
    bool HasName(const _SS<char>& /*key*/) override { return false; }
};

void AddDistinct(int count)
{
    for (int i = 0; i < count; ++i) {
        YXErrorsLog_Add("src", std::to_string(i), 0, nullptr);
    }
}

// Fills the default log and the registries, and sets a change procedure and a maximum of 2.
void Populate(Provider& provider)
{
    YXNameProvider_RegisterProviderByString("p", &provider);
    YXErrorsLog_SetOnChangeProc(CountNotification, nullptr);
    YXErrorsLog_SetMaxEntries(2, nullptr);
    AddDistinct(2);
}

// The default log is empty with a maximum of 5 and no change procedure, and no provider is found.
void ExpectFreshObjects()
{
    g_notifications = 0;
    EXPECT_EQ(YXErrorsLog_GetCount(nullptr), 0u);
    EXPECT_EQ(YXNameProvider_GetProviderByString("p"), nullptr);
    AddDistinct(6);
    EXPECT_EQ(g_notifications, 0);
    EXPECT_EQ(YXErrorsLog_GetCount(nullptr), 5u);
    _SS<char> source;
    _SS<char> description;
    ASSERT_TRUE(YXErrorsLog_GetItemAt(4, source, description, nullptr, nullptr));
    EXPECT_EQ(description, "1"); // "0" was evicted
}

// Each test leaves the library Open with fresh objects.
class Lifecycle : public ::testing::Test {
protected:
    void TearDown() override
    {
        YXTools_Close();
        YXTools_Init();
    }
};

TEST_F(Lifecycle, CloseThenInitStartsEveryObjectAfresh)
{
    Provider provider;
    Populate(provider);
    YXTools_Close();
    YXTools_Close(); // the second finds nothing to close
    YXTools_Init();
    ExpectFreshObjects();
}

// Init while Open releases the objects it replaces (the sanitizer build reports any leak).
TEST_F(Lifecycle, InitWhileOpenReplacesTheLogAndRegistries)
{
    Provider provider;
    Populate(provider);
    YXTools_Init();
    ExpectFreshObjects();
}

// After Close a call that needs an absent object creates it empty; the next closing sequence frees it.
TEST_F(Lifecycle, CallsAfterCloseGetFreshObjects)
{
    Provider provider;
    Populate(provider);
    YXTools_Close();
    ExpectFreshObjects();
    EXPECT_TRUE(YXNameProvider_RegisterProviderByString("p", &provider));
    EXPECT_EQ(YXNameProvider_GetProviderByString("p"), &provider);
}

} // namespace
