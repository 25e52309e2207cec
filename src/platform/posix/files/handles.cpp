// File handles of the POSIX stand-in: CreateFileA and the calls on its handles.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cctype>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <string>

#include "platform/posix/files/files_internal.h"
#include "platform/posix/files/handle_table.h"
#include "platform/posix/files/resolver.h"
#include "platform/posix/sync/kernel_objects.h"

namespace yxposix {

DWORD ErrorFromErrno(int err, const std::string& posixPath)
{
    switch (err) {
    case ENOENT: {
        std::string parent = posixPath;
        while (parent.size() > 1 && parent.back() == '/') {
            parent.pop_back();
        }
        const std::size_t slash = parent.rfind('/');
        parent = slash == std::string::npos ? std::string(".") : parent.substr(0, slash == 0 ? 1 : slash);
        struct stat st {};
        return ::stat(parent.c_str(), &st) == 0 && S_ISDIR(st.st_mode) ? ERROR_FILE_NOT_FOUND : ERROR_PATH_NOT_FOUND;
    }
    case ENOTDIR:
        return ERROR_PATH_NOT_FOUND;
    case EACCES:
    case EPERM:
    case EROFS:
    case EISDIR:
        return ERROR_ACCESS_DENIED;
    case EEXIST:
        return ERROR_FILE_EXISTS;
    case ENAMETOOLONG:
        return ERROR_FILENAME_EXCED_RANGE;
    case ENOSPC:
    case EDQUOT:
        return ERROR_DISK_FULL;
    case EBADF:
        return ERROR_INVALID_HANDLE;
    case EMFILE:
    case ENFILE:
        return ERROR_TOO_MANY_OPEN_FILES;
    case ENOMEM:
        return ERROR_NOT_ENOUGH_MEMORY;
    default:
        return ERROR_GEN_FAILURE;
    }
}

DWORD AttributesOf(const struct stat& st)
{
    DWORD attributes = S_ISDIR(st.st_mode) ? FILE_ATTRIBUTE_DIRECTORY : FILE_ATTRIBUTE_ARCHIVE;
    if (IsReadOnly(st)) {
        attributes |= FILE_ATTRIBUTE_READONLY;
    }
    return attributes;
}

FILETIME FileTimeOf(const struct timespec& t)
{
    constexpr std::uint64_t kEpochDifference = 116444736000000000ULL; // 1601 to 1970, in 100 ns
    const std::uint64_t ticks = kEpochDifference + static_cast<std::uint64_t>(t.tv_sec) * 10000000ULL +
                                static_cast<std::uint64_t>(t.tv_nsec) / 100;
    return FILETIME{static_cast<DWORD>(ticks), static_cast<DWORD>(ticks >> 32)};
}

namespace {

// The share marks: one byte each, far beyond any data. A handle holds a read lock on the marks
// of what it does and what it denies; a conflicting mark is one that another open file
// description holds.
enum Mark : off_t { kReading = 0, kWriting = 1, kDenyingRead = 2, kDenyingWrite = 3, kGate = 4 };
constexpr off_t kMarkBase = 0x7FFFFFFFFFFFFF00;

bool LockMark(int fd, Mark mark, short type, int command)
{
    struct flock lock {};
    lock.l_type = type;
    lock.l_whence = SEEK_SET;
    lock.l_start = kMarkBase + mark;
    lock.l_len = 1;
    return ::fcntl(fd, command, &lock) == 0;
}

// True when another open file description holds the mark.
bool MarkHeld(int fd, Mark mark)
{
    struct flock lock {};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    lock.l_start = kMarkBase + mark;
    lock.l_len = 1;
    return ::fcntl(fd, F_OFD_GETLK, &lock) == 0 && lock.l_type != F_UNLCK;
}

struct FileHandle {
    int fd;
    DWORD access;
};

std::mutex g_shareMutex; // share checks between the threads of this process
yx::platform::HandleTable<FileHandle> g_files;

FileHandle* Lookup(HANDLE handle)
{
    return g_files.Find(handle);
}

// Checks `access` and `share` against every other handle on the file, then marks this one.
// The gate mark makes check and marking one step between processes; it needs a descriptor
// open for writing, so two processes that both read may still race, which costs nothing.
bool EnterShare(int fd, bool fdWritable, DWORD access, DWORD share)
{
    const bool reads = (access & GENERIC_READ) != 0;
    const bool writes = (access & GENERIC_WRITE) != 0;
    if (!reads && !writes) {
        return true;
    }
    const bool gated = fdWritable && LockMark(fd, kGate, F_WRLCK, F_OFD_SETLKW);
    const bool conflict = (reads && MarkHeld(fd, kDenyingRead)) || (writes && MarkHeld(fd, kDenyingWrite)) ||
                          ((share & FILE_SHARE_READ) == 0 && MarkHeld(fd, kReading)) ||
                          ((share & FILE_SHARE_WRITE) == 0 && MarkHeld(fd, kWriting));
    if (!conflict) {
        // A descriptor opened for writing alone cannot take read locks; such a handle (a file
        // that the user may write but not read) goes unmarked.
        if (reads || fdWritable) {
            if (reads) {
                LockMark(fd, kReading, F_RDLCK, F_OFD_SETLK);
            }
            if (writes) {
                LockMark(fd, kWriting, F_RDLCK, F_OFD_SETLK);
            }
            if ((share & FILE_SHARE_READ) == 0) {
                LockMark(fd, kDenyingRead, F_RDLCK, F_OFD_SETLK);
            }
            if ((share & FILE_SHARE_WRITE) == 0) {
                LockMark(fd, kDenyingWrite, F_RDLCK, F_OFD_SETLK);
            }
        }
    }
    if (gated) {
        LockMark(fd, kGate, F_UNLCK, F_OFD_SETLK);
    }
    return !conflict;
}

int OpenDescriptor(const std::string& path, DWORD access, int extra, mode_t mode, bool& writable)
{
    const int base = O_CLOEXEC | O_NOCTTY | O_NONBLOCK | extra;
    writable = false;
    int fd = -1;
    if ((access & GENERIC_WRITE) != 0) {
        fd = ::open(path.c_str(), base | O_RDWR, mode);
        if (fd < 0 && errno == EACCES && (access & GENERIC_READ) == 0) {
            fd = ::open(path.c_str(), base | O_WRONLY, mode);
        }
        writable = fd >= 0;
        return fd;
    }
    fd = ::open(path.c_str(), base | O_RDONLY, mode);
    if (fd < 0 && errno == EACCES && access == 0) {
        fd = ::open(path.c_str(), base | O_PATH);
    }
    return fd;
}

void Report(DWORD error)
{
    ::SetLastError(error);
}

// The open file behind a handle that carries `right` (GENERIC_READ or GENERIC_WRITE; 0 for none),
// or null with the last error set: ERROR_INVALID_HANDLE, or ERROR_ACCESS_DENIED without the right.
const FileHandle* LookupWith(HANDLE handle, DWORD right)
{
    const FileHandle* file = Lookup(handle);
    if (file == nullptr) {
        Report(ERROR_INVALID_HANDLE);
        return nullptr;
    }
    if ((file->access & right) != right) {
        Report(ERROR_ACCESS_DENIED);
        return nullptr;
    }
    return file;
}

} // namespace

bool IsInUse(const std::string& posixPath)
{
    const int fd = ::open(posixPath.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK);
    if (fd < 0) {
        return false;
    }
    struct stat st {};
    if (::fstat(fd, &st) != 0 || !S_ISREG(st.st_mode)) {
        ::close(fd);
        return false;
    }
    const bool used = MarkHeld(fd, kReading) || MarkHeld(fd, kWriting);
    ::close(fd);
    return used;
}

} // namespace yxposix

