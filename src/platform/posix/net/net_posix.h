// Drive types, network names, local shares, the computer's name and module lookup: the stand-in
// answers from the prefix and from the system (see net_facts.h for where each fact comes from).
#ifndef YXTOOLS_PLATFORM_POSIX_NET_NET_POSIX_H
#define YXTOOLS_PLATFORM_POSIX_NET_NET_POSIX_H

// Included by win32_posix.h, after the basic types.

constexpr DWORD ERROR_NOT_SUPPORTED = 50;
constexpr DWORD ERROR_BAD_NETPATH = 53;
constexpr DWORD ERROR_BUFFER_OVERFLOW = 111;
constexpr DWORD ERROR_INVALID_LEVEL = 124;
constexpr DWORD ERROR_MOD_NOT_FOUND = 126;
constexpr DWORD ERROR_BAD_DEVICE = 1200;
constexpr DWORD ERROR_NOT_CONNECTED = 2250;

constexpr UINT DRIVE_UNKNOWN = 0;
constexpr UINT DRIVE_NO_ROOT_DIR = 1;
constexpr UINT DRIVE_REMOVABLE = 2;
constexpr UINT DRIVE_FIXED = 3;
constexpr UINT DRIVE_REMOTE = 4;
constexpr UINT DRIVE_CDROM = 5;
constexpr UINT DRIVE_RAMDISK = 6;

// The type of the drive that "X:" or "X:\" names (any case): its link in <prefix>/dosdevices
// leads to a folder on a CIFS, SMB or NFS mount (DRIVE_REMOTE), on an ISO 9660 or UDF file system
// or an optical device (DRIVE_CDROM), on a removable block device (DRIVE_REMOVABLE), on tmpfs or
// ramfs (DRIVE_RAMDISK), or elsewhere (DRIVE_FIXED). No link, a link to nothing, or a text that
// is not the root of a drive: DRIVE_NO_ROOT_DIR. Null asks for the drive of the current folder.
YX_PLATFORM UINT GetDriveTypeA(LPCSTR lpRootPathName);

constexpr DWORD UNIVERSAL_NAME_INFO_LEVEL = 1;
constexpr DWORD REMOTE_NAME_INFO_LEVEL = 2;

struct UNIVERSAL_NAME_INFOA {
    LPSTR lpUniversalName;
};
struct REMOTE_NAME_INFOA {
    LPSTR lpUniversalName;
    LPSTR lpConnectionName;
    LPSTR lpRemainingPath;
};

// The network name of a path on a network drive: the source of the drive's mount
// ("//server/share" or NFS's "server:/export", written "\\server\share"), then the drive's folder
// below the mount, then the path behind the drive. The record and its texts go into the caller's
// buffer; a buffer too small gives ERROR_MORE_DATA and the size needed in *lpBufferSize. A drive
// that is not a network drive gives ERROR_NOT_CONNECTED, a path without a drive ERROR_BAD_DEVICE.
YX_PLATFORM DWORD WNetGetUniversalNameA(LPCSTR lpLocalPath, DWORD dwInfoLevel, LPVOID lpBuffer, DWORD* lpBufferSize);

using NET_API_STATUS = DWORD;
using LMSTR = WCHAR*;
using LPBYTE = BYTE*;
constexpr NET_API_STATUS NERR_Success = 0;
constexpr DWORD MAX_PREFERRED_LENGTH = 0xFFFFFFFF;
constexpr DWORD STYPE_DISKTREE = 0;
constexpr DWORD STYPE_PRINTQ = 1;
constexpr DWORD STYPE_DEVICE = 2;
constexpr DWORD STYPE_IPC = 3;
constexpr DWORD STYPE_SPECIAL = 0x80000000;

struct SHARE_INFO_502 {
    LMSTR shi502_netname;
    DWORD shi502_type;
    LMSTR shi502_remark;
    DWORD shi502_permissions;
    DWORD shi502_max_uses;
    DWORD shi502_current_uses;
    LMSTR shi502_path;
    LMSTR shi502_passwd;
    DWORD shi502_reserved;
    void* shi502_security_descriptor;
};

// The shares of this computer (servername null, empty or this computer's name), at level 502 only
// (ERROR_INVALID_LEVEL else). One call hands out the entries from *resume_handle on that fit in
// prefmaxlen bytes (the record and its texts; at least one entry, so that every call gets on), or
// all of them with MAX_PREFERRED_LENGTH, in one buffer for NetApiBufferFree. ERROR_MORE_DATA says
// that entries are left and *resume_handle points to them; without a resume handle the next call
// starts again from the first. No entries: NERR_Success and a null buffer.
YX_PLATFORM NET_API_STATUS NetShareEnum(LMSTR servername, DWORD level, LPBYTE* bufptr, DWORD prefmaxlen,
                                        DWORD* entriesread, DWORD* totalentries, DWORD* resume_handle);
// Gives back a buffer of NetShareEnum; null is fine, anything else is ERROR_INVALID_PARAMETER.
YX_PLATFORM NET_API_STATUS NetApiBufferFree(LPVOID Buffer);

constexpr DWORD MAX_COMPUTERNAME_LENGTH = 15;
// The computer's name: YXTOOLS_COMPUTERNAME, else the host name up to its first dot, upper case and
// cut to 15 bytes. With *nSize too small for it and its NUL: FALSE, ERROR_BUFFER_OVERFLOW and the
// size needed in *nSize; else the name, its length in *nSize, TRUE.
YX_PLATFORM BOOL GetComputerNameA(LPSTR lpBuffer, DWORD* nSize);

// UTF-16 to the ANSI code page (CP_ACP or its number; flags 0). A length of -1 takes the
// terminator along; a size of 0 asks for the count; a smaller output fails with
// ERROR_INSUFFICIENT_BUFFER. A character the code page lacks gets its best fit or '?'.
YX_PLATFORM int WideCharToMultiByte(UINT CodePage, DWORD dwFlags, LPCWSTR lpWideCharStr, int cchWideChar,
                                    LPSTR lpMultiByteStr, int cbMultiByte, LPCSTR lpDefaultChar,
                                    BOOL* lpUsedDefaultChar);

// Modules are the objects loaded in the process (the program and its shared objects). A handle is
// the address where the object's image starts, as on Windows. A name "X.dll" (without ".dll": the
// same) stands for the loaded object "libX.so", "X.so" or a versioned form of either ("libX.so.1"),
// without regard to case; so "YXKernel.dll" is libYXKernel.so. Null names the program. Nothing is
// loaded: a name not loaded gives null and ERROR_MOD_NOT_FOUND.
using HMODULE = void*;
YX_PLATFORM HMODULE GetModuleHandleA(LPCSTR lpModuleName);
// The full POSIX path of the module's file (null: the program's). A buffer too small gets the
// path cut to nSize - 1 bytes and a NUL, the result nSize and ERROR_INSUFFICIENT_BUFFER; a handle
// that is no module gives 0 and ERROR_MOD_NOT_FOUND.
YX_PLATFORM DWORD GetModuleFileNameA(HMODULE hModule, LPSTR lpFilename, DWORD nSize);

// The runtime's _strlwr under the "C" locale: A to Z only, in place.
YX_PLATFORM char* _strlwr(char* str);

#endif
