#include <cstdint>
#include <new>

#include "concurrency/duplicate.h"
#include "platform/win32.h"
#include "yxtools/concurrency.h"

namespace {

static_assert(sizeof(CRITICAL_SECTION) <= sizeof(YXCriticalSection::m_CriticalSection),
              "the platform's section must fit in the storage of YXCriticalSection");

CRITICAL_SECTION* Section(unsigned char* storage)
{
    return std::launder(reinterpret_cast<CRITICAL_SECTION*>(storage));
}

// A time-out for WaitForSingleObject as the 32-bit value a Windows host passes: a negative one
// keeps its bits (-1 is INFINITE), and one wider than 32 bits, which only a 64-bit `long` can
// hold, waits without limit.
DWORD MutexTimeOut(long lTimeOut)
{
    const auto wide = static_cast<long long>(lTimeOut);
    if (wide < INT32_MIN || wide > static_cast<long long>(UINT32_MAX)) {
        return INFINITE;
    }
    return static_cast<DWORD>(static_cast<std::uint32_t>(wide));
}

} // namespace

YXSyncObject::~YXSyncObject() = default;

// --- YXCriticalSection -------------------------------------------------------------------------

YXCriticalSection::YXCriticalSection() : m_CriticalSection{}, m_dwLockCount(0)
{
    InitializeCriticalSection(new (m_CriticalSection) CRITICAL_SECTION);
}

YXCriticalSection::YXCriticalSection(const YXCriticalSection& other)
    : YXSyncObject(other), m_CriticalSection{}, m_dwLockCount(0)
{
    InitializeCriticalSection(new (m_CriticalSection) CRITICAL_SECTION);
    // The copy is held as often as the source's count says, by the copying thread.
    for (std::uint32_t count = other.m_dwLockCount; count > 0; --count) {
        Lock(-1);
    }
}

YXCriticalSection& YXCriticalSection::operator=(const YXCriticalSection& other)
{
    if (this == &other) {
        return *this;
    }
    const std::uint32_t count = other.m_dwLockCount;
    while (m_dwLockCount > 0) {
        Unlock();
    }
    for (std::uint32_t left = count; left > 0; --left) {
        Lock(-1);
    }
    return *this;
}

YXCriticalSection::~YXCriticalSection()
{
    DeleteCriticalSection(Section(m_CriticalSection));
}

bool YXCriticalSection::Lock(long /*lTimeOut*/)
{
    EnterCriticalSection(Section(m_CriticalSection));
    ++m_dwLockCount;
    return true;
}

bool YXCriticalSection::Unlock()
{
    // Read outside the section: an Unlock of a held section belongs to the thread that holds it.
    if (m_dwLockCount == 0) {
        return true;
    }
    --m_dwLockCount;
    LeaveCriticalSection(Section(m_CriticalSection));
    return true;
}

// --- YXMutex -----------------------------------------------------------------------------------

YXMutex::YXMutex() : m_hMutex(CreateMutexA(nullptr, FALSE, nullptr)) {}

YXMutex::YXMutex(const YXMutex& other) : YXSyncObject(other), m_hMutex(yx::concurrency::Duplicate(other.m_hMutex)) {}

YXMutex& YXMutex::operator=(const YXMutex& other)
{
    if (this == &other) {
        return *this;
    }
    HANDLE copy = yx::concurrency::Duplicate(other.m_hMutex); // before this object's handle goes
    if (m_hMutex != nullptr) {
        CloseHandle(m_hMutex);
    }
    m_hMutex = copy;
    return *this;
}

YXMutex::~YXMutex()
{
    if (m_hMutex != nullptr) {
        CloseHandle(m_hMutex);
        m_hMutex = nullptr;
    }
}

bool YXMutex::Lock(long lTimeOut)
{
    if (m_hMutex == nullptr) {
        return false;
    }
    return WaitForSingleObject(m_hMutex, MutexTimeOut(lTimeOut)) == WAIT_OBJECT_0;
}

bool YXMutex::Unlock()
{
    return m_hMutex != nullptr && ReleaseMutex(m_hMutex) != FALSE;
}

// --- YXLockable --------------------------------------------------------------------------------

YXLockable& YXLockable::operator=(const YXLockable& other)
{
    m_Section = other.m_Section;
    return *this;
}

YXLockable::~YXLockable() = default;

bool YXLockable::Lock(long lTimeOut)
{
    return m_Section.Lock(lTimeOut);
}

bool YXLockable::Unlock()
{
    return m_Section.Unlock();
}

// --- YXSingleLock ------------------------------------------------------------------------------

YXSingleLock::YXSingleLock(YXSyncObject* pObject, bool bInitialLock) : m_pObject(pObject), m_bLocked(false)
{
    if (bInitialLock && m_pObject != nullptr) {
        m_bLocked = m_pObject->Lock(-1);
    }
}

YXSingleLock::~YXSingleLock()
{
    Unlock();
}

bool YXSingleLock::Lock(long lTimeOut)
{
    if (m_pObject != nullptr) {
        m_bLocked = m_pObject->Lock(lTimeOut);
    }
    return m_bLocked;
}

bool YXSingleLock::Unlock()
{
    if (m_pObject != nullptr && m_bLocked) {
        m_bLocked = !m_pObject->Unlock();
    }
    return !m_bLocked;
}

void YXSingleLock::SetObject(YXSyncObject* pObject)
{
    m_pObject = pObject;
}
