// The runtime heap as the memory tools use it: byte blocks, entries and bit words all come from
// here. An internal test can make the next allocations fail (FailHeapAllocationsAfter), so that
// the paths for a block that cannot be had are tested on every build; hosts cannot reach it.
#ifndef YXTOOLS_PLATFORM_HEAP_H
#define YXTOOLS_PLATFORM_HEAP_H

#include <cstddef>
#include <cstdlib>

namespace yxplatform {

// How many more allocations of this thread succeed; negative means all of them.
inline thread_local long t_lHeapAllocationsLeft = -1;

inline bool HeapAllocationAllowed()
{
    if (t_lHeapAllocationsLeft < 0) {
        return true;
    }
    if (t_lHeapAllocationsLeft == 0) {
        return false;
    }
    --t_lHeapAllocationsLeft;
    return true;
}

// Null when the heap refuses the request; a request of 0 bytes gives null too.
inline void* HeapAllocate(std::size_t bytes)
{
    return bytes != 0 && HeapAllocationAllowed() ? std::malloc(bytes) : nullptr;
}

// Null on failure, and the old block then stays as it was. `block` may be null.
inline void* HeapReallocate(void* block, std::size_t bytes)
{
    return bytes != 0 && HeapAllocationAllowed() ? std::realloc(block, bytes) : nullptr;
}

inline void HeapRelease(void* block)
{
    std::free(block);
}

// Test seam: lets `count` further allocations of the calling thread succeed and fails every one
// after them; a negative count lifts the limit.
inline void FailHeapAllocationsAfter(long count)
{
    t_lHeapAllocationsLeft = count;
}

} // namespace yxplatform

#endif
