// The private operations of YXAutoBuffer, for the library's tests.
#ifndef YXTOOLS_MEMORY_AUTOBUFFER_INTERNAL_H
#define YXTOOLS_MEMORY_AUTOBUFFER_INTERNAL_H

#include <yxtools/memory.h>

struct YXAutoBufferAccess {
    static bool Reserve(YXAutoBuffer& buffer, unsigned long dwSize) { return buffer.Reserve(dwSize); }
    static bool Assign(YXAutoBuffer& buffer, const YXAutoBuffer& source) { return buffer.Assign(source); }
};

#endif
