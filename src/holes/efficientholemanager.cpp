#include <cstdlib>
#include <utility>

#include "holes/holes_internal.h"
#include "yxtools/holes.h"

using yxholes::kLockBit;
using yxholes::kNoOffset;

namespace {

constexpr std::int32_t kBlockHoles = 200; // records per block
constexpr std::int32_t kTableStep = 20;   // the block table grows by this many entries
// m_wFreeTableEntries is 16 bits wide, so the table holds at most this many blocks, that is
// 13107000 holes. Past that AddHole fails as it does when memory runs out.
constexpr std::int32_t kMaxTableSize = 0xFFFF;

// The comparison under each sort key. Any key other than the two size orders sorts by offset.
struct ByOffset {
    static std::uint32_t Key(const tagFILEHOLE& h) { return h.dwOffset; }
    bool operator()(const tagFILEHOLE& a, const tagFILEHOLE& b) const { return a.dwOffset < b.dwOffset; }
};
struct BySize {
    static std::int32_t Key(const tagFILEHOLE& h) { return h.lSize; }
    bool operator()(const tagFILEHOLE& a, const tagFILEHOLE& b) const { return a.lSize < b.lSize; }
};
struct BySizeDescending {
    bool operator()(const tagFILEHOLE& a, const tagFILEHOLE& b) const { return a.lSize > b.lSize; }
};

tagFILEHOLE& HoleAt(tagFILEHOLE** ppBlocks, std::int32_t i)
{
    return ppBlocks[i / kBlockHoles][i % kBlockHoles];
}

// A position in the list for the sort's scans: it steps from block to block without dividing.
class Cursor {
public:
    Cursor(tagFILEHOLE** ppBlocks, std::int32_t i)
        : m_i(i), m_ppBlock(ppBlocks + i / kBlockHoles), m_pBase(*m_ppBlock), m_p(m_pBase + i % kBlockHoles)
    {}
    tagFILEHOLE& operator*() const { return *m_p; }
    std::int32_t Index() const { return m_i; }
    bool operator>=(const Cursor& other) const { return m_i >= other.m_i; }
    Cursor& operator++()
    {
        ++m_i;
        if (++m_p == m_pBase + kBlockHoles) {
            m_pBase = *++m_ppBlock;
            m_p = m_pBase;
        }
        return *this;
    }
    Cursor& operator--()
    {
        --m_i;
        if (m_p == m_pBase) {
            m_pBase = *--m_ppBlock;
            m_p = m_pBase + kBlockHoles - 1;
        } else {
            --m_p;
        }
        return *this;
    }

private:
    std::int32_t m_i;
    tagFILEHOLE** m_ppBlock;
    tagFILEHOLE* m_pBase;
    tagFILEHOLE* m_p;
};

// Hoare partition of [first, last] around a copy of the middle record, which is first swapped
// to the front; returns the position that splits the range. Which of several equal records ends
// where depends on these exact steps, and lookups take the first equal record that they meet,
// so the steps are the behaviour. Pos is a record pointer inside one block, or a Cursor.
template <class Pos, class Less>
Pos Partition(Pos first, Pos last, Pos mid, Less less)
{
    const tagFILEHOLE pivot = *mid;
    std::swap(*mid, *first);
    Pos i = first;
    Pos j = last;
    for (;;) {
        while (less(pivot, *j)) {
            --j;
        }
        while (less(*i, pivot)) {
            ++i;
        }
        if (i >= j) {
            return j;
        }
        std::swap(*i, *j);
        --j;
        ++i;
    }
}

// Quick sort of records lying in one block. The two parts of a partition are sorted apart, so
// the order in which they are done does not change the result: the smaller one recurses and
// the larger one loops, which bounds the depth of the stack.
template <class Less>
void SortContiguous(tagFILEHOLE* first, tagFILEHOLE* last, Less less)
{
    while (first < last) {
        tagFILEHOLE* const p = Partition(first, last, first + (last - first) / 2, less);
        if (p - first < last - p) {
            SortContiguous(first, p, less);
            first = p + 1;
        } else {
            SortContiguous(p + 1, last, less);
            last = p;
        }
    }
}

// The same sort over holes first to last of the block list; a part that lies within one block
// goes on with plain pointers.
template <class Less>
void SortBlocks(tagFILEHOLE** ppBlocks, std::int32_t first, std::int32_t last, Less less)
{
    while (first < last) {
        if (first / kBlockHoles == last / kBlockHoles) {
            SortContiguous(&HoleAt(ppBlocks, first), &HoleAt(ppBlocks, last), less);
            return;
        }
        const std::int32_t p = Partition(Cursor(ppBlocks, first), Cursor(ppBlocks, last),
                                         Cursor(ppBlocks, first + (last - first) / 2), less)
                                   .Index();
        if (p - first < last - p) {
            SortBlocks(ppBlocks, first, p, less);
            first = p + 1;
        } else {
            SortBlocks(ppBlocks, p + 1, last, less);
            last = p;
        }
    }
}

// Binary search for a hole whose key equals the one wanted, in a list sorted by that key. It
// takes equality only, and of several equal holes the first that its probes meet.
template <class Order, class Key>
tagFILEHOLE* Search(tagFILEHOLE** ppBlocks, std::int32_t count, Key key)
{
    if (count == 0) {
        return nullptr;
    }
    std::int32_t lo = 0;
    std::int32_t hi = count - 1;
    std::int32_t mid = hi / 2;
    for (;;) {
        tagFILEHOLE& hole = HoleAt(ppBlocks, mid);
        if (Order::Key(hole) == key) {
            return &hole;
        }
        if (hi - lo < 2) {
            break;
        }
        if (Order::Key(hole) > key) {
            hi = mid;
            mid = (mid + lo) / 2;
        } else {
            lo = mid;
            mid = (mid + hi) / 2;
        }
    }
    tagFILEHOLE& hole = HoleAt(ppBlocks, hi);
    return Order::Key(hole) == key ? &hole : nullptr;
}

} // namespace

