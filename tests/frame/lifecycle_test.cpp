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

// From Open with a filled log, a change procedure, a maximum of 2 and a registered provider, each
// sequence of YXTools_Close (C) and YXTools_Init (I) leaves fresh objects: an empty default log with
// a maximum of 5 and no change procedure, and empty registries. Close twice finds nothing to close the
// second time; Init while Open releases the objects it replaces (the sanitizer build reports any
// leak); after Close a call that needs an absent object creates it empty, and the next Close frees it.
TEST(Lifecycle, EverySequenceLeavesFreshObjects)
{
    for (const std::string sequence : {"CCI", "I", "C"}) {
        SCOPED_TRACE(sequence);
        Provider provider;
        YXNameProvider_RegisterProviderByString("p", &provider);
        YXErrorsLog_SetOnChangeProc(CountNotification, nullptr);
        YXErrorsLog_SetMaxEntries(2, nullptr);
        AddDistinct(2);
        for (const char step : sequence) {
            step == 'C' ? YXTools_Close() : YXTools_Init();
        }
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
        EXPECT_TRUE(YXNameProvider_RegisterProviderByString("p", &provider));
        EXPECT_EQ(YXNameProvider_GetProviderByString("p"), &provider);
        YXTools_Close();
        YXTools_Init();
    }
}

} // namespace
