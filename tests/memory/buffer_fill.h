// Fills a buffer as a host can: through a movable block and YXHugePtr_ToBuffer.
#ifndef YXTOOLS_TESTS_MEMORY_BUFFER_FILL_H
#define YXTOOLS_TESTS_MEMORY_BUFFER_FILL_H

#include <cstring>
#include <string>

#include <yxtools/memory.h>

inline bool FillBuffer(YXAutoBuffer* buffer, const std::string& bytes)
{
    void* block = YXHugePtr_Allocate(YXHUGEPTR_MOVEABLE, static_cast<unsigned long>(bytes.size()));
    if (!bytes.empty()) {
        std::memcpy(YXHugePtr_Lock(block), bytes.data(), bytes.size());
        YXHugePtr_Unlock(block);
    }
    const bool done = YXHugePtr_ToBuffer(block, buffer);
    YXHugePtr_Free(block);
    return done;
}

inline std::string BytesOf(const YXAutoBuffer* buffer)
{
    return {reinterpret_cast<const char*>(buffer->m_pData), buffer->m_dwSize};
}

#endif
