#include <gtest/gtest.h>

#include <cstring>

#include "platform/win32.h"

namespace {

TEST(GetVersionExA, ReportsTheNtPlatform)
{
    OSVERSIONINFOA info;
    std::memset(&info, 0, sizeof(info));
    info.dwOSVersionInfoSize = sizeof(info);
    ASSERT_EQ(sizeof(info), 148u);
    ASSERT_TRUE(GetVersionExA(&info));
    EXPECT_EQ(info.dwPlatformId, static_cast<DWORD>(VER_PLATFORM_WIN32_NT));
    EXPECT_GE(info.dwMajorVersion, 5u);
}

TEST(GetVersionExA, RefusesARecordOfAnotherSize)
{
    OSVERSIONINFOA info;
    std::memset(&info, 0, sizeof(info));
    info.dwOSVersionInfoSize = 100;
    SetLastError(0);
    EXPECT_FALSE(GetVersionExA(&info));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
    EXPECT_EQ(info.dwPlatformId, 0u); // the caller's zeroed record decides
}

} // namespace
