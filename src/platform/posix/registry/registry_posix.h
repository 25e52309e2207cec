// The registry calls of the POSIX stand-in.
//
// The registry is a SQLite database, registry.db in the prefix, shared by every process that uses
// the same prefix: keys in a tree under three hives (HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE and
// HKEY_USERS), values with their type and their bytes as given. Key and value names compare
// without regard to the case of ASCII letters, as Windows compares them, and keep the case they
// were created with. Each change is one transaction. The database is in WAL mode, so readers never
// wait for a writer; a writer waits up to the busy time-out for another writer and then fails with
// ERROR_BUSY. A call that finds no database, a file that is not one, or one of another layout
// changes nothing and answers as for a missing key (reads) or fails (writes).
#ifndef YXTOOLS_PLATFORM_POSIX_REGISTRY_POSIX_H
#define YXTOOLS_PLATFORM_POSIX_REGISTRY_POSIX_H

#include <cstdint>
#include <string>

struct HKEY__;
using HKEY = HKEY__*;
using PHKEY = HKEY*;
using REGSAM = DWORD;
using LSTATUS = LONG;
using LPDWORD = DWORD*;
using LPBYTE = BYTE*;

// The predefined keys are the values Windows gives them.
#define HKEY_CURRENT_USER (reinterpret_cast<HKEY>(static_cast<std::uintptr_t>(0x80000001U)))
#define HKEY_LOCAL_MACHINE (reinterpret_cast<HKEY>(static_cast<std::uintptr_t>(0x80000002U)))
#define HKEY_USERS (reinterpret_cast<HKEY>(static_cast<std::uintptr_t>(0x80000003U)))

constexpr REGSAM KEY_QUERY_VALUE = 0x0001;
constexpr REGSAM KEY_SET_VALUE = 0x0002;
constexpr REGSAM KEY_CREATE_SUB_KEY = 0x0004;
constexpr REGSAM KEY_ENUMERATE_SUB_KEYS = 0x0008;
constexpr REGSAM KEY_NOTIFY = 0x0010;
constexpr REGSAM KEY_CREATE_LINK = 0x0020;
constexpr REGSAM KEY_READ = 0x20019;
constexpr REGSAM KEY_WRITE = 0x20006;
constexpr REGSAM KEY_ALL_ACCESS = 0xF003F;

constexpr DWORD REG_NONE = 0;
constexpr DWORD REG_SZ = 1;
constexpr DWORD REG_EXPAND_SZ = 2;
constexpr DWORD REG_BINARY = 3;
constexpr DWORD REG_DWORD = 4;
constexpr DWORD REG_MULTI_SZ = 7;
constexpr DWORD REG_QWORD = 11;

constexpr DWORD REG_OPTION_NON_VOLATILE = 0;
constexpr DWORD REG_CREATED_NEW_KEY = 1;
constexpr DWORD REG_OPENED_EXISTING_KEY = 2;

constexpr DWORD ERROR_BAD_PATHNAME = 161;
constexpr DWORD ERROR_BUSY = 170;
constexpr DWORD ERROR_MORE_DATA = 234;
constexpr DWORD ERROR_NO_MORE_ITEMS = 259;
constexpr DWORD ERROR_NOACCESS = 998;
constexpr DWORD ERROR_BADDB = 1009;
constexpr DWORD ERROR_CANTREAD = 1012;
constexpr DWORD ERROR_CANTWRITE = 1013;
constexpr DWORD ERROR_KEY_DELETED = 1018;

// Opens an existing key below hKey; ERROR_FILE_NOT_FOUND when it is missing. The subkey's names
// are separated by `\`, and empty names (a `\` at the end, or two in a row) are skipped; a `\` at
// the front is ERROR_BAD_PATHNAME and a name of more than 255 bytes ERROR_INVALID_PARAMETER; a
// subkey of more than 260 characters is ERROR_MORE_DATA, as the ANSI calls convert it into a buffer
// of that size. A null
// or empty subkey opens hKey anew, and gives a predefined key back as it is.
YX_PLATFORM LSTATUS RegOpenKeyExA(HKEY hKey, LPCSTR lpSubKey, DWORD ulOptions, REGSAM samDesired, PHKEY phkResult);
// Opens the key, creating it and every key above it that is missing; the subkey as for
// RegOpenKeyExA.
YX_PLATFORM LSTATUS RegCreateKeyExA(HKEY hKey, LPCSTR lpSubKey, DWORD Reserved, LPSTR lpClass, DWORD dwOptions,
                                    REGSAM samDesired, LPSECURITY_ATTRIBUTES lpSecurityAttributes, PHKEY phkResult,
                                    LPDWORD lpdwDisposition);
// Type and bytes of a value (a null or empty name is the key's default value). Without lpData
// the size alone; with a buffer smaller than the data ERROR_MORE_DATA, the size in *lpcbData and
// the buffer untouched. Needs KEY_QUERY_VALUE on the handle.
YX_PLATFORM LSTATUS RegQueryValueExA(HKEY hKey, LPCSTR lpValueName, LPDWORD lpReserved, LPDWORD lpType, LPBYTE lpData,
                                     LPDWORD lpcbData);
// Stores cbData bytes as given, with their type; text types (REG_SZ, REG_EXPAND_SZ,
// REG_MULTI_SZ) whose bytes do not end in a zero get one added, as Windows adds one in the
// conversion of the ANSI call. A name of more than 16383 bytes is ERROR_INVALID_PARAMETER. Needs
// KEY_SET_VALUE on the handle.
YX_PLATFORM LSTATUS RegSetValueExA(HKEY hKey, LPCSTR lpValueName, DWORD Reserved, DWORD dwType, const BYTE* lpData,
                                   DWORD cbData);
YX_PLATFORM LSTATUS RegCloseKey(HKEY hKey);

// Beyond what the library calls: what the yxtools command needs to list, delete and export.
// Subkeys and values come in the order of their names, compared without regard to case.
YX_PLATFORM LSTATUS RegDeleteValueA(HKEY hKey, LPCSTR lpValueName);
// Deletes a key that has no subkeys, with its values (ERROR_ACCESS_DENIED when it has subkeys).
YX_PLATFORM LSTATUS RegDeleteKeyA(HKEY hKey, LPCSTR lpSubKey);
YX_PLATFORM LSTATUS RegEnumKeyExA(HKEY hKey, DWORD dwIndex, LPSTR lpName, LPDWORD lpcchName, LPDWORD lpReserved,
                                  LPSTR lpClass, LPDWORD lpcchClass, FILETIME* lpftLastWriteTime);
YX_PLATFORM LSTATUS RegEnumValueA(HKEY hKey, DWORD dwIndex, LPSTR lpValueName, LPDWORD lpcchValueName,
                                  LPDWORD lpReserved, LPDWORD lpType, LPBYTE lpData, LPDWORD lpcbData);

namespace yxposix {

// The registry database of the current prefix as `yxtools doctor` shows it, read without creating
// or changing anything.
struct RegistryDatabase {
    std::string path;
    bool exists = false;
    long long size = -1;   // bytes of the file
    int layout = -1;       // its user_version: 0 until the first write makes the layout; -1 unread
    std::string integrity; // the first line of PRAGMA integrity_check ("ok"), when it ran
    std::string problem;   // why it cannot serve as the registry; empty when it can (or is missing)
};
YX_PLATFORM RegistryDatabase InspectRegistryDatabase();

// Test seam: a function that RegQueryValueExA calls first, before it looks at anything (null for
// none), so that a test can change the registry between two queries of a reader.
YX_PLATFORM void SetRegistryQueryHook(void (*hook)());
} // namespace yxposix

#endif
