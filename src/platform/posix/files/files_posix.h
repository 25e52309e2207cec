// The file part of the POSIX stand-in: handles, attributes, copies, temporary names, directory
// search, and the runtime's _stat, _access, _chmod, remove and rename. Included by win32_posix.h.
//
// Paths may be in Windows form or POSIX form; every call resolves them in one place, with Win32's
// rules (resolver.h).
//
// Share modes hold between every handle of every process that uses this stand-in: each open
// that asks for read or write access marks what it does and what it denies with advisory
// byte-range locks on the file (open-file-description locks, so two handles of one process meet
// as two processes do). Opens with access 0 take part in no share check, as on Windows.
//
// The read-only attribute is a file with no write permission bit. It is enforced by the stand-in
// itself, so that it holds for root too: write access, truncation, deletion and overwriting by a
// copy are refused with ERROR_ACCESS_DENIED (EACCES for the runtime's functions).
#ifndef YXTOOLS_PLATFORM_FILES_POSIX_H
#define YXTOOLS_PLATFORM_FILES_POSIX_H

constexpr DWORD MAX_PATH = 260;

inline const HANDLE INVALID_HANDLE_VALUE =
    reinterpret_cast<HANDLE>(static_cast<std::intptr_t>(-1)); // NOLINT(performance-no-int-to-ptr)
constexpr DWORD INVALID_FILE_ATTRIBUTES = 0xFFFFFFFF;
constexpr DWORD INVALID_SET_FILE_POINTER = 0xFFFFFFFF;
constexpr DWORD INVALID_FILE_SIZE = 0xFFFFFFFF;

constexpr DWORD GENERIC_READ = 0x80000000;
constexpr DWORD GENERIC_WRITE = 0x40000000;

constexpr DWORD FILE_SHARE_READ = 0x00000001;
constexpr DWORD FILE_SHARE_WRITE = 0x00000002;
constexpr DWORD FILE_SHARE_DELETE = 0x00000004;

constexpr DWORD CREATE_NEW = 1;
constexpr DWORD CREATE_ALWAYS = 2;
constexpr DWORD OPEN_EXISTING = 3;
constexpr DWORD OPEN_ALWAYS = 4;
constexpr DWORD TRUNCATE_EXISTING = 5;

constexpr DWORD FILE_ATTRIBUTE_READONLY = 0x00000001;
constexpr DWORD FILE_ATTRIBUTE_HIDDEN = 0x00000002;
constexpr DWORD FILE_ATTRIBUTE_DIRECTORY = 0x00000010;
constexpr DWORD FILE_ATTRIBUTE_ARCHIVE = 0x00000020;
constexpr DWORD FILE_ATTRIBUTE_NORMAL = 0x00000080;
constexpr DWORD FILE_FLAG_RANDOM_ACCESS = 0x10000000;
constexpr DWORD FILE_FLAG_SEQUENTIAL_SCAN = 0x08000000;

constexpr DWORD FILE_BEGIN = 0;
constexpr DWORD FILE_CURRENT = 1;
constexpr DWORD FILE_END = 2;

using PLONG = LONG*;
using LPDWORD = DWORD*;
using LPCVOID = const void*;

struct SECURITY_ATTRIBUTES;
using LPSECURITY_ATTRIBUTES = SECURITY_ATTRIBUTES*;
struct OVERLAPPED;
using LPOVERLAPPED = OVERLAPPED*;

struct FILETIME {
    DWORD dwLowDateTime;
    DWORD dwHighDateTime;
};

struct WIN32_FIND_DATAA {
    DWORD dwFileAttributes;
    FILETIME ftCreationTime;
    FILETIME ftLastAccessTime;
    FILETIME ftLastWriteTime;
    DWORD nFileSizeHigh;
    DWORD nFileSizeLow;
    DWORD dwReserved0;
    DWORD dwReserved1;
    CHAR cFileName[MAX_PATH];
    CHAR cAlternateFileName[14];
};
using LPWIN32_FIND_DATAA = WIN32_FIND_DATAA*;

// Handles. Security attributes, overlapped records and templates are not supported: pass null.
YX_PLATFORM HANDLE CreateFileA(LPCSTR lpFileName, DWORD dwDesiredAccess, DWORD dwShareMode,
                               LPSECURITY_ATTRIBUTES lpSecurityAttributes, DWORD dwCreationDisposition,
                               DWORD dwFlagsAndAttributes, HANDLE hTemplateFile);
