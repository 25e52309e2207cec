// Files: YXBinaryFile, the File_ functions and YXFilesFinder.
#ifndef YXTOOLS_FILES_H
#define YXTOOLS_FILES_H

#include <cstdint>

#include "yxtools/config.h"
#include "yxtools/ss.h"

// Bits of the mode word of YXBinaryFile and File_IsOpenable. Other bits mean nothing.
constexpr unsigned long YXFILE_READ = 0x01;
constexpr unsigned long YXFILE_WRITE = 0x02;
constexpr unsigned long YXFILE_DENY_READ = 0x04;  // others may write only
constexpr unsigned long YXFILE_DENY_WRITE = 0x08; // others may read only
constexpr unsigned long YXFILE_DENY_ALL = 0x10;   // outranks the two above
constexpr unsigned long YXFILE_CREATE = 0x40;     // Open creates what it cannot open

// One platform file handle. Failures are results; the object keeps a sticky code of its own:
// 0 none, 1 not opened, 2 not created, 3 no file open, 4 read refused, 5 write refused,
// 6 close refused, 7 move refused, 8 end of file not set. Copies are shallow: copy and source
// hold one handle, and the caller sees that it is closed once.
class YXTOOLS_API YXBinaryFile {
public:
    YXBinaryFile();
    YXBinaryFile(const _SS<char>& path, unsigned long mode);
    YXBinaryFile(const YXBinaryFile& other);
    YXBinaryFile& operator=(const YXBinaryFile& other);
    virtual ~YXBinaryFile();

    bool Create(const _SS<char>& path, unsigned long mode, bool sequential);
    bool Open(const _SS<char>& path, unsigned long mode, bool sequential);
    bool Close();
    long Read(void* buffer, long count);
    long Write(const void* buffer, long count);
    std::int64_t SeekFromBegin(std::int64_t offset);
    std::int64_t SeekFromCurrent(std::int64_t offset);
    std::int64_t SeekFromEnd(std::int64_t offset);
    unsigned long GetLength();
    bool Truncate();
    bool Flush();
    bool IsEof();
    bool IsOpen() const;
    void* GetHandle() const;
    unsigned long GetLastError() const;
    unsigned long GetLastError(bool clear);

    // Whether path could be opened in mode (or, with YXFILE_CREATE, created), without creating
    // or changing anything. Reasons: 0 nothing against it, 1 not found, 3 read-only, 4 access
    // denied, 5 a folder, 6 in use, 7 no folder to create it in.
    static bool IsOpenable(const _SS<char>& path, unsigned long mode, unsigned short* reason, bool* creatable);

private:
    static unsigned long GetCFAccess(unsigned long mode);
    static unsigned long GetCFShareMode(unsigned long mode);
    std::int64_t SetFilePointerInternal(std::int64_t offset, unsigned long method);
    std::int64_t Seek(std::int64_t offset, unsigned long method);
    void SetLastError(unsigned long code);
    bool OpenHandle(const _SS<char>& path, unsigned long mode, bool sequential, bool create);
    void CloseBeforeReopen();

    unsigned long m_dwLastError;
    void* m_hFile;

    friend YXTOOLS_API bool File_CopyFile(const YXBinaryFile& from, const _SS<char>& to);
};

// Mode bits of File_GetMod and File_ChMod, as the runtime has them.
constexpr int YXFILE_MODE_DIRECTORY = 0x4000;
constexpr int YXFILE_MODE_READ = 0x0100;
constexpr int YXFILE_MODE_WRITE = 0x0080;
constexpr int YXFILE_MODE_EXEC = 0x0040;

YXTOOLS_API bool File_Exist(const _SS<char>& path);
YXTOOLS_API unsigned short File_GetMod(const _SS<char>& path);
YXTOOLS_API bool File_ChMod(const _SS<char>& path, int mode, int* error);
YXTOOLS_API bool File_Access(const _SS<char>& path, int flags, int* error);
YXTOOLS_API bool File_IsDirectory(const _SS<char>& path);
YXTOOLS_API bool File_IsFileReadOnly(const _SS<char>& path);
YXTOOLS_API bool File_IsDriveReadOnly(const _SS<char>& path);
YXTOOLS_API bool File_IsOpenable(const _SS<char>& path, unsigned long mode, unsigned short* reason,
                                 unsigned long unused = 0);
YXTOOLS_API void File_ChangeFileExtension(_SS<char>& path, const _SS<char>* extension);
YXTOOLS_API bool File_DeleteFile(const _SS<char>& path);
YXTOOLS_API bool File_CopyFile(const _SS<char>& from, const _SS<char>& to);
YXTOOLS_API bool File_CopyFile(const YXBinaryFile& from, const _SS<char>& to);
YXTOOLS_API bool File_CopyFile(const YXBinaryFile& from, YXBinaryFile& to);
YXTOOLS_API bool File_RenameFile(const _SS<char>& from, const _SS<char>& to);
YXTOOLS_API bool File_GetTemp(_SS<char>& result, const _SS<char>& directory, const _SS<char>& prefix);

// The entries of one folder that match a pattern, as whole paths, in the platform's order.
class YXTOOLS_API YXFilesFinder {
public:
    YXFilesFinder(const _SS<char>& folder, const _SS<char>& pattern);
    YXFilesFinder(const YXFilesFinder& other);
    YXFilesFinder& operator=(const YXFilesFinder& other);
    ~YXFilesFinder();

    bool GetNextFile(_SS<char>& file);

private:
    void* m_hFind;
    _SS<char> m_strPattern;
    _SS<char> m_strFolder;
};

#endif