YXEfficientHoleManager::YXEfficientHoleManager()
    : m_lNumberOfHoles(0), m_dwHolesSize(0), m_lFreeEntries(0), m_ppBlocks(nullptr), m_lBlockTableSize(0),
      m_wFreeTableEntries(0), m_wSortKey(YXHOLESORT_NONE), m_bOptimized(false)
{}

YXEfficientHoleManager::YXEfficientHoleManager(const YXEfficientHoleManager& other) = default;
YXEfficientHoleManager& YXEfficientHoleManager::operator=(const YXEfficientHoleManager& other) = default;

YXEfficientHoleManager::~YXEfficientHoleManager()
{
    YXEfficientHoleManager::ClearHoleList();
}

long YXEfficientHoleManager::GetNumberOfHoles() const
{
    return m_lNumberOfHoles;
}

unsigned long YXEfficientHoleManager::GetHolesSize() const
{
    return m_dwHolesSize;
}

// --- order and lookup ----------------------------------------------------------------------------

void YXEfficientHoleManager::EnsureOrder(unsigned short wKey)
{
    if (m_wSortKey == wKey) {
        return;
    }
    m_wSortKey = wKey;
    if (m_ppBlocks == nullptr || m_lNumberOfHoles < 2) {
        return;
    }
    const std::int32_t last = m_lNumberOfHoles - 1;
    switch (wKey) {
    case YXHOLESORT_SIZE:
        SortBlocks(m_ppBlocks, 0, last, BySize());
        break;
    case YXHOLESORT_SIZE_DESC:
        SortBlocks(m_ppBlocks, 0, last, BySizeDescending());
        break;
    default:
        SortBlocks(m_ppBlocks, 0, last, ByOffset());
        break;
    }
}

void YXEfficientHoleManager::SortHoles(unsigned short wKey)
{
    EnsureOrder(wKey);
}

tagFILEHOLE* YXEfficientHoleManager::RetrieveHoleByOffset(std::uint32_t dwOffset)
{
    EnsureOrder(YXHOLESORT_OFFSET);
    return Search<ByOffset>(m_ppBlocks, m_lNumberOfHoles, dwOffset);
}

tagFILEHOLE* YXEfficientHoleManager::RetrieveHoleBySize(std::int32_t lSize)
{
    EnsureOrder(YXHOLESORT_SIZE);
    return Search<BySize>(m_ppBlocks, m_lNumberOfHoles, lSize);
}

