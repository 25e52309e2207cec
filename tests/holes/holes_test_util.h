// Views into the hole managers' state, for tests that check the invariants after every call.
#ifndef YXTOOLS_TESTS_HOLES_UTIL_H
#define YXTOOLS_TESTS_HOLES_UTIL_H

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <vector>

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

namespace holes_test {

constexpr unsigned long kNone = 0xFFFFFFFFUL;
constexpr std::uint32_t kLock = 0x80000000U;

inline bool ByOffset(const tagFILEHOLE& a, const tagFILEHOLE& b)
{
    return a.dwOffset < b.dwOffset || (a.dwOffset == b.dwOffset && a.lSize < b.lSize);
}

inline std::vector<tagFILEHOLE> SortedByOffset(std::vector<tagFILEHOLE> holes)
{
    std::sort(holes.begin(), holes.end(), ByOffset);
    return holes;
}

class EfficientView : public YXEfficientHoleManager {
public:
    // The holes in list order.
    std::vector<tagFILEHOLE> Holes() const
    {
        std::vector<tagFILEHOLE> out;
        for (std::int32_t i = 0; i < m_lNumberOfHoles; ++i) {
            out.push_back(m_ppBlocks[i / 200][i % 200]);
        }
        return out;
    }
    void Poke(std::int32_t i, tagFILEHOLE hole) { m_ppBlocks[i / 200][i % 200] = hole; }
    std::int32_t TableSize() const { return m_lBlockTableSize; }
    std::int32_t BlocksHeld() const { return m_lBlockTableSize - m_wFreeTableEntries; }
    std::int32_t FreeEntries() const { return m_lFreeEntries; }
    bool HasTable() const { return m_ppBlocks != nullptr; }
    unsigned short SortKey() const { return m_wSortKey; }
    bool Optimized() const { return m_bOptimized; }

    // Every invariant that holds after a public call.
    ::testing::AssertionResult Check() const
    {
        const std::int32_t blocks = BlocksHeld();
        for (std::int32_t i = 0; i < m_lBlockTableSize; ++i) {
            if ((m_ppBlocks[i] != nullptr) != (i < blocks)) {
                return ::testing::AssertionFailure() << "table entry " << i << " of " << blocks << " blocks";
            }
        }
        if (m_lFreeEntries != 200 * blocks - m_lNumberOfHoles || m_lFreeEntries >= 200 || m_lFreeEntries < 0) {
            return ::testing::AssertionFailure() << "free entries " << m_lFreeEntries << " with " << blocks
                                                 << " blocks and " << m_lNumberOfHoles << " holes";
        }
        if (m_lNumberOfHoles == 0 && (m_ppBlocks != nullptr || m_lBlockTableSize != 0)) {
            return ::testing::AssertionFailure() << "an empty list holds memory";
        }
        if (m_ppBlocks != nullptr && (m_lBlockTableSize % 20 != 0 || m_lBlockTableSize <= blocks)) {
            return ::testing::AssertionFailure() << "table of " << m_lBlockTableSize << " for " << blocks;
        }
        const std::vector<tagFILEHOLE> holes = Holes();
        std::uint32_t sum = 0;
        for (const tagFILEHOLE& h : holes) {
            sum += static_cast<std::uint32_t>(h.lSize);
        }
        if (sum != m_dwHolesSize) {
            return ::testing::AssertionFailure() << "sum " << m_dwHolesSize << ", holes add to " << sum;
        }
        for (std::size_t i = 1; i < holes.size(); ++i) {
            const tagFILEHOLE& a = holes[i - 1];
            const tagFILEHOLE& b = holes[i];
            const bool inOrder = (m_wSortKey == YXHOLESORT_OFFSET && a.dwOffset <= b.dwOffset) ||
                                 (m_wSortKey == YXHOLESORT_SIZE && a.lSize <= b.lSize) ||
                                 (m_wSortKey == YXHOLESORT_SIZE_DESC && a.lSize >= b.lSize) ||
                                 m_wSortKey == YXHOLESORT_NONE || m_wSortKey > YXHOLESORT_SIZE_DESC;
            if (!inOrder) {
                return ::testing::AssertionFailure() << "key " << m_wSortKey << " but " << a << " before " << b;
            }
        }
        if (m_bOptimized) {
            const std::vector<tagFILEHOLE> sorted = SortedByOffset(holes);
            for (std::size_t i = 1; i < sorted.size(); ++i) {
                const tagFILEHOLE& a = sorted[i - 1];
                const tagFILEHOLE& b = sorted[i];
                if ((b.dwOffset & kLock) == 0 && a.dwOffset + static_cast<std::uint32_t>(a.lSize) == b.dwOffset) {
                    return ::testing::AssertionFailure() << "optimized, yet " << a << " touches " << b;
                }
            }
        }
        return ::testing::AssertionSuccess();
    }
};

class QueueView : public YXPriorityQueue {
public:
    using YXPriorityQueue::YXPriorityQueue;
    std::int32_t Size() const { return m_lSize; }
    std::int32_t Capacity() const { return m_lCapacity; }
    const tagPQCELL& Cell(std::int32_t i) const { return m_pCells[i]; }

    // Heap order, handles equal to indices, and the last-cell pointer.
    ::testing::AssertionResult Check() const
    {
        if (m_lSize > 0 && m_pLast != m_pCells + m_lSize) {
            return ::testing::AssertionFailure() << "last cell pointer";
        }
        for (std::int32_t i = 1; i <= m_lSize; ++i) {
            if (i > 1 && m_pCells[i].lValue < m_pCells[i / 2].lValue) {
                return ::testing::AssertionFailure() << "cell " << i << " is below its parent";
            }
            if (m_pCells[i].plIndex != nullptr && *m_pCells[i].plIndex != i) {
                return ::testing::AssertionFailure() << "cell " << i << " has handle " << *m_pCells[i].plIndex;
            }
        }
        return ::testing::AssertionSuccess();
    }
};

} // namespace holes_test

#endif
