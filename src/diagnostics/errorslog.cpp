#include <new>

#include "diagnostics/errorslog_internal.h"
#include "yxtools/errorslog.h"

namespace {

constexpr std::uint32_t kKindBits = 7;
constexpr unsigned long kDefaultMaxEntries = 5;

YXErrorsLogManager* g_pDefaultLog = nullptr;

// Of the three kind bits only the lowest one set stays; the upper 29 bits are the caller's.
std::uint32_t NormaliseFlags(unsigned long flags)
{
    const auto word = static_cast<std::uint32_t>(flags);
    const std::uint32_t kind = word & kKindBits;
    return (word & ~kKindBits) | (kind & (~kind + 1));
}

YXErrorsLogManager& LogOf(YXErrorsLogManager* pManager)
{
    return pManager != nullptr ? *pManager : YXErrorsLog_GetDefault();
}

void CopyOut(const YXErrorLogEntry& entry, _SS<char>& source, _SS<char>& description, unsigned long* pFlags)
{
    source = entry.GetSource();
    description = entry.GetDescription();
    if (pFlags != nullptr) {
        *pFlags = entry.GetFlags();
    }
}

} // namespace

// --- YXErrorLogEntry -----------------------------------------------------------------------------

YXErrorLogEntry::YXErrorLogEntry(const _SS<char>& source, const _SS<char>& description, unsigned long flags)
    : m_strSource(source), m_strDescription(description), m_dwFlags(NormaliseFlags(flags))
{}

YXErrorLogEntry::YXErrorLogEntry(const YXErrorLogEntry& other) = default;
YXErrorLogEntry& YXErrorLogEntry::operator=(const YXErrorLogEntry& other) = default;
YXErrorLogEntry::~YXErrorLogEntry() = default;

const _SS<char>& YXErrorLogEntry::GetSource() const
{
    return m_strSource;
}

const _SS<char>& YXErrorLogEntry::GetDescription() const
{
    return m_strDescription;
}

unsigned long YXErrorLogEntry::GetFlags() const
{
    return m_dwFlags;
}

// --- YXErrorsLogManager --------------------------------------------------------------------------

YXErrorsLogManager::YXErrorsLogManager(unsigned long maxEntries)
    : m_dwMaxEntries(static_cast<std::uint32_t>(maxEntries)), m_pfnOnChange(nullptr)
{}

YXErrorsLogManager::YXErrorsLogManager(const YXErrorsLogManager& other) = default;

YXErrorsLogManager& YXErrorsLogManager::operator=(const YXErrorsLogManager& other)
{
    if (this != &other) {
        m_dwMaxEntries = other.m_dwMaxEntries;
        m_strLogFilePath = other.m_strLogFilePath;
        m_Entries = other.m_Entries;
        m_pfnOnChange = other.m_pfnOnChange;
    }
    return *this;
}

YXErrorsLogManager::~YXErrorsLogManager() = default;

void YXErrorsLogManager::Clear()
{
    m_Entries.clear();
    NotifyChanged();
}

void YXErrorsLogManager::SetLogFileName(const _SS<char>& /*name*/)
{
    // The log is kept in memory only; the path stays empty.
}

const _SS<char>& YXErrorsLogManager::GetLogFilePath() const
{
    return m_strLogFilePath;
}

void YXErrorsLogManager::SetMaxEntries(unsigned long maxEntries)
{
    const auto maximum = static_cast<std::uint32_t>(maxEntries);
    if (maximum == 0) {
        return;
    }
    while (m_Entries.size() > maximum) {
        m_Entries.pop_front();
    }
    m_dwMaxEntries = maximum;
}

unsigned long YXErrorsLogManager::GetCount() const
{
    return static_cast<unsigned long>(m_Entries.size());
}

bool YXErrorsLogManager::Add(const _SS<char>& source, const _SS<char>& description, unsigned long flags)
{
    if (!m_Entries.empty()) {
        const YXErrorLogEntry& newest = m_Entries.back();
        if (newest.GetSource() == source && newest.GetDescription() == description) {
            return false;
        }
    }
    // A log made with a maximum of 0 behaves as one of maximum 1: it keeps the newest entry.
    // Evicting nothing would let it grow without bound, evicting everything would lose the entry
    // that was just reported.
    //
    // The evicted entry leaves the list first but lives until the new one is built: the texts
    // given may be its own (a host that copies the oldest entry into a new one). When building
    // fails, it stays evicted all the same.
    std::list<YXErrorLogEntry> evicted;
    if (m_Entries.size() >= m_dwMaxEntries && !m_Entries.empty()) {
        evicted.splice(evicted.end(), m_Entries, m_Entries.begin());
    }
    m_Entries.emplace_back(source, description, flags);
    evicted.clear();
    NotifyChanged();
    return true;
}