using namespace yxposix;

namespace {

// The devices a host may name: NUL is the null device; the console and the ports are not there
// for a library (no console is attached, no port is offered), as Wine answers without them.
HANDLE OpenDevice(yx::platform::files::Device device, DWORD access)
{
    using yx::platform::files::Device;
    if (device != Device::kNull) {
        Report(device == Device::kConsole ? ERROR_INVALID_HANDLE : ERROR_FILE_NOT_FOUND);
        return INVALID_HANDLE_VALUE;
    }
    const int fd = ::open("/dev/null", O_RDWR | O_CLOEXEC | O_NOCTTY);
    if (fd < 0) {
        Report(ErrorFromErrno(errno, std::string()));
        return INVALID_HANDLE_VALUE;
    }
    HANDLE file = g_files.Add(new FileHandle{fd, access});
    Report(ERROR_SUCCESS);
    return file;
}

} // namespace

HANDLE CreateFileA(LPCSTR lpFileName, DWORD dwDesiredAccess, DWORD dwShareMode,
                   LPSECURITY_ATTRIBUTES /*lpSecurityAttributes*/, DWORD dwCreationDisposition,
                   DWORD dwFlagsAndAttributes, HANDLE /*hTemplateFile*/)
{
    if (dwCreationDisposition < CREATE_NEW || dwCreationDisposition > TRUNCATE_EXISTING) {
        Report(ERROR_INVALID_PARAMETER);
        return INVALID_HANDLE_VALUE;
    }
    namespace files = yx::platform::files;
    const files::Resolved resolved = files::ResolvePath(lpFileName);
    if (resolved.error != ERROR_SUCCESS) {
        Report(resolved.error);
        return INVALID_HANDLE_VALUE;
    }
    if (resolved.device != files::Device::kNone) {
        return OpenDevice(resolved.device, dwDesiredAccess);
    }
    // A separator after a name asks for a folder: a file there, or nothing, is no such name.
    if (resolved.closedBySeparator && !resolved.directory) {
        Report(ERROR_INVALID_NAME);
        return INVALID_HANDLE_VALUE;
    }
    const std::string& path = resolved.path;
    struct stat st {};
    const bool exists = resolved.exists && ::stat(path.c_str(), &st) == 0;
    if (resolved.exists && !exists) {
        Report(ERROR_ACCESS_DENIED); // a link that leads nowhere
        return INVALID_HANDLE_VALUE;
    }
    const bool creates = dwCreationDisposition != OPEN_EXISTING && dwCreationDisposition != TRUNCATE_EXISTING;
    const bool truncates = dwCreationDisposition == CREATE_ALWAYS || dwCreationDisposition == TRUNCATE_EXISTING;
    if (exists) {
        if (S_ISDIR(st.st_mode)) {
            Report(dwCreationDisposition == CREATE_NEW ? ERROR_FILE_EXISTS : ERROR_ACCESS_DENIED);
            return INVALID_HANDLE_VALUE;
        }
        if (dwCreationDisposition == CREATE_NEW) {
            Report(ERROR_FILE_EXISTS);
            return INVALID_HANDLE_VALUE;
        }
        // A FIFO, a socket or a device file is never opened (an open could wait for a writer):
        // it answers as a file Windows may not open.
        if (!S_ISREG(st.st_mode)) {
            Report(ERROR_ACCESS_DENIED);
            return INVALID_HANDLE_VALUE;
        }
        if (IsReadOnly(st) && ((dwDesiredAccess & GENERIC_WRITE) != 0 || truncates)) {
            Report(ERROR_ACCESS_DENIED);
            return INVALID_HANDLE_VALUE;
        }
    } else if (!creates) {
        Report(ERROR_FILE_NOT_FOUND);
        return INVALID_HANDLE_VALUE;
    }

    const mode_t mode = (dwFlagsAndAttributes & FILE_ATTRIBUTE_READONLY) != 0 ? 0444 : 0666;
    bool writable = false;
    const int fd = OpenDescriptor(path, dwDesiredAccess, exists ? 0 : O_CREAT | O_EXCL, mode, writable);
    if (fd < 0) {
        Report(ErrorFromErrno(errno, path));
        return INVALID_HANDLE_VALUE;
    }
    // What was opened may have been swapped for something else since it was looked at.
    struct stat opened {};
    if (::fstat(fd, &opened) != 0 || !S_ISREG(opened.st_mode)) {
        ::close(fd);
        Report(ERROR_ACCESS_DENIED);
        return INVALID_HANDLE_VALUE;
    }
    {
        const std::lock_guard<std::mutex> guard(g_shareMutex);
        if (!EnterShare(fd, writable, dwDesiredAccess, dwShareMode)) {
            ::close(fd);
            Report(ERROR_SHARING_VIOLATION);
            return INVALID_HANDLE_VALUE;
        }
    }
    // Truncation waits for the share check: a refused open leaves the file as it was. A handle
    // without write access truncates through the path.
    if (exists && truncates && (writable ? ::ftruncate(fd, 0) : ::truncate(path.c_str(), 0)) != 0) {
        const int err = errno;
        ::close(fd);
        Report(ErrorFromErrno(err, path));
        return INVALID_HANDLE_VALUE;
    }
    if ((dwFlagsAndAttributes & FILE_FLAG_SEQUENTIAL_SCAN) != 0) {
        ::posix_fadvise(fd, 0, 0, POSIX_FADV_SEQUENTIAL);
    } else if ((dwFlagsAndAttributes & FILE_FLAG_RANDOM_ACCESS) != 0) {
        ::posix_fadvise(fd, 0, 0, POSIX_FADV_RANDOM);
    }
    HANDLE file = g_files.Add(new FileHandle{fd, dwDesiredAccess});
    Report(exists && creates ? ERROR_ALREADY_EXISTS : ERROR_SUCCESS);
    return file;
}