// --- memory --------------------------------------------------------------------------------------

bool YXEfficientHoleManager::ExpandHoleList(std::int32_t lCount)
{
    if (m_lFreeEntries >= lCount) {
        return true;
    }
    // The table grows in steps of 20 entries, one block ahead of the need.
    const std::int64_t blocksNeeded = (static_cast<std::int64_t>(m_lNumberOfHoles) + lCount) / kBlockHoles;
    std::int64_t tableSize = (blocksNeeded / kTableStep + 1) * kTableStep;
    if (tableSize > kMaxTableSize) {
        tableSize = kMaxTableSize;
    }
    if (tableSize > m_lBlockTableSize) {
        // The table holds pointers to blocks. NOLINTNEXTLINE(bugprone-sizeof-expression)
        void* table = std::realloc(m_ppBlocks, static_cast<std::size_t>(tableSize) * sizeof(tagFILEHOLE*));
        if (table == nullptr) {
            return false;
        }
        m_ppBlocks = static_cast<tagFILEHOLE**>(table);
        for (std::int64_t i = m_lBlockTableSize; i < tableSize; ++i) {
            m_ppBlocks[i] = nullptr;
        }
        m_wFreeTableEntries = static_cast<unsigned short>(m_wFreeTableEntries + (tableSize - m_lBlockTableSize));
        m_lBlockTableSize = static_cast<std::int32_t>(tableSize);
    }
    if (m_wFreeTableEntries == 0) {
        return false;
    }
    void* block = std::malloc(kBlockHoles * sizeof(tagFILEHOLE));
    if (block == nullptr) {
        return false;
    }
    m_ppBlocks[m_lBlockTableSize - m_wFreeTableEntries] = static_cast<tagFILEHOLE*>(block);
    m_lFreeEntries += kBlockHoles;
    --m_wFreeTableEntries;
    return true;
}

bool YXEfficientHoleManager::ShrinkHoleList()
{
    if (m_lNumberOfHoles == 0) {
        ClearHoleList();
        return true;
    }
    if (m_lFreeEntries / kBlockHoles == 0) {
        return false;
    }
    do {
        tagFILEHOLE*& last = m_ppBlocks[m_lBlockTableSize - m_wFreeTableEntries - 1];
        std::free(last);
        last = nullptr;
        m_lFreeEntries -= kBlockHoles;
        ++m_wFreeTableEntries;
    } while (m_lFreeEntries / kBlockHoles != 0);
    return true;
}

bool YXEfficientHoleManager::ClearHoleList()
{
    if (m_ppBlocks != nullptr) {
        for (std::int32_t i = 0; i < m_lBlockTableSize; ++i) {
            std::free(m_ppBlocks[i]);
        }
        std::free(m_ppBlocks);
    }
    m_ppBlocks = nullptr;
    m_lNumberOfHoles = 0;
    m_dwHolesSize = 0;
    m_lFreeEntries = 0;
    m_lBlockTableSize = 0;
    m_wFreeTableEntries = 0;
    m_wSortKey = YXHOLESORT_NONE;
    m_bOptimized = false;
    return true;
}

// --- adding and removing -------------------------------------------------------------------------

bool YXEfficientHoleManager::AddHole(unsigned long dwOffset, long lSize)
{
    if (m_lFreeEntries == 0 && !ExpandHoleList(kBlockHoles)) {
        return false;
    }
    tagFILEHOLE& hole = HoleAt(m_ppBlocks, m_lNumberOfHoles);
    hole.dwOffset = static_cast<std::uint32_t>(dwOffset);
    hole.lSize = static_cast<std::int32_t>(lSize);
    ++m_lNumberOfHoles;
    --m_lFreeEntries;
    m_dwHolesSize += static_cast<std::uint32_t>(hole.lSize);
    m_wSortKey = YXHOLESORT_NONE;
    m_bOptimized = false;
    return true;
}

