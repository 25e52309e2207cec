#include <cstring>

#include <yxtools/memory.h>

#include "platform/heap.h"
#include "platform/win32.h"

namespace {

UINT FlagsOfKind(unsigned kind)
{
    switch (kind) {
    case YXHUGEPTR_ZEROINIT:
        return GMEM_MOVEABLE | GMEM_ZEROINIT;
    case YXHUGEPTR_MOVEABLE:
        return GMEM_MOVEABLE;
    default:
        return GMEM_FIXED;
    }
}

} // namespace

void* YXHugePtr_Allocate(unsigned kind, unsigned long dwSize)
{
    return GlobalAlloc(FlagsOfKind(kind), dwSize);
}

void* YXHugePtr_ReAllocate(void* handle, unsigned long dwSize, unsigned kind)
{
    return GlobalReAlloc(handle, dwSize, FlagsOfKind(kind));
}

void* YXHugePtr_Lock(void* handle)
{
    return GlobalLock(handle);
}

bool YXHugePtr_Unlock(void* handle)
{
    return GlobalUnlock(handle) != FALSE;
}

unsigned long YXHugePtr_Size(void* handle)
{
    return static_cast<unsigned long>(GlobalSize(handle));
}

void* YXHugePtr_Free(void* handle)
{
    return GlobalFree(handle);
}

void* YXHugePtr_GetHandle(void* address)
{
    return GlobalHandle(address);
}

unsigned YXHugePtr_Flags(void* handle)
{
    return GlobalFlags(handle);
}

void* YXHugePtr_Duplicate(void* handle)
{
    if (handle == nullptr) {
        return nullptr;
    }
    const SIZE_T size = GlobalSize(handle);
    // The flags word taken as a kind: its low byte is the lock count, so the copy's kind follows
    // how often the source is locked.
    HGLOBAL copy = GlobalAlloc(FlagsOfKind(GlobalFlags(handle)), size);
    if (copy == nullptr || size == 0) {
        return copy;
    }
    void* target = GlobalLock(copy);
    const void* source = GlobalLock(handle);
    if (target != nullptr && source != nullptr) {
        std::memcpy(target, source, size);
    }
    if (source != nullptr) {
        GlobalUnlock(handle);
    }
    if (target != nullptr) {
        GlobalUnlock(copy);
    }
    return copy;
}

void* YXHugePtr_FromBuffer(unsigned kind, const YXAutoBuffer* pBuffer)
{
    HGLOBAL block = GlobalAlloc(FlagsOfKind(kind), pBuffer->m_dwSize);
    if (block == nullptr) {
        return nullptr;
    }
    void* target = GlobalLock(block);
    if (target != nullptr) {
        if (pBuffer->m_dwSize != 0) {
            std::memcpy(target, pBuffer->m_pData, pBuffer->m_dwSize);
        }
        GlobalUnlock(block);
    }
    return block;
}

bool YXHugePtr_ToBuffer(void* handle, YXAutoBuffer* pBuffer)
{
    if (handle == nullptr) {
        return false;
    }
    const auto size = static_cast<unsigned long>(GlobalSize(handle));
    if (size != 0 && size > pBuffer->m_dwCapacity) {
        // A buffer that cannot grow to the block's size is not touched: false, with its block,
        // capacity, size and bytes as they were.
        void* pData = yxplatform::HeapReallocate(pBuffer->m_pData, size);
        if (pData == nullptr) {
            return false;
        }
        pBuffer->m_pData = static_cast<unsigned char*>(pData);
        pBuffer->m_dwCapacity = size;
    }
    pBuffer->m_dwSize = size;
    if (size != 0 && pBuffer->m_pData != nullptr) {
        const void* source = GlobalLock(handle);
        if (source != nullptr) {
            std::memcpy(pBuffer->m_pData, source, size);
            GlobalUnlock(handle);
        }
    }
    return true;
}
