#include <cstring>

#include "platform/win32.h"

namespace {
constexpr DWORD kVersionInfoSize = sizeof(OSVERSIONINFOA);
constexpr DWORD kVersionInfoExSize = 156;
static_assert(kVersionInfoSize == 148, "OSVERSIONINFOA has Win32's layout");
} // namespace

BOOL GetVersionExA(LPOSVERSIONINFOA lpVersionInformation)
{
    if (lpVersionInformation == nullptr) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    const DWORD size = lpVersionInformation->dwOSVersionInfoSize;
    if (size != kVersionInfoSize && size != kVersionInfoExSize) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return FALSE;
    }
    lpVersionInformation->dwMajorVersion = 10;
    lpVersionInformation->dwMinorVersion = 0;
    lpVersionInformation->dwBuildNumber = 19045;
    lpVersionInformation->dwPlatformId = VER_PLATFORM_WIN32_NT;
    std::memset(lpVersionInformation->szCSDVersion, 0, sizeof(lpVersionInformation->szCSDVersion));
    if (size == kVersionInfoExSize) {
        // The extended tail: service pack 0.0, no suite mask, a workstation product.
        auto* tail = reinterpret_cast<unsigned char*>(lpVersionInformation) + kVersionInfoSize;
        std::memset(tail, 0, kVersionInfoExSize - kVersionInfoSize);
        tail[6] = 1; // wProductType = VER_NT_WORKSTATION
    }
    return TRUE;
}
