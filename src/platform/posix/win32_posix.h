// Declarations of the POSIX stand-in for the Win32 subset the library calls.
//
// Types have Win32's widths (DWORD and LONG are 32 bits, as on Windows, whatever `long` is
// here). Every function is hidden: libyxtools.so exports the YXTools interface and nothing else.
#ifndef YXTOOLS_PLATFORM_WIN32_POSIX_H
#define YXTOOLS_PLATFORM_WIN32_POSIX_H

#include <cstdarg>
#include <cstddef>
#include <cstdint>

#define YX_PLATFORM __attribute__((visibility("hidden")))

using BOOL = int;
using BYTE = std::uint8_t;
using WORD = std::uint16_t;
using DWORD = std::uint32_t;
using LONG = std::int32_t;
using UINT = unsigned int;
using CHAR = char;
using HANDLE = void*;
using LPSTR = char*;
using LPCSTR = const char*;
using LPVOID = void*;

#ifndef TRUE
#define TRUE 1
#endif
#ifndef FALSE
#define FALSE 0
#endif

// Error codes of GetLastError.
constexpr DWORD ERROR_SUCCESS = 0;
constexpr DWORD ERROR_INVALID_PARAMETER = 87;
constexpr DWORD ERROR_INSUFFICIENT_BUFFER = 122;

// Last error: one value per thread, as on Windows.
YX_PLATFORM DWORD GetLastError();
YX_PLATFORM void SetLastError(DWORD dwErrCode);

// Version record.
constexpr DWORD VER_PLATFORM_WIN32s = 0;
constexpr DWORD VER_PLATFORM_WIN32_WINDOWS = 1;
constexpr DWORD VER_PLATFORM_WIN32_NT = 2;

struct OSVERSIONINFOA {
    DWORD dwOSVersionInfoSize;
    DWORD dwMajorVersion;
    DWORD dwMinorVersion;
    DWORD dwBuildNumber;
    DWORD dwPlatformId;
    CHAR szCSDVersion[128];
};
using LPOSVERSIONINFOA = OSVERSIONINFOA*;

// Fills the record as Windows 10 does for a program without a compatibility manifest: NT
// platform, version 10.0. Fails with ERROR_INSUFFICIENT_BUFFER unless dwOSVersionInfoSize is the
// size of OSVERSIONINFOA (148) or of OSVERSIONINFOEXA (156).
YX_PLATFORM BOOL GetVersionExA(LPOSVERSIONINFOA lpVersionInformation);

// The runtime's bounded formatter: at most `count` characters. A result of 0 or more is the
// length of the text, which stands without a NUL when it equals `count`; -1 means the text did not
// fit, and the buffer then holds its first `count` characters, without a NUL.
YX_PLATFORM int _vsnprintf(char* buffer, std::size_t count, const char* format, va_list args);

// Local time. The record has Win32's layout: eight 16-bit fields, 16 bytes, the day of the week
// 0 for Sunday.
struct SYSTEMTIME {
    WORD wYear;
    WORD wMonth;
    WORD wDayOfWeek;
    WORD wDay;
    WORD wHour;
    WORD wMinute;
    WORD wSecond;
    WORD wMilliseconds;
};
using LPSYSTEMTIME = SYSTEMTIME*;

// The wall clock in the process's time zone (TZ, else the system's), milliseconds included.
YX_PLATFORM void GetLocalTime(LPSYSTEMTIME lpSystemTime);

#endif
