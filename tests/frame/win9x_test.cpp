#include <gtest/gtest.h>

#include <cstring>

#include <yxtools/frame.h>

#include "frame/lifecycle.h"

namespace {

TEST(Win9xRecord, OnlyThe9xPlatformFrom410Counts)
{
    const struct {
        DWORD platformId;
        DWORD major;
        DWORD minor;
        bool expected;
    } cases[] = {
        {VER_PLATFORM_WIN32_WINDOWS, 4, 0, false}, {VER_PLATFORM_WIN32_WINDOWS, 4, 10, true},
        {VER_PLATFORM_WIN32_WINDOWS, 5, 0, true},  {VER_PLATFORM_WIN32_WINDOWS, 3, 95, false},
        {VER_PLATFORM_WIN32_NT, 4, 10, false},     {VER_PLATFORM_WIN32_NT, 10, 0, false},
        {VER_PLATFORM_WIN32s, 4, 10, false},       {0, 0, 0, false}, // the zeroed record of a failed call
    };
    for (const auto& c : cases) {
        OSVERSIONINFOA info;
        std::memset(&info, 0, sizeof(info));
        info.dwPlatformId = c.platformId;
        info.dwMajorVersion = c.major;
        info.dwMinorVersion = c.minor;
        EXPECT_EQ(yx::frame::IsWin9XRecord(info), c.expected)
            << "platform " << c.platformId << " version " << c.major << "." << c.minor;
    }
    // Both builds report the NT platform: the stand-in as Windows 10, Wine as whatever it imitates.
    EXPECT_FALSE(IsWin9XVersion());
}

} // namespace
