/// @file
/// Files: the file object YXBinaryFile, the File_ functions over single files, and the directory
/// walk YXFilesFinder.
///
/// Paths are byte strings in the ANSI code page, as Win32's `A` calls take them. On POSIX every
/// path goes through one resolver with Win32's rules: `X:\` is the folder that the link
/// `<prefix>/dosdevices/<letter>:` leads to (prefix `$YXTOOLS_PREFIX`, else
/// `$XDG_DATA_HOME/yxtools`, else `~/.local/share/yxtools`), `\\server\share\...` is
/// `<prefix>/dosdevices/unc/<server>/<share>/...`, names match without regard to case, `..` stops
/// at the root of the drive, and reserved names, reserved characters and paths of 260 bytes or
/// more are refused with Win32's codes, creating nothing. Share modes hold between the handles of
/// all processes. A FIFO, socket or device file is never opened (access denied).
#ifndef YXTOOLS_FILES_H
#define YXTOOLS_FILES_H

#include <cstdint>

#include "yxtools/config.h"
#include "yxtools/ss.h"

/// @name Mode word of YXBinaryFile and File_IsOpenable
/// Bits of the mode word. Other bits (0x20, and those above 0x40) mean nothing.
/// @{
constexpr unsigned long YXFILE_READ = 0x01;       ///< read access
constexpr unsigned long YXFILE_WRITE = 0x02;      ///< write access
constexpr unsigned long YXFILE_DENY_READ = 0x04;  ///< others may write only; outranks YXFILE_DENY_WRITE
constexpr unsigned long YXFILE_DENY_WRITE = 0x08; ///< others may read only
constexpr unsigned long YXFILE_DENY_ALL = 0x10;   ///< others may do nothing; outranks the two above
constexpr unsigned long YXFILE_CREATE = 0x40; ///< Open creates what it cannot open; IsOpenable asks whether it could
/// @}

/// One platform file handle, with the library's mode word and error codes.
///
/// Failures are results; the object keeps a sticky code of its own, read with GetLastError:
/// 0 none, 1 not opened, 2 not created, 3 no file open, 4 read refused, 5 write refused,
/// 6 close refused, 7 move refused, 8 end of file not set. Only a successful Create or Open and
/// GetLastError(true) put it back to 0; other successful calls leave an earlier code standing.
///
/// Positions keep a 32-bit ceiling on both builds: GetLength gives the low 32 bits of the size,
/// and a seek with an offset below 0x7FFFFFFF (every negative one included) gives the low 32 bits
/// of the new position; a seek with a larger offset gives the whole 64-bit position.
///
/// Copies are shallow: copy and source hold one handle with one file position, an assignment does
/// not close the target's file, and the caller sees that the handle is closed once.
class YXTOOLS_API YXBinaryFile {
public:
    /// A closed object with error code 0.
    YXBinaryFile();
    /// Starts closed with code 0, then calls Open(path, mode, false) and drops its result: look at
    /// IsOpen and GetLastError.
    YXBinaryFile(const _SS<char>& path, unsigned long mode);
    /// Copies the error code and the handle (no second handle is made).
    YXBinaryFile(const YXBinaryFile& other);
    /// Copies the error code and the handle; the file the target held is not closed.
    YXBinaryFile& operator=(const YXBinaryFile& other);
    /// Closes the file as Close does, if one is open.
    virtual ~YXBinaryFile();

