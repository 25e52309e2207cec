#include <gtest/gtest.h>

#include <cstring>

#include <yxtools/frame.h>

#include "frame/lifecycle.h"

namespace {

TEST(Win9xRecord, OnlyThe9xPlatformFrom410Counts)
{
    // Platform id, major and minor version, and the answer.
    const DWORD cases[][4] = {
        {VER_PLATFORM_WIN32_WINDOWS, 4, 0, 0}, {VER_PLATFORM_WIN32_WINDOWS, 4, 10, 1},
        {VER_PLATFORM_WIN32_WINDOWS, 5, 0, 1}, {VER_PLATFORM_WIN32_WINDOWS, 3, 95, 0},
        {VER_PLATFORM_WIN32_NT, 4, 10, 0},     {VER_PLATFORM_WIN32_NT, 10, 0, 0},
        {VER_PLATFORM_WIN32s, 4, 10, 0},       {0, 0, 0, 0}, // the zeroed record of a failed call
    };
    for (const auto& c : cases) {
        OSVERSIONINFOA info;
        std::memset(&info, 0, sizeof(info));
        info.dwPlatformId = c[0];
        info.dwMajorVersion = c[1];
        info.dwMinorVersion = c[2];
        EXPECT_EQ(yx::frame::IsWin9XRecord(info), c[3] != 0)
            << "platform " << c[0] << " version " << c[1] << "." << c[2];
    }
    // Both builds report the NT platform: the stand-in as Windows 10, Wine as whatever it imitates.
    EXPECT_FALSE(IsWin9XVersion());
}

} // namespace
