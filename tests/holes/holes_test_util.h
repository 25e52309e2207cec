// What the hole manager tests share.
#ifndef YXTOOLS_TESTS_HOLES_UTIL_H
#define YXTOOLS_TESTS_HOLES_UTIL_H

#include <gtest/gtest.h>

#include <cstdint>

#include <yxtools/holes.h>

// Found by argument-dependent lookup, so beside the record's own (global) namespace.
inline bool operator==(const tagFILEHOLE& a, const tagFILEHOLE& b)
{
    return a.dwOffset == b.dwOffset && a.lSize == b.lSize;
}

inline std::ostream& operator<<(std::ostream& out, const tagFILEHOLE& h)
{
    return out << "(" << h.dwOffset << ", " << h.lSize << ")";
}

// Fails the enclosing check with the condition's text.
#define HOLES_REQUIRE(condition)                                                                                       \
    if (!(condition))                                                                                                  \
    return ::testing::AssertionFailure() << #condition

constexpr unsigned long kNone = 0xFFFFFFFFUL;
constexpr std::uint32_t kLock = 0x80000000U;

#endif
