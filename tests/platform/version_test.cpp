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

TEST(GetVersionExA, WritesNoFurtherThanTheRecordItIsGiven)
{
    // Room for the extended record, announced as the short one: the tail must stay as it was.
    unsigned char storage[156];
    std::memset(storage, 0xAB, sizeof(storage));
    OSVERSIONINFOA info;
    std::memset(&info, 0, sizeof(info));
    info.dwOSVersionInfoSize = sizeof(info);
    std::memcpy(storage, &info, sizeof(info));
    ASSERT_TRUE(GetVersionExA(reinterpret_cast<LPOSVERSIONINFOA>(storage)));
    for (std::size_t i = sizeof(info); i < sizeof(storage); ++i) {
        EXPECT_EQ(storage[i], 0xAB) << "byte " << i;
    }
    std::memcpy(&info, storage, sizeof(info));
    EXPECT_EQ(info.dwOSVersionInfoSize, 148u); // the caller's size stays
}

} // namespace