BOOL CloseHandle(HANDLE hObject)
{
    FileHandle* file = g_files.Take(hObject);
    if (file == nullptr) {
        // Mutexes and threads.
        if (yx::platform::sync::Uncancellable([&] { return yx::platform::sync::CloseKernelHandle(hObject); })) {
            return TRUE;
        }
        Report(ERROR_INVALID_HANDLE);
        return FALSE;
    }
    // The descriptor is released whatever close reports, as the handle is.
    ::close(file->fd);
    delete file;
    return TRUE;
}

namespace {

// Moves up to `count` bytes with `step` (a read or a write), which may move fewer at a time. A
// read that reaches the end of the file stops early without failing.
template <class Step>
BOOL Transfer(HANDLE handle, DWORD right, DWORD count, LPDWORD moved, Step step)
{
    if (moved != nullptr) {
        *moved = 0;
    }
    const FileHandle* file = LookupWith(handle, right);
    if (file == nullptr) {
        return FALSE;
    }
    DWORD done = 0;
    BOOL result = TRUE;
    while (done < count) {
        const ssize_t n = step(file->fd, done, count - done);
        if (n < 0 && errno == EINTR) {
            continue;
        }
        if (n < 0) {
            Report(ErrorFromErrno(errno, std::string()));
            result = FALSE;
            break;
        }
        if (n == 0) {
            if (right == GENERIC_WRITE) {
                Report(ERROR_DISK_FULL);
                result = FALSE;
            }
            break;
        }
        done += static_cast<DWORD>(n);
    }
    if (moved != nullptr) {
        *moved = done;
    }
    return result;
}

} // namespace

