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
using INT = int;
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
constexpr DWORD ERROR_INVALID_NAME = 123;
constexpr DWORD ERROR_NEGATIVE_SEEK = 131;
constexpr DWORD ERROR_ALREADY_EXISTS = 183;
constexpr DWORD ERROR_FILENAME_EXCED_RANGE = 206;
constexpr DWORD ERROR_DIRECTORY = 267;
constexpr DWORD ERROR_DISCARDED = 157;
constexpr DWORD ERROR_NOT_LOCKED = 158;

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

// Code pages. The ANSI code page follows the language and territory of the POSIX locale
// variables, read at each call: LC_ALL, else LC_CTYPE, else LANG (ja_JP gives 932, zh_CN 936,
// zh_TW 950, ko_KR 949, C and the Western European languages 1252, ...). The lead bytes are those
// of ICU's converter for that Windows code page.
YX_PLATFORM UINT GetACP();
YX_PLATFORM BOOL IsDBCSLeadByte(BYTE TestChar);

// National language support, on ICU. The user's locale follows the same locale variables as the
// ANSI code page (ja_JP gives 0x0411, en_US 0x0409; C and POSIX give 0x0409, as Wine does). Text
// crosses these calls in the ANSI code page: it is converted to UTF-16, mapped, and converted back.
using LCID = DWORD;
using WCHAR = char16_t;
using LPWSTR = WCHAR*;
using LPCWSTR = const WCHAR*;

constexpr LCID LOCALE_SYSTEM_DEFAULT = 0x0800;
constexpr LCID LOCALE_USER_DEFAULT = 0x0400;
constexpr UINT CP_ACP = 0;
constexpr DWORD MB_ERR_INVALID_CHARS = 0x00000008;
constexpr DWORD ERROR_INVALID_FLAGS = 1004;
constexpr DWORD ERROR_NO_UNICODE_TRANSLATION = 1113;

constexpr DWORD NORM_IGNORECASE = 0x00000001;
constexpr DWORD NORM_IGNORENONSPACE = 0x00000002;
constexpr DWORD NORM_IGNORESYMBOLS = 0x00000004;
constexpr DWORD SORT_STRINGSORT = 0x00001000;
constexpr DWORD NORM_IGNOREKANATYPE = 0x00010000;
constexpr DWORD NORM_IGNOREWIDTH = 0x00020000;
constexpr DWORD LCMAP_LOWERCASE = 0x00000100;
constexpr DWORD LCMAP_UPPERCASE = 0x00000200;
constexpr DWORD LCMAP_HIRAGANA = 0x00100000;
constexpr DWORD LCMAP_KATAKANA = 0x00200000;
constexpr DWORD LCMAP_HALFWIDTH = 0x00400000;
constexpr DWORD LCMAP_FULLWIDTH = 0x00800000;
constexpr int CSTR_LESS_THAN = 1;
constexpr int CSTR_EQUAL = 2;
constexpr int CSTR_GREATER_THAN = 3;

YX_PLATFORM LCID GetUserDefaultLCID();
// Text of the ANSI code page (CP_ACP, or the code page's own number) to UTF-16. A length of -1
// takes the terminator along; a size of 0 asks for the count. MB_ERR_INVALID_CHARS refuses a byte
// sequence that the code page does not define, with ERROR_NO_UNICODE_TRANSLATION.
YX_PLATFORM int MultiByteToWideChar(UINT CodePage, DWORD dwFlags, LPCSTR lpMultiByteStr, int cbMultiByte,
                                    LPWSTR lpWideCharStr, int cchWideChar);
// The mappings of the LCMAP_ flags (width, kana, case; one of each pair at most) or the removals
// of NORM_IGNORENONSPACE and NORM_IGNORESYMBOLS (which mix with no LCMAP_ flag); anything else is
// ERROR_INVALID_FLAGS. The count is in bytes of the ANSI code page, the terminator included when
// the source length was -1; a destination size of 0 asks for the count, a smaller destination fails
// with ERROR_INSUFFICIENT_BUFFER. Source and destination may be the same buffer.
YX_PLATFORM int LCMapStringA(LCID Locale, DWORD dwMapFlags, LPCSTR lpSrcStr, int cchSrc, LPSTR lpDestStr, int cchDest);
// ICU's collation of the user's locale: NORM_IGNORECASE compares at the secondary strength (or the
// primary one with NORM_IGNORENONSPACE), NORM_IGNORENONSPACE ignores accents but keeps case,
// NORM_IGNORESYMBOLS skips punctuation and symbols, and without SORT_STRINGSORT the hyphen and the
// apostrophe weigh nothing (word sort). Lengths of -1 mean zero-terminated.
YX_PLATFORM int CompareStringA(LCID Locale, DWORD dwCmpFlags, LPCSTR lpString1, int cchCount1, LPCSTR lpString2,
                               int cchCount2);
// Case mapping in place through UTF-16. A pointer whose high bits are all zero is a single
// character in its low byte: the mapped character comes back the same way.
YX_PLATFORM LPSTR CharUpperA(LPSTR lpsz);
YX_PLATFORM LPSTR CharLowerA(LPSTR lpsz);
YX_PLATFORM DWORD CharUpperBuffA(LPSTR lpsz, DWORD cchLength);
YX_PLATFORM DWORD CharLowerBuffA(LPSTR lpsz, DWORD cchLength);