YX_PLATFORM BOOL CloseHandle(HANDLE hObject);
YX_PLATFORM BOOL ReadFile(HANDLE hFile, LPVOID lpBuffer, DWORD nNumberOfBytesToRead, LPDWORD lpNumberOfBytesRead,
                          LPOVERLAPPED lpOverlapped);
YX_PLATFORM BOOL WriteFile(HANDLE hFile, LPCVOID lpBuffer, DWORD nNumberOfBytesToWrite, LPDWORD lpNumberOfBytesWritten,
                           LPOVERLAPPED lpOverlapped);
// Without lpDistanceToMoveHigh the distance is a signed 32-bit number and a position beyond
// 32 bits comes back as its low half, as Wine does.
YX_PLATFORM DWORD SetFilePointer(HANDLE hFile, LONG lDistanceToMove, PLONG lpDistanceToMoveHigh, DWORD dwMoveMethod);
YX_PLATFORM DWORD GetFileSize(HANDLE hFile, LPDWORD lpFileSizeHigh);
YX_PLATFORM BOOL SetEndOfFile(HANDLE hFile);
YX_PLATFORM BOOL FlushFileBuffers(HANDLE hFile);

// Attributes: FILE_ATTRIBUTE_DIRECTORY or FILE_ATTRIBUTE_ARCHIVE, with FILE_ATTRIBUTE_READONLY.
YX_PLATFORM DWORD GetFileAttributesA(LPCSTR lpFileName);
// Copies contents, permissions (so the read-only attribute) and the time of last change. A copy
// that fails part way removes the partial target.
YX_PLATFORM BOOL CopyFileA(LPCSTR lpExistingFileName, LPCSTR lpNewFileName, BOOL bFailIfExists);
// Names are <path><sep><up to 3 bytes of prefix><hex number>.TMP; the separator is `/` when the
// path is in POSIX form (it starts with `/`), `\` otherwise, and none when the path ends in one.
YX_PLATFORM UINT GetTempFileNameA(LPCSTR lpPathName, LPCSTR lpPrefixString, UINT uUnique, LPSTR lpTempFileName);

// Directory search. Entries come in name order, "." and ".." first (except at a root). The
// wildcards match as Windows does: case-insensitively, `*.*` matches every name, `*.` the names
// without an extension, and a `?` before a dot or at the end may also match nothing.
YX_PLATFORM HANDLE FindFirstFileA(LPCSTR lpFileName, LPWIN32_FIND_DATAA lpFindFileData);
YX_PLATFORM BOOL FindNextFileA(HANDLE hFindFile, LPWIN32_FIND_DATAA lpFindFileData);
YX_PLATFORM BOOL FindClose(HANDLE hFindFile);

// The runtime's file functions. Failures set errno (ENOENT, EACCES, EEXIST, EINVAL).
constexpr int _S_IFMT = 0xF000;
constexpr int _S_IFDIR = 0x4000;
constexpr int _S_IFREG = 0x8000;
constexpr int _S_IREAD = 0x0100;
constexpr int _S_IWRITE = 0x0080;
constexpr int _S_IEXEC = 0x0040;

struct _stat {
    unsigned int st_dev;
    unsigned short st_ino;
    unsigned short st_mode;
    short st_nlink;
    short st_uid;
    short st_gid;
    unsigned int st_rdev;
    std::int64_t st_size;
};

// st_mode as the Windows runtime builds it: _S_IFDIR or _S_IFREG; read always; write unless
// read-only; execute for folders and .exe, .com, .bat, .cmd; the owner's three bits repeated for
// group and others. A path ending in a separator names no file, except a root.
// (The runtime gives the function and its record one name.)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wshadow"
YX_PLATFORM int _stat(const char* path, struct _stat* buffer);
#pragma GCC diagnostic pop
// mode 0 existence, 2 write, 4 read, 6 both.
YX_PLATFORM int _access(const char* path, int mode);
// _S_IWRITE in mode clears the read-only attribute, its absence sets it.
YX_PLATFORM int _chmod(const char* path, int mode);

// The runtime's remove and rename have the names of the C library's own, so they live in a
// namespace of their own; win32.h brings the Windows runtime's under the same names.
namespace crt {
// Removes a file; a folder, a read-only file or a file open through CreateFileA is refused.
YX_PLATFORM int remove(const char* path);
// Renames a file or folder; an existing target is refused (EEXIST), as is a file open through
// CreateFileA (EACCES).
YX_PLATFORM int rename(const char* oldname, const char* newname);
} // namespace crt

#endif