BOOL ReadFile(HANDLE hFile, LPVOID lpBuffer, DWORD nNumberOfBytesToRead, LPDWORD lpNumberOfBytesRead,
              LPOVERLAPPED /*lpOverlapped*/)
{
    auto* bytes = static_cast<char*>(lpBuffer);
    return Transfer(hFile, GENERIC_READ, nNumberOfBytesToRead, lpNumberOfBytesRead,
                    [bytes](int fd, DWORD done, DWORD left) { return ::read(fd, bytes + done, left); });
}

BOOL WriteFile(HANDLE hFile, LPCVOID lpBuffer, DWORD nNumberOfBytesToWrite, LPDWORD lpNumberOfBytesWritten,
               LPOVERLAPPED /*lpOverlapped*/)
{
    const auto* bytes = static_cast<const char*>(lpBuffer);
    return Transfer(hFile, GENERIC_WRITE, nNumberOfBytesToWrite, lpNumberOfBytesWritten,
                    [bytes](int fd, DWORD done, DWORD left) { return ::write(fd, bytes + done, left); });
}

DWORD SetFilePointer(HANDLE hFile, LONG lDistanceToMove, PLONG lpDistanceToMoveHigh, DWORD dwMoveMethod)
{
    const FileHandle* file = Lookup(hFile);
    if (file == nullptr) {
        Report(ERROR_INVALID_HANDLE);
        return INVALID_SET_FILE_POINTER;
    }
    std::int64_t distance = lDistanceToMove;
    if (lpDistanceToMoveHigh != nullptr) {
        distance = static_cast<std::int64_t>(
            (static_cast<std::uint64_t>(static_cast<std::uint32_t>(*lpDistanceToMoveHigh)) << 32) |
            static_cast<std::uint32_t>(lDistanceToMove));
    }
    std::int64_t base = 0;
    if (dwMoveMethod == FILE_CURRENT) {
        base = ::lseek(file->fd, 0, SEEK_CUR);
    } else if (dwMoveMethod == FILE_END) {
        struct stat st {};
        base = ::fstat(file->fd, &st) == 0 ? st.st_size : -1;
    } else if (dwMoveMethod != FILE_BEGIN) {
        Report(ERROR_INVALID_PARAMETER);
        return INVALID_SET_FILE_POINTER;
    }
    if (base < 0) {
        Report(ErrorFromErrno(errno, std::string()));
        return INVALID_SET_FILE_POINTER;
    }
    const std::int64_t target = base + distance;
    if (target < 0) {
        Report(ERROR_NEGATIVE_SEEK);
        return INVALID_SET_FILE_POINTER;
    }
    if (::lseek(file->fd, target, SEEK_SET) < 0) {
        Report(ErrorFromErrno(errno, std::string()));
        return INVALID_SET_FILE_POINTER;
    }
    if (lpDistanceToMoveHigh != nullptr) {
        *lpDistanceToMoveHigh = static_cast<LONG>(static_cast<std::uint64_t>(target) >> 32);
    }
    // A position whose low half is 0xFFFFFFFF is told from a failure by the cleared last error.
    Report(NO_ERROR);
    return static_cast<DWORD>(target);
}

