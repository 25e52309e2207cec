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
constexpr DWORD NO_ERROR = 0;
constexpr DWORD ERROR_FILE_NOT_FOUND = 2;
constexpr DWORD ERROR_PATH_NOT_FOUND = 3;
constexpr DWORD ERROR_TOO_MANY_OPEN_FILES = 4;
constexpr DWORD ERROR_ACCESS_DENIED = 5;
constexpr DWORD ERROR_INVALID_HANDLE = 6;
constexpr DWORD ERROR_NOT_ENOUGH_MEMORY = 8;
constexpr DWORD ERROR_NO_MORE_FILES = 18;
constexpr DWORD ERROR_GEN_FAILURE = 31;
constexpr DWORD ERROR_SHARING_VIOLATION = 32;
constexpr DWORD ERROR_LOCK_VIOLATION = 33;
constexpr DWORD ERROR_FILE_EXISTS = 80;
constexpr DWORD ERROR_INVALID_PARAMETER = 87;
constexpr DWORD ERROR_DISK_FULL = 112;
constexpr DWORD ERROR_INSUFFICIENT_BUFFER = 122;
constexpr DWORD ERROR_NEGATIVE_SEEK = 131;
constexpr DWORD ERROR_ALREADY_EXISTS = 183;
constexpr DWORD ERROR_FILENAME_EXCED_RANGE = 206;
constexpr DWORD ERROR_DIRECTORY = 267;

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

// Files, folders and the runtime's file functions.
#include "platform/posix/files_posix.h"

#endif
