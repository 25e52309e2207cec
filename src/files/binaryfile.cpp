// YXBinaryFile: one platform file handle with the library's mode word and error codes.
//
// Positions and lengths keep their 32-bit ceiling on every platform: GetLength gives the low
// 32 bits of the size and the narrow seek form the low 32 bits of the position, as the Win32
// calls give them. The wide seek form returns the whole 64-bit position. Hosts see the same
// numbers on both builds.
#include <yxtools/files.h>
#include <yxtools/path.h>

#include "platform/win32.h"

namespace {

// The class's own codes.
constexpr unsigned long kNotOpened = 1;
constexpr unsigned long kNotCreated = 2;
constexpr unsigned long kClosed = 3;
constexpr unsigned long kReadRefused = 4;
constexpr unsigned long kWriteRefused = 5;
constexpr unsigned long kCloseRefused = 6;
constexpr unsigned long kMoveRefused = 7;
constexpr unsigned long kTruncateRefused = 8;

// Reasons of IsOpenable.
constexpr unsigned short kReasonNone = 0;
constexpr unsigned short kReasonNotFound = 1;
constexpr unsigned short kReasonReadOnly = 3;
constexpr unsigned short kReasonDenied = 4;
constexpr unsigned short kReasonFolder = 5;
constexpr unsigned short kReasonInUse = 6;
constexpr unsigned short kReasonNoFolder = 7;

DWORD Hint(bool sequential)
{
    return FILE_ATTRIBUTE_NORMAL | (sequential ? FILE_FLAG_SEQUENTIAL_SCAN : FILE_FLAG_RANDOM_ACCESS);
}

} // namespace

YXBinaryFile::YXBinaryFile() : m_dwLastError(0), m_hFile(nullptr) {}

YXBinaryFile::YXBinaryFile(const _SS<char>& path, unsigned long mode) : m_dwLastError(0), m_hFile(nullptr)
{
    Open(path, mode, false);
}

YXBinaryFile::YXBinaryFile(const YXBinaryFile& other) = default;

// Member-wise: the target's own file is neither closed nor kept.
YXBinaryFile& YXBinaryFile::operator=(const YXBinaryFile& other) = default;

YXBinaryFile::~YXBinaryFile()
{
    if (m_hFile != nullptr) {
        Close();
    }
}

unsigned long YXBinaryFile::GetCFAccess(unsigned long mode)
{
    unsigned long access = 0;
    if ((mode & YXFILE_READ) != 0) {
        access |= GENERIC_READ;
    }
    if ((mode & YXFILE_WRITE) != 0) {
        access |= GENERIC_WRITE;
    }
    return access;
}

unsigned long YXBinaryFile::GetCFShareMode(unsigned long mode)
{
    if ((mode & YXFILE_DENY_ALL) != 0) {
        return 0;
    }
    if ((mode & YXFILE_DENY_READ) != 0) {
        return FILE_SHARE_WRITE;
    }
    if ((mode & YXFILE_DENY_WRITE) != 0) {
        return FILE_SHARE_READ;
    }
    return FILE_SHARE_READ | FILE_SHARE_WRITE;
}

void YXBinaryFile::SetLastError(unsigned long code)
{
    m_dwLastError = code;
}

// A refused close is recorded and the old handle forgotten: the next open stores over it.
void YXBinaryFile::CloseBeforeReopen()
{
    if (m_hFile != nullptr && !Close()) {
        m_hFile = nullptr;
    }
}

bool YXBinaryFile::OpenHandle(const _SS<char>& path, unsigned long mode, bool sequential, bool create)
{
    HANDLE file =
        CreateFileA(path.c_str(), static_cast<DWORD>(GetCFAccess(mode)), static_cast<DWORD>(GetCFShareMode(mode)),
                    nullptr, create ? CREATE_ALWAYS : OPEN_EXISTING, Hint(sequential), nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        m_hFile = nullptr;
        return false;
    }
    m_hFile = file;
    return true;
}

bool YXBinaryFile::Create(const _SS<char>& path, unsigned long mode, bool sequential)
{
    CloseBeforeReopen();
    if (!OpenHandle(path, mode, sequential, true)) {
        SetLastError(kNotCreated);
        return false;
    }
    SetLastError(0);
    return true;
}

bool YXBinaryFile::Open(const _SS<char>& path, unsigned long mode, bool sequential)
{
    CloseBeforeReopen();
    if (!OpenHandle(path, mode, sequential, false)) {
        if ((mode & YXFILE_CREATE) == 0) {
            SetLastError(kNotOpened);
            return false;
        }
        if (!OpenHandle(path, mode, sequential, true)) {
            SetLastError(kNotCreated);
            return false;
        }
    }
    SetLastError(0);
    return true;
}

bool YXBinaryFile::Close()
{
    if (m_hFile == nullptr) {
        SetLastError(kClosed);
        return false;
    }
    if (CloseHandle(m_hFile) == FALSE) {
        SetLastError(kCloseRefused);
        return false;
    }
    m_hFile = nullptr;
    return true;
}

long YXBinaryFile::Read(void* buffer, long count)
{
    if (m_hFile == nullptr) {
        SetLastError(kClosed);
        return 0;
    }
    DWORD done = 0;
    if (ReadFile(m_hFile, buffer, static_cast<DWORD>(count), &done, nullptr) == FALSE) {
        SetLastError(kReadRefused);
    }
    return static_cast<long>(done);
}