const YXErrorLogEntry* YXErrorsLogManager::GetLast() const
{
    return m_Entries.empty() ? nullptr : &m_Entries.back();
}

const YXErrorLogEntry* YXErrorsLogManager::GetItem(unsigned long index) const
{
    if (index >= m_Entries.size()) {
        return nullptr;
    }
    // Index 0 is the newest: walk from whichever end is nearer.
    const std::size_t fromOldest = m_Entries.size() - 1 - index;
    if (index <= fromOldest) {
        auto it = m_Entries.rbegin();
        std::advance(it, index);
        return &*it;
    }
    auto it = m_Entries.begin();
    std::advance(it, fromOldest);
    return &*it;
}

void YXErrorsLogManager::SetOnChangeProc(YXErrorsLogOnChangeProc proc)
{
    m_pfnOnChange = proc;
}

void YXErrorsLogManager::NotifyChanged()
{
    if (m_pfnOnChange != nullptr) {
        m_pfnOnChange(*this);
    }
}

// --- the default log ----------------------------------------------------------------------------

void YXErrorsLog_CreateDefault()
{
    YXErrorsLog_DestroyDefault();
    g_pDefaultLog = new (std::nothrow) YXErrorsLogManager(kDefaultMaxEntries);
}

void YXErrorsLog_DestroyDefault()
{
    delete g_pDefaultLog;
    g_pDefaultLog = nullptr;
}

// Outside the lifetime of the default log (after YXTools_Close, or when its allocation failed at
// initialisation) the first call that needs it creates a new one, empty with a maximum of 5,
// which the next closing sequence releases. A host that calls too early or too late thus gets a
// working log rather than a crash, and nothing leaks.
YXErrorsLogManager& YXErrorsLog_GetDefault()
{
    if (g_pDefaultLog == nullptr) {
        g_pDefaultLog = new YXErrorsLogManager(kDefaultMaxEntries);
    }
    return *g_pDefaultLog;
}

// --- the flat interface -------------------------------------------------------------------------

void YXErrorsLog_SetOnChangeProc(YXErrorsLogOnChangeProc proc, YXErrorsLogManager* pManager)
{
    LogOf(pManager).SetOnChangeProc(proc);
}

void YXErrorsLog_Clear(YXErrorsLogManager* pManager)
{
    LogOf(pManager).Clear();
}

bool YXErrorsLog_Add(const _SS<char>& source, const _SS<char>& description, unsigned long flags,
                     YXErrorsLogManager* pManager)
{
    return LogOf(pManager).Add(source, description, flags);
}

void YXErrorsLog_GetFilePath(_SS<char>& path, YXErrorsLogManager* pManager)
{
    path = LogOf(pManager).GetLogFilePath();
}

unsigned long YXErrorsLog_GetCount(YXErrorsLogManager* pManager)
{
    return LogOf(pManager).GetCount();
}

bool YXErrorsLog_GetLast(_SS<char>& source, _SS<char>& description, unsigned long* pFlags, YXErrorsLogManager* pManager)
{
    const YXErrorLogEntry* entry = LogOf(pManager).GetLast();
    if (entry == nullptr) {
        return false;
    }
    CopyOut(*entry, source, description, pFlags);
    return true;
}

bool YXErrorsLog_GetItemAt(unsigned long index, _SS<char>& source, _SS<char>& description, unsigned long* pFlags,
                           YXErrorsLogManager* pManager)
{
    const YXErrorLogEntry* entry = LogOf(pManager).GetItem(index);
    if (entry == nullptr) {
        return false;
    }
    CopyOut(*entry, source, description, pFlags);
    return true;
}

void YXErrorsLog_SetMaxEntries(unsigned long maxEntries, YXErrorsLogManager* pManager)
{
    LogOf(pManager).SetMaxEntries(maxEntries);
}
