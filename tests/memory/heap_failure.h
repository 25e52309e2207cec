// Makes the library's heap refuse allocations for the length of a scope.
#ifndef YXTOOLS_TESTS_MEMORY_HEAP_FAILURE_H
#define YXTOOLS_TESTS_MEMORY_HEAP_FAILURE_H

#include "platform/heap.h"

class HeapFailure {
public:
    // `after` allocations still succeed, every later one fails.
    explicit HeapFailure(long after = 0) { yxplatform::FailHeapAllocationsAfter(after); }
    ~HeapFailure() { yxplatform::FailHeapAllocationsAfter(-1); }
    HeapFailure(const HeapFailure&) = delete;
    HeapFailure& operator=(const HeapFailure&) = delete;
};

#endif
