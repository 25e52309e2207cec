/// @file
/// The error log: a short in-memory list of a host's latest errors, with a change notification.
/// The library never adds to it by itself and it writes no file. The YXErrorsLog_ functions take a
/// null manager for the process-wide default log; called while that log is absent (after
/// YXTools_Close) they create it afresh and empty, and the next close releases it.
#ifndef YXTOOLS_ERRORSLOG_H
#define YXTOOLS_ERRORSLOG_H

#include <cstdint>
#include <list>

#include "yxtools/config.h"
#include "yxtools/ss.h"

/// One record. The low three bits of the flags word are a kind (1, 2 or 4, at most one of them);
/// the other 29 bits are the caller's and are kept as given.
class YXTOOLS_API YXErrorLogEntry {
public:
    /// Keeps all upper bits and, of the low three, only the lowest one set.
    YXErrorLogEntry(const _SS<char>& source, const _SS<char>& description, unsigned long flags);
    /// Copies take the flags word as it stands.
    YXErrorLogEntry(const YXErrorLogEntry& other);
    /// Copies both texts and takes the flags word as it stands.
    YXErrorLogEntry& operator=(const YXErrorLogEntry& other);
    ~YXErrorLogEntry();

    /// Who reported the error.
    const _SS<char>& GetSource() const;
    /// What went wrong.
    const _SS<char>& GetDescription() const;
    /// The flags word, kind normalised.
    unsigned long GetFlags() const;

private:
    _SS<char> m_strSource;
    _SS<char> m_strDescription;
    std::uint32_t m_dwFlags;
};

class YXErrorsLogManager;

/// A change procedure: called after each change of a log, on the thread that made it, with the
/// log that changed.
typedef void (*YXErrorsLogOnChangeProc)(YXErrorsLogManager& manager);

/// A log of at most a maximum of entries, oldest evicted first, with an optional change procedure.
/// Entries handed out by GetLast and GetItem stay valid until they are evicted, the log is cleared,
/// assigned to or destroyed.
class YXTOOLS_API YXErrorsLogManager {
public:
    /// The maximum is stored as given, in 32 bits: where unsigned long is wider, only its low 32
    /// bits count. A maximum of 0 keeps one entry, as a maximum of 1 does.
    explicit YXErrorsLogManager(unsigned long maxEntries = 5);
    /// Deep copies, change procedure included; neither notifies.
    YXErrorsLogManager(const YXErrorsLogManager& other);
    /// Deep copy as the copy constructor; self-assignment changes nothing.
    YXErrorsLogManager& operator=(const YXErrorsLogManager& other);
    /// Destroys the entries without notice.
    ~YXErrorsLogManager();

    /// Removes every entry and notifies, also when the log was empty.
    void Clear();
    /// Takes a name and changes nothing: the log lives in memory only.
    void SetLogFileName(const _SS<char>& name);
    /// Always empty.
    const _SS<char>& GetLogFilePath() const;
    /// 0 is ignored (taken in 32 bits, as in the constructor); otherwise evicts the oldest entries
    /// down to the new maximum, without notice.
    void SetMaxEntries(unsigned long maxEntries);
    /// The number of entries.
    unsigned long GetCount() const;
    /// Appends an entry and notifies; false, with nothing changed, when both texts equal the
    /// newest entry's. A full log first evicts its oldest entry; the texts may be those of the
    /// entry it evicts.
    bool Add(const _SS<char>& source, const _SS<char>& description, unsigned long flags);
    /// The newest entry, null when the log is empty.
    const YXErrorLogEntry* GetLast() const;
    /// Index 0 is the newest entry; null when the index is not below the count.
    const YXErrorLogEntry* GetItem(unsigned long index) const;
    /// Null switches notification off. Does not notify.
    void SetOnChangeProc(YXErrorsLogOnChangeProc proc);

private:
    void NotifyChanged();

    std::uint32_t m_dwMaxEntries;
    _SS<char> m_strLogFilePath;
    std::list<YXErrorLogEntry> m_Entries; ///< oldest at the front, newest at the back
    YXErrorsLogOnChangeProc m_pfnOnChange;
};

/// The process-wide default log (made at load and by YXTools_Init).
YXTOOLS_API YXErrorsLogManager& YXErrorsLog_GetDefault();
/// YXErrorsLogManager::SetOnChangeProc on @p pManager, or on the default log when it is null.
YXTOOLS_API void YXErrorsLog_SetOnChangeProc(YXErrorsLogOnChangeProc proc, YXErrorsLogManager* pManager = nullptr);
/// YXErrorsLogManager::Clear on @p pManager, or on the default log when it is null.
YXTOOLS_API void YXErrorsLog_Clear(YXErrorsLogManager* pManager = nullptr);
/// YXErrorsLogManager::Add on @p pManager, or on the default log when it is null.
YXTOOLS_API bool YXErrorsLog_Add(const _SS<char>& source, const _SS<char>& description, unsigned long flags,
                                 YXErrorsLogManager* pManager = nullptr);
/// The log file path of the log (always empty) into @p path.
YXTOOLS_API void YXErrorsLog_GetFilePath(_SS<char>& path, YXErrorsLogManager* pManager = nullptr);
/// The number of entries of the log.
YXTOOLS_API unsigned long YXErrorsLog_GetCount(YXErrorsLogManager* pManager = nullptr);
/// The newest entry's texts and, when @p pFlags is not null, flags: true. False on an empty log,
/// with the output arguments left as they were.
YXTOOLS_API bool YXErrorsLog_GetLast(_SS<char>& source, _SS<char>& description, unsigned long* pFlags = nullptr,
                                     YXErrorsLogManager* pManager = nullptr);
/// The entry at @p index (0 the newest) as YXErrorsLog_GetLast gives it; false, outputs unchanged,
/// when the index is not below the count.
YXTOOLS_API bool YXErrorsLog_GetItemAt(unsigned long index, _SS<char>& source, _SS<char>& description,
                                       unsigned long* pFlags = nullptr, YXErrorsLogManager* pManager = nullptr);
/// YXErrorsLogManager::SetMaxEntries on the log.
YXTOOLS_API void YXErrorsLog_SetMaxEntries(unsigned long maxEntries, YXErrorsLogManager* pManager = nullptr);

#endif
