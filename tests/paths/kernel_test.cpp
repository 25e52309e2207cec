// Path_GetFromKernel before and after the process loads the module that stands for YXKernel.dll:
// libYXKernel.so on POSIX, YXKernel.dll on Windows, both built beside the tests.
#include <gtest/gtest.h>

#include <yxtools/path.h>

#include <algorithm>
#include <cctype>
#include <string>

#if defined(_WIN32)
#include <windows.h>
#else
#include <dlfcn.h>
#endif

namespace {

std::string Lower(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

bool EndsWith(const std::string& text, const std::string& end)
{
    return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

TEST(PathGetFromKernel, FindsTheModuleOnlyOnceLoaded)
{
    _SS<char> path = "kept";
    ASSERT_FALSE(Path_GetFromKernel(path));
    EXPECT_EQ(path, "kept");
#if defined(_WIN32)
    HMODULE module = LoadLibraryA("YXKernel.dll");
    ASSERT_NE(module, nullptr) << GetLastError();
    ASSERT_TRUE(Path_GetFromKernel(path));
    EXPECT_TRUE(EndsWith(Lower(path), "\\yxkernel.dll")) << path;
    char expected[2000] = {};
    GetModuleFileNameA(module, expected, sizeof expected);
    EXPECT_EQ(path, expected);
    FreeLibrary(module);
#else
    void* module = dlopen(YXKERNEL_FILE, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(module, nullptr) << dlerror();
    ASSERT_TRUE(Path_GetFromKernel(path));
    EXPECT_EQ(path, YXKERNEL_FILE);
    EXPECT_TRUE(EndsWith(Lower(path), "/libyxkernel.so")) << path;
    dlclose(module);
#endif
    // Gone again: false, and the text stays.
    path = "kept";
    EXPECT_FALSE(Path_GetFromKernel(path));
    EXPECT_EQ(path, "kept");
}

} // namespace
