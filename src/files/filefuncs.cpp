// The File_ functions: single questions about a file and single file operations.
#include <cerrno>
#include <cstdlib>
#include <cstring>

#include <yxtools/files.h>
#include <yxtools/path.h>

#include "platform/win32.h"

namespace {

// The runtime's record and call under one name on both builds.
bool StatMode(const _SS<char>& path, unsigned short& mode)
{
    struct _stat st;
    std::memset(&st, 0, sizeof(st));
    if (_stat(path.c_str(), &st) != 0) {
        return false;
    }
    mode = static_cast<unsigned short>(st.st_mode);
    return true;
}

constexpr unsigned long kChunk = 0x500000;

// The length of a path's part up to and including its last separator, read character by character
// in the ANSI code page: the trail byte of a double-byte character is never a separator, even when
// it is 0x5C or 0x2F.
std::size_t DirectoryEnd(const char* path)
{
    std::size_t end = 0;
    for (std::size_t i = 0; path[i] != '\0'; ++i) {
        if (path[i] == '\\' || path[i] == '/') {
            end = i + 1;
        } else if (IsDBCSLeadByte(static_cast<BYTE>(path[i])) != FALSE && path[i + 1] != '\0') {
            ++i;
        }
    }
    return end;
}

} // namespace

bool File_Exist(const _SS<char>& path)
{
    return _access(path.c_str(), 0) == 0;
}

unsigned short File_GetMod(const _SS<char>& path)
{
    unsigned short mode = 0;
    return StatMode(path, mode) ? mode : 0;
}

bool File_ChMod(const _SS<char>& path, int mode, int* error)
{
    const bool done = _chmod(path.c_str(), mode) == 0;
    if (error != nullptr) {
        *error = done ? 0 : errno;
    }
    return done;
}

bool File_Access(const _SS<char>& path, int flags, int* error)
{
    unsigned short mode = 0;
    if (!StatMode(path, mode)) {
        if (error != nullptr) {
            *error = errno;
        }
        return false;
    }
    bool answer = true;
    for (const int bit : {_S_IWRITE, _S_IREAD, _S_IEXEC}) {
        if ((flags & bit) != 0 && (mode & bit) == 0) {
            answer = false;
            break;
        }
    }
    if (error != nullptr) {
        *error = answer ? 0 : errno;
    }
    return answer;
}

bool File_IsDirectory(const _SS<char>& path)
{
    unsigned short mode = 0;
    return StatMode(path, mode) && (mode & _S_IFDIR) != 0;
}

// A path that cannot be examined is not a read-only file: there is nothing there to protect
// from writing, and a caller about to create it should go ahead.
bool File_IsFileReadOnly(const _SS<char>& path)
{
    unsigned short mode = 0;
    return StatMode(path, mode) && (mode & _S_IWRITE) == 0;
}

bool File_IsDriveReadOnly(const _SS<char>& path)
{
    char drive[3] = {};
    char directory[256] = {};
    char probe[260] = {};
    static const char kName[] = "$$$$$$$$";
    static const char kExtension[] = ".$$$";
    // Only the drive and the directory go to the split: a name at the end of the path plays no
    // part, whatever its length and whatever double-byte characters it holds.
    const char* text = path.c_str();
    const std::size_t driveLength = text[0] != '\0' && text[1] == ':' ? 2 : 0;
    const std::size_t directoryEnd = DirectoryEnd(text);
    // A directory that does not fit the runtime's 256-byte buffer, or a probe path that does not
    // fit in 259 bytes, is answered as read-only without touching anything: no file can be made
    // there by this probe.
    if (directoryEnd > driveLength && directoryEnd - driveLength >= sizeof(directory)) {
        return true;
    }
    const _SS<char> head(text, directoryEnd > driveLength ? directoryEnd : driveLength);
    _splitpath(head.c_str(), drive, directory, nullptr, nullptr);
    if (std::strlen(drive) + std::strlen(directory) + sizeof(kName) - 1 + sizeof(kExtension) - 1 >= sizeof(probe)) {
        return true;
    }
    _makepath(probe, drive, directory, kName, kExtension);
    HANDLE file = CreateFileA(probe, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                              CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL | FILE_FLAG_RANDOM_ACCESS, nullptr);
    if (file == INVALID_HANDLE_VALUE || file == nullptr) {
        return true;
    }
    const bool closed = CloseHandle(file) != FALSE;
    crt::remove(probe);
    if (!closed) {
        CloseHandle(file);
    }
    return false;
}

bool File_IsOpenable(const _SS<char>& path, unsigned long mode, unsigned short* reason, unsigned long /*unused*/)
{
    return YXBinaryFile::IsOpenable(path, mode, reason, nullptr);
}

void File_ChangeFileExtension(_SS<char>& path, const _SS<char>* extension)
{
    const _SS<char> copy(path);
    _SS<char> drive;
    _SS<char> directory;
    _SS<char> name;
    YXPath::Split(copy, &drive, &directory, &name, nullptr, nullptr);
    YXPath::Make(path, &drive, &directory, &name, extension);
}

bool File_DeleteFile(const _SS<char>& path)
{
    return crt::remove(path.c_str()) == 0;
}

bool File_CopyFile(const _SS<char>& from, const _SS<char>& to)
{
    return CopyFileA(from.c_str(), to.c_str(), FALSE) != FALSE;
}

bool File_CopyFile(const YXBinaryFile& from, YXBinaryFile& to)
{
    if (!from.IsOpen() || !to.IsOpen()) {
        return false;
    }
    const DWORD size = GetFileSize(from.GetHandle(), nullptr);
    if (size == 0) {
        return false;
    }
    const unsigned long chunk = size < kChunk ? size : kChunk;
    // The source is const to the caller, and its position moves all the same: it is put back.
    YXBinaryFile& source = const_cast<YXBinaryFile&>(from);
    const auto remembered = static_cast<std::uint32_t>(source.SeekFromCurrent(0));
    source.SeekFromBegin(0);
    bool result = false;
    void* buffer = std::realloc(nullptr, chunk);
    if (buffer != nullptr) {
        result = true;
        for (unsigned long remaining = size; remaining > 0;) {
            const long want = static_cast<long>(remaining < chunk ? remaining : chunk);
            if (source.Read(buffer, want) != want || to.Write(buffer, want) != want) {
                result = false;
                break;
            }
            remaining -= static_cast<unsigned long>(want);
        }
    }
    source.SeekFromBegin(remembered);
    to.Close();
    std::free(buffer);
    return result;
}

bool File_CopyFile(const YXBinaryFile& from, const _SS<char>& to)
{
    HANDLE target = CreateFileA(to.c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL | FILE_FLAG_RANDOM_ACCESS, nullptr);
    if (target == INVALID_HANDLE_VALUE) {
        return false;
    }
    YXBinaryFile local;
    local.m_hFile = target;
    const bool copied = File_CopyFile(from, local);
    if (local.IsOpen()) {
        local.Close();
    }
    if (!copied) {
        crt::remove(to.c_str());
    }
    return copied;
}

bool File_RenameFile(const _SS<char>& from, const _SS<char>& to)
{
    return crt::rename(from.c_str(), to.c_str()) == 0;
}

bool File_GetTemp(_SS<char>& result, const _SS<char>& directory, const _SS<char>& prefix)
{
    if (directory.empty()) {
        return false;
    }
    char buffer[260] = {};
    if (GetTempFileNameA(directory.c_str(), prefix.c_str(), 0, buffer) == 0) {
        return false;
    }
    result = buffer;
    return true;
}
