// Helpers shared by the file calls of the POSIX stand-in.
#ifndef YXTOOLS_PLATFORM_FILES_INTERNAL_H
#define YXTOOLS_PLATFORM_FILES_INTERNAL_H

// Paths reach POSIX through the resolver (resolver.h) only.

#include <sys/stat.h>

#include <string>

#include "platform/win32.h"

namespace yxposix {

// The Win32 error for a failed call on `posixPath` that left `err` in errno. ENOENT splits into
// ERROR_FILE_NOT_FOUND, when the parent folder exists, and ERROR_PATH_NOT_FOUND.
DWORD ErrorFromErrno(int err, const std::string& posixPath);

// The attributes Windows reports for what stat found.
DWORD AttributesOf(const struct stat& st);

inline bool IsReadOnly(const struct stat& st)
{
    return (st.st_mode & (S_IWUSR | S_IWGRP | S_IWOTH)) == 0;
}

// True when a handle of this or another process has the file open for reading or writing.
bool IsInUse(const std::string& posixPath);

// The time as FILETIME counts it: 100 ns steps since 1 January 1601.
FILETIME FileTimeOf(const struct timespec& t);

} // namespace yxposix

#endif
