#include <cstring>
#include <limits>
#include <new>

#include <yxtools/memory.h>

#include "platform/heap.h"

// ---- YXAutoBuffer ----------------------------------------------------------------------------

bool YXAutoBuffer::Reserve(unsigned long dwSize)
{
    if (m_dwCapacity >= dwSize) {
        return true;
    }
    unsigned long capacity = m_dwCapacity == 0 ? dwSize : m_dwCapacity;
    while (capacity < dwSize) {
        // A doubling that would wrap around stops at dwSize itself.
        capacity = capacity > std::numeric_limits<unsigned long>::max() / 2 ? dwSize : capacity * 2;
    }
    auto* pData = static_cast<unsigned char*>(yxplatform::HeapAllocate(capacity));
    if (pData == nullptr) {
        return false;
    }
    if (m_dwSize != 0) {
        std::memcpy(pData, m_pData, m_dwSize);
    }
    yxplatform::HeapRelease(m_pData);
    m_pData = pData;
    m_dwCapacity = capacity;
    return true;
}

bool YXAutoBuffer::Assign(const YXAutoBuffer& source)
{
    // Step one reserves the initial size even for an empty source, and for the buffer itself as
    // the source; its failure leaves the buffer as empty as it was.
    if (m_dwCapacity == 0 && !Reserve(m_dwInitialSize)) {
        m_dwSize = 0;
        return false;
    }
    if (&source == this) {
        return true; // the bytes are already in place
    }
    if (source.m_dwSize == 0) {
        m_dwSize = 0;
        return true;
    }
    if (source.m_dwSize > m_dwCapacity) {
        void* pData = yxplatform::HeapReallocate(m_pData, source.m_dwSize);
        if (pData == nullptr) {
            m_dwSize = 0;
            return false;
        }
        m_pData = static_cast<unsigned char*>(pData);
        m_dwCapacity = source.m_dwSize;
    }
    std::memcpy(m_pData, source.m_pData, source.m_dwSize);
    m_dwSize = source.m_dwSize;
    return true;
}

// ---- YXAutoBufferEntry -----------------------------------------------------------------------

YXAutoBufferEntry::YXAutoBufferEntry() : m_bUsed(false) {}

YXAutoBufferEntry::YXAutoBufferEntry(const YXAutoBufferEntry& other) : m_Buffer(0), m_bUsed(other.m_bUsed)
{
    m_Buffer.Assign(other.m_Buffer);
}

YXAutoBufferEntry& YXAutoBufferEntry::operator=(const YXAutoBufferEntry& other)
{
    m_Buffer.Assign(other.m_Buffer);
    m_bUsed = other.m_bUsed;
    return *this;
}

YXAutoBufferEntry::~YXAutoBufferEntry()
{
    if (m_Buffer.m_bOwner) {
        yxplatform::HeapRelease(m_Buffer.m_pData);
    }
    m_Buffer.m_pData = nullptr;
    m_Buffer.m_dwCapacity = 0;
    m_Buffer.m_dwSize = 0;
}

YXAutoBuffer* YXAutoBufferEntry::GetAutoBuffer() const
{
    return const_cast<YXAutoBuffer*>(&m_Buffer);
}

bool YXAutoBufferEntry::IsUsed() const
{
    return m_bUsed;
}

void YXAutoBufferEntry::SetUsed(bool bUsed)
{
    m_bUsed = bUsed;
}

// ---- YXAutoBufferFactory ---------------------------------------------------------------------

namespace {

// Entries come from the same heap as their blocks, so that a test can refuse either.
void DestroyEntry(YXAutoBufferEntry* entry)
{
    entry->~YXAutoBufferEntry();
    yxplatform::HeapRelease(entry);
}

} // namespace

YXAutoBufferFactory::YXAutoBufferFactory(unsigned short wMaxBuffers) : m_wMaxBuffers(wMaxBuffers) {}

YXAutoBufferFactory::~YXAutoBufferFactory()
{
    for (YXAutoBufferEntry* entry : m_EntryList) {
        DestroyEntry(entry);
    }
    m_EntryList.clear();
}

YXAutoBuffer* YXAutoBufferFactory::GetAutoBuffer(unsigned long dwSize)
{
    bool isNew = false;
    YXAutoBufferEntry* entry = RetrieveFreeEntry();
    if (entry == nullptr) {
        entry = AddEntry();
        if (entry == nullptr) {
            return nullptr;
        }
        isNew = true;
    }
    YXAutoBuffer* buffer = entry->GetAutoBuffer();
    entry->SetUsed(true);
    buffer->m_dwSize = 0;
    if (dwSize > buffer->m_dwCapacity) {
        // Grows to exactly the request, neither doubled nor from the initial size. When the block
        // cannot be had, the request fails and leaves the factory as it was: a reused entry goes
        // back to the free side with its old block and capacity, a new one is dropped again.
        void* pData = yxplatform::HeapReallocate(buffer->m_pData, dwSize);
        if (pData == nullptr) {
            m_EntryList.pop_back(); // the entry was just put at the back
            if (isNew) {
                DestroyEntry(entry);
            } else {
                entry->SetUsed(false);
                m_EntryList.push_front(entry);
            }
            return nullptr;
        }
        buffer->m_pData = static_cast<unsigned char*>(pData);
        buffer->m_dwCapacity = dwSize;
    }
    buffer->m_dwSize = dwSize;
    return buffer;
}

void YXAutoBufferFactory::ReleaseAutoBuffer(YXAutoBuffer*& pBuffer)
{
    for (auto it = m_EntryList.begin(); it != m_EntryList.end(); ++it) {
        if ((*it)->GetAutoBuffer() == pBuffer) {
            (*it)->SetUsed(false);
            m_EntryList.splice(m_EntryList.begin(), m_EntryList, it);
            pBuffer = nullptr;
            return;
        }
    }
}

void YXAutoBufferFactory::SetMaxBuffers(unsigned short wMaxBuffers)
{
    if (m_EntryList.size() < wMaxBuffers) {
        m_wMaxBuffers = wMaxBuffers;
    }
}

unsigned short YXAutoBufferFactory::GetMaxBuffers() const
{
    return m_wMaxBuffers;
}

YXAutoBufferEntry* YXAutoBufferFactory::RetrieveFreeEntry()
{
    for (auto it = m_EntryList.begin(); it != m_EntryList.end(); ++it) {
        if (!(*it)->IsUsed()) {
            YXAutoBufferEntry* entry = *it;
            m_EntryList.splice(m_EntryList.end(), m_EntryList, it);
            return entry;
        }
    }
    return nullptr;
}

YXAutoBufferEntry* YXAutoBufferFactory::AddEntry()
{
    if (m_wMaxBuffers != 0 && m_EntryList.size() >= m_wMaxBuffers) {
        return nullptr;
    }
    void* storage = yxplatform::HeapAllocate(sizeof(YXAutoBufferEntry));
    if (storage == nullptr) {
        return nullptr;
    }
    auto* entry = new (storage) YXAutoBufferEntry;
    m_EntryList.push_back(entry);
    return entry;
}
