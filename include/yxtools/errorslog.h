// The error log: a short in-memory list of a host's latest errors, with a change notification.
// The library never adds to it by itself. The YXErrorsLog_ functions take a null manager for the
// process-wide default log.
#ifndef YXTOOLS_ERRORSLOG_H
#define YXTOOLS_ERRORSLOG_H

#include <cstdint>
#include <list>

#include "yxtools/config.h"
#include "yxtools/ss.h"

// One record. The low three bits of the flags word are a kind (1, 2 or 4, at most one of them);
// the other 29 bits are the caller's and are kept as given.
class YXTOOLS_API YXErrorLogEntry {
public:
    // Keeps all upper bits and, of the low three, only the lowest one set.
    YXErrorLogEntry(const _SS<char>& source, const _SS<char>& description, unsigned long flags);
    // Copies take the flags word as it stands.
    YXErrorLogEntry(const YXErrorLogEntry& other);
    YXErrorLogEntry& operator=(const YXErrorLogEntry& other);
    ~YXErrorLogEntry();

    const _SS<char>& GetSource() const;
    const _SS<char>& GetDescription() const;
    unsigned long GetFlags() const;

private:
    _SS<char> m_strSource;
    _SS<char> m_strDescription;
    std::uint32_t m_dwFlags;
};

class YXErrorsLogManager;

// Called after each change of a log, on the thread that made it.
typedef void (*YXErrorsLogOnChangeProc)(YXErrorsLogManager& manager);

class YXTOOLS_API YXErrorsLogManager {
public:
    // The maximum is stored as given, in 32 bits: where unsigned long is wider, only its low 32
    // bits count. See Add for a maximum of 0.
    explicit YXErrorsLogManager(unsigned long maxEntries = 5);
    // Deep copies, change procedure included; neither notifies.
    YXErrorsLogManager(const YXErrorsLogManager& other);
    YXErrorsLogManager& operator=(const YXErrorsLogManager& other);
    ~YXErrorsLogManager();

    // Removes every entry and notifies, also when the log was empty.
    void Clear();
    // Takes a name and changes nothing: the log lives in memory only.
    void SetLogFileName(const _SS<char>& name);
    // Always empty.
    const _SS<char>& GetLogFilePath() const;
    // 0 is ignored (taken in 32 bits, as in the constructor); otherwise evicts the oldest entries
    // down to the new maximum, without notice.
    void SetMaxEntries(unsigned long maxEntries);
    unsigned long GetCount() const;
    // Appends an entry and notifies; false, with nothing changed, when both texts equal the
    // newest entry's. A full log first evicts its oldest entry.
    bool Add(const _SS<char>& source, const _SS<char>& description, unsigned long flags);
    // The newest entry, null when the log is empty.
    const YXErrorLogEntry* GetLast() const;
    // Index 0 is the newest entry; null when the index is not below the count.
    const YXErrorLogEntry* GetItem(unsigned long index) const;
    // Null switches notification off. Does not notify.
    void SetOnChangeProc(YXErrorsLogOnChangeProc proc);

private:
    void NotifyChanged();

    std::uint32_t m_dwMaxEntries;
    _SS<char> m_strLogFilePath;
    std::list<YXErrorLogEntry> m_Entries; // oldest at the front, newest at the back
    YXErrorsLogOnChangeProc m_pfnOnChange;
};

// The process-wide default log.
YXTOOLS_API YXErrorsLogManager& YXErrorsLog_GetDefault();
YXTOOLS_API void YXErrorsLog_SetOnChangeProc(YXErrorsLogOnChangeProc proc, YXErrorsLogManager* pManager = nullptr);
YXTOOLS_API void YXErrorsLog_Clear(YXErrorsLogManager* pManager = nullptr);
YXTOOLS_API bool YXErrorsLog_Add(const _SS<char>& source, const _SS<char>& description, unsigned long flags,
                                 YXErrorsLogManager* pManager = nullptr);
YXTOOLS_API void YXErrorsLog_GetFilePath(_SS<char>& path, YXErrorsLogManager* pManager = nullptr);
YXTOOLS_API unsigned long YXErrorsLog_GetCount(YXErrorsLogManager* pManager = nullptr);
// On false the output arguments are left as they were.
YXTOOLS_API bool YXErrorsLog_GetLast(_SS<char>& source, _SS<char>& description, unsigned long* pFlags = nullptr,
                                     YXErrorsLogManager* pManager = nullptr);
YXTOOLS_API bool YXErrorsLog_GetItemAt(unsigned long index, _SS<char>& source, _SS<char>& description,
                                       unsigned long* pFlags = nullptr, YXErrorsLogManager* pManager = nullptr);
YXTOOLS_API void YXErrorsLog_SetMaxEntries(unsigned long maxEntries, YXErrorsLogManager* pManager = nullptr);

#endif
