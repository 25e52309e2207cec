// The runtime's file functions, CopyFileA and GetTempFileNameA in the POSIX stand-in.
#include <fcntl.h>
#include <stdio.h> // renameat2, RENAME_NOREPLACE
#include <sys/stat.h>
#include <unistd.h>

#include <cctype>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "platform/posix/files/files_internal.h"
#include "platform/posix/files/resolver.h"

using namespace yxposix;

namespace {

namespace files = yx::platform::files;

// True when the path's last character is a separator (a trail byte 0x5C is part of its character).
bool EndsWithSeparator(const char* path)
{
    bool separator = false;
    for (const char* p = path; *p != '\0'; ++p) {
        separator = *p == '\\' || *p == '/';
        if (IsDBCSLeadByte(static_cast<BYTE>(*p)) != FALSE && p[1] != '\0') {
            ++p;
        }
    }
    return separator;
}

bool HasExecutableExtension(const std::string& name)
{
    const std::size_t dot = name.rfind('.');
    if (dot == std::string::npos) {
        return false;
    }
    std::string extension = name.substr(dot + 1);
    for (char& c : extension) {
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    return extension == "exe" || extension == "com" || extension == "bat" || extension == "cmd";
}

// stat for the runtime's functions: errno ENOENT for a path that names no file or folder (a
// device name included, as the runtime sees none there).
bool StatPath(const char* path, files::Resolved& resolved, struct stat& st)
{
    resolved = files::ResolvePath(path);
    if (!resolved.exists || resolved.device != files::Device::kNone ||
        (resolved.closedBySeparator && !resolved.directory)) {
        errno = ENOENT;
        return false;
    }
    if (::stat(resolved.path.c_str(), &st) != 0) {
        errno = errno == ENOTDIR ? ENOENT : errno;
        return false;
    }
    return true;
}

} // namespace

int _stat(const char* path, struct _stat* buffer)
{
    files::Resolved resolved;
    struct stat st {};
    if (!StatPath(path, resolved, st)) {
        return -1;
    }
    // The runtime takes a closing separator for part of a name, except after a root. It looks at
    // the last byte, not the last character: a name whose trail byte is 0x5C counts as closed, as
    // the Windows runtime (msvcrt) answers.
    const std::size_t length = std::strlen(path);
    if (resolved.closedBySeparator || (resolved.named && (path[length - 1] == '\\' || path[length - 1] == '/'))) {
        errno = ENOENT;
        return -1;
    }
    int mode = _S_IREAD;
    if (S_ISDIR(st.st_mode)) {
        mode |= _S_IFDIR | _S_IEXEC;
    } else {
        mode |= _S_IFREG;
        if (HasExecutableExtension(resolved.name)) {
            mode |= _S_IEXEC;
        }
    }
    if (!IsReadOnly(st)) {
        mode |= _S_IWRITE;
    }
    mode |= (mode & 0700) >> 3 | (mode & 0700) >> 6;
    *buffer = {};
    buffer->st_dev = static_cast<unsigned int>(st.st_dev);
    buffer->st_ino = static_cast<unsigned short>(st.st_ino);
    buffer->st_mode = static_cast<unsigned short>(mode);
    buffer->st_nlink = static_cast<short>(st.st_nlink);
    buffer->st_size = st.st_size;
    return 0;
}

int _access(const char* path, int mode)
{
    if ((mode & ~6) != 0) {
        errno = EINVAL;
        return -1;
    }
    files::Resolved resolved;
    struct stat st {};
    if (!StatPath(path, resolved, st)) {
        return -1;
    }
    // Folders are writable whatever their attribute, as the runtime answers.
    if ((mode & 2) != 0 && !S_ISDIR(st.st_mode) && IsReadOnly(st)) {
        errno = EACCES;
        return -1;
    }
    return 0;
}

int _chmod(const char* path, int mode)
{
    files::Resolved resolved;
    struct stat st {};
    if (!StatPath(path, resolved, st)) {
        return -1;
    }
    mode_t permissions = st.st_mode & 07777;
    if ((mode & _S_IWRITE) != 0) {
        permissions |= S_IWUSR;
    } else {
        permissions &= ~static_cast<mode_t>(S_IWUSR | S_IWGRP | S_IWOTH);
    }
    return ::chmod(resolved.path.c_str(), permissions);
}

namespace crt {

int remove(const char* path)
{
    files::Resolved resolved;
    struct stat st {};
    if (!StatPath(path, resolved, st)) {
        return -1;
    }
    if (S_ISDIR(st.st_mode) || IsReadOnly(st) || IsInUse(resolved.path)) {
        errno = EACCES;
        return -1;
    }
    return ::unlink(resolved.path.c_str()) == 0 ? 0 : -1;
}

int rename(const char* oldname, const char* newname)
{
    files::Resolved source;
    struct stat st {};
    if (!StatPath(oldname, source, st)) {
        return -1;
    }
    const std::string& from = source.path;
    const files::Resolved target = files::ResolvePath(newname);
    if (target.error != ERROR_SUCCESS || target.name.empty() || target.device != files::Device::kNone) {
        errno = ENOENT;
        return -1;
    }
    // A name that is taken, in any case, is refused, unless it is the file's own (a change of case).
    if (target.exists && target.path != from) {
        errno = EEXIST;
        return -1;
    }
    const std::string to = target.path.substr(0, target.path.rfind('/') + 1) + target.name;
    if (!S_ISDIR(st.st_mode) && IsInUse(from)) {
        errno = EACCES;
        return -1;
    }
    if (to == from) {
        return 0;
    }
    if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), target.exists ? 0 : RENAME_NOREPLACE) == 0) {
        return 0;
    }
    if (errno != EINVAL) {
        errno = errno == ENOTDIR ? ENOENT : errno;
        return -1;
    }
    // A file system without RENAME_NOREPLACE: test, then rename.
    struct stat taken {};
    if (::lstat(to.c_str(), &taken) == 0) {
        errno = EEXIST;
        return -1;
    }
    return ::rename(from.c_str(), to.c_str()) == 0 ? 0 : -1;
}

} // namespace crt

