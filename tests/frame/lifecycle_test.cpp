#include <gtest/gtest.h>

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

// Each test leaves the library Open with fresh objects.
class Lifecycle : public ::testing::Test {
protected:
    void TearDown() override
    {
        YXTools_Close();
        YXTools_Init();
    }
};

void AddDistinct(int count)
{
    for (int i = 0; i < count; ++i) {
        YXErrorsLog_Add("src", std::to_string(i).c_str(), 0, nullptr);
    }
}

TEST_F(Lifecycle, LoadLeavesAnEmptyDefaultLogOfFive)
{
    EXPECT_EQ(YXErrorsLog_GetCount(nullptr), 0u);
    AddDistinct(6);
    EXPECT_EQ(YXErrorsLog_GetCount(nullptr), 5u);
}

TEST_F(Lifecycle, CloseThenInitStartsEveryObjectAfresh)
{
    Provider provider;
    YXNameProvider_RegisterProviderByString("p", &provider);
    YXErrorsLog_SetOnChangeProc(CountNotification, nullptr);
    YXErrorsLog_SetMaxEntries(2, nullptr);
    AddDistinct(2);

    YXTools_Close();
    YXTools_Init();

    g_notifications = 0;
    EXPECT_EQ(YXErrorsLog_GetCount(nullptr), 0u);
    EXPECT_EQ(YXNameProvider_GetProviderByString("p"), nullptr);
    AddDistinct(6); // no change procedure, maximum 5 again
    EXPECT_EQ(g_notifications, 0);
    EXPECT_EQ(YXErrorsLog_GetCount(nullptr), 5u);
    _SS<char> source;
    _SS<char> description;
    ASSERT_TRUE(YXErrorsLog_GetItemAt(4, source, description, nullptr, nullptr));
    EXPECT_EQ(description, "1"); // "0" was evicted
}

TEST_F(Lifecycle, CloseTwiceIsHarmless)
{
    YXTools_Close();
    YXTools_Close();
    YXTools_Init();
    EXPECT_EQ(YXErrorsLog_GetCount(nullptr), 0u);
}

TEST_F(Lifecycle, InitWhileOpenReplacesTheLogAndRegistries)
{
    Provider provider;
    YXNameProvider_RegisterProviderByID("id", nullptr);
    YXNameProvider_RegisterProviderByString("p", &provider);
    YXErrorsLog_SetOnChangeProc(CountNotification, nullptr);
    AddDistinct(3);

    YXTools_Init(); // the replaced objects are released: the sanitizer build reports any leak

    g_notifications = 0;
    EXPECT_EQ(YXErrorsLog_GetCount(nullptr), 0u);
    EXPECT_EQ(YXNameProvider_GetProviderByString("p"), nullptr);
    YXErrorsLog_Add("a", "b", 0, nullptr);
    EXPECT_EQ(g_notifications, 0);
}

TEST_F(Lifecycle, CallsAfterCloseGetFreshObjects)
{
    Provider provider;
    YXNameProvider_RegisterProviderByString("p", &provider);
    AddDistinct(3);
    YXTools_Close();

    // A call that needs an absent object creates it empty; the next closing sequence frees it.
    EXPECT_EQ(YXErrorsLog_GetCount(nullptr), 0u);
    EXPECT_TRUE(YXErrorsLog_Add("after", "close", 1, nullptr));
    EXPECT_EQ(YXErrorsLog_GetCount(nullptr), 1u);
    EXPECT_EQ(YXNameProvider_GetProviderByString("p"), nullptr);
    EXPECT_TRUE(YXNameProvider_RegisterProviderByString("p", &provider));
    EXPECT_EQ(YXNameProvider_GetProviderByString("p"), &provider);
}

TEST(Win9x, TheBuildPlatformIsNotWindows9x)
{
    // Both builds report the NT platform: the stand-in as Windows 10, Wine as whatever it imitates.
    EXPECT_FALSE(IsWin9XVersion());
}

} // namespace