DWORD GetFileSize(HANDLE hFile, LPDWORD lpFileSizeHigh)
{
    const FileHandle* file = Lookup(hFile);
    struct stat st {};
    if (file == nullptr || ::fstat(file->fd, &st) != 0) {
        Report(ERROR_INVALID_HANDLE);
        return INVALID_FILE_SIZE;
    }
    if (lpFileSizeHigh != nullptr) {
        *lpFileSizeHigh = static_cast<DWORD>(static_cast<std::uint64_t>(st.st_size) >> 32);
    }
    Report(NO_ERROR);
    return static_cast<DWORD>(st.st_size);
}

BOOL SetEndOfFile(HANDLE hFile)
{
    const FileHandle* file = LookupWith(hFile, GENERIC_WRITE);
    if (file == nullptr) {
        return FALSE;
    }
    const off_t position = ::lseek(file->fd, 0, SEEK_CUR);
    if (position < 0 || ::ftruncate(file->fd, position) != 0) {
        Report(ErrorFromErrno(errno, std::string()));
        return FALSE;
    }
    return TRUE;
}

BOOL FlushFileBuffers(HANDLE hFile)
{
    const FileHandle* file = LookupWith(hFile, GENERIC_WRITE);
    if (file == nullptr) {
        return FALSE;
    }
    if (::fsync(file->fd) != 0) {
        Report(ErrorFromErrno(errno, std::string()));
        return FALSE;
    }
    return TRUE;
}

DWORD GetFileAttributesA(LPCSTR lpFileName)
{
    namespace files = yx::platform::files;
    const files::Resolved resolved = files::ResolvePath(lpFileName);
    if (resolved.device != files::Device::kNone) {
        return FILE_ATTRIBUTE_ARCHIVE; // every device name answers as a file, in an existing folder
    }
    if (!resolved.exists) {
        Report(files::MissingError(resolved));
        return INVALID_FILE_ATTRIBUTES;
    }
    struct stat st {};
    if (resolved.closedBySeparator && !resolved.directory) {
        Report(ERROR_PATH_NOT_FOUND);
        return INVALID_FILE_ATTRIBUTES;
    }
    if (::stat(resolved.path.c_str(), &st) != 0) {
        Report(ErrorFromErrno(errno, resolved.path));
        return INVALID_FILE_ATTRIBUTES;
    }
    return AttributesOf(st);
}