long YXBinaryFile::Write(const void* buffer, long count)
{
    if (m_hFile == nullptr) {
        SetLastError(kClosed);
        return 0;
    }
    DWORD done = 0;
    if (WriteFile(m_hFile, buffer, static_cast<DWORD>(count), &done, nullptr) == FALSE) {
        SetLastError(kWriteRefused);
    }
    return static_cast<long>(done);
}

std::int64_t YXBinaryFile::SetFilePointerInternal(std::int64_t offset, unsigned long method)
{
    const auto low = static_cast<LONG>(static_cast<std::uint32_t>(offset));
    if (offset < 0x7FFFFFFF) {
        const DWORD position = SetFilePointer(m_hFile, low, nullptr, static_cast<DWORD>(method));
        if (position == INVALID_SET_FILE_POINTER && ::GetLastError() != NO_ERROR) {
            return -1;
        }
        return static_cast<std::int64_t>(position);
    }
    auto high = static_cast<LONG>(static_cast<std::uint64_t>(offset) >> 32);
    const DWORD position = SetFilePointer(m_hFile, low, &high, static_cast<DWORD>(method));
    if (position == INVALID_SET_FILE_POINTER && ::GetLastError() != NO_ERROR) {
        return -1;
    }
    return static_cast<std::int64_t>((static_cast<std::uint64_t>(static_cast<std::uint32_t>(high)) << 32) | position);
}

std::int64_t YXBinaryFile::Seek(std::int64_t offset, unsigned long method)
{
    if (m_hFile == nullptr) {
        SetLastError(kClosed);
        return -1;
    }
    const std::int64_t position = SetFilePointerInternal(offset, method);
    if (position == -1) {
        SetLastError(kMoveRefused);
    }
    return position;
}

std::int64_t YXBinaryFile::SeekFromBegin(std::int64_t offset)
{
    return Seek(offset, FILE_BEGIN);
}

std::int64_t YXBinaryFile::SeekFromCurrent(std::int64_t offset)
{
    return Seek(offset, FILE_CURRENT);
}

std::int64_t YXBinaryFile::SeekFromEnd(std::int64_t offset)
{
    return Seek(offset, FILE_END);
}

unsigned long YXBinaryFile::GetLength()
{
    if (m_hFile == nullptr) {
        SetLastError(kClosed);
        return 0;
    }
    return GetFileSize(m_hFile, nullptr);
}

bool YXBinaryFile::Truncate()
{
    if (m_hFile == nullptr) {
        SetLastError(kClosed);
        return false;
    }
    if (SetEndOfFile(m_hFile) == FALSE) {
        SetLastError(kTruncateRefused);
        return false;
    }
    return true;
}

bool YXBinaryFile::Flush()
{
    return FlushFileBuffers(m_hFile) != FALSE;
}

bool YXBinaryFile::IsEof()
{
    const std::int64_t position = SeekFromCurrent(0);
    if (position == -1) {
        return false;
    }
    const std::int64_t length = static_cast<std::uint32_t>(GetLength());
    return position >= length;
}

bool YXBinaryFile::IsOpen() const
{
    return m_hFile != nullptr;
}

void* YXBinaryFile::GetHandle() const
{
    return m_hFile;
}

unsigned long YXBinaryFile::GetLastError() const
{
    return m_dwLastError;
}

unsigned long YXBinaryFile::GetLastError(bool clear)
{
    const unsigned long code = m_dwLastError;
    if (clear) {
        m_dwLastError = 0;
    }
    return code;
}

bool YXBinaryFile::IsOpenable(const _SS<char>& path, unsigned long mode, unsigned short* reason, bool* creatable)
{
    bool result = true;
    bool canCreate = false;
    unsigned short why = kReasonNone;
    const DWORD attributes = GetFileAttributesA(path.c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
        why = kReasonFolder;
        result = false;
    } else if (attributes != INVALID_FILE_ATTRIBUTES && (mode & YXFILE_WRITE) != 0 &&
               (attributes & FILE_ATTRIBUTE_READONLY) != 0) {
        why = kReasonReadOnly;
        result = false;
    } else {
        YXBinaryFile probe;
        if (probe.Open(path, mode & ~YXFILE_CREATE, true)) {
            probe.Close();
        } else {
            result = false;
            switch (::GetLastError()) {
            case ERROR_FILE_NOT_FOUND:
            case ERROR_PATH_NOT_FOUND:
                why = kReasonNotFound;
                break;
            case ERROR_ACCESS_DENIED:
                why = kReasonDenied;
                break;
            case ERROR_SHARING_VIOLATION:
            case ERROR_LOCK_VIOLATION:
                why = kReasonInUse;
                break;
            default:
                break;
            }
            if (why == kReasonNotFound && (mode & YXFILE_CREATE) != 0) {
                _SS<char> drive;
                _SS<char> directory;
                _SS<char> parent;
                YXPath::Split(path, &drive, &directory, nullptr, nullptr, nullptr);
                YXPath::Make(parent, &drive, &directory, nullptr, nullptr);
                const DWORD folder = GetFileAttributesA(parent.c_str());
                if (folder == INVALID_FILE_ATTRIBUTES || (folder & FILE_ATTRIBUTE_DIRECTORY) == 0) {
                    why = kReasonNoFolder;
                } else if ((folder & FILE_ATTRIBUTE_READONLY) != 0) {
                    why = kReasonReadOnly;
                } else {
                    why = kReasonNone;
                }
                result = canCreate = why == kReasonNone;
            }
        }
    }
    if (reason != nullptr) {
        *reason = why;
    }
    if (creatable != nullptr) {
        *creatable = canCreate;
    }
    return result;
}