// Path components of the runtime library, with its buffer sizes.
#define _MAX_PATH 260
#define _MAX_DRIVE 3
#define _MAX_DIR 256
#define _MAX_FNAME 256
#define _MAX_EXT 256

// Cuts a path into drive, directory, name and extension, each written NUL-terminated to its buffer
// (null buffers are skipped). Both `\` and `/` separate; a double-byte character of the ANSI code
// page is kept whole, so a trail byte is never taken for a separator or a dot.
YX_PLATFORM void _splitpath(const char* path, char* drive, char* dir, char* fname, char* ext);
// Joins the four parts into path: the drive's letter and a colon, the directory with a separator
// added when it ends in neither `\` nor `/`, the name, and the extension with a dot added when it
// has none in front. Null and empty parts are left out.
YX_PLATFORM void _makepath(char* path, const char* drive, const char* dir, const char* fname, const char* ext);

// Upper-cases a zero-terminated text in place as the runtime does in the "C" locale (a to z only)
// and gives it back.
YX_PLATFORM char* _strupr(char* str);
// The profile service. A key is read from the prefix's drive_c/windows/win.ini when that file has
// it (read afresh at each call); else, in section "intl", from the user's POSIX locale (LC_ALL,
// else the setting's category variable, else LANG), with ICU's locale data written as Windows
// writes them; else the default answers, without the blanks that end it. The text is cut to
// nSize - 1 bytes; the result is its length.
YX_PLATFORM DWORD GetProfileStringA(LPCSTR lpAppName, LPCSTR lpKeyName, LPCSTR lpDefault, LPSTR lpReturnedString,
                                    DWORD nSize);
// The same value read as a number: blanks, a sign, decimal or "0x" hexadecimal digits, wrapping
// to 32 bits; nDefault when the key is missing or empty.
YX_PLATFORM UINT GetProfileIntA(LPCSTR lpAppName, LPCSTR lpKeyName, INT nDefault);

// Files, folders and the runtime's file functions.
#include "platform/posix/files/files_posix.h"
// The registry, debugger output, the millisecond counter and the display device.
#include "platform/posix/registry/registry_posix.h"
#include "platform/posix/debug/debug_posix.h"
#include "platform/posix/display/display_posix.h"
// Critical sections, mutexes and threads.
#include "platform/posix/sync/sync_posix.h"
// Drive types, network names, shares, the computer's name and modules.
#include "platform/posix/net/net_posix.h"
// Movable memory. A fixed block's handle is its address; a movable block's handle is a token that
// is never an address of its data, and the data may move while the block is not locked. Blocks
// are tracked in one table, so a handle that is not a live block is refused with
// ERROR_INVALID_HANDLE rather than trusted.
using SIZE_T = std::size_t;
using HGLOBAL = void*;
using LPCVOID = const void*;

constexpr UINT GMEM_FIXED = 0x0000;
constexpr UINT GMEM_MOVEABLE = 0x0002;
constexpr UINT GMEM_ZEROINIT = 0x0040;
constexpr UINT GHND = GMEM_MOVEABLE | GMEM_ZEROINIT;
constexpr UINT GPTR = GMEM_FIXED | GMEM_ZEROINIT;
constexpr UINT GMEM_LOCKCOUNT = 0x00FF;
constexpr UINT GMEM_DISCARDED = 0x4000;
constexpr UINT GMEM_INVALID_HANDLE = 0x8000;

// A movable block of 0 bytes is born discarded: it has a handle, no data, and GlobalLock gives
// null with ERROR_DISCARDED. GMEM_ZEROINIT clears the block, or the part that a reallocation adds.
// ERROR_NOT_ENOUGH_MEMORY when the heap refuses.
YX_PLATFORM HGLOBAL GlobalAlloc(UINT uFlags, SIZE_T dwBytes);
// A movable block keeps its handle. A block that may not move (a fixed block without
// GMEM_MOVEABLE in uFlags, or a locked one) is resized in place only: it can shrink, and grow back
// up to what it first had, and otherwise fails with ERROR_NOT_ENOUGH_MEMORY. A fixed block with
// GMEM_MOVEABLE moves and gets the new address as its handle. 0 bytes with GMEM_MOVEABLE discards
// an unlocked movable block; without GMEM_MOVEABLE it is ERROR_INVALID_PARAMETER.
YX_PLATFORM HGLOBAL GlobalReAlloc(HGLOBAL hMem, SIZE_T dwBytes, UINT uFlags);
// Adds a lock to a movable block (a fixed block keeps a count of 0) and gives the data's address.
YX_PLATFORM LPVOID GlobalLock(HGLOBAL hMem);
// TRUE while the block stays locked and always for a fixed block; FALSE with NO_ERROR when the
// last lock goes, FALSE with ERROR_NOT_LOCKED when there was none.
YX_PLATFORM BOOL GlobalUnlock(HGLOBAL hMem);
YX_PLATFORM SIZE_T GlobalSize(HGLOBAL hMem);
// Null on success, locked or not; the handle itself when it is not a live block.
YX_PLATFORM HGLOBAL GlobalFree(HGLOBAL hMem);
// The handle of the block whose data starts at pMem.
YX_PLATFORM HGLOBAL GlobalHandle(LPCVOID pMem);
// The lock count in the low byte, GMEM_DISCARDED for a discarded block; GMEM_INVALID_HANDLE for a
// handle that is not a live block.
YX_PLATFORM UINT GlobalFlags(HGLOBAL hMem);

#endif
