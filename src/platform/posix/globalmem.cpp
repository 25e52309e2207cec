// Movable memory blocks over the C heap. Every block has a record in one process-wide table,
// found by its handle and by the address of its data. A movable block's handle is its record's
// address, which is never the address of any block's data; a fixed block's handle is its data.
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <new>
#include <unordered_map>

#include "platform/win32.h"

namespace {

struct Block {
    unsigned char* pData = nullptr; // null for a discarded movable block
    SIZE_T size = 0;                // bytes the caller asked for
    SIZE_T room = 0;                // bytes allocated at pData, so the block can grow in place up to it
    UINT locks = 0;                 // movable blocks only
    bool movable = false;
};

struct Table {
    std::mutex lock;
    std::unordered_map<const void*, Block*> byHandle;
    std::unordered_map<const void*, Block*> byData;
};

Table& Blocks()
{
    // Never destroyed: a block still live at exit stays reachable instead of dangling.
    static Table* table = new Table;
    return *table;
}

HGLOBAL HandleOf(Block* block)
{
    return block->movable ? static_cast<HGLOBAL>(block) : static_cast<HGLOBAL>(block->pData);
}

// One call's hold on the table: locked while it lasts, with the block of the call's handle, or
// null and ERROR_INVALID_HANDLE when the handle is no live block.
struct Call {
    explicit Call(HGLOBAL hMem) : table(Blocks()), guard(table.lock)
    {
        const auto found = table.byHandle.find(hMem);
        if (found != table.byHandle.end()) {
            block = found->second;
        } else {
            SetLastError(ERROR_INVALID_HANDLE);
        }
    }

    Table& table;
    std::lock_guard<std::mutex> guard;
    Block* block = nullptr;
};

void ZeroGrowth(const Block& block, SIZE_T oldSize, UINT uFlags)
{
    if ((uFlags & GMEM_ZEROINIT) != 0 && block.size > oldSize) {
        std::memset(block.pData + oldSize, 0, block.size - oldSize);
    }
}

} // namespace

HGLOBAL GlobalAlloc(UINT uFlags, SIZE_T dwBytes)
{
    auto* block = new (std::nothrow) Block;
    if (block == nullptr) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return nullptr;
    }
    block->movable = (uFlags & GMEM_MOVEABLE) != 0;
    block->size = dwBytes;
    // A movable block of 0 bytes has no data; a fixed one still needs an address of its own.
    if (dwBytes != 0 || !block->movable) {
        block->room = std::max<SIZE_T>(dwBytes, 1);
        block->pData = static_cast<unsigned char*>(std::malloc(block->room));
        if (block->pData == nullptr) {
            delete block;
            SetLastError(ERROR_NOT_ENOUGH_MEMORY);
            return nullptr;
        }
        ZeroGrowth(*block, 0, uFlags);
    }
    Table& table = Blocks();
    const std::lock_guard<std::mutex> guard(table.lock);
    table.byHandle[HandleOf(block)] = block;
    if (block->pData != nullptr) {
        table.byData[block->pData] = block;
    }
    return HandleOf(block);
}

HGLOBAL GlobalReAlloc(HGLOBAL hMem, SIZE_T dwBytes, UINT uFlags)
{
    const Call call(hMem);
    Table& table = call.table;
    Block* block = call.block;
    if (block == nullptr) {
        return nullptr;
    }
    const bool mayMove = (uFlags & GMEM_MOVEABLE) != 0 || (block->movable && block->locks == 0);
    if (dwBytes == 0 && block->movable) {
        if ((uFlags & GMEM_MOVEABLE) == 0 || block->locks != 0) {
            SetLastError(ERROR_INVALID_PARAMETER);
            return nullptr;
        }
        if (block->pData != nullptr) {
            table.byData.erase(block->pData);
            std::free(block->pData);
        }
        block->pData = nullptr;
        block->size = block->room = 0;
        return hMem;
    }
    const SIZE_T oldSize = block->size;
    if (dwBytes <= block->room) {
        block->size = dwBytes;
        ZeroGrowth(*block, oldSize, uFlags);
        return hMem;
    }
    if (!mayMove) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return nullptr;
    }
    auto* pData = static_cast<unsigned char*>(std::realloc(block->pData, dwBytes));
    if (pData == nullptr) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return nullptr;
    }
    if (block->pData != nullptr) {
        table.byData.erase(block->pData);
    }
    if (!block->movable) {
        table.byHandle.erase(hMem);
        table.byHandle[pData] = block;
    }
    table.byData[pData] = block;
    block->pData = pData;
    block->size = block->room = dwBytes;
    ZeroGrowth(*block, oldSize, uFlags);
    return HandleOf(block);
}

LPVOID GlobalLock(HGLOBAL hMem)
{
    if (hMem == nullptr) {
        return nullptr;
    }
    const Call call(hMem);
    Block* block = call.block;
    if (block == nullptr) {
        return nullptr;
    }
    if (block->pData == nullptr) {
        SetLastError(ERROR_DISCARDED);
        return nullptr;
    }
    if (block->movable) {
        ++block->locks;
    }
    return block->pData;
}

BOOL GlobalUnlock(HGLOBAL hMem)
{
    const Call call(hMem);
    Block* block = call.block;
    if (block == nullptr) {
        return FALSE;
    }
    if (!block->movable) {
        return TRUE;
    }
    if (block->locks == 0) {
        SetLastError(ERROR_NOT_LOCKED);
        return FALSE;
    }
    if (--block->locks != 0) {
        return TRUE;
    }
    SetLastError(NO_ERROR);
    return FALSE;
}

SIZE_T GlobalSize(HGLOBAL hMem)
{
    const Call call(hMem);
    const Block* block = call.block;
    return block == nullptr ? 0 : block->size;
}

HGLOBAL GlobalFree(HGLOBAL hMem)
{
    if (hMem == nullptr) {
        return nullptr;
    }
    const Call call(hMem);
    Table& table = call.table;
    Block* block = call.block;
    if (block == nullptr) {
        return hMem;
    }
    table.byHandle.erase(hMem);
    if (block->pData != nullptr) {
        table.byData.erase(block->pData);
        std::free(block->pData);
    }
    delete block;
    return nullptr;
}

HGLOBAL GlobalHandle(LPCVOID pMem)
{
    if (pMem == nullptr) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    Table& table = Blocks();
    const std::lock_guard<std::mutex> guard(table.lock);
    const auto found = table.byData.find(pMem);
    if (found == table.byData.end()) {
        SetLastError(ERROR_INVALID_HANDLE);
        return nullptr;
    }
    return HandleOf(found->second);
}

UINT GlobalFlags(HGLOBAL hMem)
{
    const Call call(hMem);
    const Block* block = call.block;
    if (block == nullptr) {
        return GMEM_INVALID_HANDLE;
    }
    if (!block->movable) {
        return 0;
    }
    return std::min<UINT>(block->locks, GMEM_LOCKCOUNT) | (block->pData == nullptr ? GMEM_DISCARDED : 0);
}