BOOL CopyFileA(LPCSTR lpExistingFileName, LPCSTR lpNewFileName, BOOL bFailIfExists)
{
    HANDLE source = CreateFileA(lpExistingFileName, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                FILE_ATTRIBUTE_NORMAL | FILE_FLAG_SEQUENTIAL_SCAN, nullptr);
    if (source == INVALID_HANDLE_VALUE) {
        return FALSE;
    }
    struct stat sourceStat {};
    ::stat(files::ResolvePath(lpExistingFileName).path.c_str(), &sourceStat);
    HANDLE target = CreateFileA(lpNewFileName, GENERIC_WRITE, 0, nullptr, bFailIfExists ? CREATE_NEW : CREATE_ALWAYS,
                                FILE_ATTRIBUTE_NORMAL | FILE_FLAG_SEQUENTIAL_SCAN, nullptr);
    if (target == INVALID_HANDLE_VALUE) {
        const DWORD error = GetLastError();
        CloseHandle(source);
        SetLastError(error);
        return FALSE;
    }
    std::vector<char> buffer(1 << 20);
    BOOL copied = TRUE;
    DWORD error = ERROR_SUCCESS;
    for (;;) {
        DWORD got = 0;
        DWORD put = 0;
        if (ReadFile(source, buffer.data(), static_cast<DWORD>(buffer.size()), &got, nullptr) == FALSE) {
            copied = FALSE;
            error = GetLastError();
            break;
        }
        if (got == 0) {
            break;
        }
        if (WriteFile(target, buffer.data(), got, &put, nullptr) == FALSE) {
            copied = FALSE;
            error = GetLastError();
            break;
        }
    }
    const std::string targetPath = files::ResolvePath(lpNewFileName).path;
    CloseHandle(source);
    CloseHandle(target);
    if (copied == FALSE) {
        ::unlink(targetPath.c_str());
        SetLastError(error);
        return FALSE;
    }
    const struct timespec times[2] = {sourceStat.st_atim, sourceStat.st_mtim};
    ::utimensat(AT_FDCWD, targetPath.c_str(), times, 0);
    ::chmod(targetPath.c_str(), sourceStat.st_mode & 07777);
    SetLastError(ERROR_SUCCESS);
    return TRUE;
}

UINT GetTempFileNameA(LPCSTR lpPathName, LPCSTR lpPrefixString, UINT uUnique, LPSTR lpTempFileName)
{
    if (lpPathName == nullptr || lpTempFileName == nullptr) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    std::string folder(lpPathName);
    if (!folder.empty() && !EndsWithSeparator(lpPathName)) {
        folder += folder[0] == '/' ? '/' : '\\';
    }
    folder.append(lpPrefixString != nullptr ? lpPrefixString : "", 0, 3);
    const auto makeName = [&](UINT number) {
        char digits[16];
        std::snprintf(digits, sizeof(digits), "%X.TMP", number & 0xFFFF);
        return folder + digits;
    };
    const auto deliver = [&](const std::string& name) {
        if (name.size() >= MAX_PATH) {
            SetLastError(ERROR_FILENAME_EXCED_RANGE);
            return false;
        }
        std::memcpy(lpTempFileName, name.c_str(), name.size() + 1);
        return true;
    };
    if (uUnique != 0) {
        return deliver(makeName(uUnique)) ? uUnique & 0xFFFF : 0;
    }
    const DWORD attributes = GetFileAttributesA(lpPathName);
    if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0) {
        SetLastError(ERROR_DIRECTORY);
        return 0;
    }
    const auto ticks = std::chrono::steady_clock::now().time_since_epoch();
    UINT number = static_cast<UINT>(std::chrono::duration_cast<std::chrono::milliseconds>(ticks).count()) & 0xFFFF;
    for (UINT tries = 0; tries < 0xFFFF; ++tries, number = (number + 1) & 0xFFFF) {
        if (number == 0) {
            number = 1;
        }
        const std::string name = makeName(number);
        HANDLE file = CreateFileA(name.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
        if (file != INVALID_HANDLE_VALUE) {
            CloseHandle(file);
            if (!deliver(name)) {
                crt::remove(name.c_str());
                return 0;
            }
            return number;
        }
        const DWORD error = GetLastError();
        if (error != ERROR_FILE_EXISTS && error != ERROR_SHARING_VIOLATION) {
            return 0;
        }
    }
    SetLastError(ERROR_FILE_EXISTS);
    return 0;
}