void YXEfficientHoleManager::RemoveHole(tagFILEHOLE* pHole)
{
    --m_lNumberOfHoles;
    ++m_lFreeEntries;
    m_dwHolesSize -= static_cast<std::uint32_t>(pHole->lSize);
    if (m_lNumberOfHoles > 0) {
        *pHole = HoleAt(m_ppBlocks, m_lNumberOfHoles);
        if (m_lFreeEntries >= kBlockHoles) {
            ShrinkHoleList();
        }
    } else {
        ShrinkHoleList();
    }
}

tagFILEHOLE* YXEfficientHoleManager::RemoveHole(unsigned long dwOffset, long lSize)
{
    const auto offset = static_cast<std::uint32_t>(dwOffset);
    const auto size = static_cast<std::int32_t>(lSize);
    tagFILEHOLE* hole = RetrieveHoleByOffset(offset);
    if (hole == nullptr && (offset & kLockBit) == 0) {
        hole = RetrieveHoleByOffset(offset | kLockBit);
    }
    if (hole == nullptr) {
        return nullptr;
    }
    if (size != 0 && size != hole->lSize) {
        const bool locked = (hole->dwOffset & kLockBit) != 0;
        hole->lSize = yxholes::Sub32(hole->lSize, size);
        hole->dwOffset = yxholes::EndOf(hole->dwOffset & ~kLockBit, size);
        m_dwHolesSize -= static_cast<std::uint32_t>(size);
        if (locked) {
            // The rest is unlocked, so it has left its place among the locked holes.
            m_wSortKey = YXHOLESORT_NONE;
            m_bOptimized = false;
        }
        return hole;
    }
    RemoveHole(hole);
    m_wSortKey = YXHOLESORT_NONE;
    return nullptr;
}

// --- merging -------------------------------------------------------------------------------------

bool YXEfficientHoleManager::OptimizeHoles()
{
    if (m_bOptimized) {
        return true;
    }
    EnsureOrder(YXHOLESORT_OFFSET);
    bool merged = false;
    tagFILEHOLE* target = nullptr;
    tagFFHOLE pos{};
    // Locked holes stand after all unlocked ones in offset order, and take no part.
    for (tagFILEHOLE* hole = GetFirstHole(pos); hole != nullptr && (hole->dwOffset & kLockBit) == 0;
         hole = GetNextHole(pos)) {
        if (target != nullptr && yxholes::EndOf(target->dwOffset, target->lSize) == hole->dwOffset) {
            target->lSize = yxholes::Add32(target->lSize, hole->lSize);
            hole->lSize = 0;
            merged = true;
        } else {
            target = hole;
        }
    }
    if (merged) {
        RemoveEmptyHoles();
    }
    m_bOptimized = true;
    return merged;
}

bool YXEfficientHoleManager::RemoveEmptyHoles()
{
    // In descending size order the holes of size 0 stand at the end, unless holes of a negative
    // size follow them.
    EnsureOrder(YXHOLESORT_SIZE_DESC);
    std::int32_t empty = 0;
    tagFFHOLE pos{};
    for (const tagFILEHOLE* hole = GetLastHole(pos); hole != nullptr && hole->lSize == 0; hole = GetPreviousHole(pos)) {
        ++empty;
    }
    if (empty == 0) {
        return false;
    }
    m_lNumberOfHoles -= empty;
    m_lFreeEntries += empty;
    if (m_lFreeEntries >= kBlockHoles || m_lNumberOfHoles == 0) {
        ShrinkHoleList();
    }
    return true;
}

// --- questions -----------------------------------------------------------------------------------

unsigned long YXEfficientHoleManager::GetBestHole(long lSize)
{
    if (m_lNumberOfHoles == 0) {
        return kNoOffset;
    }
    const auto size = static_cast<std::int32_t>(lSize);
    OptimizeHoles();
    // Exact fit, else the largest hole. The count is read after the merge pass, which can empty
    // the list (holes of size 0 at one offset merge and are dropped) and release its blocks.
    if (const tagFILEHOLE* exact = RetrieveHoleBySize(size)) {
        return exact->dwOffset;
    }
    if (m_lNumberOfHoles == 0) {
        return kNoOffset;
    }
    const tagFILEHOLE& largest = HoleAt(m_ppBlocks, m_lNumberOfHoles - 1);
    return yxholes::LeavesFootPrint(largest.lSize, size, m_lFootPrint) ? largest.dwOffset : kNoOffset;
}

