// The path resolver of the file stand-in: every file call turns the path a host wrote into a
// POSIX path here, and nowhere else, with Win32's rules (Wine's answers where Windows leaves a
// choice):
//
// - Characters are walked under the ANSI code page: a trail byte 0x5C or 0x2F of a double-byte
//   character belongs to the name, never separates. A lead byte with nothing after it is dropped,
//   as the conversion to Unicode drops it. Names are kept on disk as the caller's bytes, so a lead
//   byte followed by '/' (a pair that no Windows code page defines) makes ERROR_INVALID_NAME.
// - `\` and `/` separate. "X:\..." is on drive X, whose folder is the link <prefix>/dosdevices/x:
//   (DriveFolder). "X:name" is relative to the drive's current folder: the process's current
//   folder when it lies on that drive, else the drive's root, as Wine keeps no other. A path that
//   starts with one separator is on the current drive; the current drive of a process whose
//   current folder lies on no drive is the POSIX root, the way Wine's drive Z: maps "/". So POSIX
//   paths ("/srv/data/x") keep working.
// - "\\server\share\..." and "//server/share/..." are one UNC path, on the folder
//   <prefix>/dosdevices/unc/<server>/<share> (UncFolder), whose root is the share. "\\.\X:\..."
//   is "X:\..."; "\\?\X:\..." too, but taken as written: no `.`, `..` or trailing dots dropped
//   ("." and ".." there are invalid names). "\\.\NUL" and the like name the devices.
// - "." and ".." are resolved in the text, before any folder is looked at ("a\..\b" is "b" even
//   when a is a file or missing), and ".." stops at the root of the drive or share: "C:\..\x" is
//   "C:\x". So no resolved path climbs out of its drive's folder through the text. Symbolic
//   links inside a drive folder are followed as Wine follows them: they are the prefix owner's to
//   place, the same as the drive links themselves.
// - Names match case-insensitively: an exact match first, else the first name of the folder in
//   byte order whose characters, converted from the ANSI code page, are equal in upper case (so a
//   trail byte is never folded on its own). A new name keeps the case the caller wrote.
// - The last name loses its trailing dots and spaces ("map.txt. ." is "map.txt", "..." is the
//   folder itself); a folder name loses one trailing dot ("data." is "data"), and a folder name
//   made of three dots or more is an invalid name, as Wine answers.
// - `* ? < > | "` and control bytes make ERROR_INVALID_NAME, in any part of the path.
// - A path of MAX_PATH (260) bytes or more is refused with ERROR_FILENAME_EXCED_RANGE, before
//   anything is looked at; the terminator must fit in MAX_PATH, as Windows counts it.
// - NUL, CON, AUX, PRN, COM1-9, LPT1-9, CONIN$ and CONOUT$, in any case, with or without an
//   extension and trailing spaces ("nul .txt", "Com1.log"), are devices when they are the last
//   name, in any existing folder.
#ifndef YXTOOLS_PLATFORM_POSIX_FILES_RESOLVER_H
#define YXTOOLS_PLATFORM_POSIX_FILES_RESOLVER_H

#include <string>

#include <unicode/ucnv.h>

#include "platform/win32.h"

namespace yx::platform::files {

enum class Device { kNone, kNull, kConsole, kPort };

struct Resolved {
    // ERROR_SUCCESS when the folder of the last name was reached (the last name may still be
    // missing: see `exists`), else why not: ERROR_PATH_NOT_FOUND, ERROR_INVALID_NAME,
    // ERROR_FILENAME_EXCED_RANGE.
    DWORD error = ERROR_SUCCESS;
    std::string path;               // the POSIX path, with the names found on disk
    std::string name;               // the last name as the caller wrote it, trailing dots dropped
    std::string root;               // the folder of the drive or share: `path` is this or below it
    bool exists = false;            // the last name was found (a device counts as found)
    bool directory = false;         // and is a folder
    bool regular = false;           // or a regular file; neither: a FIFO, socket or device file
    bool closedBySeparator = false; // the path ends in a separator after a name
    bool named = false;             // the path names something below its start ("C:" does not)
    Device device = Device::kNone;
};

// Resolves a path as the file calls take it. `pattern` leaves the last name as written (for the
// finder): no trailing dots dropped, wildcards allowed, not looked up.
YX_PLATFORM Resolved ResolvePath(const char* path, bool pattern = false);

// The device a last name stands for, if any.
YX_PLATFORM Device DeviceOf(const std::string& name);

// The folder of drive `letter` (any case): <prefix>/dosdevices/<letter>:, whether it exists or not.
YX_PLATFORM std::string DriveFolder(char letter);

// The POSIX folder of a share: <prefix>/dosdevices/unc/<server>/<share>.
YX_PLATFORM std::string UncFolder(const std::string& server, const std::string& share);

// Upper-cases names under the ANSI code page of the moment, character by character (a trail byte
// is never folded on its own). One object serves a whole folder's worth of names.
class NameFolding {
public:
    NameFolding();
    ~NameFolding();
    NameFolding(const NameFolding&) = delete;
    NameFolding& operator=(const NameFolding&) = delete;

    // The name in UTF-16, upper-cased.
    std::u16string Upper(const std::string& name) const;

private:
    UConverter* m_converter = nullptr;
};

// True when two names are the same name for Windows: equal characters after upper-casing under
// the ANSI code page.
YX_PLATFORM bool SameName(const std::string& a, const std::string& b);

// The Win32 error for a path whose last name is missing or is no file as asked: a missing name in
// an existing folder is ERROR_FILE_NOT_FOUND.
inline DWORD MissingError(const Resolved& r)
{
    return r.error != ERROR_SUCCESS ? r.error : ERROR_FILE_NOT_FOUND;
}

} // namespace yx::platform::files

#endif