    /// Makes a new file or empties an existing one, closing the object's open file first.
    /// @p mode gives access and sharing (YXFILE_CREATE plays no part); @p sequential picks the
    /// sequential-scan hint, else the random-access one. True and code 0 with the file open; false
    /// and code 2, closed, when the platform refused.
    bool Create(const _SS<char>& path, unsigned long mode, bool sequential);
    /// Opens an existing file, closing the object's open file first. With YXFILE_CREATE in
    /// @p mode, any failure to open is followed by one attempt to create the file. True and code 0
    /// with the file open; false, closed, with code 1 (not opened) or 2 (the creating attempt
    /// failed). A failed Open on an open object loses the old file as well.
    bool Open(const _SS<char>& path, unsigned long mode, bool sequential);
    /// Closes the file: true. False with code 3 when no file is open; false with code 6, still
    /// open, when the platform refused.
    bool Close();
    /// Reads up to @p count bytes at the position: the byte count the platform reports, also when
    /// it refuses (code 4). A short count without a code is the end of the file. 0 and code 3
    /// when closed.
    long Read(void* buffer, long count);
    /// Writes @p count bytes at the position: the byte count the platform reports, also when it
    /// refuses (code 5). 0 and code 3 when closed.
    long Write(const void* buffer, long count);
    /// Moves to @p offset from the start: the new position, or -1 with code 7 when the platform
    /// refused (a position before the start, for one) and -1 with code 3 when closed.
    std::int64_t SeekFromBegin(std::int64_t offset);
    /// Moves by @p offset from the position, as SeekFromBegin. An offset below -2147483648 must
    /// not be passed.
    std::int64_t SeekFromCurrent(std::int64_t offset);
    /// Moves to @p offset from the end, as SeekFromBegin.
    std::int64_t SeekFromEnd(std::int64_t offset);
    /// The low 32 bits of the file's size; 0 and code 3 when closed. A platform failure is not
    /// recorded.
    unsigned long GetLength();
    /// Cuts the file at the position: true; false with code 8 on refusal, code 3 when closed.
    bool Truncate();
    /// Hands the platform's buffers to the disk: true when the platform agrees. A closed object
    /// gives false; no code is set either way.
    bool Flush();
    /// Whether the position is at or past the end (an empty file: true). False with code 3 when
    /// closed, false with code 7 when the position cannot be read. The position does not move.
    bool IsEof();
    /// True when a file is open.
    bool IsOpen() const;
    /// The platform handle of the open file, null when closed.
    void* GetHandle() const;
    /// The error code; clears nothing.
    unsigned long GetLastError() const;
    /// The error code; with @p clear true it is then set to 0.
    unsigned long GetLastError(bool clear);