unsigned long YXEfficientHoleManager::GetTruncateOffset(unsigned long dwFileLength)
{
    OptimizeHoles();
    EnsureOrder(YXHOLESORT_OFFSET);
    tagFFHOLE pos{};
    const tagFILEHOLE* last = GetLastHole(pos);
    if (last == nullptr || yxholes::EndOf(last->dwOffset, last->lSize) != static_cast<std::uint32_t>(dwFileLength)) {
        return kNoOffset;
    }
    return last->dwOffset;
}

bool YXEfficientHoleManager::IsHole(unsigned long dwOffset)
{
    const auto offset = static_cast<std::uint32_t>(dwOffset);
    return RetrieveHoleByOffset(offset) != nullptr || RetrieveHoleByOffset(offset | kLockBit) != nullptr;
}

// --- locks ---------------------------------------------------------------------------------------

bool YXEfficientHoleManager::UnlockHole(unsigned long dwOffset)
{
    tagFILEHOLE* hole = RetrieveHoleByOffset(static_cast<std::uint32_t>(dwOffset) | kLockBit);
    if (hole == nullptr) {
        return false;
    }
    hole->dwOffset &= ~kLockBit;
    m_wSortKey = YXHOLESORT_NONE;
    m_bOptimized = false;
    return true;
}

bool YXEfficientHoleManager::UnlockAllHoles()
{
    EnsureOrder(YXHOLESORT_OFFSET);
    // Every hole is looked at: the locked holes are not always the tail of the offset order. A
    // partial removal of more than an unlocked hole holds can carry its start past bit 31 without
    // moving it, and the order is then still taken to hold.
    bool unlocked = false;
    tagFFHOLE pos{};
    for (tagFILEHOLE* hole = GetFirstHole(pos); hole != nullptr; hole = GetNextHole(pos)) {
        if ((hole->dwOffset & kLockBit) != 0) {
            hole->dwOffset &= ~kLockBit;
            unlocked = true;
        }
    }
    if (unlocked) {
        m_wSortKey = YXHOLESORT_NONE;
        m_bOptimized = false;
    }
    return unlocked;
}

// --- walking the list ----------------------------------------------------------------------------

tagFILEHOLE* YXEfficientHoleManager::GetFirstHole(tagFFHOLE& pos) const
{
    if (m_ppBlocks == nullptr) {
        return nullptr;
    }
    pos.lIndex = 1;
    pos.lPosition = 1;
    if (m_lNumberOfHoles == 0) {
        return nullptr;
    }
    pos.ppBlock = m_ppBlocks;
    pos.pHole = *m_ppBlocks;
    return pos.pHole;
}

tagFILEHOLE* YXEfficientHoleManager::GetNextHole(tagFFHOLE& pos) const
{
    if (pos.lIndex >= m_lNumberOfHoles) {
        return nullptr;
    }
    ++pos.lIndex;
    if (++pos.lPosition > kBlockHoles) {
        pos.lPosition = 1;
        pos.pHole = *++pos.ppBlock;
    } else {
        ++pos.pHole;
    }
    return pos.pHole;
}

tagFILEHOLE* YXEfficientHoleManager::GetLastHole(tagFFHOLE& pos) const
{
    if (m_ppBlocks == nullptr || m_lNumberOfHoles == 0) {
        return nullptr;
    }
    const std::int32_t last = m_lNumberOfHoles - 1;
    pos.lIndex = m_lNumberOfHoles;
    pos.lPosition = last % kBlockHoles + 1;
    pos.ppBlock = m_ppBlocks + last / kBlockHoles;
    pos.pHole = *pos.ppBlock + last % kBlockHoles;
    return pos.pHole;
}

tagFILEHOLE* YXEfficientHoleManager::GetPreviousHole(tagFFHOLE& pos) const
{
    if (pos.lIndex < 2) {
        return nullptr;
    }
    --pos.lIndex;
    if (--pos.lPosition < 1) {
        pos.lPosition = kBlockHoles;
        pos.pHole = *--pos.ppBlock + kBlockHoles - 1;
    } else {
        --pos.pHole;
    }
    return pos.pHole;
}
