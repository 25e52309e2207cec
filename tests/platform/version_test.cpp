#include <gtest/gtest.h>

#include <cstring>

#include "platform/win32.h"

namespace {

// The frame tells the Windows 9x family by the platform id of a record of exactly this size.
TEST(GetVersionExA, ReportsTheNtPlatform)
{
    OSVERSIONINFOA info;
    std::memset(&info, 0, sizeof(info));
    info.dwOSVersionInfoSize = sizeof(info);
    ASSERT_TRUE(GetVersionExA(&info));
    EXPECT_EQ(info.dwPlatformId, static_cast<DWORD>(VER_PLATFORM_WIN32_NT));
}

} // namespace