    /// Whether @p path could be opened in @p mode or, with YXFILE_CREATE, created, without
    /// creating, emptying or changing anything.
    ///
    /// True either when the file exists and opens in that mode (@p creatable false), or when it is
    /// missing, YXFILE_CREATE was asked for and its folder is a writable folder (@p creatable
    /// true). Reasons written to @p reason: 0 nothing against it (or a failure not listed, with
    /// result false), 1 not found, 3 read-only (write access to a read-only file, or creation in a
    /// read-only folder), 4 access denied, 5 a folder, 6 in use, 7 no folder to create it in.
    /// Either out-argument may be null.
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

/// @name Mode bits of File_GetMod, File_ChMod and File_Access
/// The runtime's `st_mode` bits, passed through as they are.
/// @{
constexpr int YXFILE_MODE_DIRECTORY = 0x4000; ///< the path names a directory
constexpr int YXFILE_MODE_READ = 0x0100;      ///< reading is allowed
constexpr int YXFILE_MODE_WRITE = 0x0080;     ///< writing is allowed (clear: read-only)
constexpr int YXFILE_MODE_EXEC = 0x0040;      ///< execution is allowed
/// @}

/// True when the path exists (a directory counts).
YXTOOLS_API bool File_Exist(const _SS<char>& path);
/// The runtime's mode bits of the path (YXFILE_MODE_ bits); 0 when it cannot be examined.
YXTOOLS_API unsigned short File_GetMod(const _SS<char>& path);
/// Sets the permission bits (YXFILE_MODE_READ, YXFILE_MODE_WRITE). True on success; @p error,
/// when not null, receives 0 or the runtime's errno.
YXTOOLS_API bool File_ChMod(const _SS<char>& path, int mode, int* error);
/// Whether the path allows what @p flags asks, tested in the order YXFILE_MODE_WRITE,
/// YXFILE_MODE_READ, YXFILE_MODE_EXEC; flags 0 only asks whether the path can be examined. False
/// with errno in @p error (when not null) when the path cannot be examined; on a refused flag
/// @p error gets errno as it stands, which is no particular value.
YXTOOLS_API bool File_Access(const _SS<char>& path, int flags, int* error);
/// True for an existing directory; false for anything else, a missing path included.
YXTOOLS_API bool File_IsDirectory(const _SS<char>& path);
/// True when the path's write bit is clear. A path that cannot be examined answers false.
YXTOOLS_API bool File_IsFileReadOnly(const _SS<char>& path);
/// Whether no file can be created where the path points, found by creating and deleting the probe
/// file "$$$$$$$$.$$$" in the path's drive and directory (a name at the end plays no part, the
/// directory being found character by character in the ANSI code page). Any failure to create the
/// probe, a missing directory included, answers true. Also true, creating nothing, when the
/// directory does not fit 256 bytes or the probe's path does not fit 259 bytes.
YXTOOLS_API bool File_IsDriveReadOnly(const _SS<char>& path);
/// YXBinaryFile::IsOpenable with the first three arguments; @p unused is not read.
YXTOOLS_API bool File_IsOpenable(const _SS<char>& path, unsigned long mode, unsigned short* reason,
                                 unsigned long unused = 0);
/// Replaces the extension of @p path in place: Split, then Make with the drive, directory and
/// name and the new @p extension (a leading dot is added when missing; null drops the extension).
/// The directory part always comes back closed by `\`: `map.txt` with `.bak` gives `\map.bak`.
YXTOOLS_API void File_ChangeFileExtension(_SS<char>& path, const _SS<char>* extension);
/// Deletes a file: true when the runtime's remove succeeds.
YXTOOLS_API bool File_DeleteFile(const _SS<char>& path);
/// Copies a file by path, overwriting an existing target: true on success.
YXTOOLS_API bool File_CopyFile(const _SS<char>& from, const _SS<char>& to);
/// Copies the whole file of @p from into a new file at @p to (an existing one is recreated). On
/// a failed copy the target is removed, so a file that stood there is lost. False when @p from is
/// closed or empty. The position of @p from comes back where it was.
YXTOOLS_API bool File_CopyFile(const YXBinaryFile& from, const _SS<char>& to);
/// Copies the whole file of @p from to @p to at its current position, in chunks of at most
/// 5 MiB, then closes @p to whatever the result. False, changing nothing, when either is closed or
/// @p from is empty; false after a short read or write (the objects keep their codes). The
/// position of @p from comes back where it was. Sizes are 32-bit: files below 4 GiB.
YXTOOLS_API bool File_CopyFile(const YXBinaryFile& from, YXBinaryFile& to);
/// Renames or moves a file: true when the runtime's rename succeeds.
YXTOOLS_API bool File_RenameFile(const _SS<char>& from, const _SS<char>& to);
/// Creates an empty file of a unique name in @p directory, starting with @p prefix, and gives
/// its path in @p result. The file stays for the caller. False, creating nothing, for an empty
/// directory; false, @p result unchanged, when the platform refuses.
YXTOOLS_API bool File_GetTemp(_SS<char>& result, const _SS<char>& directory, const _SS<char>& prefix);

/// The entries of one folder that match a pattern, as whole paths, in the platform's order.
///
/// The search string is the folder directly followed by the pattern, so the folder should end in
/// `\` (or the pattern start with one); each result is the folder, closed by `\` when it lacked
/// one, followed by the entry's name. Every entry comes back, `.`, `..` and subdirectories
/// included; nothing is filtered and no subdirectory is entered.
///
/// A copied or assigned finder does not share the source's running search: it starts its own at
/// its first GetNextFile, and an assignment closes the search the target ran. Each search is
/// closed once, by its owner.
class YXTOOLS_API YXFilesFinder {
public:
    /// Keeps the folder and the pattern; the search starts at the first GetNextFile.
    YXFilesFinder(const _SS<char>& folder, const _SS<char>& pattern);
    /// Same folder and pattern, with a search of its own.
    YXFilesFinder(const YXFilesFinder& other);
    /// Closes the target's search; same folder and pattern, with a search of its own.
    YXFilesFinder& operator=(const YXFilesFinder& other);
    /// Closes the search, if one was started.
    ~YXFilesFinder();

    /// True with the next entry's path in @p file; false, @p file unchanged, when the folder is
    /// missing, nothing matches or the entries have run out. Before a search has started each
    /// call tries afresh, so an entry created later is found.
    bool GetNextFile(_SS<char>& file);

private:
    void* m_hFind;
    _SS<char> m_strPattern;
    _SS<char> m_strFolder;
};

#endif
