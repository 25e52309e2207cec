// The one way the lock and thread classes copy a platform handle.
#ifndef YXTOOLS_CONCURRENCY_DUPLICATE_H
#define YXTOOLS_CONCURRENCY_DUPLICATE_H

#include "platform/win32.h"

namespace yx::concurrency {

// A handle of this process to the same object, with the same access; null for null or a refusal.
inline HANDLE Duplicate(HANDLE handle)
{
    HANDLE copy = nullptr;
    if (handle == nullptr || DuplicateHandle(GetCurrentProcess(), handle, GetCurrentProcess(), &copy, 0, FALSE,
                                             DUPLICATE_SAME_ACCESS) == FALSE) {
        return nullptr;
    }
    return copy;
}

} // namespace yx::concurrency

#endif
